// DB_LIB_*: what is kept per phone between two runs: chosen main folders, last run, SD card, and the history of files.
#include "core/call_frame.h"
#include "kesta_db/kesta_db.h"
#include "library/phone_lookup.h"
#include "library/tables.h"

using namespace kesta;

namespace {

constexpr int32_t kSelected = 1;

int32_t IsFolderSelected(Routine self, const DbChar* imei, int32_t folderId)
{
    // An unknown phone is asked for too: no row has its number.
    const int32_t phoneId = GetPhoneIdByImei(self.db, imei);
    return self.firstNumber(
        1, NarrowSql("SELECT [Selected] FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phoneId, folderId),
        kSelected);
}

ResultCode SetFolderSelected(Routine self, const DbChar* imei, int32_t folderId, int32_t selected)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        const std::optional<int32_t> count = self.count(
            1,
            NarrowSql("SELECT COUNT(*) FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phoneId, folderId));
        if (!count.has_value()) {
            return ResultCode::kFailure;
        }
        if (*count < 1) {
            return self.run(
                3, NarrowSql("INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (%d, %d, %d);", phoneId,
                             folderId, selected));
        }
        return self.run(2, NarrowSql("UPDATE tSyncContents SET [Selected] = %d WHERE [phoneID] = %d AND [lfID] = %d;",
                                     selected, phoneId, folderId));
    });
}

ResultCode SetLastSyncTime(Routine self, const DbChar* imei, const DateValue& lastTime, int32_t errCode,
                           int32_t needMount)
{
    // Deliberate: day zero is the sentinel for "no time", whatever its status.
    if (lastTime.Days == 0.0) {
        return self.run(1, NarrowSql("UPDATE tPhone SET [ErrCode] = %d, [NeedMount] = %d WHERE [IMEI] = '%s';", errCode,
                                     needMount, Ansi{imei}));
    }
    return self.run(
        1, NarrowSql("UPDATE tPhone SET [LastTime] = '%s', [ErrCode] = %d, [NeedMount] = %d WHERE [IMEI] = '%s';",
                     FormatDateTime(lastTime), errCode, needMount, Ansi{imei}));
}

ResultCode GetLastSyncTime(Routine self, const DbChar* imei, DateValue& lastTime)
{
    return self.first(1, NarrowSql("SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = '%s';", Ansi{imei}),
                      NoRowIsFailure, [&](const Statement& row) { lastTime = row.date(0); });
}

ResultCode GetSDType(Routine self, const DbChar* imei, int32_t& type, int32_t& oldType)
{
    return self.first(1, NarrowSql("SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = '%s';", Ansi{imei}),
                      NoRowIsFailure, [&](const Statement& row) {
                          type = row.int32(0);
                          oldType = row.int32(1);
                      });
}

}  // namespace

extern "C" int32_t DB_LIB_IsFolderSelected(const DbChar* imei, int32_t folderId)
{
    static constexpr ExitFormat kExit = "Exit %s() with bSelected = %d.\n";
    static constexpr Export kSelf = {__func__, kSelected, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(IMEI: %s, FolderID: %d).\n", Name{kSelf.name}, Plain{imei}, folderId); },
        [&](Routine self) { return IsFolderSelected(self, imei, folderId); });
}

extern "C" int32_t DB_LIB_SetFolderSelected(const DbChar* imei, int32_t folderId, int32_t selected)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] {
            DbTrace("Enter %s(IMEI: %s, FolderID: %d, bSelected: %d).\n", Name{kSelf.name}, Plain{imei}, folderId,
                    selected);
        },
        [&](Routine self) { return SetFolderSelected(self, imei, folderId, selected); });
}

extern "C" int32_t DB_LIB_SetLastSyncTime(const DbChar* imei, const DateValue* lastTime, int32_t errCode,
                                          int32_t needMount)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] {
            DbTrace("Enter %s(IMEI: %s, LastTime: %s, iErrCode: %d).\n", Name{kSelf.name}, Plain{imei},
                    LocaleDate{Required(lastTime)}, errCode);
        },
        [&](Routine self) { return SetLastSyncTime(self, imei, *lastTime, errCode, needMount); });
}

extern "C" int32_t DB_LIB_GetLastSyncTime(const DbChar* imei, DateValue* lastTime)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { (void)Required(lastTime); },
        [&](Routine self) { return GetLastSyncTime(self, imei, *lastTime); });
}

extern "C" int32_t DB_LIB_SetSDType(const DbChar* imei, int32_t type, int32_t oldType)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] { DbTrace("Enter %s(IMEI: %s, Type: %d, OldType: %d).\n", Name{kSelf.name}, Plain{imei}, type, oldType); },
        [&](Routine self) {
            return self.run(1, NarrowSql("UPDATE tPhone SET [SDType] = %d, [SDOldType] = %d WHERE [IMEI] = '%s';", type,
                                         oldType, Ansi{imei}));
        });
}

extern "C" int32_t DB_LIB_GetSDType(const DbChar* imei, int32_t* type, int32_t* oldType)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&] {
            (void)Required(type);
            (void)Required(oldType);
        },
        [&](Routine self) { return GetSDType(self, imei, *type, *oldType); });
}

extern "C" int32_t DB_LIB_ClearSyncHistory(const DbChar* imei)
{
    // Deliberate: no exit line, and success whatever became of the tables.
    static constexpr Export kSelf = {__func__, static_cast<int32_t>(ResultCode::kSuccess), nullptr};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&](Routine self) {
            const int32_t phoneId = GetPhoneIdByImei(self.db, imei);
            if (phoneId == kNoPhone) {
                return ResultCode::kSuccess;
            }
            for (const char* table : {"tDFile", "tIFile", "tVFile", "tMFile", "tPFile"}) {
                (void)library::ClearTable4Phone(self.db, phoneId, Name{table});
            }
            return ResultCode::kSuccess;
        });
}
