// DB_LIB_*: what is kept per phone between two runs: chosen main folders, last run, SD card, and the history of files.
#include "core/call_frame.h"
#include "kesta_db/kesta_db.h"
#include "library/phone_lookup.h"
#include "library/tables.h"

using namespace kesta;

namespace {

constexpr int32_t kSelected = 1;

int32_t IsFolderSelected(Connection& db, Trail trail, const DbChar* imei, int32_t folderId)
{
    // An unknown phone is asked for too: no row has its number.
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    Statement rows = db.prepare(
        NarrowSql("SELECT [Selected] FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phoneId, folderId));
    if (!rows.prepared()) trail.error(1);
    return rows.prepared() && rows.step() ? rows.int32(0) : kSelected;
}

ResultCode SetFolderSelected(Connection& db, Trail trail, const DbChar* imei, int32_t folderId, int32_t selected)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    int32_t count = 0;
    {
        Statement counting = db.prepare(
            NarrowSql("SELECT COUNT(*) FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phoneId, folderId));
        if (!counting.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (counting.step()) count = counting.int32(0);
    }
    if (count < 1) {
        const SqliteCode inserted =
            db.exec(NarrowSql("INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (%d, %d, %d);", phoneId,
                              folderId, selected));
        if (inserted == SqliteCode::kOk) return ResultCode::kSuccess;
        trail.error(3);
        return ResultCode::kFailure;
    }
    const SqliteCode updated = db.exec(NarrowSql(
        "UPDATE tSyncContents SET [Selected] = %d WHERE [phoneID] = %d AND [lfID] = %d;", selected, phoneId, folderId));
    if (updated == SqliteCode::kOk) return ResultCode::kSuccess;
    trail.error(2);
    return ResultCode::kFailure;
}

ResultCode SetLastSyncTime(Connection& db, Trail trail, const DbChar* imei, const DateValue& lastTime, int32_t errCode,
                           int32_t needMount)
{
    // Deliberate: day zero is the mark for "no time", whatever its status.
    if (lastTime.Days == 0.0) {
        return trail.check(db.exec(NarrowSql("UPDATE tPhone SET [ErrCode] = %d, [NeedMount] = %d WHERE [IMEI] = '%s';",
                                             errCode, needMount, Ansi{imei})),
                           1);
    }
    return trail.check(
        db.exec(NarrowSql("UPDATE tPhone SET [LastTime] = '%s', [ErrCode] = %d, [NeedMount] = %d WHERE [IMEI] = '%s';",
                          FormatDateTime(lastTime), errCode, needMount, Ansi{imei})),
        1);
}

ResultCode GetLastSyncTime(Connection& db, Trail trail, const DbChar* imei, DateValue& lastTime)
{
    Statement rows = db.prepare(NarrowSql("SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = '%s';", Ansi{imei}));
    if (!rows.prepared()) trail.error(1);
    if (!rows.prepared() || !rows.step()) return ResultCode::kFailure;
    lastTime = rows.date(0);
    return ResultCode::kSuccess;
}

ResultCode GetSDType(Connection& db, Trail trail, const DbChar* imei, int32_t& type, int32_t& oldType)
{
    Statement rows = db.prepare(NarrowSql("SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = '%s';", Ansi{imei}));
    if (!rows.prepared()) trail.error(1);
    if (!rows.prepared() || !rows.step()) return ResultCode::kFailure;
    type = rows.int32(0);
    oldType = rows.int32(1);
    return ResultCode::kSuccess;
}

}  // namespace

extern "C" int32_t DB_LIB_IsFolderSelected(const DbChar* imei, int32_t folderId)
{
    static constexpr ExitFormat kExit = "Exit %s() with bSelected = %d.\n";
    static constexpr Export kSelf = {"DB_LIB_IsFolderSelected", kSelected, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(IMEI: %s, FolderID: %d).\n", Name{kSelf.name}, Plain{imei}, folderId); },
        [&](Connection& db) { return IsFolderSelected(db, Trail(kSelf.name), imei, folderId); });
}

extern "C" int32_t DB_LIB_SetFolderSelected(const DbChar* imei, int32_t folderId, int32_t selected)
{
    static constexpr Export kSelf = {"DB_LIB_SetFolderSelected"};
    return RunExport(
        kSelf,
        [&] {
            DbTrace("Enter %s(IMEI: %s, FolderID: %d, bSelected: %d).\n", Name{kSelf.name}, Plain{imei}, folderId,
                    selected);
        },
        [&](Connection& db) { return SetFolderSelected(db, Trail(kSelf.name), imei, folderId, selected); });
}

extern "C" int32_t DB_LIB_SetLastSyncTime(const DbChar* imei, const DateValue* lastTime, int32_t errCode,
                                          int32_t needMount)
{
    static constexpr Export kSelf = {"DB_LIB_SetLastSyncTime"};
    return RunExport(
        kSelf,
        [&] {
            DbTrace("Enter %s(IMEI: %s, LastTime: %s, iErrCode: %d).\n", Name{kSelf.name}, Plain{imei},
                    LocaleDate{Required(lastTime)}, errCode);
        },
        [&](Connection& db) { return SetLastSyncTime(db, Trail(kSelf.name), imei, *lastTime, errCode, needMount); });
}

extern "C" int32_t DB_LIB_GetLastSyncTime(const DbChar* imei, DateValue* lastTime)
{
    static constexpr Export kSelf = {"DB_LIB_GetLastSyncTime"};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { (void)Required(lastTime); },
        [&](Connection& db) { return GetLastSyncTime(db, Trail(kSelf.name), imei, *lastTime); });
}

extern "C" int32_t DB_LIB_SetSDType(const DbChar* imei, int32_t type, int32_t oldType)
{
    static constexpr Export kSelf = {"DB_LIB_SetSDType"};
    return RunExport(
        kSelf,
        [&] { DbTrace("Enter %s(IMEI: %s, Type: %d, OldType: %d).\n", Name{kSelf.name}, Plain{imei}, type, oldType); },
        [&](Connection& db) {
            return Trail(kSelf.name)
                .check(db.exec(NarrowSql("UPDATE tPhone SET [SDType] = %d, [SDOldType] = %d WHERE [IMEI] = '%s';", type,
                                         oldType, Ansi{imei})),
                       1);
        });
}

extern "C" int32_t DB_LIB_GetSDType(const DbChar* imei, int32_t* type, int32_t* oldType)
{
    static constexpr Export kSelf = {"DB_LIB_GetSDType"};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&] {
            (void)Required(type);
            (void)Required(oldType);
        },
        [&](Connection& db) { return GetSDType(db, Trail(kSelf.name), imei, *type, *oldType); });
}

extern "C" int32_t DB_LIB_ClearSyncHistory(const DbChar* imei)
{
    // Deliberate: no exit line, and success whatever became of the tables.
    static constexpr Export kSelf = {"DB_LIB_ClearSyncHistory", static_cast<int32_t>(ResultCode::kSuccess), nullptr};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&](Connection& db) {
            const int32_t phoneId = GetPhoneIdByImei(db, imei);
            if (phoneId == kNoPhone) return ResultCode::kSuccess;
            for (const char* table : {"tDFile", "tIFile", "tVFile", "tMFile", "tPFile"}) {
                (void)DB_INTERNAL_ClearTable4Phone(db, phoneId, Name{table});
            }
            return ResultCode::kSuccess;
        });
}
