// DB_Open and DB_Close.
#include "core/call_frame.h"
#include "core/open_database.h"
#include "kesta_db/kesta_db.h"

using namespace kesta;

extern "C" int32_t DB_Open(void)
{
    static constexpr Export kSelf = {__func__};
    return RunFrame(
        kSelf, [] { TraceEnter(kSelf.name); }, [] { return OpenDatabase(TheModule(), Trail(kSelf.name)); });
}

extern "C" int32_t DB_Close(void)
{
    // Deliberate: callers close and open as they like, and the connection stays until the library is unloaded.
    return static_cast<int32_t>(ResultCode::kSuccess);
}
