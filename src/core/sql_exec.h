// Statements without rows for callers that need no position of their own in the trace.
#pragma once

#include "core/results.h"
#include "core/sql.h"

namespace kesta {

/// Runs the statement, or several, on the module's connection: failure also when it is not open. SQLite's own code is
/// not passed on.
ResultCode SqlExec(const Sql& sql);

}  // namespace kesta
