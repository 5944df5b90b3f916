// What a sync has removed or replaced on the phone, by the day on which it did: .kesta-trash/2026-01-31/Music/a.mp3.
// A second file of a path on one day goes to 2026-01-31~2.
#pragma once

#include <string>
#include <vector>

#include "phone/phone_folder.h"

namespace kesta {

inline constexpr std::string_view kTrashName = ".kesta-trash";
inline constexpr int kTrashDays = 30;

struct TrashedFile {
    std::string day;        // the folder in the trash
    std::string phonePath;  // where it was
    std::string trashPath;  // where it is, as a phone path
    uint64_t size = 0;
};

class Trash {
public:
    explicit Trash(PhoneFolder& phone) : phone_(phone) {}

    /// Moves a file there; it is no failure when there is none. flush: of the folder in which it was.
    os::Status take(const std::string& phonePath, os::Flush flush);
    /// Oldest first.
    [[nodiscard]] std::vector<TrashedFile> files() const;
    /// Removes what has been there for more than kTrashDays.
    os::Status expire();
    /// Removes the oldest files until so many bytes have been freed, or none is left; adds to freed.
    os::Status free(uint64_t bytes, uint64_t& freed);

private:
    [[nodiscard]] std::vector<std::string> days() const;
    void list(const std::string& day, const std::string& folder, std::vector<TrashedFile>& files) const;
    os::Status remove(const TrashedFile& file);

    PhoneFolder& phone_;
};

}  // namespace kesta
