#include "api/given.h"

namespace kesta::test {
namespace {

std::string Fields(std::initializer_list<std::string> fields)
{
    std::string text;
    for (const std::string& field : fields) {
        text += (text.empty() ? "" : "|") + field;
    }
    return text;
}

}  // namespace

std::string ToString(const MainFolderRecord& folder)
{
    return Fields({std::to_string(folder.ID), std::to_string(folder.Number), std::to_string(folder.Size),
                   Utf8(folder.Setting), std::to_string(folder.Changed)});
}

std::string ToString(const FolderRecord& folder)
{
    return Fields({Utf8(folder.Path), std::to_string(folder.Count), std::to_string(folder.Size),
                   std::to_string(folder.TotalSize), std::to_string(folder.Selected), std::to_string(folder.Deleted),
                   DateText(folder.AddTime), std::to_string(folder.Sized)});
}

std::string ToString(const SyncedFileRecord& file)
{
    return Fields({Utf8(file.Path), Utf8(file.BasePath), Utf8(file.PhonePath), DateText(file.ModifiedTime)});
}

std::string ToString(const PhoneSettingRecord& phone)
{
    return Fields({Utf8(phone.IMEI),
                   Utf8(phone.Name),
                   Utf8(phone.PhotoPath),
                   Utf8(phone.DocPath),
                   Utf8(phone.WifiMAC),
                   std::to_string(phone.AutoSync),
                   std::to_string(phone.AutoBackup),
                   std::to_string(phone.AllowWifi),
                   std::to_string(phone.ContactPreferSide),
                   std::to_string(phone.CalendarPreferSide),
                   std::to_string(phone.ContactPim),
                   std::to_string(phone.CalPim),
                   std::to_string(phone.CalPeriod),
                   Utf8(phone.CalPeriodStr),
                   DateText(phone.CalStart),
                   DateText(phone.CalEnd),
                   std::to_string(phone.BookMarkType),
                   std::to_string(phone.SyncDocFromFolder),
                   std::to_string(phone.SyncDocFromPhone),
                   std::to_string(phone.SyncPhotoFromFolder),
                   std::to_string(phone.SyncPhotoFromPhone),
                   std::to_string(phone.SyncMusicFromFolder),
                   std::to_string(phone.SyncMusicFromPlayer),
                   std::to_string(phone.SyncMusicAll),
                   std::to_string(phone.NeedMount),
                   Utf8(phone.ContactFolderId),
                   Utf8(phone.CalendarFolderId),
                   Utf8(phone.ContactProfile),
                   Utf8(phone.CalendarProfile)});
}

namespace {

template <class List>
std::string Joined(const List& list)
{
    std::string text;
    for (int32_t i = 0; i < list.Count; ++i) {
        text += (i > 0 ? "\n" : "") + ToString(list.Items[i]);
    }
    return text;
}

}  // namespace

std::string ToString(const FolderList& list)
{
    return Joined(list);
}

std::string ToString(const SyncedFileList& list)
{
    return Joined(list);
}

std::string ToString(const MainFolderList& list)
{
    return Joined(list);
}

std::string Quoted(std::string_view text)
{
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("''") : std::string(1, c);
    }
    return quoted + "'";
}

}  // namespace kesta::test
