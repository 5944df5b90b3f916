#include "library/tables.h"

#include "core/trace.h"

namespace kesta {

ResultCode DB_INTERNAL_ClearTable4Phone(Connection& db, int32_t phoneId, Name table)
{
    if (db.exec(NarrowSql("DELETE FROM %s WHERE [PhoneID] = %d;", table, phoneId)) == SqliteCode::kOk) {
        return ResultCode::kSuccess;
    }
    Trail("DB_INTERNAL_ClearTable4Phone").error(1);
    return ResultCode::kFailure;
}

ResultCode DB_INTERNAL_ClearTable(Connection& db, Name table)
{
    const SqliteCode deleted = db.exec(NarrowSql("DELETE FROM %s;", table));
    if (deleted != SqliteCode::kOk) Trail("DB_INTERNAL_ClearTable").error(1);
    return PassThrough(deleted);
}

}  // namespace kesta
