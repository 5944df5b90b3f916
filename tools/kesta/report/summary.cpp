#include "report/summary.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

#include "base/text.h"

namespace kesta {
namespace {

constexpr std::size_t kListedFailures = 50;

}  // namespace

void Summary::stopWith(ExitCode code, std::string reason)
{
    if (stopped()) return;
    stop = code;
    stopReason = std::move(reason);
}

FamilyCounts& Summary::beginFamily(std::string title, const char* noun)
{
    families.push_back({std::move(title), noun});
    return families.back();
}

std::size_t Summary::allDeferred() const
{
    std::size_t all = deferred;
    for (const FamilyCounts& family : families) all += family.deferred;
    return all;
}

ExitCode Summary::exitCode() const
{
    if (stopped()) return stop;
    if (!failures.empty()) return ExitCode::kIncomplete;
    return allDeferred() > 0 ? ExitCode::kDeferred : ExitCode::kSuccess;
}

std::string Counted(std::size_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string FormatSize(std::uint64_t bytes)
{
    if (bytes < 1000) return fmt::format("{} B", bytes);
    constexpr std::array kUnits{"kB", "MB", "GB", "TB", "PB", "EB"};
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    while (value >= 999.95 && unit + 1 < kUnits.size()) {
        value /= 1000;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, kUnits[unit]);
}

std::string Describe(const Summary& summary, bool dryRun, double seconds)
{
    fmt::memory_buffer text;
    const auto out = std::back_inserter(text);
    if (!summary.failures.empty()) fmt::format_to(out, "Not synced:\n");
    for (std::size_t i = 0; i < summary.failures.size() && i < kListedFailures; ++i) {
        const FailedItem& item = summary.failures[i];
        fmt::format_to(out, "  {}: {}\n", Printable(item.path), Printable(item.reason));
    }
    if (summary.failures.size() > kListedFailures)
        fmt::format_to(out, "  and {} more\n", summary.failures.size() - kListedFailures);
    for (const std::string& note : summary.notes) fmt::format_to(out, "Note: {}\n", note);
    if (summary.deferred > 0) {
        fmt::format_to(out,
                       "Deferred: {} to be removed from the phone, more than half of a category. "
                       "Add --force if that is what you want.\n",
                       Counted(summary.deferred, "file"));
    }
    for (const FamilyCounts& family : summary.families) {
        if (family.deferred == 0) continue;
        fmt::format_to(out,
                       "Deferred: {} to be removed from the phone, more than half of those recorded. "
                       "Add --force if that is what you want.\n",
                       Counted(family.deferred, family.noun));
    }
    if (summary.stopped()) fmt::format_to(out, "Stopped: {}\n", Printable(summary.stopReason));
    fmt::format_to(out, "{}: {} copied, {} updated, {} removed, {} unchanged, {} failed",
                   dryRun ? "A sync would give" : "Summary", summary.copied, summary.updated, summary.removed,
                   summary.unchanged, summary.failures.size());
    if (summary.adopted > 0) fmt::format_to(out, ", {} recorded as found", summary.adopted);
    if (summary.notReached > 0) fmt::format_to(out, ", {} not reached", summary.notReached);
    if (dryRun)
        fmt::format_to(out, " ({} to copy)", FormatSize(summary.bytes));
    else
        fmt::format_to(out, " ({} in {:.1f} s)", FormatSize(summary.bytes), seconds);
    for (const FamilyCounts& family : summary.families) {
        fmt::format_to(out, "\n{}: {} added, {} updated, {} removed, {} unchanged", family.title, family.added,
                       family.updated, family.removed, family.unchanged);
    }
    return fmt::to_string(text);
}

}  // namespace kesta
