#include "core/replaced_files.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/dates.h"
#include "platform/services.h"

namespace kesta {
namespace {

constexpr std::string_view kReplaced = ".replaced-";
constexpr std::string_view kStampShape = "00000000-000000";  // 0: a digit
constexpr size_t kMostKept = 3;

/// What is kept of a database; all but the file itself may be missing.
constexpr std::array<std::string_view, 3> kParts = {"", "-journal", "-wal"};

/// "YYYYMMDD-HHMMSS", local time.
std::string Stamp(int64_t seconds)
{
    const DateText date = FormatDateTime(DateFromTime(seconds));
    std::string stamp;
    for (const char c : date.view()) {
        if (c == ' ') {
            stamp += '-';
        } else if (c >= '0' && c <= '9') {
            stamp += c;
        }
    }
    return stamp;
}

bool IsStamp(std::string_view text)
{
    return std::equal(text.begin(), text.end(), kStampShape.begin(), kStampShape.end(),
                      [](char c, char shape) { return shape == '0' ? c >= '0' && c <= '9' : c == shape; });
}

platform::Path With(const platform::Path& file, std::string_view suffix)
{
    platform::Path other = file;
    return other += suffix;
}

/// The stamp in the name of a file that was kept, empty for any other name.
std::string StampOf(const std::u8string& name, const std::u8string& start)
{
    if (!name.starts_with(start)) {
        return {};
    }
    const std::string rest(name.begin() + static_cast<std::ptrdiff_t>(start.size()), name.end());
    const std::string stamp = rest.substr(0, kStampShape.size());
    const bool known = std::find(kParts.begin(), kParts.end(), rest.substr(stamp.size())) != kParts.end();
    return known && IsStamp(stamp) ? stamp : std::string();
}

}  // namespace

void ReplacedFiles::keep() noexcept
{
    constexpr int kMostTries = 100;  // each a second later: names of the same second are taken
    try {
        const int64_t now = platform::services.now();
        for (int i = 0; i < kMostTries; ++i) {
            suffix_ = std::string(kReplaced) + Stamp(now + i);
            const platform::Path second = With(file_, suffix_);
            const platform::Naming named = platform::GiveSecondName(file_, second);
            if (named == platform::Naming::kNameTaken) {
                continue;
            }
            if (named == platform::Naming::kFailed) {
                break;
            }
            for (const std::string_view part : kParts) {
                if (!part.empty()) {
                    (void)platform::GiveSecondName(With(file_, part), With(second, part));
                }
            }
            platform::FlushFolder(file_.parent_path());
            return;
        }
    } catch (...) {
        // No memory for the names.
    }
    suffix_.clear();
}

void ReplacedFiles::undo() noexcept
{
    if (suffix_.empty()) {
        return;
    }
    try {
        for (const std::string_view part : kParts) {
            (void)platform::RemoveFile(With(With(file_, suffix_), part));
        }
    } catch (...) {
        // The second names stay; the next ones drive them out.
    }
}

void ReplacedFiles::prune() noexcept
{
    try {
        const std::u8string start = With(file_.filename(), kReplaced).u8string();
        std::set<std::string> stamps;
        std::vector<std::pair<std::string, platform::Path>> kept;
        std::error_code ignored;
        for (std::filesystem::directory_iterator entry(file_.parent_path(), ignored), end; entry != end;
             entry.increment(ignored)) {
            const std::string stamp = StampOf(entry->path().filename().u8string(), start);
            if (!stamp.empty()) {
                stamps.insert(stamp);
                kept.emplace_back(stamp, entry->path());
            }
        }
        while (stamps.size() > kMostKept) {
            const std::string oldest = *stamps.begin();
            for (const auto& [stamp, path] : kept) {
                if (stamp == oldest) {
                    (void)platform::RemoveFile(path);
                }
            }
            stamps.erase(stamps.begin());
        }
    } catch (...) {
        // More of them stay than need be.
    }
}

}  // namespace kesta
