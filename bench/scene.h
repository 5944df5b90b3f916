// The books on which the benchmarks run: one phone with a number of recorded files, made in a folder that is deleted
// afterwards. Names are those of a music collection, 60 to 110 characters long, and the same in every run.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace kesta::bench {

enum class Letters { kAscii, kAny };

struct File {
    std::u16string path;
    std::u16string basePath;
    std::u16string phonePath;
    double modified;           // as DateValue has it
    std::string modifiedText;  // as the database has it
};

inline constexpr size_t kFilesPerFolder = 20;
inline constexpr char16_t kImei[] = u"352099001761481";

/// The n-th file of the collection.
File MakeFile(size_t n, Letters letters);
/// A file that is not in the collection yet, in a folder that is.
File MakeNewFile(size_t n, size_t files, Letters letters);

std::string Utf8(const std::u16string& text);

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

/// Two equal databases of `files` files: one that the library opens, one for the bare statements.
class Scene {
public:
    Scene(const std::filesystem::path& place, size_t files, Letters letters);

    [[nodiscard]] std::filesystem::path dataHome() const { return folder_.path() / "library"; }
    /// The library's database.
    [[nodiscard]] std::filesystem::path database() const;
    [[nodiscard]] std::filesystem::path bareDatabase() const { return folder_.path() / "bare.s3db"; }
    [[nodiscard]] size_t files() const { return files_; }
    [[nodiscard]] size_t folders() const { return (files_ + kFilesPerFolder - 1) / kFilesPerFolder; }
    [[nodiscard]] Letters letters() const { return letters_; }

private:
    PrivateFolder folder_;
    size_t files_;
    Letters letters_;
};

}  // namespace kesta::bench
