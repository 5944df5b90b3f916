#include "support/trace_log.h"

#include <algorithm>
#include <thread>

namespace kesta::test {
namespace {

constexpr std::string_view kPrefix = "DB TRACE >> ";
constexpr std::string_view kMemory = "Memory ";

std::string Content(std::string line)
{
    if (!line.starts_with(kPrefix) || !line.ends_with('\n')) {
        return line;
    }
    return line.substr(kPrefix.size(), line.size() - kPrefix.size() - 1);
}

/// "Memory 55d0c8a3b2a0 NEW." without the address, if it is one.
void DropAddress(std::string& line)
{
    if (!line.starts_with(kMemory)) {
        return;
    }
    const size_t end = line.find_first_not_of("0123456789abcdef", kMemory.size());
    if (end == std::string::npos || end == kMemory.size()) {
        return;
    }
    const std::string rest = line.substr(end);
    if (rest == " NEW." || rest == " DELETE.") {
        line = std::string(kMemory.substr(0, kMemory.size() - 1)) + rest;
    }
}

}  // namespace

TraceLog::TraceLog(const std::filesystem::path& runtimeFolder) : source_(TraceSource::open(runtimeFolder))
{
}

void TraceLog::collect()
{
    for (std::string& line : source_->take()) {
        lines_.push_back(Content(std::move(line)));
    }
}

std::vector<std::string> TraceLog::take(Addresses addresses)
{
    collect();
    std::vector<std::string> taken = std::move(lines_);
    lines_.clear();
    if (addresses == Addresses::kDropped) {
        std::for_each(taken.begin(), taken.end(), DropAddress);
    }
    return taken;
}

bool TraceLog::waitFor(std::string_view part, std::chrono::milliseconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto holdsPart = [&](const std::string& line) { return line.find(part) != std::string::npos; };
    for (;;) {
        collect();
        if (std::any_of(lines_.begin(), lines_.end(), holdsPart)) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

}  // namespace kesta::test
