// The database file: its version, its tables, indexes and views, and its first rows.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/results.h"

namespace kesta {

/// A file of any other version is thrown away.
inline constexpr int32_t kDatabaseVersion = 5005;

/// Builds a fresh database in a file that is not there yet. The result is that of the last row written; `complete`
/// tells whether all of them are there.
ResultCode DB_INTERNAL_Create(const char* utf8Path, bool& complete);

/// Whether it is the text of a table, index or view as this library makes it.
bool IsOwnSchema(std::string_view sql) noexcept;

}  // namespace kesta
