// All exports as functions of a call's bytes.
#pragma once

#include <cstdint>
#include <span>

#include "torture/random_calls/arguments.h"

namespace kesta::test {

struct AnyExport {
    const char* name;
    int32_t (*call)(Caller& caller);
};

/// In the order of their ordinals.
std::span<const AnyExport> AllExports();

/// Fails the input when the export's contract does not know the result.
void CheckResult(const char* name, int32_t result);

}  // namespace kesta::test
