// Files and folders as the client needs them. Paths are UTF-8 with the system's own separator; on Windows they may be
// longer than MAX_PATH. posix/ and windows/ implement it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "os/status.h"

namespace kesta::os {

#if defined(_WIN32)
inline constexpr char kSeparator = '\\';
#else
inline constexpr char kSeparator = '/';
#endif

enum class FileKind { kFile, kDirectory, kOther };

/// Names a file on this machine whatever path leads to it.
struct FileId {
    uint64_t volume = 0;
    uint64_t number = 0;
    friend auto operator<=>(const FileId&, const FileId&) = default;  // NOLINT(modernize-use-nullptr)
};

/// Seconds since 1970 (UTC) and the part of a second.
struct FileTime {
    int64_t seconds = 0;
    int32_t nanoseconds = 0;
    friend auto operator<=>(const FileTime&, const FileTime&) = default;
};

struct FileInfo {
    FileKind kind = FileKind::kOther;
    uint64_t size = 0;
    FileTime modified;
    FileId id;
};

struct DirectoryEntry {
    std::string name;   // what could be converted, when the name is not valid
    bool valid = true;  // false: the name is no valid text and cannot be written down in the database
    bool isLink = false;
};

/// Follows links.
Status ReadInfo(const std::string& path, FileInfo& info);
/// Does not follow a link at the end of the path; such a link is of kind kOther.
Status ReadInfoOfLink(const std::string& path, FileInfo& info);
/// Without "." and "..", in no particular order.
Status ListDirectory(const std::string& path, std::vector<DirectoryEntry>& entries);
/// False also when it cannot be listed.
bool IsEmptyDirectory(const std::string& path);
/// Whether there is certainly nothing at the path.
bool IsMissing(const std::string& path);
/// Absolute, without links, "." and "..". Fails when there is nothing at the path.
Status CanonicalPath(const std::string& path, std::string& canonical);
/// Absolute, whether or not there is anything at the path.
std::string AbsolutePath(const std::string& path);
/// Sets bytes to the room that this user has on the file system of the folder; to nothing where that cannot be told.
Status ReadFreeSpace(const std::string& path, std::optional<uint64_t>& bytes);
/// Sets id to what tells the file system of the folder from another one in its place.
Status ReadFileSystemId(const std::string& path, std::string& id);
/// Whether something can be created in the folder, as far as permissions and the file system tell.
Status CheckWritable(const std::string& directory);

Status MakeDirectory(const std::string& path);
Status RemoveFile(const std::string& path);
/// It is no failure when there is none.
Status RemoveFileIfThere(const std::string& path);
Status RemoveEmptyDirectory(const std::string& path);
/// Replaces the target when it is there. Both must lie on the same file system.
Status Rename(const std::string& from, const std::string& to);
/// Sets the time of the last change, and of the last access with it.
Status SetModified(const std::string& path, FileTime time);
/// Makes what was created, renamed or removed in the folder survive a power failure, where the system has a way to.
Status FlushDirectory(const std::string& path);

std::string Join(std::string_view directory, std::string_view name);
/// Whether the path is the folder or lies below it, by its name alone.
bool LiesIn(std::string_view path, std::string_view folder);
/// The part before the last separator; the path itself when there is none or it is a root.
std::string ParentOf(const std::string& path);
/// The last component; empty for a root.
std::string NameOf(const std::string& path);

/// A file being read.
class InputFile {
public:
    InputFile() = default;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    Status open(const std::string& path);
    Status readInfo(FileInfo& info) const;
    /// Sets count to what was read, 0 at the end.
    Status read(std::span<std::byte> buffer, size_t& count);
    /// Where the next read begins.
    Status seek(uint64_t position);

private:
    intptr_t handle_ = -1;
};

/// A file being written. Closed by the destructor; only close() tells whether everything was taken.
class OutputFile {
public:
    OutputFile() = default;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Fails with kExists when something is at the path.
    Status create(const std::string& path);
    Status write(std::span<const std::byte> data);
    /// And the time of the last access with it: some drivers ignore a change of one alone.
    Status setModified(FileTime time);
    /// Makes the contents survive a power failure.
    Status flush();
    Status close();

private:
    intptr_t handle_ = -1;
};

/// Held by one process at a time; the system releases it when the process dies.
class DirectoryLock {
public:
    DirectoryLock() = default;
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;
    ~DirectoryLock();

    /// kBusy: another process holds it.
    Status acquire(const std::string& directory);

private:
    intptr_t handle_ = -1;
};

/// The whole contents of a small file.
Status ReadText(const std::string& path, std::string& text);
/// The same for what a user says is a playlist, say: fails for what is no file, and for one that is larger than any
/// playlist. what: with its article.
Status ReadTextOf(std::string_view what, uint64_t largest, const std::string& path, std::string& text);
struct FileComparison {
    uint64_t common = 0;  // bytes at their beginnings
    bool areSame = false;
};
/// Fails when either cannot be read.
Status CompareFiles(const std::string& path, const std::string& otherPath, FileComparison& comparison);
/// Whether two files hold the same. False when either cannot be read.
bool HoldSameBytes(const std::string& path, const std::string& otherPath);
/// Replaces the file's contents in one step: a reader sees the old or the new ones, also after a power failure.
/// makeWay is called when all but that step has been done, to see to what the file holds now.
Status WriteText(const std::string& path, const std::string& temporary, std::string_view text,
                 const std::function<Status()>& makeWay = {});

}  // namespace kesta::os
