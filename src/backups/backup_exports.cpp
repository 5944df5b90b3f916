// DB_BACKUP_*: the backups made of phones.
#include "backups/backups.h"
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "library/tables.h"

using namespace kesta;

extern "C" int32_t DB_BACKUP_AddBackup(const DbChar* imei, BackupRecord* backup)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] {
            DbTrace("Enter %s(szIMEI: %s, Path: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{Required(backup).Path});
        },
        [&] { backup->bcID = kNoBackup; },
        [&](Routine self) {
            // The record learns its id however the call ends.
            struct IdWriter {
                BackupRecord& record;
                int32_t id = kNoBackup;
                ~IdWriter() { record.bcID = id; }
            } writer{*backup};
            return backups::AddBackup(self, imei, *backup, writer.id);
        });
}

extern "C" int32_t DB_BACKUP_ClearAll(void)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [](Routine self) { return library::ClearTable(self.db, Name{"tBackups"}); });
}

extern "C" int32_t DB_BACKUP_DeleteBackups(const DbChar* imei)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szIMEI: %s).\n", Name{kSelf.name}, Plain{imei}); },
        [&](Routine self) { return backups::DeleteBackups(self, imei); });
}

extern "C" int32_t DB_BACKUP_DeleteBackup(int32_t bcID)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(BackupID: %d).\n", Name{kSelf.name}, bcID); },
        [&](Routine self) { return backups::DeleteBackup(self, bcID); });
}

extern "C" int32_t DB_BACKUP_FileExist(const DbChar* path)
{
    constexpr int32_t kNo = 0;
    static constexpr ExitFormat kExit = "Exit %s() with bExit = %d.\n";
    static constexpr Export kSelf = {__func__, kNo, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szPath: %s).\n", Name{kSelf.name}, Plain{path}); },
        [&](Routine self) { return backups::FileExist(self, path) ? 1 : kNo; });
}

extern "C" int32_t DB_BACKUP_GetAllBackups(BackupList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return backups::GetAllBackups(self, *list); });
}

extern "C" int32_t DB_BACKUP_GetPhoneBackups(const DbChar* imei, BackupList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szIMEI: %s).\n", Name{kSelf.name}, Plain{imei}); },
        [&] { EmptyList(Required(list)); }, [&](Routine self) { return backups::GetPhoneBackups(self, imei, *list); });
}
