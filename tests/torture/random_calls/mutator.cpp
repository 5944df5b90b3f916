// How libFuzzer changes an input: mostly by whole calls, so that what a byte means stays what it was.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

#include "torture/random_calls/call_bytes.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t room);

namespace kesta::test {
namespace {

constexpr size_t kCall = CallBytes::kSize;

class Sequence {
public:
    Sequence(uint8_t* data, size_t size, size_t room, unsigned seed)
        : calls_(data + 1), count_((size - 1) / kCall), room_((room - 1) / kCall), random_(seed)
    {
    }

    /// The size of the input after some changes, for one call is soon made and many are worth as much as one.
    size_t change()
    {
        for (size_t changes = 1 + below(8); changes > 0; --changes) {
            changeOne();
        }
        return 1 + count_ * kCall;
    }

private:
    void changeOne()
    {
        switch (below(4)) {
            case 0:
                removeOne();
                break;
            case 1:
                repeatOne();
                break;
            case 2:
                addOne();
                break;
            default:
                if (count_ > 0) {
                    fill(at(below(count_)));
                }
        }
    }

    size_t below(size_t limit) { return random_() % limit; }
    uint8_t* at(size_t call) { return calls_ + call * kCall; }

    /// Any export, with arguments of which about half are ordinary.
    void fill(uint8_t* call)
    {
        std::generate_n(call, kCall, [&] { return static_cast<uint8_t>(random_()); });
        for (size_t i = 1; i < kCall; ++i) {
            if (below(2) == 0) {
                call[i] &= 0x0f;
            }
        }
    }

    uint8_t* makeRoom(size_t call)
    {
        if (count_ < room_) {
            ++count_;
        }
        std::memmove(at(call) + kCall, at(call), (count_ - call - 1) * kCall);
        return at(call);
    }

    void addOne()
    {
        if (room_ > 0) {
            fill(makeRoom(below(std::min(count_ + 1, room_))));
        }
    }

    void repeatOne()
    {
        if (count_ == 0) {
            return addOne();
        }
        uint8_t copy[kCall];
        std::memcpy(copy, at(below(count_)), kCall);
        std::memcpy(makeRoom(below(std::min(count_ + 1, room_))), copy, kCall);
    }

    void removeOne()
    {
        if (count_ == 0) {
            return;
        }
        const size_t call = below(count_);
        std::memmove(at(call), at(call) + kCall, (count_ - call - 1) * kCall);
        --count_;
    }

    uint8_t* calls_;
    size_t count_;
    size_t room_;
    std::minstd_rand random_;
};

}  // namespace
}  // namespace kesta::test

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t room, unsigned seed)
{
    if (size == 0 || room == 0 || seed % 3 == 0) {
        return LLVMFuzzerMutate(data, size, room);
    }
    return kesta::test::Sequence(data, size, room, seed).change();
}
