#include "core/sql_exec.h"

#include "core/module.h"
#include "core/trace.h"

namespace kesta {

ResultCode SqlExec(const Sql& sql)
{
    Connection* db = TheModule().openConnection();
    if (db == nullptr) return ResultCode::kFailure;
    if (db->exec(sql) == SqliteCode::kOk) return ResultCode::kSuccess;
    Trail("SqlExec").error(1);
    return ResultCode::kFailure;
}

}  // namespace kesta
