// What the library asks of the operating system while it runs, as a table that tests can change: time, waiting and the
// debug output. The build picks the implementation; callers use `services`.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kesta_db/kesta_db.h"

namespace kesta::platform {

struct Services {
    /// Seconds since 1970.
    int64_t (*now)() noexcept;
    void (*sleep)(uint32_t milliseconds) noexcept;
    /// Whether a trace line written now can be seen by anybody. Cheap: asked for before every line.
    bool (*traceIsRead)() noexcept;
    /// The same for the lines that tell of memory: many at a time, and asked at less cost.
    bool (*memoryIsRead)() noexcept;
    /// Writes one line to the debug output; `line` is zero-terminated, `length` in code units.
    void (*writeTraceLine)(const DbChar* line, size_t length) noexcept;
};

extern Services services;

/// Makes the debug output ready, and lets go of it.
void OpenTrace() noexcept;
void CloseTrace() noexcept;

/// A call from outside begins on this thread: what a slow reader of the trace may delay is counted from here.
void BeginTracedCall() noexcept;

}  // namespace kesta::platform
