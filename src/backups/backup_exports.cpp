// DB_BACKUP_*: the backups made of phones.
#include "backups/backups.h"
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "library/tables.h"

using namespace kesta;

extern "C" int32_t DB_BACKUP_AddBackup(const DbChar* imei, BackupRecord* backup)
{
    static constexpr Export kSelf = {"DB_BACKUP_AddBackup"};
    return RunFrame(
        kSelf,
        [&] {
            DbTrace("Enter %s(szIMEI: %s, Path: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{Required(backup).Path});
        },
        [&] {
            // The record learns its id however the call ends.
            struct IdWriter {
                BackupRecord& record;
                int32_t id = kNoBackup;
                ~IdWriter() { record.bcID = id; }
            } writer{*backup};
            Connection* db = TheModule().openConnection();
            if (db == nullptr) return ResultCode::kFailure;
            return backups::AddBackup(*db, Trail(kSelf.name), imei, *backup, writer.id);
        });
}

extern "C" int32_t DB_BACKUP_ClearAll(void)
{
    static constexpr Export kSelf = {"DB_BACKUP_ClearAll"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [](Connection& db) { return DB_INTERNAL_ClearTable(db, Name{"tBackups"}); });
}

extern "C" int32_t DB_BACKUP_DeleteBackups(const DbChar* imei)
{
    static constexpr Export kSelf = {"DB_BACKUP_DeleteBackups"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szIMEI: %s).\n", Name{kSelf.name}, Plain{imei}); },
        [&](Connection& db) { return backups::DeleteBackups(db, Trail(kSelf.name), imei); });
}

extern "C" int32_t DB_BACKUP_DeleteBackup(int32_t bcID)
{
    static constexpr Export kSelf = {"DB_BACKUP_DeleteBackup"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(BackupID: %d).\n", Name{kSelf.name}, bcID); },
        [&](Connection& db) { return backups::DeleteBackup(db, Trail(kSelf.name), bcID); });
}

extern "C" int32_t DB_BACKUP_FileExist(const DbChar* path)
{
    constexpr int32_t kNo = 0;
    static constexpr ExitFormat kExit = "Exit %s() with bExit = %d.\n";
    static constexpr Export kSelf = {"DB_BACKUP_FileExist", kNo, &kExit};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szPath: %s).\n", Name{kSelf.name}, Plain{path}); },
        [&](Connection& db) { return backups::FileExist(db, Trail(kSelf.name), path) ? 1 : kNo; });
}

extern "C" int32_t DB_BACKUP_GetAllBackups(BackupList* list)
{
    static constexpr Export kSelf = {"DB_BACKUP_GetAllBackups"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return backups::GetAllBackups(db, Trail(kSelf.name), *list); });
}

extern "C" int32_t DB_BACKUP_GetPhoneBackups(const DbChar* imei, BackupList* list)
{
    static constexpr Export kSelf = {"DB_BACKUP_GetPhoneBackups"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szIMEI: %s).\n", Name{kSelf.name}, Plain{imei}); },
        [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return backups::GetPhoneBackups(db, Trail(kSelf.name), imei, *list); });
}
