// The registry of phones and what is kept per phone between two runs.
#include "statements/call_case.h"

namespace kesta::test {
namespace {

/// A record whose numbers tell their fields apart.
int32_t SetSetting(const Exports& lib, bool withTexts)
{
    Text imei = Imei();
    Text name = W("N''§");
    Text photoPath = W("PP''§");
    Text docPath = W("DP''§");
    Text wifiMac = W("WM''§");
    Text periodStr = W("PS''§");
    Text contactFolder = W("CF''§");
    Text calendarFolder = W("KF''§");
    Text contactProfile = W("CP''§");
    Text calendarProfile = W("KP''§");
    PhoneSettingRecord phone = {};
    phone.IMEI = imei.get();
    phone.AutoSync = 1;
    phone.AutoBackup = 2;
    phone.AllowWifi = 3;
    phone.ContactPreferSide = 4;
    phone.CalendarPreferSide = 5;
    phone.ContactPim = 6;
    phone.CalPim = 7;
    phone.CalPeriod = 8;
    phone.CalStart = kTime;
    phone.CalEnd = withTexts ? InvalidDate() : NullDate();
    phone.BookMarkType = 9;
    phone.SyncDocFromFolder = 10;
    phone.SyncDocFromPhone = 11;
    phone.SyncPhotoFromFolder = 12;
    phone.SyncPhotoFromPhone = 13;
    phone.SyncMusicFromFolder = 14;
    phone.SyncMusicFromPlayer = 15;
    phone.SyncMusicAll = 16;
    phone.NeedMount = 17;
    if (withTexts) {
        phone.Name = name.get();
        phone.PhotoPath = photoPath.get();
        phone.DocPath = docPath.get();
        phone.WifiMAC = wifiMac.get();
        phone.CalPeriodStr = periodStr.get();
        phone.ContactFolderId = contactFolder.get();
        phone.CalendarFolderId = calendarFolder.get();
        phone.ContactProfile = contactProfile.get();
        phone.CalendarProfile = calendarProfile.get();
    }
    return lib.DB_LIB_SetPhoneSetting(&phone);
}

const std::string kSettingsHead =
    "UPDATE tPhone SET [AutoSync] = 1, [AutoBackup] = 2, [AllowWifi] = 3, \t\t\t\t[ContactPreferSide] = 4, "
    "[CalendarPreferSide] = 5, [ContactPim] = 6, [CalPim] = 7, \t\t\t\t[CalPeriod] = 8, [CalStart] = "
    "'2024-02-29 12:34:56', [CalEnd] = '";
const std::string kSettingsRest =
    "', [BookMarkType] = 9, \t\t\t\t[SyncDocFromFolder] = 10, [SyncDocFromPhone] = 11, [SyncPhotoFromFolder] = 12, "
    "\t\t\t\t[SyncPhotoFromPhone] = 13, [SyncMusicFromFolder] = 14, [SyncMusicFromPlayer] = 15, [SyncMusicAll] = 16";

std::vector<CallCase> RegistryCases()
{
    return {
        {"DB_LIB_PhoneDetected",
         [](const Exports& lib) { return lib.DB_LIB_PhoneDetected(Imei(), W("N''§")); },
         {kPhoneLookUp}},
        {"DB_LIB_PhoneDetected/New",
         [](const Exports& lib) { return lib.DB_LIB_PhoneDetected(W("A''§:B"), W("N''§")); },
         {"SELECT [ID] FROM tPhone WHERE  [IMEI] = 'A''$:B';",
          "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('A''''§:B', 'A''''§', 'N''''§');",
          "SELECT COUNT(*) FROM tLibMainFolder;", "SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1000, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1100, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1400, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1500, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1600, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 1900, 0);",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (3, 2200, 0);"}},
        {"DB_LIB_PhoneDetected/Null",
         [](const Exports& lib) { return lib.DB_LIB_PhoneDetected(nullptr, nullptr); },
         {"SELECT [ID] FROM tPhone WHERE  [IMEI] = '(null)';",
          "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('', '', '');",
          "SELECT COUNT(*) FROM tLibMainFolder;"},
         "DELETE FROM tLibMainFolder"},
        {"DB_LIB_SetPhoneSetting",
         [](const Exports& lib) { return SetSetting(lib, true); },
         {kSettingsHead + "Invalid DateTime" + kSettingsRest +
          ", [WifiMAC] = 'WM''''§', [Name] = 'N''''§', [PhotoPath] = 'PP''''§', [DocPath] = 'DP''''§', "
          "[CalPeriodStr] = 'PS''''§', [ContactFolderId] = 'CF''''§', [CalendarFolderId] = 'KF''''§', "
          "[ContactProfile] = 'CP''''§', [CalendarProfile] = 'KP''''§' WHERE [IMEI] = 'I''''§';"}},
        {"DB_LIB_SetPhoneSetting/NoTexts",
         [](const Exports& lib) { return SetSetting(lib, false); },
         {kSettingsHead + kSettingsRest + " WHERE [IMEI] = 'I''''§';"}},
        {"DB_LIB_GetPhoneSetting",
         [](const Exports& lib) {
             PhoneSettingRecord phone = {};
             return lib.DB_LIB_GetPhoneSetting(Imei(), &phone);
         },
         {"SELECT [Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup], \t\t\t\t[AllowWifi], "
          "[ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], \t\t\t\t[CalPeriod], "
          "DATETIME([CalStart]), DATETIME([CalEnd]), [CalPeriodStr], [BookMarkType], \t\t\t\t[SyncDocFromFolder], "
          "[SyncDocFromPhone], [SyncPhotoFromFolder], [SyncPhotoFromPhone], \t\t\t\t[SyncMusicFromFolder], "
          "[SyncMusicFromPlayer], [SyncMusicAll], [NeedMount], \t\t\t\t[ContactFolderId], [CalendarFolderId], "
          "[ContactProfile], [CalendarProfile] FROM tPhone WHERE [IMEI] = 'I''$';"}},
        {"DB_LIB_GetAllPhones",
         [](const Exports& lib) {
             PhoneList list = {};
             return lib.DB_LIB_GetAllPhones(&list);
         },
         {"SELECT COUNT(*) FROM tPhone;",
          "SELECT [IMEI], [Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup], \t\t\t\t\t\t\t   "
          "[AllowWifi], [ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], \t\t\t\t\t\t\t   "
          "[CalPeriod], DATETIME([CalStart]), DATETIME([CalEnd]), [CalPeriodStr], [BookMarkType], \t\t\t\t\t\t\t   "
          "[SyncDocFromFolder], [SyncDocFromPhone], [SyncPhotoFromFolder], [SyncPhotoFromPhone], \t\t\t\t\t\t\t   "
          "[SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll] FROM tPhone;"}},
    };
}

std::vector<CallCase> StateCases()
{
    return {
        {"DB_LIB_IsFolderSelected",
         [](const Exports& lib) { return lib.DB_LIB_IsFolderSelected(Imei(), 1100); },
         {kPhoneLookUp, "SELECT [Selected] FROM tSyncContents WHERE [phoneID] = 1 AND [lfID] = 1100;"}},
        {"DB_LIB_IsFolderSelected/UnknownPhone",
         [](const Exports& lib) { return lib.DB_LIB_IsFolderSelected(W("X"), 1100); },
         {"SELECT [ID] FROM tPhone WHERE  [IMEI] = 'X';",
          "SELECT [Selected] FROM tSyncContents WHERE [phoneID] = -1 AND [lfID] = 1100;"}},
        {"DB_LIB_SetFolderSelected",
         [](const Exports& lib) { return lib.DB_LIB_SetFolderSelected(Imei(), 1100, 7); },
         {kPhoneLookUp, "SELECT COUNT(*) FROM tSyncContents WHERE [phoneID] = 1 AND [lfID] = 1100;",
          "UPDATE tSyncContents SET [Selected] = 7 WHERE [phoneID] = 1 AND [lfID] = 1100;"},
         "INSERT INTO tSyncContents ([phoneID], [lfID]) VALUES (1, 1100)"},
        {"DB_LIB_SetFolderSelected/NoRow",
         [](const Exports& lib) { return lib.DB_LIB_SetFolderSelected(Imei(), 1100, 7); },
         {kPhoneLookUp, "SELECT COUNT(*) FROM tSyncContents WHERE [phoneID] = 1 AND [lfID] = 1100;",
          "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (1, 1100, 7);"}},
        {"DB_LIB_SetLastSyncTime",
         [](const Exports& lib) { return lib.DB_LIB_SetLastSyncTime(Imei(), &kTime, 3, 4); },
         {"UPDATE tPhone SET [LastTime] = '2024-02-29 12:34:56', [ErrCode] = 3, [NeedMount] = 4 WHERE [IMEI] = "
          "'I''$';"}},
        {"DB_LIB_SetLastSyncTime/DayZero",
         [](const Exports& lib) {
             const DateValue zero = NullDate();
             return lib.DB_LIB_SetLastSyncTime(Imei(), &zero, 3, 4);
         },
         {"UPDATE tPhone SET [ErrCode] = 3, [NeedMount] = 4 WHERE [IMEI] = 'I''$';"}},
        {"DB_LIB_GetLastSyncTime",
         [](const Exports& lib) {
             DateValue time = {};
             return lib.DB_LIB_GetLastSyncTime(Imei(), &time);
         },
         {"SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = 'I''$';"}},
        {"DB_LIB_SetSDType",
         [](const Exports& lib) { return lib.DB_LIB_SetSDType(Imei(), 3, 4); },
         {"UPDATE tPhone SET [SDType] = 3, [SDOldType] = 4 WHERE [IMEI] = 'I''$';"}},
        {"DB_LIB_GetSDType",
         [](const Exports& lib) {
             int32_t type = 0;
             int32_t oldType = 0;
             return lib.DB_LIB_GetSDType(Imei(), &type, &oldType);
         },
         {"SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = 'I''$';"}},
        {"DB_LIB_ClearSyncHistory",
         [](const Exports& lib) { return lib.DB_LIB_ClearSyncHistory(Imei()); },
         {kPhoneLookUp, "DELETE FROM tDFile WHERE [PhoneID] = 1;", "DELETE FROM tIFile WHERE [PhoneID] = 1;",
          "DELETE FROM tVFile WHERE [PhoneID] = 1;", "DELETE FROM tMFile WHERE [PhoneID] = 1;",
          "DELETE FROM tPFile WHERE [PhoneID] = 1;"}},
    };
}

}  // namespace

std::vector<CallCase> PhoneCases()
{
    std::vector<CallCase> cases = RegistryCases();
    for (CallCase& each : StateCases()) {
        cases.push_back(std::move(each));
    }
    return cases;
}

}  // namespace kesta::test
