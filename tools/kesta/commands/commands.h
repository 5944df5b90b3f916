// All commands, in the order in which the help lists them.
#pragma once

#include "commands/command.h"

#define KESTA_COMMANDS(COMMAND) \
    COMMAND(Sync)               \
    COMMAND(Status)             \
    COMMAND(Files)              \
    COMMAND(Why)                \
    COMMAND(Restore)            \
    COMMAND(Report)             \
    COMMAND(Settings)           \
    COMMAND(Forget)             \
    COMMAND(Doctor)             \
    COMMAND(Trace)              \
    COMMAND(Generate)

namespace kesta {

#define KESTA_DECLARE(NAME) Command NAME##Command();
KESTA_COMMANDS(KESTA_DECLARE)
#undef KESTA_DECLARE

}  // namespace kesta
