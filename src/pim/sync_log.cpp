#include "pim/sync_log.h"

#include <algorithm>

#include "core/call_frame.h"
#include "core/list.h"
#include "core/text.h"
#include "library/phone_lookup.h"

namespace kesta::pimlog {
namespace {

constexpr Format<int32_t, int32_t> kSelectLog = "SELECT [plID] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;";

}  // namespace

ResultCode GetPimProfile(Routine self, const DbChar* imei, DbChar* buffer, int32_t type)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return self.first(
            1, NarrowSql("SELECT [PimProfile] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;", phoneId, type),
            EndOfRows, [&](const Statement& row) {
                const DbChar* profile = row.wideText(0);
                const size_t length = profile != nullptr ? LengthOf(profile) : 0;
                std::copy_n(profile, length, buffer);
                buffer[length] = 0;
            });
    });
}

ResultCode SetPimProfile(Routine self, const DbChar* imei, const DbChar* profile, int32_t type)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        bool known = false;
        const ResultCode looked = self.first(1, NarrowSql(kSelectLog, phoneId, type), NoRowIsSuccess,
                                             [&](const Statement& /*row*/) { known = true; });
        if (looked != ResultCode::kSuccess) {
            return looked;
        }
        // Deliberate: position 3 for the first of the two, 2 for the second.
        if (known) {
            return self.run(3, WideSql("UPDATE tPimLog SET [PimProfile] = '%s' WHERE [phoneID] = %d AND [Type] = %d;",
                                       Escaped{profile}, phoneId, type));
        }
        return self.run(2, WideSql("INSERT INTO tPimLog ([phoneID], [Type], [PimProfile]) VALUES (%d, %d, '%s');",
                                   phoneId, type, Escaped{profile}));
    });
}

ResultCode ClearAll(Routine self, const DbChar* imei, int32_t type)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        std::optional<int32_t> logId;
        const ResultCode looked = self.first(1, NarrowSql(kSelectLog, phoneId, type), EndOfRows,
                                             [&](const Statement& row) { logId = row.int32(0); });
        if (!logId.has_value()) {
            return looked;
        }
        return self.run(2, NarrowSql("DELETE FROM tPimLogItem WHERE [plID] = %d;DELETE FROM tPimLog WHERE [plID] = %d;",
                                     *logId, *logId));
    });
}

ResultCode ReadLog(Routine self, const DbChar* imei, PimLog& log)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        int32_t count = 0;
        int32_t logId = 0;
        const ResultCode counted =
            self.first(1,
                       NarrowSql("SELECT COUNT(*), [ptID], tPimLog.[plID] FROM tPimLogItem, tPimLog WHERE "
                                 "tPimLogItem.[plID] = tPimLog.[plID] AND [phoneID] = %d AND [Type] = %d;",
                                 phoneId, log.Type),
                       NoRowIsSuccess, [&](const Statement& row) {
                           count = row.int32(0);
                           logId = row.int32(2);
                       });
        if (counted != ResultCode::kSuccess || count < 1) {
            return counted;
        }
        EmptyList(log);
        AllocateList(log, count);
        return self.query(
            2, NarrowSql("SELECT [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem WHERE [plID] = %d;", logId),
            [&](Statement& rows) {
                return FillList(log, count, rows, [](const Statement& row, PimLogItem& item) {
                    item.Guid = row.newText(0);
                    item.Luid = row.newText(1);
                    item.PCTime = row.date(2);
                    item.PhoneTime = row.date(3);
                });
            });
    });
}

namespace {

/// Finds the log, or creates it.
ResultCode OpenLog(Routine self, int32_t phoneId, int32_t type, int32_t& logId)
{
    bool known = false;
    const ResultCode looked =
        self.first(1, NarrowSql(kSelectLog, phoneId, type), NoRowIsSuccess, [&](const Statement& row) {
            logId = row.int32(0);
            known = true;
        });
    if (looked != ResultCode::kSuccess || known) {
        return looked;
    }
    const ResultCode created =
        self.run(2, NarrowSql("INSERT INTO tPimLog ([phoneID], [Type]) VALUES (%d, %d);", phoneId, type));
    if (created == ResultCode::kSuccess) {
        logId = static_cast<int32_t>(self.db.lastInsertRowId());
    }
    return created;
}

}  // namespace

ResultCode SaveLog(Routine self, const DbChar* imei, const PimLog& log)
{
    // Deliberate: an unknown phone is no reason to stop here.
    const int32_t phoneId = GetPhoneIdByImei(self.db, imei);
    int32_t logId = 0;
    if (const ResultCode opened = OpenLog(self, phoneId, log.Type, logId); opened != ResultCode::kSuccess) {
        return opened;
    }
    for (const PimLogItem& item : Elements(log.Items, log.Count)) {
        // Deliberate: none of the texts is escaped, and an item that fails does not stop the others.
        (void)self.run(3, NarrowSql("INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) "
                                    "VALUES (%d, '%s', '%s', '%s', '%s');",
                                    logId, Ansi{item.Guid}, Ansi{item.Luid}, FormatDateTime(item.PCTime),
                                    FormatDateTime(item.PhoneTime)));
    }
    return ResultCode::kSuccess;
}

}  // namespace kesta::pimlog
