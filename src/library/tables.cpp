#include "library/tables.h"

#include "core/routine.h"

namespace kesta::library {

ResultCode ClearTable4Phone(Connection& db, int32_t phoneId, Name table)
{
    Routine self(db, Trail("DB_INTERNAL_ClearTable4Phone"));
    return self.run(1, NarrowSql("DELETE FROM %s WHERE [PhoneID] = %d;", table, phoneId));
}

ResultCode ClearTable(Connection& db, Name table)
{
    Routine self(db, Trail("DB_INTERNAL_ClearTable"));
    return PassThrough(self.exec(1, NarrowSql("DELETE FROM %s;", table)));
}

}  // namespace kesta::library
