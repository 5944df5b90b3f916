// The library's trace as a list of lines. It has to exist before the library is loaded to see the lines of the loading.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/trace_source.h"

namespace kesta::test {

enum class Addresses {
    kDropped,  // "Memory NEW."
    kKept      // "Memory 55d0c8a3b2a0 NEW."
};

class TraceLog {
public:
    explicit TraceLog(const std::filesystem::path& runtimeFolder);

    /// The lines of all calls that have returned since the last take, in order, in UTF-8, without "DB TRACE >> " and
    /// without the line feed. A line that lacks one of the two is given whole, and so equals no line expected.
    std::vector<std::string> take(Addresses addresses = Addresses::kDropped);

    /// Waits until a line holds `part`; false when none does in time. No line is taken.
    bool waitFor(std::string_view part, std::chrono::milliseconds patience);

private:
    void collect();

    std::unique_ptr<TraceSource> source_;
    std::vector<std::string> lines_;
};

}  // namespace kesta::test
