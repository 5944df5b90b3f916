// What the benchmarks' databases are filled with: made up, and the same in every run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kesta::bench {

enum class Letters { kAscii, kAny };

std::string Utf8(const std::u16string& text);

/// A point in time as both sides are given it.
struct Time {
    double days;       // as DateValue has it
    std::string text;  // as the database has it
};

/// A file of a music collection, with paths of 60 to 110 characters.
struct File {
    std::u16string path;
    std::u16string basePath;
    std::u16string phonePath;
    Time modified;
};

inline constexpr size_t kFilesPerFolder = 20;

/// The n-th file of the collection.
File MakeFile(size_t n, Letters letters);
/// A file that is not in the collection yet, in a folder that is.
File MakeNewFile(size_t n, size_t files, Letters letters);

struct Playlist {
    std::u16string name;
    std::u16string idInPhone;  // empty: it is not on the phone
    std::u16string digest;
    int count;
    int64_t size;
};

/// The n-th playlist; every other one is on the phone. The `revision` shows in its contents only.
Playlist MakePlaylist(size_t n, size_t revision, Letters letters);

struct BookmarkTexts {
    std::u16string title;
    std::u16string url;
    std::u16string phoneId;
};

BookmarkTexts MakeBookmark(size_t n, Letters letters);

/// A contact with contents of 1 KiB.
struct Contact {
    std::u16string id;
    std::vector<uint8_t> data;
};

inline constexpr size_t kContactBytes = 1024;

Contact MakeContact(size_t n, Letters letters);

/// What a contact's last sync left behind.
struct LogEntry {
    std::u16string onPc;
    std::u16string onPhone;
    Time changedOnPc;
    Time changedOnPhone;
};

LogEntry MakeLogEntry(size_t n, Letters letters);

}  // namespace kesta::bench
