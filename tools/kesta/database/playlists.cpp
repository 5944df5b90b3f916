#include "database/playlists.h"

#include "database/calls.h"
#include "os/system.h"

namespace kesta {
namespace {

using calls::Text;

// Some programs write the word instead of leaving the column empty; the library takes it for nothing, too.
constexpr std::string_view kNoId = "(null)";

struct ListArguments {
    explicit ListArguments(const RecordedPlaylist& list)
        : name(Text(list.name)), digest(Text(list.digest)), idInPhone(list.idInPhone)
    {
        record.Name = name.data();
        record.Digest = digest.data();
        record.IdInPhone = idInPhone.get();
        record.Type = list.type;
        record.Count = list.count;
        record.Size = list.size;
        record.TotalSize = list.totalSize;
        record.Sized = list.sized ? 1 : 0;
    }
    ListArguments(const ListArguments&) = delete;
    ListArguments& operator=(const ListArguments&) = delete;

    DbText name, digest;
    calls::OptionalText idInPhone;
    PlaylistRecord record{};
};

RecordedPlaylist Named(const std::string& name)
{
    RecordedPlaylist list;
    list.name = name;
    return list;
}

// Names that the library has put into the caller's array, in the memory that both sides have agreed upon.
class OwnedNames {
public:
    OwnedNames() = default;
    OwnedNames(const OwnedNames&) = delete;
    OwnedNames& operator=(const OwnedNames&) = delete;
    ~OwnedNames()
    {
        for (int32_t i = 0; i < names_.Count; ++i) {
            os::FreeShared(names_.Items[i]);
        }
        os::FreeShared(names_.Items);
    }
    [[nodiscard]] FileNameArray* get() { return &names_; }

private:
    FileNameArray names_{0, nullptr};
};

}  // namespace

std::vector<RecordedPlaylist> PlaylistRecords::lists()
{
    calls::OwnedList<PlaylistList> list(
        [](PlaylistList* record) { (void)DB_PLAYERMUSIC_GetPlaylists(calls::kNoPhone, record); });
    const DbText phone = Text(imei_);
    calls::ReadList(
        "DB_PLAYERMUSIC_GetPlaylists", [&] { return DB_PLAYERMUSIC_GetPlaylists(phone.c_str(), list.get()); },
        list.get()->Count);
    std::vector<RecordedPlaylist> lists;
    lists.reserve(list.size());
    for (const PlaylistRecord& record : list) {
        RecordedPlaylist row;
        row.name = FromDbText(record.Name);
        row.digest = FromDbText(record.Digest);
        row.idInPhone = calls::FromOptionalText(record.IdInPhone);
        if (row.idInPhone == kNoId) {
            row.idInPhone.reset();
        }
        row.type = record.Type;
        row.state = static_cast<PlaylistState>(record.Flag);
        row.count = record.Count;
        row.size = record.Size;
        row.totalSize = record.TotalSize;
        row.selected = record.Selected != 0;
        row.sized = record.Sized != 0;
        lists.push_back(std::move(row));
    }
    return lists;
}

Result PlaylistRecords::beginConfirming()
{
    return DB_PLAYERMUSIC_ClearAll(Text(imei_).c_str());
}

Result PlaylistRecords::confirm(const RecordedPlaylist& list)
{
    const ListArguments arguments(list);
    return DB_PLAYERMUSIC_AddPlaylist(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::setAdded(const std::string& name, const std::string& idInPhone)
{
    RecordedPlaylist list = Named(name);
    list.idInPhone = idInPhone;
    const ListArguments arguments(list);
    return DB_PLAYERMUSIC_SetAddedPlaylist(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::setUpdated(const std::string& name)
{
    const ListArguments arguments(Named(name));
    return DB_PLAYERMUSIC_SetUpdatedPlaylist(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::setDeleted(const std::string& name)
{
    const ListArguments arguments(Named(name));
    return DB_PLAYERMUSIC_SetDeletedPlaylist(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::forget(const std::string& name)
{
    return DB_PLAYERMUSIC_DeleteList(Text(imei_).c_str(), Text(name).c_str());
}

std::vector<RecordedFile> PlaylistRecords::files()
{
    calls::OwnedList<SyncedFileList> list(
        [](SyncedFileList* record) { (void)DB_PLAYERMUSIC_GetSyncedFiles(calls::kNoPhone, nullptr, record); });
    const DbText phone = Text(imei_);
    // The library lists the files of all playlists, whichever is named.
    calls::ReadList(
        "DB_PLAYERMUSIC_GetSyncedFiles",
        [&] { return DB_PLAYERMUSIC_GetSyncedFiles(phone.c_str(), nullptr, list.get()); }, list.get()->Count);
    return calls::ToFiles(list);
}

Result PlaylistRecords::addFile(const RecordedFile& file)
{
    const calls::FileArguments arguments(file);
    return DB_PLAYERMUSIC_SetAddedFile(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::updateFile(const RecordedFile& file)
{
    const calls::FileArguments arguments(file);
    return DB_PLAYERMUSIC_SetUpdatedFile(Text(imei_).c_str(), &arguments.record);
}

Result PlaylistRecords::removeFile(const std::string& path)
{
    const calls::FileArguments arguments(RecordedFile{path, {}, {}, {}});
    return DB_PLAYERMUSIC_SetDeletedFile(Text(imei_).c_str(), &arguments.record);
}

std::vector<std::string> PlaylistRecords::members(const std::string& list)
{
    OwnedNames names;
    const DbText phone = Text(imei_), name = Text(list);
    const auto read = [&] { return DB_PLAYERMUSIC_GetListFilesname(phone.c_str(), name.c_str(), names.get()); };
    calls::ReadList("DB_PLAYERMUSIC_GetListFilesname", read, names.get()->Count);
    std::vector<std::string> members;
    members.reserve(static_cast<size_t>(names.get()->Count));
    for (int32_t i = 0; i < names.get()->Count; ++i) {
        members.push_back(FromDbText(names.get()->Items[i]));
    }
    return members;
}

Result PlaylistRecords::setMembers(const std::string& list, const std::vector<std::string>& members)
{
    std::vector<DbText> texts;
    texts.reserve(members.size());
    for (const std::string& member : members) {
        texts.push_back(Text(member));
    }
    std::vector<DbChar*> items;
    items.reserve(texts.size());
    for (DbText& text : texts) {
        items.push_back(text.data());
    }
    const FileNameArray names{static_cast<int32_t>(items.size()), items.data()};
    return DB_PLAYERMUSIC_SetListFilesname(Text(imei_).c_str(), Text(list).c_str(), &names);
}

}  // namespace kesta
