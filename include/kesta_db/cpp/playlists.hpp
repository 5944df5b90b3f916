/**
 * @file
 * @brief C++: the playlists of the music player on one phone.
 */
#pragma once

#include <kesta_db/cpp/media.hpp>

#include <algorithm>
#include <cstdlib>
#if defined(_WIN32)
// The allocator that the library and its callers share; declared here so that <windows.h> stays out.
extern "C" __declspec(dllimport) void __stdcall CoTaskMemFree(void* memory);
#if defined(_MSC_VER)
#pragma comment(lib, "ole32")
#endif
#endif

namespace kesta_db {

/// Where a playlist stands. Another program may have stored any other number, too.
enum class PlaylistState : int32_t {
    kCurrent = kPlaylistCurrent,          ///< on the phone as it is on the PC
    kNew = kPlaylistNew,                  ///< to be added to the phone
    kUnconfirmed = kPlaylistUnconfirmed,  ///< gone from the PC, or not seen again yet: to be removed from the phone
    kDeleted = kPlaylistDeleted           ///< removed from the phone; its row is kept
};

/// One playlist.
struct Playlist {
    std::string name{};
    std::string digest{};                    ///< the caller's digest of the contents: ASCII without apostrophes
    std::optional<std::string> idInPhone{};  ///< std::nullopt: not on the phone, or there under an empty name
    int32_t type = 0;
    PlaylistState state = PlaylistState::kNew;
    int32_t count = 0;
    int64_t size = 0;
    int64_t totalSize = 0;
    bool selected = true;
    bool sized = false;
};

namespace detail {

/// Names in the memory that the library and its callers share.
class FileNames {
public:
    FileNames() = default;
    FileNames(const FileNames&) = delete;
    FileNames& operator=(const FileNames&) = delete;
    ~FileNames()
    {
        for (int32_t i = 0; i < names_.Count; ++i) release(names_.Items[i]);
        release(names_.Items);
    }
    [[nodiscard]] FileNameArray* get() { return &names_; }
    [[nodiscard]] std::vector<std::string> texts() const
    {
        std::vector<std::string> texts;
        for (int32_t i = 0; i < names_.Count; ++i) texts.push_back(Utf8(names_.Items[i]));
        return texts;
    }

private:
    static void release(void* memory)
    {
#if defined(_WIN32)
        CoTaskMemFree(memory);
#else
        std::free(memory);
#endif
    }
    FileNameArray names_{};
};

[[nodiscard]] inline Playlist ToPlaylist(const PlaylistRecord& record)
{
    Playlist list;
    list.name = Utf8(record.Name);
    list.digest = Utf8(record.Digest);
    // Some programs write the word instead of leaving the column empty; the library takes it for nothing, too.
    if (std::string id = Utf8(record.IdInPhone); !id.empty() && id != "(null)") list.idInPhone = std::move(id);
    list.type = record.Type;
    list.state = static_cast<PlaylistState>(record.Flag);
    list.count = record.Count;
    list.size = record.Size;
    list.totalSize = record.TotalSize;
    list.selected = record.Selected != 0;
    list.sized = record.Sized != 0;
    return list;
}

}  // namespace detail

/// The playlists of one phone, which must be known. A round: beginConfirming, confirm each list of the PC, all; what is
/// kNew then goes to the phone, what is still kUnconfirmed is removed from it.
class Playlists {
public:
    explicit Playlists(std::string_view imei) : imei_(detail::KnownIdentifier(imei)) {}

    /// By name. An empty answer is a true one, here and below.
    [[nodiscard]] std::vector<Playlist> all()
    {
        auto release = [](PlaylistList* list) { (void)DB_PLAYERMUSIC_GetPlaylists(detail::kUnknown, list); };
        detail::OwnedList<PlaylistList, decltype(release)> list(release);
        detail::ReadCountedList("DB_PLAYERMUSIC_GetPlaylists", *list.get(),
                                [&] { return DB_PLAYERMUSIC_GetPlaylists(imei_.c_str(), list.get()); });
        return list.records(detail::ToPlaylist);
    }
    /// Every list but those deleted on the phone becomes kUnconfirmed.
    void beginConfirming() { detail::Require("DB_PLAYERMUSIC_ClearAll", DB_PLAYERMUSIC_ClearAll(imei_.c_str())); }
    /// Confirms a list of the PC, or adds it. The library does not tell whether it was stored; all() does.
    void confirm(const Playlist& list)
    {
        detail::Utf16 name = detail::Text(list.name);
        detail::Utf16 digest = detail::Identifier(list.digest);
        PlaylistRecord record{};
        record.Name = name.data();
        record.Digest = digest.data();
        record.Type = list.type;
        record.Count = list.count;
        record.Size = list.size;
        record.TotalSize = list.totalSize;
        record.Sized = list.sized ? 1 : 0;
        detail::Require("DB_PLAYERMUSIC_AddPlaylist", DB_PLAYERMUSIC_AddPlaylist(imei_.c_str(), &record));
    }
    void select(std::string_view name, bool selected)
    {
        detail::Require("DB_PLAYERMUSIC_SetListSelected",
                        DB_PLAYERMUSIC_SetListSelected(imei_.c_str(), detail::Text(name).c_str(), selected ? 1 : 0));
    }
    /// The phone has taken the list, under its own name for it.
    void setAdded(std::string_view name, std::string_view idInPhone)
    {
        detail::Utf16 id = detail::Text(idInPhone);
        const Named list(name, id.data());
        detail::Require("DB_PLAYERMUSIC_SetAddedPlaylist", DB_PLAYERMUSIC_SetAddedPlaylist(imei_.c_str(), list.get()));
    }
    /// The changed list has been written to the phone again.
    void setUpdated(std::string_view name)
    {
        const Named list(name, nullptr);
        detail::Require("DB_PLAYERMUSIC_SetUpdatedPlaylist",
                        DB_PLAYERMUSIC_SetUpdatedPlaylist(imei_.c_str(), list.get()));
    }
    /// The list has been removed from the phone.
    void setDeleted(std::string_view name)
    {
        const Named list(name, nullptr);
        detail::Require("DB_PLAYERMUSIC_SetDeletedPlaylist",
                        DB_PLAYERMUSIC_SetDeletedPlaylist(imei_.c_str(), list.get()));
    }
    /// The list is gone from the PC.
    void forget(std::string_view name)
    {
        detail::Require("DB_PLAYERMUSIC_DeleteList",
                        DB_PLAYERMUSIC_DeleteList(imei_.c_str(), detail::Text(name).c_str()));
    }

    /// The file names of a list, in the order of their bytes.
    [[nodiscard]] std::vector<std::string> members(std::string_view name)
    {
        detail::FileNames names;
        const detail::Utf16 list = detail::Text(name);
        detail::ReadCountedList("DB_PLAYERMUSIC_GetListFilesname", *names.get(), [&] {
            return DB_PLAYERMUSIC_GetListFilesname(imei_.c_str(), list.c_str(), names.get());
        });
        return names.texts();
    }
    /// Replaces them; a name given twice is stored once. Reads them back, for the library does not tell whether all
    /// were stored.
    void setMembers(std::string_view name, std::vector<std::string> members)
    {
        std::vector<detail::Utf16> texts;
        for (const std::string& member : members) texts.push_back(detail::Text(member));
        std::vector<DbChar*> items;
        for (detail::Utf16& text : texts) items.push_back(text.data());
        const FileNameArray names{static_cast<int32_t>(items.size()), items.data()};
        detail::Require("DB_PLAYERMUSIC_SetListFilesname",
                        DB_PLAYERMUSIC_SetListFilesname(imei_.c_str(), detail::Text(name).c_str(), &names));
        std::sort(members.begin(), members.end());
        members.erase(std::unique(members.begin(), members.end()), members.end());
        std::vector<std::string> stored = this->members(name);
        std::sort(stored.begin(), stored.end());
        if (stored != members) throw Error("DB_PLAYERMUSIC_SetListFilesname", Code::kNotStored);
    }

    /// The files that were copied because of playlists. A file's basePath is the list that it came with.
    [[nodiscard]] std::vector<File> files()
    {
        auto release = [](SyncedFileList* list) {
            (void)DB_PLAYERMUSIC_GetSyncedFiles(detail::kUnknown, nullptr, list);
        };
        detail::OwnedList<SyncedFileList, decltype(release)> list(release);
        detail::ReadCountedList("DB_PLAYERMUSIC_GetSyncedFiles", *list.get(),
                                [&] { return DB_PLAYERMUSIC_GetSyncedFiles(imei_.c_str(), nullptr, list.get()); });
        return list.records(detail::ToFile);
    }
    /// False when the file is recorded already.
    bool addFile(const File& file)
    {
        return detail::Added("DB_PLAYERMUSIC_SetAddedFile",
                             DB_PLAYERMUSIC_SetAddedFile(imei_.c_str(), detail::FileArgument(file).get()));
    }
    void updateFile(const File& file)
    {
        detail::Require("DB_PLAYERMUSIC_SetUpdatedFile",
                        DB_PLAYERMUSIC_SetUpdatedFile(imei_.c_str(), detail::FileArgument(file).get()));
    }
    void removeFile(std::string_view path)
    {
        const detail::FileArgument file({std::string(path), {}, {}, {}});
        detail::Require("DB_PLAYERMUSIC_SetDeletedFile", DB_PLAYERMUSIC_SetDeletedFile(imei_.c_str(), file.get()));
    }

private:
    /// A record that only names a list.
    class Named {
    public:
        Named(std::string_view name, DbChar* idInPhone) : name_(detail::Text(name))
        {
            record_.Name = name_.data();
            record_.IdInPhone = idInPhone;
        }
        Named(const Named&) = delete;
        Named& operator=(const Named&) = delete;
        [[nodiscard]] const PlaylistRecord* get() const { return &record_; }

    private:
        detail::Utf16 name_;
        PlaylistRecord record_{};
    };

    detail::Utf16 imei_;
};

}  // namespace kesta_db
