#include "pim/sync_log.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "core/text.h"
#include "library/phone_lookup.h"

namespace kesta::pimlog {
namespace {

Statement SelectLog(Connection& db, int32_t phoneId, int32_t type)
{
    return db.prepare(NarrowSql("SELECT [plID] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;", phoneId, type));
}

}  // namespace

ResultCode GetPimProfile(Connection& db, Trail trail, const DbChar* imei, DbChar* buffer, int32_t type)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    Statement rows =
        db.prepare(NarrowSql("SELECT [PimProfile] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;", phoneId, type));
    if (!rows.prepared()) {
        trail.error(1);
        return ResultCode::kFailure;
    }
    if (!rows.step()) return EndOfRows(rows.last());
    const DbChar* profile = rows.wideText(0);
    const size_t length = profile != nullptr ? LengthOf(profile) : 0;
    std::copy_n(profile, length, buffer);
    buffer[length] = 0;
    return ResultCode::kSuccess;
}

ResultCode SetPimProfile(Connection& db, Trail trail, const DbChar* imei, const DbChar* profile, int32_t type)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    bool known = false;
    {
        Statement rows = SelectLog(db, phoneId, type);
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        known = rows.step();
    }
    // Deliberate: position 3 for the first of the two, 2 for the second.
    if (known) {
        return trail.check(
            db.exec(WideSql("UPDATE tPimLog SET [PimProfile] = '%s' WHERE [phoneID] = %d AND [Type] = %d;",
                            Escaped{profile}, phoneId, type)),
            3);
    }
    return trail.check(db.exec(WideSql("INSERT INTO tPimLog ([phoneID], [Type], [PimProfile]) VALUES (%d, %d, '%s');",
                                       phoneId, type, Escaped{profile})),
                       2);
}

ResultCode ClearAll(Connection& db, Trail trail, const DbChar* imei, int32_t type)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    int32_t logId = 0;
    {
        Statement rows = SelectLog(db, phoneId, type);
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (!rows.step()) return EndOfRows(rows.last());
        logId = rows.int32(0);
    }
    return trail.check(
        db.exec(NarrowSql("DELETE FROM tPimLogItem WHERE [plID] = %d;DELETE FROM tPimLog WHERE [plID] = %d;", logId,
                          logId)),
        2);
}

ResultCode ReadLog(Connection& db, Trail trail, const DbChar* imei, PimLog& log)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    int32_t count = 0;
    int32_t logId = 0;
    {
        Statement counting =
            db.prepare(NarrowSql("SELECT COUNT(*), [ptID], tPimLog.[plID] FROM tPimLogItem, tPimLog WHERE "
                                 "tPimLogItem.[plID] = tPimLog.[plID] AND [phoneID] = %d AND [Type] = %d;",
                                 phoneId, log.Type));
        if (!counting.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (counting.step()) {
            count = counting.int32(0);
            logId = counting.int32(2);
        }
    }
    if (count < 1) return ResultCode::kSuccess;
    EmptyList(log);
    AllocateList(log, count);
    Statement rows = db.prepare(
        NarrowSql("SELECT [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem WHERE [plID] = %d;", logId));
    if (!rows.prepared()) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    return FillList(log, count, rows, [](const Statement& row, PimLogItem& item) {
        item.Guid = row.newText(0);
        item.Luid = row.newText(1);
        item.PCTime = row.date(2);
        item.PhoneTime = row.date(3);
    });
}

namespace {

/// Finds the log, or creates it.
ResultCode OpenLog(Connection& db, Trail trail, int32_t phoneId, int32_t type, int32_t& logId)
{
    {
        Statement rows = SelectLog(db, phoneId, type);
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (rows.step()) {
            logId = rows.int32(0);
            return ResultCode::kSuccess;
        }
    }
    const ResultCode created =
        trail.check(db.exec(NarrowSql("INSERT INTO tPimLog ([phoneID], [Type]) VALUES (%d, %d);", phoneId, type)), 2);
    if (created == ResultCode::kSuccess) logId = static_cast<int32_t>(db.lastInsertRowId());
    return created;
}

}  // namespace

ResultCode SaveLog(Connection& db, Trail trail, const DbChar* imei, const PimLog& log)
{
    // Deliberate: an unknown phone is no reason to stop here.
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    int32_t logId = 0;
    if (const ResultCode opened = OpenLog(db, trail, phoneId, log.Type, logId); opened != ResultCode::kSuccess) {
        return opened;
    }
    for (const PimLogItem& item : Elements(log.Items, log.Count)) {
        // Deliberate: none of the texts is escaped, and an item that fails does not stop the others.
        (void)trail.check(db.exec(NarrowSql("INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) "
                                            "VALUES (%d, '%s', '%s', '%s', '%s');",
                                            logId, Ansi{item.Guid}, Ansi{item.Luid}, FormatDateTime(item.PCTime),
                                            FormatDateTime(item.PhoneTime))),
                          3);
    }
    return ResultCode::kSuccess;
}

}  // namespace kesta::pimlog
