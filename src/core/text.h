// Caller's texts: their length, their escaping, and the places where they become narrow.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kesta_db/kesta_db.h"

namespace kesta {

/// What stands where a text that is not escaped is missing.
inline constexpr std::string_view kNoText = "(null)";

/// The most characters that escaping a text yields; of a doubled apostrophe at the very end only the first may remain.
inline constexpr size_t kEscapedUnits = 40958;

inline constexpr DbChar kApostrophe = static_cast<DbChar>('\'');

/// Code units up to the terminator.
size_t LengthOf(const DbChar* text) noexcept;

/// The text with U+FFFD in the place of every surrogate that is not half of a pair.
std::basic_string<DbChar> ReplaceLoneSurrogates(std::basic_string_view<DbChar> text);

inline bool IsEmpty(const DbChar* text) noexcept
{
    return text == nullptr || *text == 0;
}

/// Hands the escaped text to `sink(run, units)` run by run: every apostrophe twice; null is the empty text. Stops when
/// the text ends, before `until`, or when kEscapedUnits have been handed over.
template <class Sink>
void EscapeSqlText(const DbChar* text, DbChar until, Sink&& sink)
{
    if (text == nullptr) {
        return;
    }
    size_t written = 0;
    while (*text != 0 && *text != until && written < kEscapedUnits) {
        const DbChar* run = text;
        while (*text != 0 && *text != until && *text != kApostrophe && written < kEscapedUnits) {
            ++text;
            ++written;
        }
        if (text != run) {
            sink(run, static_cast<size_t>(text - run));
        }
        if (*text == kApostrophe && written < kEscapedUnits) {
            static constexpr DbChar kTwice[] = {kApostrophe, kApostrophe};
            const size_t taken = written + 2 <= kEscapedUnits ? 2 : 1;
            sink(kTwice, taken);
            written += taken;
            ++text;
        }
    }
}

}  // namespace kesta
