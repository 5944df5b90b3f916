#include "library/phone_lookup.h"

namespace kesta {
namespace {

int32_t FirstInt(Statement rows, int32_t otherwise)
{
    return rows.prepared() && rows.step() ? rows.int32(0) : otherwise;
}

}  // namespace

// Deliberate: the two blanks after WHERE in these texts.

int32_t GetPhoneIdByImei(Connection& db, const DbChar* imei)
{
    return FirstInt(db.prepare(NarrowSql("SELECT [ID] FROM tPhone WHERE  [IMEI] = '%s';", Ansi{imei})), kNoPhone);
}

int32_t GetBookMarkTypeByImei(Connection& db, const DbChar* imei)
{
    constexpr int32_t kNoType = 0;
    return FirstInt(db.prepare(NarrowSql("SELECT [BookMarkType] FROM tPhone WHERE  [IMEI] = '%s';", Ansi{imei})),
                    kNoType);
}

int32_t GetPathFlag(Connection& db, int32_t phoneId, Name folderTable, const DbChar* path)
{
    constexpr int32_t kNoFlag = 0;
    return FirstInt(db.prepare(NarrowSql("SELECT [Flag] FROM %s WHERE  [PhoneID] = %d AND [Path] = '%s';", folderTable,
                                         phoneId, EscapedAnsi{path})),
                    kNoFlag);
}

}  // namespace kesta
