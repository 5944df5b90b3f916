#include "core/trace.h"

namespace kesta {
namespace {

void WriteMemoryLine(const Format<Address>& format, const void* memory) noexcept
{
    if (!platform::services.memoryIsRead()) {
        return;
    }
    TraceLine line;
    format.write(line, Address{memory});
    line.send();
}

}  // namespace

void TraceNew(const void* memory) noexcept
{
    WriteMemoryLine("DB TRACE >> Memory %x NEW.\n", memory);
}

void TraceDelete(const void* memory) noexcept
{
    WriteMemoryLine("DB TRACE >> Memory %x DELETE.\n", memory);
}

void Trail::error(int position) const noexcept
{
    switch (position) {
        case 1:
            return DbTrace("Error in %s(), position 1.\n", Name{routine_});
        case 2:
            return DbTrace("Error in %s(), position 2.\n", Name{routine_});
        default:
            return DbTrace("Error in %s(), position 3.\n", Name{routine_});
    }
}

void Trail::exception() const noexcept
{
    DbTrace("An exception occured in %s().\n", Name{routine_});
}

}  // namespace kesta
