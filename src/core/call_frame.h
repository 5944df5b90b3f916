// The frame around every call: lock, entry line, connection check, preset result, catch-all, exit line, unlock. Exports
// and the engine routines that take the lock say only what is their own:
//
//     static constexpr Export kSelf = {__func__};
//     return RunExport(
//         kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&](Routine self) { return bookmarks::ClearAll(self, imei); });
//
//   RunExport       an export with entry and, unless it says otherwise, exit line
//   RunFrame        the same for what opens the connection itself
//   RunThinExport   an export that traces its entry before the lock is taken and hands over to a routine
//   RunLocked       such a routine: lock and catch-all, no lines of its own
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>

#include "core/module.h"
#include "core/results.h"
#include "core/routine.h"
#include "core/trace.h"

namespace kesta {

/// Counts the thread as inside, and begins what a slow reader of the trace may delay.
class CallScope {
public:
    CallScope() noexcept
    {
        TheModule().enterCall();
        platform::BeginTracedCall();
    }
    ~CallScope() { TheModule().leaveCall(); }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
};

class ScopedAccess {
public:
    ScopedAccess() noexcept { TheModule().DbAccessLock.lock(); }
    ~ScopedAccess() { TheModule().DbAccessLock.unlock(); }
    ScopedAccess(const ScopedAccess&) = delete;
    ScopedAccess& operator=(const ScopedAccess&) = delete;
};

/// The record behind a caller's pointer. A null pointer takes the way of every exception: a line and result 1.
template <class T>
T& Required(T* record)
{
    if (record == nullptr) {
        throw std::invalid_argument("null record");
    }
    return *record;
}

/// The elements of a caller's array, none for a negative count.
template <class T>
std::span<T> Elements(T* items, int32_t count)
{
    if (count <= 0) {
        return {};
    }
    return {&Required(items), static_cast<size_t>(count)};
}

using ExitFormat = Format<Name, int32_t>;
inline constexpr ExitFormat kExitWithResult = "Exit %s() with %d.\n";

/// What tells one export's frame from another's.
struct Export {
    const char* name;
    int32_t preset = static_cast<int32_t>(ResultCode::kFailure);  // the result unless the body says otherwise
    const ExitFormat* exit = &kExitWithResult;                    // null: no exit line
};

/// What an export's body ends with: its result, and whether the exit line follows.
struct Outcome {
    // NOLINTBEGIN(google-explicit-constructor): a body returns whichever kind of result it has.
    constexpr Outcome(int32_t number) : result(number) {}
    constexpr Outcome(ResultCode code) : result(static_cast<int32_t>(code)) {}
    // NOLINTEND(google-explicit-constructor)
    constexpr Outcome(ResultCode code, bool itsExitIsTraced)
        : result(static_cast<int32_t>(code)), traceExit(itsExitIsTraced)
    {
    }

    int32_t result;
    bool traceExit = true;
};

/// The entry lines that most exports share.
inline void TraceEnter(const char* name) noexcept
{
    DbTrace("Enter %s().\n", Name{name});
}
inline void TraceEnter(const char* name, const DbChar* imei) noexcept
{
    DbTrace("Enter %s(IMEI: %s).\n", Name{name}, Plain{imei});
}
inline void TraceEnter(const char* name, const DbChar* imei, const DbChar* path) noexcept
{
    DbTrace("Enter %s(IMEI: %s, Path: %s).\n", Name{name}, Plain{imei}, Plain{path});
}

/// The frame without the connection check.
template <class Enter, class Body>
int32_t RunFrame(const Export& self, Enter&& enter, Body&& body) noexcept
{
    const CallScope inside;
    const ScopedAccess access;
    Outcome outcome = self.preset;
    try {
        enter();
        outcome = body();
    } catch (...) {  // nothing leaves the library as an exception
        outcome = ResultCode::kFailure;
        Trail(self.name).exception();
    }
    if (self.exit != nullptr && outcome.traceExit) {
        DbTrace(*self.exit, Name{self.name}, outcome.result);
    }
    return outcome.result;
}

/// `before` runs after the entry line, whether the database is open or not; `body(routine)` only when it is.
template <class Enter, class Before, class Body>
int32_t RunExport(const Export& self, Enter&& enter, Before&& before, Body&& body) noexcept
{
    return RunFrame(self, enter, [&]() -> Outcome {
        before();
        Connection* db = TheModule().openConnection();
        return db != nullptr ? Outcome(body(Routine(*db, Trail(self.name)))) : Outcome(self.preset);
    });
}

template <class Enter, class Body>
int32_t RunExport(const Export& self, Enter&& enter, Body&& body) noexcept
{
    return RunExport(
        self, enter, [] {}, body);
}

/// `enter` writes the entry line, and empties what the caller gave before it where that comes first.
template <class Enter, class Call>
int32_t RunThinExport(const char* name, Enter&& enter, Call&& call) noexcept
{
    const CallScope inside;
    try {
        enter();
        return static_cast<int32_t>(call());
    } catch (...) {
        Trail(name).exception();
        return static_cast<int32_t>(ResultCode::kFailure);
    }
}

/// A routine by the name that the trace shows. `closed` is the result while the database is not open; the result's type
/// is the body's.
template <class Result, class Body>
Result RunLocked(const char* name, Result closed, Body&& body) noexcept
{
    const ScopedAccess access;
    const Trail trail(name);
    try {
        Connection* db = TheModule().openConnection();
        return db != nullptr ? body(Routine(*db, trail)) : closed;
    } catch (...) {
        trail.exception();
        return static_cast<Result>(ResultCode::kFailure);
    }
}

}  // namespace kesta
