#include "library/phone_settings.h"

#include "core/list.h"

namespace kesta {

void ResetPhoneSetting(PhoneSettingRecord& phone) noexcept
{
    for (DbChar* PhoneSettingRecord::*text :
         {&PhoneSettingRecord::IMEI, &PhoneSettingRecord::Name, &PhoneSettingRecord::PhotoPath,
          &PhoneSettingRecord::DocPath, &PhoneSettingRecord::WifiMAC, &PhoneSettingRecord::CalPeriodStr,
          &PhoneSettingRecord::ContactFolderId, &PhoneSettingRecord::CalendarFolderId,
          &PhoneSettingRecord::ContactProfile, &PhoneSettingRecord::CalendarProfile}) {
        FreeText(phone.*text);
    }
    phone = {};
}

// The blanks and tabs within the statements are content.
// clang-format off

namespace library {

ResultCode SetPhoneSetting(Routine self, const PhoneSettingRecord& phone)
{
    SqlText sql(self.db.textBuffer());
    sql.append(WideSql(
        "UPDATE tPhone SET [AutoSync] = %d, [AutoBackup] = %d, [AllowWifi] = %d, "
        "\t\t\t\t[ContactPreferSide] = %d, [CalendarPreferSide] = %d, [ContactPim] = %d, [CalPim] = %d, "
        "\t\t\t\t[CalPeriod] = %d, [CalStart] = '%s', [CalEnd] = '%s', [BookMarkType] = %d, "
        "\t\t\t\t[SyncDocFromFolder] = %d, [SyncDocFromPhone] = %d, [SyncPhotoFromFolder] = %d, "
        "\t\t\t\t[SyncPhotoFromPhone] = %d, [SyncMusicFromFolder] = %d, [SyncMusicFromPlayer] = %d, [SyncMusicAll] = %d",
        phone.AutoSync, phone.AutoBackup, phone.AllowWifi,
        phone.ContactPreferSide, phone.CalendarPreferSide, phone.ContactPim, phone.CalPim,
        phone.CalPeriod, FormatDateTime(phone.CalStart), FormatDateTime(phone.CalEnd), phone.BookMarkType,
        phone.SyncDocFromFolder, phone.SyncDocFromPhone, phone.SyncPhotoFromFolder,
        phone.SyncPhotoFromPhone, phone.SyncMusicFromFolder, phone.SyncMusicFromPlayer, phone.SyncMusicAll));
    const auto addIfGiven = [&](const Format<Escaped>& piece, const DbChar* text) {
        if (text != nullptr) { sql.append(SqlOf<Escaped>(piece, Escaped{text}));
}
    };
    addIfGiven(", [WifiMAC] = '%s'", phone.WifiMAC);
    addIfGiven(", [Name] = '%s'", phone.Name);
    addIfGiven(", [PhotoPath] = '%s'", phone.PhotoPath);
    addIfGiven(", [DocPath] = '%s'", phone.DocPath);
    addIfGiven(", [CalPeriodStr] = '%s'", phone.CalPeriodStr);
    addIfGiven(", [ContactFolderId] = '%s'", phone.ContactFolderId);
    addIfGiven(", [CalendarFolderId] = '%s'", phone.CalendarFolderId);
    addIfGiven(", [ContactProfile] = '%s'", phone.ContactProfile);
    addIfGiven(", [CalendarProfile] = '%s'", phone.CalendarProfile);
    sql.append(WideSql(" WHERE [IMEI] = '%s';", Escaped{phone.IMEI}));
    if (self.db.exec(sql) != SqliteCode::kOk) {
        self.trail.error(1);
        return ResultCode::kFailure;
    }
    return ResultCode::kSuccess;
}

namespace {

constexpr Format<Ansi> kSelectOne =
    "SELECT [Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup], "
    "\t\t\t\t[AllowWifi], [ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], "
    "\t\t\t\t[CalPeriod], DATETIME([CalStart]), DATETIME([CalEnd]), [CalPeriodStr], [BookMarkType], "
    "\t\t\t\t[SyncDocFromFolder], [SyncDocFromPhone], [SyncPhotoFromFolder], [SyncPhotoFromPhone], "
    "\t\t\t\t[SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll], [NeedMount], "
    "\t\t\t\t[ContactFolderId], [CalendarFolderId], [ContactProfile], [CalendarProfile] FROM tPhone "
    "WHERE [IMEI] = '%s';";

constexpr Format<> kSelectAll =
    "SELECT [IMEI], [Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup], "
    "\t\t\t\t\t\t\t   [AllowWifi], [ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], "
    "\t\t\t\t\t\t\t   [CalPeriod], DATETIME([CalStart]), DATETIME([CalEnd]), [CalPeriodStr], [BookMarkType], "
    "\t\t\t\t\t\t\t   [SyncDocFromFolder], [SyncDocFromPhone], [SyncPhotoFromFolder], [SyncPhotoFromPhone], "
    "\t\t\t\t\t\t\t   [SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll] FROM tPhone;";

// clang-format on

/// Reads what both statements select, [Name] to [SyncMusicAll], from `column` on; returns the column after.
int ReadSettings(const Statement& row, PhoneSettingRecord& phone, int column)
{
    phone.Name = row.newText(column++);
    phone.PhotoPath = row.newText(column++);
    phone.DocPath = row.newText(column++);
    phone.WifiMAC = row.newText(column++);
    phone.AutoSync = row.int32(column++);
    phone.AutoBackup = row.int32(column++);
    phone.AllowWifi = row.int32(column++);
    phone.ContactPreferSide = row.int32(column++);
    phone.CalendarPreferSide = row.int32(column++);
    phone.ContactPim = row.int32(column++);
    phone.CalPim = row.int32(column++);
    phone.CalPeriod = row.int32(column++);
    phone.CalStart = row.date(column++);
    phone.CalEnd = row.date(column++);
    phone.CalPeriodStr = row.newText(column++);
    phone.BookMarkType = row.int32(column++);
    phone.SyncDocFromFolder = row.int32(column++);
    phone.SyncDocFromPhone = row.int32(column++);
    phone.SyncPhotoFromFolder = row.int32(column++);
    phone.SyncPhotoFromPhone = row.int32(column++);
    phone.SyncMusicFromFolder = row.int32(column++);
    phone.SyncMusicFromPlayer = row.int32(column++);
    phone.SyncMusicAll = row.int32(column++);
    return column;
}

void ReadPhone(const Statement& row, PhoneSettingRecord& phone)
{
    phone.IMEI = row.newText(0);
    ReadSettings(row, phone, 1);
}

}  // namespace

ResultCode GetPhoneSetting(Routine self, const DbChar* imei, PhoneSettingRecord& phone)
{
    return self.first(1, NarrowSql(kSelectOne, Ansi{imei}), NoRowIsFailure, [&](const Statement& row) {
        phone.IMEI = DuplicateText(imei);
        int column = ReadSettings(row, phone, 0);
        phone.NeedMount = row.int32(column++);
        phone.ContactFolderId = row.newText(column++);
        phone.CalendarFolderId = row.newText(column++);
        phone.ContactProfile = row.newText(column++);
        phone.CalendarProfile = row.newText(column++);
    });
}

ResultCode GetAllPhones(Routine self, PhoneList& list)
{
    return ReadList(self, list, NarrowSql("SELECT COUNT(*) FROM tPhone;"), NarrowSql(kSelectAll), ReadPhone);
}

}  // namespace library
}  // namespace kesta
