// The debug trace. Every call of DbTrace is one line with the library's prefix; a line that nobody reads is not made.
#pragma once

#include "core/format.h"
#include "core/results.h"
#include "core/trace_line.h"
#include "platform/services.h"

namespace kesta {

template <class... Args>
void DbTrace(const FormatFor<Args...>& format, const Args&... args) noexcept
{
    if (!platform::services.traceIsRead()) {
        return;
    }
    TraceLine line;
    line.literal("DB TRACE >> ");
    format.write(line, args...);
    line.send();
}

/// Memory handed to a caller, and taken back. These two carry the prefix themselves.
void TraceNew(const void* memory) noexcept;
void TraceDelete(const void* memory) noexcept;

/// The name of a routine, under which its failing steps are reported.
class Trail {
public:
    explicit constexpr Trail(const char* routine) : routine_(routine) {}

    [[nodiscard]] const char* routine() const { return routine_; }

    /// "Error in ...(), position 1.", 2 or 3: the number of the failing step.
    void error(int position) const noexcept;
    void exception() const noexcept;

private:
    const char* routine_;
};

}  // namespace kesta
