// The databases on which the benchmarks run, made in a folder that is deleted afterwards.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "entries.h"

namespace kesta::bench {

inline constexpr char16_t kImei[] = u"352099001761481";

/// A folder of its own below `place`, deleted with everything in it.
class PrivateFolder {
public:
    explicit PrivateFolder(const std::filesystem::path& place);
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder();
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Stops the program when a step of a benchmark did not do what it was to do: its time would mean nothing.
void Require(bool condition, const char* what);

/// What a data set is about. It has one phone and is otherwise empty.
enum class Family { kMedia, kPlaylists, kBookmarks, kPim };
inline constexpr Family kFamilies[] = {Family::kMedia, Family::kPlaylists, Family::kBookmarks, Family::kPim};

/// Two equal databases with a number of entries: one that the library opens, one for the bare statements.
class DataSet {
public:
    DataSet(const std::filesystem::path& place, Family family, size_t entries, Letters letters);

    [[nodiscard]] std::filesystem::path dataHome() const { return folder_.path() / "library"; }
    /// The library's database.
    [[nodiscard]] std::filesystem::path database() const;
    [[nodiscard]] std::filesystem::path bareDatabase() const { return folder_.path() / "bare.s3db"; }
    [[nodiscard]] Family family() const { return family_; }
    /// Files, playlists, bookmarks, or contacts and the entries of a log of them.
    [[nodiscard]] size_t entries() const { return entries_; }
    [[nodiscard]] Letters letters() const { return letters_; }

private:
    PrivateFolder folder_;
    Family family_;
    size_t entries_;
    Letters letters_;
};

}  // namespace kesta::bench
