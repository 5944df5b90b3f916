#include "report/summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/text.h"

namespace kesta {
namespace {

constexpr size_t kListedItems = 50;

void DescribeItems(const std::vector<FailedItem>& items, const char* heading,
                   std::back_insert_iterator<fmt::memory_buffer> out)
{
    if (items.empty()) {
        return;
    }
    fmt::format_to(out, "{}", heading);
    for (size_t i = 0; i < items.size() && i < kListedItems; ++i) {
        fmt::format_to(out, "  {}: {}\n", Printable(items[i].path), Printable(items[i].reason));
    }
    if (items.size() > kListedItems) {
        fmt::format_to(out, "  and {} more\n", items.size() - kListedItems);
    }
}

// "Left out of Music: 3 of other kinds, 1 by rules"
void DescribeLeftOut(const std::vector<LeftOutItems>& items, std::back_insert_iterator<fmt::memory_buffer> out)
{
    for (auto item = items.begin(); item != items.end(); ++item) {
        const auto isSame = [&](const LeftOutItems& other) { return other.from == item->from; };
        if (std::find_if(items.begin(), item, isSame) != item) {
            continue;  // told with the first one
        }
        fmt::format_to(out, "Left out of {}:", item->from);
        const char* separator = " ";
        for (auto same = item; same != items.end(); ++same) {
            if (isSame(*same)) {
                fmt::format_to(out, "{}{} {}", std::exchange(separator, ", "), same->count, same->why);
            }
        }
        fmt::format_to(out, "\n");
    }
}

}  // namespace

Tally& Tally::operator+=(const Tally& other)
{
    added += other.added;
    updated += other.updated;
    moved += other.moved;
    adopted += other.adopted;
    removed += other.removed;
    unchanged += other.unchanged;
    deferred += other.deferred;
    return *this;
}

void Summary::leaveOut(std::string_view from, std::string_view why, size_t count)
{
    const auto found = std::find_if(leftOut.begin(), leftOut.end(),
                                    [&](const LeftOutItems& items) { return items.from == from && items.why == why; });
    if (found != leftOut.end()) {
        found->count += count;
    } else if (count > 0) {
        leftOut.push_back({std::string(from), std::string(why), count});
    }
}

void Summary::stopWith(ExitCode code, std::string reason)
{
    if (isStopped()) {
        return;
    }
    stop = code;
    stopReason = std::move(reason);
}

Tally& Summary::beginFamily(std::string title, const char* noun)
{
    families.push_back({std::move(title), noun, {}});
    return families.back().tally;
}

size_t Summary::allDeferred() const
{
    size_t all = files.deferred;
    for (const FamilyTally& family : families) {
        all += family.tally.deferred;
    }
    return all;
}

ExitCode Summary::exitCode() const
{
    if (isStopped()) {
        return stop;
    }
    if (!failures.empty()) {
        return ExitCode::kIncomplete;
    }
    return allDeferred() > 0 ? ExitCode::kDeferred : ExitCode::kSuccess;
}

std::string Counted(size_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string FormatSize(uint64_t bytes)
{
    if (bytes < 1000) {
        return fmt::format("{} B", bytes);
    }
    constexpr std::array kUnits{"kB", "MB", "GB", "TB", "PB", "EB"};
    double value = static_cast<double>(bytes) / 1000;
    size_t unit = 0;
    while (value >= 999.95 && unit + 1 < kUnits.size()) {
        value /= 1000;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, kUnits[unit]);
}

std::string Describe(const Summary& summary, bool isPreview, double seconds)
{
    fmt::memory_buffer text;
    const auto out = std::back_inserter(text);
    DescribeItems(summary.failures, "Not synced:\n", out);
    DescribeItems(summary.kept, "Changed on the phone, kept there beside the PC's:\n", out);
    DescribeLeftOut(summary.leftOut, out);
    for (const std::string& note : summary.notes) {
        fmt::format_to(out, "Note: {}\n", note);
    }
    if (summary.files.deferred > 0) {
        fmt::format_to(out,
                       "Deferred: {} to be removed from the phone, more than half of a category or folder. "
                       "Add --force if that is what you want.\n",
                       Counted(summary.files.deferred, "file"));
    }
    for (const FamilyTally& family : summary.families) {
        if (family.tally.deferred == 0) {
            continue;
        }
        fmt::format_to(out,
                       "Deferred: {} to be removed from the phone, more than half of those recorded. "
                       "Add --force if that is what you want.\n",
                       Counted(family.tally.deferred, family.noun));
    }
    if (summary.isStopped()) {
        fmt::format_to(out, "Stopped: {}\n", Printable(summary.stopReason));
    }
    fmt::format_to(out, "{}: {} copied, {} updated, {} removed, {} unchanged, {} failed",
                   isPreview ? "A sync would give" : "Summary", summary.files.added, summary.files.updated,
                   summary.files.removed, summary.files.unchanged, summary.failures.size());
    if (summary.files.moved > 0) {
        fmt::format_to(out, ", {} moved", summary.files.moved);
    }
    if (summary.files.adopted > 0) {
        fmt::format_to(out, ", {} recorded as found", summary.files.adopted);
    }
    if (summary.notReached > 0) {
        fmt::format_to(out, ", {} not reached", summary.notReached);
    }
    if (isPreview) {
        fmt::format_to(out, " ({} to copy)", FormatSize(summary.bytes));
    } else {
        fmt::format_to(out, " ({} in {:.1f} s)", FormatSize(summary.bytes), seconds);
    }
    for (const FamilyTally& family : summary.families) {
        fmt::format_to(out, "\n{}: {} added, {} updated, {} removed, {} unchanged", family.title, family.tally.added,
                       family.tally.updated, family.tally.removed, family.tally.unchanged);
    }
    return fmt::to_string(text);
}

}  // namespace kesta
