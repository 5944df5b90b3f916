// libFuzzer's entry for the reader of one format, which the build names: KESTA_FUZZ_FORMAT.
#include <cstddef>
#include <cstdint>

#include "fuzz/properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const kesta::test::Format& format = kesta::test::FormatNamed(KESTA_FUZZ_FORMAT);
    format.check({reinterpret_cast<const char*>(data), size});
    return 0;
}
