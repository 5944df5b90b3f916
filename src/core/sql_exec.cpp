#include "core/sql_exec.h"

#include "core/module.h"
#include "core/trace.h"

namespace kesta {

ResultCode SqlExec(const Sql& sql) noexcept
{
    Connection& db = TheModule().DbConnection;
    if (!db.isOpen()) return ResultCode::kFailure;
    if (db.exec(sql) == SqliteCode::kOk) return ResultCode::kSuccess;
    Trail("SqlExec").error(1);
    return ResultCode::kFailure;
}

}  // namespace kesta
