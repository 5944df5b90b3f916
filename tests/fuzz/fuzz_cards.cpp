// libFuzzer's entry for the reader of cards.
#include <cstddef>
#include <cstdint>

#include "fuzz/properties.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kesta::test::CheckCards({reinterpret_cast<const char*>(data), size});
    return 0;
}
