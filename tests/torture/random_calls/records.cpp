#include "torture/random_calls/records.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "torture/random_calls/values.h"

namespace kesta::test {
namespace {

/// What the sanitizers look at, and the optimiser must not leave out.
volatile uint32_t seen = 0;

void Read(const DbChar* text)
{
    if (text == nullptr) {
        return;
    }
    uint32_t sum = 0;
    for (; *text != 0; ++text) {
        sum += *text;
    }
    seen = sum;
}

void Read(std::initializer_list<const DbChar*> texts)
{
    for (const DbChar* text : texts) {
        Read(text);
    }
}

void Read(const uint8_t* data, int32_t length)
{
    if (length < 0) {
        Fail("an item has %d bytes", length);
    }
    if (length > 0 && data == nullptr) {
        Fail("an item counts %d bytes and has none", length);
    }
    uint32_t sum = 0;
    for (int32_t i = 0; i < length; ++i) {
        sum += data[i];
    }
    seen = sum;
}

void Check(const DateValue& date)
{
    if (date.Status < kDateValid || date.Status > kDateNull) {
        Fail("a date has the state %d", date.Status);
    }
}

}  // namespace

void Fail(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::fputs("FAILED: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    va_end(arguments);
    std::abort();
}

void Fill(FolderRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {Size(bytes),   texts.pick(bytes), Number(bytes), Size(bytes), Size(bytes),
              Number(bytes), Number(bytes),     Number(bytes), Date(bytes), Number(bytes)};
}

void Fill(SyncedFileRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {Date(bytes), texts.pick(bytes), texts.pick(bytes), texts.pick(bytes)};
}

void Fill(MainFolderRecord& record, CallBytes& bytes, Texts& texts)
{
    static constexpr std::array<int32_t, 9> kIds = {kMainFolderMusic,
                                                    kMainFolderGallery,
                                                    kMainFolderDocument,
                                                    kMainFolderPeople,
                                                    kMainFolderCalendar,
                                                    kMainFolderWebBookmark,
                                                    kMainFolderMap,
                                                    0,
                                                    -1};
    record = {bytes.oneOf(kIds), Number(bytes), Size(bytes), texts.pick(bytes), Number(bytes)};
}

void Fill(PhoneSettingRecord& record, CallBytes& bytes, Texts& texts)
{
    for (DbChar** text :
         {&record.IMEI, &record.Name, &record.PhotoPath, &record.DocPath, &record.WifiMAC, &record.CalPeriodStr,
          &record.ContactFolderId, &record.CalendarFolderId, &record.ContactProfile, &record.CalendarProfile}) {
        *text = texts.pick(bytes);
    }
    for (int32_t* number :
         {&record.AutoSync, &record.AutoBackup, &record.AllowWifi, &record.ContactPreferSide,
          &record.CalendarPreferSide, &record.ContactPim, &record.CalPim, &record.CalPeriod, &record.BookMarkType,
          &record.SyncDocFromFolder, &record.SyncDocFromPhone, &record.SyncPhotoFromFolder, &record.SyncPhotoFromPhone,
          &record.SyncMusicFromFolder, &record.SyncMusicFromPlayer, &record.SyncMusicAll, &record.NeedMount}) {
        *number = Number(bytes);
    }
    record.CalStart = Date(bytes);
    record.CalEnd = Date(bytes);
}

void Fill(PlaylistRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {Size(bytes),   texts.pick(bytes), texts.pick(bytes), texts.pick(bytes), Number(bytes), Number(bytes),
              Number(bytes), Size(bytes),       Size(bytes),       Number(bytes),     Number(bytes)};
}

void Fill(BookmarkRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {texts.pick(bytes), texts.pick(bytes), texts.pick(bytes), Number(bytes), Number(bytes), Number(bytes)};
}

void Fill(BackupRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {Number(bytes), Size(bytes), Date(bytes), texts.pick(bytes), texts.pick(bytes)};
}

void Fill(PimFolderRecord& record, CallBytes& bytes, Texts& texts)
{
    record = {texts.pick(bytes), texts.pick(bytes), texts.pick(bytes), Number(bytes)};
}

void Fill(PimItemRecord& record, CallBytes& bytes, Texts& texts)
{
    static constexpr std::array<int32_t, 8> kLengths = {0, 1, 100, 65536, -1, 5, -2147483647 - 1, 7};
    record.PimID = texts.pick(bytes);
    record.Type = Number(bytes);
    record.DataLength = bytes.oneOf(kLengths);
    record.Data = nullptr;
    if (bytes.rarely(8)) {
        if (bytes.rarely(2)) {
            record.DataLength = 2147483647;  // of no data
        }
        return;
    }
    // Exactly as much as there should be; an empty one still has an address.
    const size_t length = record.DataLength > 0 ? static_cast<size_t>(record.DataLength) : 0;
    record.Data = texts.keepBytes(length, bytes.next());
}

void Fill(PimLogItem& record, CallBytes& bytes, Texts& texts)
{
    record = {texts.pick(bytes), texts.pick(bytes), Date(bytes), Date(bytes)};
}

void Check(const FolderRecord& record)
{
    Read(record.Path);
    Check(record.AddTime);
}

void Check(const SyncedFileRecord& record)
{
    Read({record.Path, record.BasePath, record.PhonePath});
    Check(record.ModifiedTime);
}

void Check(const MainFolderRecord& record)
{
    Read(record.Setting);
    if (record.Changed != 0 && record.Changed != 1) {
        Fail("a main folder is changed %d times", record.Changed);
    }
}

void Check(const PhoneSettingRecord& record)
{
    Read({record.IMEI, record.Name, record.PhotoPath, record.DocPath, record.WifiMAC, record.CalPeriodStr,
          record.ContactFolderId, record.CalendarFolderId, record.ContactProfile, record.CalendarProfile});
    Check(record.CalStart);
    Check(record.CalEnd);
}

void Check(const PlaylistRecord& record)
{
    Read({record.Name, record.Digest, record.IdInPhone});
}

void Check(const BookmarkRecord& record)
{
    Read({record.Title, record.Path, record.PhoneMID});
}

void Check(const BackupRecord& record)
{
    Read({record.Path, record.PhonePath});
    Check(record.ModifiedTime);
}

void Check(const PimFolderRecord& record)
{
    Read({record.PimID, record.ParentPimID, record.Path});
}

void Check(const PimItemRecord& record)
{
    Read(record.PimID);
    Read(record.Data, record.DataLength);
}

void Check(const PimLogItem& record)
{
    Read({record.Guid, record.Luid});
    Check(record.PCTime);
    Check(record.PhoneTime);
}

}  // namespace kesta::test
