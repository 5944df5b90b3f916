// DB_PIMLOG_*: the log of contact and calendar syncs.
#include "core/call_frame.h"
#include "kesta_db/kesta_db.h"
#include "pim/sync_log.h"

using namespace kesta;

extern "C" int32_t DB_PIMLOG_GetPimProfile(const DbChar* imei, DbChar* buffer, int32_t type)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(buffer); },
        [&](Routine self) { return pimlog::GetPimProfile(self, imei, buffer, type); });
}

extern "C" int32_t DB_PIMLOG_SetPimProfile(const DbChar* imei, const DbChar* profile, int32_t type)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Routine self) { return pimlog::SetPimProfile(self, imei, profile, type); });
}

extern "C" int32_t DB_PIMLOG_ClearAll(const DbChar* imei, int32_t type)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&](Routine self) { return pimlog::ClearAll(self, imei, type); });
}

extern "C" int32_t DB_PIMLOG_ReadLog(const DbChar* imei, PimLog* log)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(log); },
        [&](Routine self) { return pimlog::ReadLog(self, imei, *log); });
}

extern "C" int32_t DB_PIMLOG_SaveLog(const DbChar* imei, const PimLog* log)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(log); },
        [&](Routine self) { return pimlog::SaveLog(self, imei, *log); });
}
