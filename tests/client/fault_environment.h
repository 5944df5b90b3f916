// The environment in which the client's system calls fail, or kill it: faults.cpp tells what can be asked for.
#pragma once

#include <cstdlib>
#include <string>

#include "client_process.h"

namespace kesta::test {

[[nodiscard]] inline Environment Faults(Environment faults)
{
    faults["LD_PRELOAD"] = KESTA_CLIENT_FAULTS;
    // The sanitizers' runtime need not come first: the faults call nothing of it.
    const char* options = std::getenv("ASAN_OPTIONS");
    faults["ASAN_OPTIONS"] = std::string(options == nullptr ? "" : options) + ":verify_asan_link_order=0";
    return faults;
}

}  // namespace kesta::test
