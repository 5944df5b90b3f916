/**
 * @file
 * @brief C++: which folders of the PC are synced to a phone, and which files lie on it.
 */
#pragma once

#include <kesta_db/cpp/base.hpp>

namespace kesta_db {

/// The four kinds of media.
enum class Category { kMusic, kImages, kVideos, kDocuments };

/// A folder of the PC that is synced to a phone.
struct Folder {
    int64_t rowId = 0;
    std::string path{};
    int32_t count = 0;
    int64_t size = 0;
    int64_t totalSize = 0;
    bool selected = true;
    bool deleted = false;
    bool sized = false;
    std::optional<LocalTime> added{};
};

/// A file that has been synced to a phone.
struct File {
    std::string path{};       ///< on the PC
    std::string basePath{};   ///< the folder, or the playlist, that it belongs to
    std::string phonePath{};  ///< on the phone
    std::optional<LocalTime> modified{};

    friend bool operator==(const File&, const File&) = default;
};

namespace detail {

[[nodiscard]] inline Folder ToFolder(const FolderRecord& record)
{
    return {record.RowId,        Utf8(record.Path), record.Count,
            record.Size,         record.TotalSize,  record.Selected != 0,
            record.Deleted != 0, record.Sized != 0, FromDateValue(record.AddTime)};
}

[[nodiscard]] inline File ToFile(const SyncedFileRecord& record)
{
    return {Utf8(record.Path), Utf8(record.BasePath), Utf8(record.PhonePath), FromDateValue(record.ModifiedTime)};
}

/// A file as an argument. The library only reads the texts; the fields are not const because it also hands records out.
class FileArgument {
public:
    explicit FileArgument(const File& file)
        : path_(Text(file.path)), basePath_(Text(file.basePath)), phonePath_(Text(file.phonePath))
    {
        record_ = {ToDateValue(file.modified), path_.data(), basePath_.data(), phonePath_.data()};
    }
    FileArgument(const FileArgument&) = delete;
    FileArgument& operator=(const FileArgument&) = delete;
    [[nodiscard]] const SyncedFileRecord* get() const { return &record_; }

private:
    Utf16 path_;
    Utf16 basePath_;
    Utf16 phonePath_;
    SyncedFileRecord record_{};
};

/// True when it was recorded now, false when it was before.
[[nodiscard]] inline bool Added(std::string_view call, int32_t result)
{
    if (result == static_cast<int32_t>(Code::kExists)) return false;
    Require(call, result);
    return true;
}

/// The functions of one category.
struct CategoryCalls {
    const char* name;
    decltype(&DB_MUSIC_AddFolder) addFolder;
    decltype(&DB_MUSIC_GetFolder) getFolder;
    decltype(&DB_MUSIC_GetFolders) getFolders;
    decltype(&DB_MUSIC_SetFolderSelected) setFolderSelected;
    decltype(&DB_MUSIC_SetFolderDeleted) setFolderDeleted;
    decltype(&DB_MUSIC_SetDeletedFolder) setDeletedFolder;
    decltype(&DB_MUSIC_GetSyncedFiles) getSyncedFiles;
    decltype(&DB_MUSIC_SetAddedFile) setAddedFile;
    decltype(&DB_MUSIC_SetUpdatedFile) setUpdatedFile;
    decltype(&DB_MUSIC_SetDeletedFile) setDeletedFile;
};

[[nodiscard]] inline const CategoryCalls& CallsOf(Category category)
{
#define KESTA_DB_CATEGORY(NAME)                                                                           \
    CategoryCalls                                                                                         \
    {                                                                                                     \
        "DB_" #NAME, &DB_##NAME##_AddFolder, &DB_##NAME##_GetFolder, &DB_##NAME##_GetFolders,             \
            &DB_##NAME##_SetFolderSelected, &DB_##NAME##_SetFolderDeleted, &DB_##NAME##_SetDeletedFolder, \
            &DB_##NAME##_GetSyncedFiles, &DB_##NAME##_SetAddedFile, &DB_##NAME##_SetUpdatedFile,          \
            &DB_##NAME##_SetDeletedFile                                                                   \
    }
    static const CategoryCalls kCalls[] = {KESTA_DB_CATEGORY(MUSIC), KESTA_DB_CATEGORY(IMAGE), KESTA_DB_CATEGORY(VIDEO),
                                           KESTA_DB_CATEGORY(DOCUMENT)};
#undef KESTA_DB_CATEGORY
    return kCalls[static_cast<size_t>(category)];
}

}  // namespace detail

/// Folders and files of one category on one phone, which must be known.
class Media {
public:
    Media(std::string_view imei, Category category)
        : imei_(detail::KnownIdentifier(imei)), calls_(detail::CallsOf(category))
    {
    }

    /// In the order in which they were added. An empty answer is a true one, here and below.
    [[nodiscard]] std::vector<Folder> folders()
    {
        auto release = [this](FolderList* list) { (void)calls_.getFolders(detail::kUnknown, list); };
        detail::OwnedList<FolderList, decltype(release)> list(release);
        detail::ReadCountedList(name("GetFolders"), *list.get(),
                                [&] { return calls_.getFolders(imei_.c_str(), list.get()); });
        return list.records(detail::ToFolder);
    }

    /// Path, count, size, totalSize and sized are stored; a known folder keeps its selection. Reads the folder back,
    /// for the library does not tell whether it was stored.
    void addFolder(const Folder& folder)
    {
        detail::Utf16 path = detail::Text(folder.path);
        FolderRecord record{};
        record.Path = path.data();
        record.Count = folder.count;
        record.Size = folder.size;
        record.TotalSize = folder.totalSize;
        record.Sized = folder.sized ? 1 : 0;
        detail::Require(name("AddFolder"), calls_.addFolder(imei_.c_str(), &record));
        FolderRecord stored{};
        const bool isStored = calls_.getFolder(imei_.c_str(), path.c_str(), &stored) == 0 &&
                              stored.Count == record.Count && stored.Size == record.Size &&
                              stored.TotalSize == record.TotalSize && stored.Sized == record.Sized;
        (void)calls_.getFolder(detail::kUnknown, path.c_str(), &stored);  // gives the text back
        if (!isStored) throw Error(name("AddFolder"), Code::kNotStored);
    }
    void selectFolder(std::string_view path, bool selected)
    {
        detail::Require(name("SetFolderSelected"),
                        calls_.setFolderSelected(imei_.c_str(), detail::Text(path).c_str(), selected ? 1 : 0));
    }
    /// Gone from the PC, or back.
    void setFolderDeleted(std::string_view path, bool deleted)
    {
        detail::Require(name("SetFolderDeleted"),
                        calls_.setFolderDeleted(imei_.c_str(), detail::Text(path).c_str(), deleted ? 1 : 0));
    }
    /// With all files recorded under it.
    void removeFolder(std::string_view path)
    {
        detail::Require(name("SetDeletedFolder"), calls_.setDeletedFolder(imei_.c_str(), detail::Text(path).c_str()));
    }

    /// The files of all folders.
    [[nodiscard]] std::vector<File> files()
    {
        auto release = [this](SyncedFileList* list) { (void)calls_.getSyncedFiles(detail::kUnknown, nullptr, list); };
        detail::OwnedList<SyncedFileList, decltype(release)> list(release);
        detail::ReadCountedList(name("GetSyncedFiles"), *list.get(),
                                [&] { return calls_.getSyncedFiles(imei_.c_str(), nullptr, list.get()); });
        return list.records(detail::ToFile);
    }
    /// False when the file is recorded already; it is then left as it was.
    bool addFile(const File& file)
    {
        return detail::Added(name("SetAddedFile"),
                             calls_.setAddedFile(imei_.c_str(), detail::FileArgument(file).get()));
    }
    /// phonePath and modified of the file with that path.
    void updateFile(const File& file)
    {
        detail::Require(name("SetUpdatedFile"), calls_.setUpdatedFile(imei_.c_str(), detail::FileArgument(file).get()));
    }
    void removeFile(std::string_view path)
    {
        detail::Require(
            name("SetDeletedFile"),
            calls_.setDeletedFile(imei_.c_str(), detail::FileArgument({std::string(path), {}, {}, {}}).get()));
    }

private:
    /// "DB_MUSIC_GetFolders"
    [[nodiscard]] std::string name(const char* call) const { return std::string(calls_.name) + '_' + call; }

    detail::Utf16 imei_;
    const detail::CategoryCalls& calls_;
};

}  // namespace kesta_db
