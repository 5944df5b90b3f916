#include "phone/trash.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/dates.h"
#include "os/local_time.h"
#include "os/system.h"

namespace kesta {
namespace {

constexpr size_t kDayLength = 10;  // of "2026-01-31"

std::optional<LocalTime> TimeOf(const std::string& day)
{
    return ParseLocalTime(day.substr(0, kDayLength));
}

}  // namespace

os::Status Trash::take(const std::string& phonePath, os::Flush flush)
{
    const auto now = os::ToLocalTime(os::Now());
    const std::string today = now ? FormatLocalTime(*now).substr(0, kDayLength) : "1970-01-01";
    for (int attempt = 1;; ++attempt) {
        const std::string day = attempt == 1 ? today : fmt::format("{}~{}", today, attempt);
        const std::string trashPath = fmt::format("{}/{}/{}", kTrashName, day, phonePath);
        if (phone_.find(trashPath).entry != PhoneEntry::kNothing) {
            continue;
        }
        return phone_.move(phonePath, trashPath, flush);
    }
}

std::vector<TrashedFile> Trash::files() const
{
    std::vector<TrashedFile> files;
    for (const std::string& day : days()) {
        list(day, fmt::format("{}/{}", kTrashName, day), files);
    }
    return files;
}

os::Status Trash::expire()
{
    const auto now = os::ToLocalTime(os::Now());
    for (const std::string& day : days()) {
        const auto time = TimeOf(day);
        if (!now || !time || *now - *time <= std::chrono::days(kTrashDays + 1)) {
            continue;
        }
        std::vector<TrashedFile> files;
        list(day, fmt::format("{}/{}", kTrashName, day), files);
        for (const TrashedFile& file : files) {
            if (os::Status status = remove(file); !status.ok()) {
                return status;
            }
        }
    }
    return {};
}

os::Status Trash::free(uint64_t bytes, uint64_t& freed)
{
    for (const TrashedFile& file : files()) {
        if (freed >= bytes) {
            break;
        }
        if (os::Status status = remove(file); !status.ok()) {
            return status;
        }
        freed += file.size;
    }
    return {};
}

// Only what the client names so: anything else was put there by somebody else.
std::vector<std::string> Trash::days() const
{
    std::vector<std::string> days;
    for (std::string& name : phone_.names(std::string(kTrashName))) {
        if (name.size() >= kDayLength && TimeOf(name)) {
            days.push_back(std::move(name));
        }
    }
    // "2026-01-31~10" comes behind "2026-01-31~9".
    std::sort(days.begin(), days.end(), [](const std::string& a, const std::string& b) {
        const int order = a.compare(0, kDayLength, b, 0, kDayLength);
        if (order != 0) {
            return order < 0;
        }
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return days;
}

void Trash::list(const std::string& day, const std::string& folder, std::vector<TrashedFile>& files) const
{
    std::vector<std::string> names = phone_.names(folder);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const std::string path = fmt::format("{}/{}", folder, name);
        os::FileInfo info;
        if (!os::ReadInfoOfLink(phone_.native(path), info).ok()) {
            continue;
        }
        if (info.kind == os::FileKind::kFile) {
            const size_t above = kTrashName.size() + 1 + day.size() + 1;
            files.push_back({day, path.substr(above), path, info.size});
        } else if (info.kind == os::FileKind::kDirectory) {
            list(day, path, files);
        }
    }
}

os::Status Trash::remove(const TrashedFile& file)
{
    if (os::Status status = phone_.removeFile(file.trashPath); !status.ok()) {
        return status;
    }
    return phone_.tidyAbove(file.trashPath);
}

}  // namespace kesta
