#include <cstdio>

#include "commands/trace.h"

namespace kesta {

ExitCode RunTrace()
{
    (void)std::fputs(
        "kesta: on Windows the library writes its trace with OutputDebugString.\n"
        "Watch it with a debug output viewer, or with a debugger attached to the program.\n",
        stderr);
    return ExitCode::kFailure;
}

}  // namespace kesta
