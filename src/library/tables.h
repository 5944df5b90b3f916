// Emptying whole tables.
#pragma once

#include <cstdint>

#include "core/connection.h"
#include "core/results.h"

namespace kesta::library {

/// Removes all rows of a phone from a table.
ResultCode ClearTable4Phone(Connection& db, int32_t phoneId, Name table);

/// Removes all rows of a table. The result is SQLite's own code.
ResultCode ClearTable(Connection& db, Name table);

}  // namespace kesta::library
