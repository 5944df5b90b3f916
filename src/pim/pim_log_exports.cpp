// DB_PIMLOG_*: the log of contact and calendar syncs.
#include "core/call_frame.h"
#include "kesta_db/kesta_db.h"
#include "pim/sync_log.h"

using namespace kesta;

extern "C" int32_t DB_PIMLOG_GetPimProfile(const DbChar* imei, DbChar* buffer, int32_t type)
{
    static constexpr Export kSelf = {"DB_PIMLOG_GetPimProfile"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(buffer); },
        [&](Connection& db) { return pimlog::GetPimProfile(db, Trail(kSelf.name), imei, buffer, type); });
}

extern "C" int32_t DB_PIMLOG_SetPimProfile(const DbChar* imei, const DbChar* profile, int32_t type)
{
    static constexpr Export kSelf = {"DB_PIMLOG_SetPimProfile"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Connection& db) { return pimlog::SetPimProfile(db, Trail(kSelf.name), imei, profile, type); });
}

extern "C" int32_t DB_PIMLOG_ClearAll(const DbChar* imei, int32_t type)
{
    static constexpr Export kSelf = {"DB_PIMLOG_ClearAll"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Connection& db) { return pimlog::ClearAll(db, Trail(kSelf.name), imei, type); });
}

extern "C" int32_t DB_PIMLOG_ReadLog(const DbChar* imei, PimLog* log)
{
    static constexpr Export kSelf = {"DB_PIMLOG_ReadLog"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(log); },
        [&](Connection& db) { return pimlog::ReadLog(db, Trail(kSelf.name), imei, *log); });
}

extern "C" int32_t DB_PIMLOG_SaveLog(const DbChar* imei, const PimLog* log)
{
    static constexpr Export kSelf = {"DB_PIMLOG_SaveLog"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(log); },
        [&](Connection& db) { return pimlog::SaveLog(db, Trail(kSelf.name), imei, *log); });
}
