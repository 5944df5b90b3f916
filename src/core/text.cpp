#include "core/text.h"

namespace kesta {

size_t LengthOf(const DbChar* text) noexcept
{
    // The compiler's own loop looks at one unit a round, which costs twice as much.
    size_t length = 0;
    for (;; length += 4) {
        if (text[length] == 0) {
            return length;
        }
        if (text[length + 1] == 0) {
            return length + 1;
        }
        if (text[length + 2] == 0) {
            return length + 2;
        }
        if (text[length + 3] == 0) {
            return length + 3;
        }
    }
}

std::basic_string<DbChar> ReplaceLoneSurrogates(std::basic_string_view<DbChar> text)
{
    constexpr auto kReplacement = static_cast<DbChar>(0xFFFD);
    const auto isLead = [](DbChar unit) { return unit >= 0xD800 && unit < 0xDC00; };
    const auto isTrail = [](DbChar unit) { return unit >= 0xDC00 && unit < 0xE000; };
    std::basic_string<DbChar> valid(text);
    for (size_t i = 0; i < valid.size(); ++i) {
        if (isLead(valid[i]) && i + 1 < valid.size() && isTrail(valid[i + 1])) {
            ++i;
        } else if (isLead(valid[i]) || isTrail(valid[i])) {
            valid[i] = kReplacement;
        }
    }
    return valid;
}

}  // namespace kesta
