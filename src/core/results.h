// Result codes. Each kind is a type of its own until it crosses the boundary.
#pragma once

#include <cstdint>

namespace kesta {

/// What an export returns, unless it returns a truth value or an id.
enum class [[nodiscard]] ResultCode : int32_t{
    kSuccess = 0,
    kFailure = 1,
    kReadOnlyFile = 19,
    kFileInTheWay = 8398,
};

/// SQLite's own codes, of which the library tells these apart.
enum class [[nodiscard]] SqliteCode : int32_t{
    kOk = 0,      kError = 1,       kBusy = 5,     kInterrupted = 9,   kCorrupt = 11, kCannotOpen = 14,
    kTooBig = 18, kConstraint = 19, kRefused = 23, kNotADatabase = 26, kRow = 100,    kDone = 101,
};

/// Some exports pass SQLite's code on as their result.
constexpr ResultCode PassThrough(SqliteCode code)
{
    return static_cast<ResultCode>(code);
}

/// What reading rows to their end gives: success, or the code of the step that ended it otherwise.
constexpr ResultCode EndOfRows(SqliteCode lastStep)
{
    return lastStep == SqliteCode::kDone ? ResultCode::kSuccess : PassThrough(lastStep);
}

// What a row that does not come means to those who need no code.
constexpr ResultCode NoRowIsFailure(SqliteCode /*lastStep*/)
{
    return ResultCode::kFailure;
}
constexpr ResultCode NoRowIsSuccess(SqliteCode /*lastStep*/)
{
    return ResultCode::kSuccess;
}

}  // namespace kesta
