// The loops through which every text goes on its way into a statement and out of a row, eight or sixteen characters at
// a time. Blocks have a fixed size and never reach beyond the text: so compilers turn them into vector instructions,
// and memory checkers have nothing to object to.
#pragma once

#include <algorithm>
#include <bit>
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

inline constexpr size_t kNarrowedBlock = 8;

/// Narrows eight units. Returns how many of them come before the first that is no ASCII, `stop` or `until`, which are
/// ASCII themselves.
inline size_t NarrowAsciiBlock(const DbChar* __restrict text, DbChar stop, DbChar until, char* __restrict out) noexcept
{
    static_assert(std::endian::native == std::endian::little && sizeof(DbChar) == sizeof(uint16_t));
    for (size_t i = 0; i < kNarrowedBlock; ++i) {
        out[i] = static_cast<char>(text[i]);
    }
    uint64_t words[2];
    std::memcpy(words, text, sizeof words);
    const uint64_t others[2] = {words[0] & 0xFF80FF80FF80FF80, words[1] & 0xFF80FF80FF80FF80};

    constexpr uint64_t kEach = 0x0101010101010101;
    uint64_t bytes = 0;
    std::memcpy(&bytes, out, sizeof bytes);
    // Zero where the byte is the one looked for. Taking 1 away sets a high bit that was clear only if there is a zero;
    // what it sets wrongly lies above the first zero. A wider unit may be found too: it ends the text as well.
    const uint64_t stops = bytes ^ (kEach * stop);
    const uint64_t untils = bytes ^ (kEach * until);
    const uint64_t found = (((stops - kEach) & ~stops) | ((untils - kEach) & ~untils)) & (0x80 * kEach);

    if ((others[0] | others[1] | found) == 0) {
        return kNarrowedBlock;
    }
    const int other = others[0] != 0 ? std::countr_zero(others[0]) : 64 + std::countr_zero(others[1]);
    return static_cast<size_t>(std::min(other / 16, std::countr_zero(found) / 8));
}

/// Copies characters that are one byte in UTF-8 and in every ANSI code page, and stops after `length` of them or before
/// the first other one, `stop` or `until`. Returns how many; behind them, within `length`, anything may be left.
inline size_t CopyAscii(const DbChar* text, size_t length, DbChar stop, DbChar until, char* out) noexcept
{
    size_t done = 0;
    while (length - done >= kNarrowedBlock) {
        const size_t plain = NarrowAsciiBlock(text + done, stop, until, out + done);
        done += plain;
        if (plain < kNarrowedBlock) {
            return done;
        }
    }
    for (; done < length; ++done) {
        const DbChar unit = text[done];
        if (!IsAscii(unit) || unit == stop || unit == until) {
            break;
        }
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
        if (!block(place)) {
            return false;
        }
    }
    return block(length - kWidenedBlock);
}

inline bool IsAscii(std::string_view text) noexcept
{
    if (text.size() >= kWidenedBlock) {
        return ForEachBlock(text.size(), [text](size_t place) { return IsAsciiBlock(text.data() + place); });
    }
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            return false;
        }
    }
    return true;
}

inline void WidenAsciiBlock(const char* __restrict text, DbChar* __restrict out) noexcept
{
    for (size_t i = 0; i < kWidenedBlock; ++i) {
        out[i] = static_cast<DbChar>(static_cast<unsigned char>(text[i]));
    }
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
    for (size_t i = 0; i < text.size(); ++i) {
        out[i] = static_cast<DbChar>(static_cast<unsigned char>(text[i]));
    }
}

}  // namespace kesta
