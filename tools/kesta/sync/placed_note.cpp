#include "sync/placed_note.h"

#include <fmt/format.h>

#include <charconv>
#include <sstream>

namespace kesta {
namespace {

constexpr std::string_view kNotePrefix = ".kesta-placed-";
constexpr std::string_view kAnySize = "*";

std::string NoteName(size_t number)
{
    return fmt::format("{}{}", kNotePrefix, number);
}

// "123 Music/a.mp3", or "* Music/a.mp3"
std::optional<PlacedFile> FileFrom(const std::string& line)
{
    const auto blank = line.find(' ');
    if (blank == std::string::npos) {
        return std::nullopt;
    }
    PlacedFile file{line.substr(blank + 1), std::nullopt};
    if (line.substr(0, blank) == kAnySize) {
        return file;
    }
    uint64_t size = 0;
    const auto [end, problem] = std::from_chars(line.data(), line.data() + blank, size);
    if (problem != std::errc() || end != line.data() + blank) {
        return std::nullopt;
    }
    file.size = size;
    return file;
}

}  // namespace

os::Status WritePlacedNote(const PhoneFolder& phone, size_t number, const std::vector<PlacedFile>& files,
                           os::Flush flush)
{
    std::string text;
    for (const PlacedFile& file : files) {
        text += fmt::format("{} {}\n", file.size ? std::to_string(*file.size) : std::string(kAnySize), file.phonePath);
    }
    const std::string path = phone.native(NoteName(number));
    if (os::Status status = os::RemoveFileIfThere(path); !status.ok()) {
        return status;
    }
    if (os::Status status = CreateText(path, text, flush); !status.ok()) {
        (void)os::RemoveFile(path);
        return status;
    }
    return flush == os::Flush::kNow ? os::FlushDirectory(phone.root()) : os::Status();
}

os::Status RemovePlacedNote(const PhoneFolder& phone, size_t number)
{
    return os::RemoveFileIfThere(phone.native(NoteName(number)));
}

os::Status ReadPlacedNotes(const PhoneFolder& phone, PlacedNotes& notes)
{
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(phone.root(), entries); !status.ok()) {
        return status;
    }
    for (const os::DirectoryEntry& entry : entries) {
        if (!entry.valid || !entry.name.starts_with(kNotePrefix)) {
            continue;
        }
        std::string text;
        if (os::Status status = os::ReadText(phone.native(entry.name), text); !status.ok()) {
            return status;
        }
        notes.names.push_back(entry.name);
        // A line that was cut short is of a file that had not been placed.
        std::istringstream lines(text.substr(0, text.rfind('\n') + 1));
        for (std::string line; std::getline(lines, line);) {
            if (auto file = FileFrom(line)) {
                notes.files.push_back(std::move(*file));
            }
        }
    }
    return {};
}

}  // namespace kesta
