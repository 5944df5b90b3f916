// The numbers and dates of random calls: ordinary ones first, then those at and beyond every border.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "kesta_db/kesta_db.h"
#include "torture/random_calls/call_bytes.h"

namespace kesta::test {

inline int32_t Number(CallBytes& bytes)
{
    using Limits = std::numeric_limits<int32_t>;
    static constexpr std::array<int32_t, 32> kValues = {
        0,  1,  2,   1,   0,     3,     4,      5,          1000, 1100, 1400, 1900, 1500, 1600, 2200, 7,
        -1, -2, 255, 256, 65535, 65536, -32769, 0x01010101, 100,  101,  183,  5005, 8398, 1023, 1024, Limits::max()};
    const uint8_t choice = bytes.next();
    return choice == 255 ? Limits::min() : kValues[choice % kValues.size()];
}

inline int64_t Size(CallBytes& bytes)
{
    using Limits = std::numeric_limits<int64_t>;
    static constexpr std::array<int64_t, 12> kValues = {
        0, 1,  4096,          123456789012, -1, int64_t{1} << 31, int64_t{1} << 32, (int64_t{1} << 53) + 1,
        7, -2, Limits::max(), Limits::min()};
    return bytes.oneOf(kValues);
}

inline DateValue Date(CallBytes& bytes)
{
    using Limits = std::numeric_limits<double>;
    static constexpr std::array<double, 32> kDays = {45000.5,
                                                     45000.25,
                                                     39000.999999999,
                                                     36525,
                                                     0,
                                                     -0.0,
                                                     60,
                                                     1.0 / 256,
                                                     45382 + 2.5 / 24,
                                                     -0.5,
                                                     -1.25,
                                                     -0.9999999,
                                                     -657434,
                                                     -657434.5,
                                                     -657434.9999999,
                                                     -657435,
                                                     2958465.5,
                                                     2958465.9999999,
                                                     2958466,
                                                     1e9,
                                                     -1e9,
                                                     4294967296.0,
                                                     -4294967296.0,
                                                     9.3e18,
                                                     1e300,
                                                     -1e300,
                                                     Limits::max(),
                                                     Limits::min(),
                                                     Limits::denorm_min(),
                                                     Limits::quiet_NaN(),
                                                     Limits::infinity(),
                                                     -Limits::infinity()};
    static constexpr std::array<int32_t, 16> kStatus = {0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 0, 3, -1, 7, 0x7fffffff, 0};
    const double days = bytes.oneOf(kDays);
    return {days, bytes.oneOf(kStatus)};
}

}  // namespace kesta::test
