// What the interposer does to system calls: the bench plans one fault, arms it around one call of the library, and asks
// afterwards what happened. Only the arming thread is touched; everybody else's calls go straight to the system.
//
//   torture_plan(&plan);                  // the 7th write fails with EIO, say
//   result = torture_call(function, ...);
//   torture_struck();                     // whether it came to that
#pragma once

#include <cstddef>
#include <cstdint>

namespace kesta::torture {

/// What a system call does to the world. tests/torture/interposer.py has the same list.
enum class Kind : int32_t {
    kMemory = 0,
    kOpen,
    kRead,
    kWrite,
    kSync,
    kTruncate,
    kUnlink,
    kRename,
    kStat,
    kLock,
    kMap,
    kMakeFolder,
    kClose,
    kAttributes,
    kName,
    kSocket,
    kShared,
};

enum class Action : int32_t {
    kNone = 0,
    kFail,        // with the plan's error
    kShort,       // half of the bytes only
    kKillBefore,  // the process is gone, as by kill -9
    kKillMiddle,  // half of a write is done before
    kKillAfter,
    kPretend,  // success without doing anything
};

/// Faults of the bench's own making, to see that it notices them. Each follows where the plan's fault strikes.
enum class Plant : int32_t {
    kNone = 0,
    kDeleteDatabase,
    kLeakFile,
    kHang,
    kCrash,
    kDamageDatabase,
};

struct Plan {
    uint32_t kinds;  // bit set of Kind: those that count
    int32_t nth;     // which of them, from 0; negative: none
    Action action;
    int32_t error;    // errno for kFail
    int32_t repeats;  // how many more of the same kind fail after it
    Plant plant;
};

/// Permanent lies, planted as well: files whose name ends with the suffix.
struct Lies {
    char loseWritesOf[64];
    char skipSyncsOf[64];
};

struct State {
    Plan plan;
    Lies lies;
    char databasePath[1024];
    char mutexName[32];
    bool armed;
    int64_t counted;
    bool struck;
    Kind struckKind;
    int32_t repeatsLeft;
};

/// The arming thread's; others see a state that is never armed.
State& TheState() noexcept;

/// What is to happen to the call that asks. kNone: let it through.
Action Ask(Kind kind) noexcept;
/// The same for calls that can only fail or pass: true after errno has been set. Kills where the plan says so.
bool Fails(Kind kind) noexcept;
/// To be asked after the call has been done: kills the process when the plan says "after".
void Passed(Action action) noexcept;
[[noreturn]] void Kill() noexcept;

/// Whether the name is of a file that the plan's lie is about.
bool EndsWith(const char* name, const char* suffix) noexcept;

}  // namespace kesta::torture
