// The loops through which every text goes on its way into a statement and out of a row, eight or sixteen characters at
// a time. Blocks have a fixed size and never reach beyond the text: so compilers turn them into vector instructions,
// and memory checkers have nothing to object to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "kesta_db/kesta_db.h"

namespace kesta {

constexpr bool IsAscii(DbChar unit)
{
    return unit < 0x80;
}

/// Whether eight units are ASCII and neither `stop` nor `until`.
inline bool IsPlainBlock(const DbChar* text, DbChar stop, DbChar until) noexcept
{
    constexpr uint64_t kEach = 0x0001000100010001;
    constexpr uint64_t kHigh = 0x8000 * kEach;
    static_assert(sizeof(DbChar) == sizeof(uint16_t));
    uint64_t words[2];
    std::memcpy(words, text, sizeof words);
    uint64_t other = 0;
    for (const uint64_t word : words) {
        // Zero where the unit is the one looked for. Taking 1 away sets a high bit that was clear only if there is a
        // zero.
        const uint64_t stops = word ^ (kEach * stop);
        const uint64_t untils = word ^ (kEach * until);
        other |= word & (0xFF80 * kEach);
        other |= (((stops - kEach) & ~stops) | ((untils - kEach) & ~untils)) & kHigh;
    }
    return other == 0;
}

/// Copies characters that are one byte in UTF-8 and in every ANSI code page, and stops after `length` of them or before
/// the first other one, `stop` or `until`. Returns how many.
inline size_t CopyAscii(const DbChar* text, size_t length, DbChar stop, DbChar until, char* out) noexcept
{
    constexpr size_t kBlock = 8;
    const auto narrowBlock = [](const DbChar* __restrict from, char* __restrict to) {
        for (size_t i = 0; i < kBlock; ++i) to[i] = static_cast<char>(from[i]);
    };
    size_t done = 0;
    for (; length - done >= kBlock && IsPlainBlock(text + done, stop, until); done += kBlock) {
        narrowBlock(text + done, out + done);
    }
    for (; done < length; ++done) {
        const DbChar unit = text[done];
        if (!IsAscii(unit) || unit == stop || unit == until) break;
        out[done] = static_cast<char>(unit);
    }
    return done;
}

inline constexpr size_t kWidenedBlock = 16;

inline bool IsAsciiBlock(const char* text) noexcept
{
    uint64_t words[2];
    static_assert(sizeof words == kWidenedBlock);
    std::memcpy(words, text, sizeof words);
    return ((words[0] | words[1]) & 0x8080808080808080) == 0;
}

/// Calls `block(place)` until blocks have covered a text of at least one block. The last one ends with the text and so
/// overlaps the one before; stops when `block` says false.
template <class Block>
bool ForEachBlock(size_t length, Block&& block)
{
    for (size_t place = 0; place + kWidenedBlock < length; place += kWidenedBlock) {
        if (!block(place)) return false;
    }
    return block(length - kWidenedBlock);
}

inline bool IsAscii(std::string_view text) noexcept
{
    if (text.size() >= kWidenedBlock) {
        return ForEachBlock(text.size(), [text](size_t place) { return IsAsciiBlock(text.data() + place); });
    }
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

inline void WidenAsciiBlock(const char* __restrict text, DbChar* __restrict out) noexcept
{
    for (size_t i = 0; i < kWidenedBlock; ++i) out[i] = static_cast<DbChar>(static_cast<unsigned char>(text[i]));
}

/// Widens an ASCII text.
inline void WidenAscii(std::string_view text, DbChar* out) noexcept
{
    if (text.size() >= kWidenedBlock) {
        ForEachBlock(text.size(), [text, out](size_t place) {
            WidenAsciiBlock(text.data() + place, out + place);
            return true;
        });
        return;
    }
    for (size_t i = 0; i < text.size(); ++i) out[i] = static_cast<DbChar>(static_cast<unsigned char>(text[i]));
}

}  // namespace kesta
