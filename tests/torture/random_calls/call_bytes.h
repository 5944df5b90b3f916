// The bytes that one call is made of. Zeroes give the most ordinary call, so that a short input already does something.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kesta::test {

class CallBytes {
public:
    /// Every call takes as many, so that inserting or removing calls leaves the others as they are.
    static constexpr size_t kSize = 16;

    explicit CallBytes(std::span<const uint8_t, kSize> bytes) : bytes_(bytes) {}

    /// The next byte. Records have more fields than a call has bytes: these are used again, rotated.
    uint8_t next()
    {
        const size_t round = used_ / kSize;
        return std::rotl(bytes_[used_++ % kSize], static_cast<int>(round % 8));
    }

    /// One of the values, the first ones for small bytes.
    template <class T, size_t count>
    const T& oneOf(const std::array<T, count>& values)
    {
        static_assert(count <= 256);
        return values[next() % count];
    }

    /// True about once in so many.
    bool rarely(uint8_t times) { return next() % times == times - 1; }

private:
    std::span<const uint8_t, kSize> bytes_;
    size_t used_ = 0;
};

}  // namespace kesta::test
