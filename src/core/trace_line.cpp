#include "core/trace_line.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <string>

#include "core/dates.h"
#include "core/text.h"
#include "platform/calendar.h"
#include "platform/services.h"

namespace kesta {

/// Makes room for `units` more and the terminator.
bool TraceLine::reserve(size_t units) noexcept
{
    const size_t needed = length_ + units + 1;
    if (needed <= room_) {
        return true;
    }
    const size_t room = std::max(needed, 2 * room_);
    std::unique_ptr<DbChar[]> grown(new (std::nothrow) DbChar[room]);
    if (grown == nullptr) {
        lost_ = true;
        return false;
    }
    std::copy_n(text_, length_, grown.get());
    long_ = std::move(grown);
    text_ = long_.get();
    room_ = room;
    return true;
}

void TraceLine::append(const DbChar* text, size_t units) noexcept
{
    if (!reserve(units)) {
        return;
    }
    std::copy_n(text, units, text_ + length_);
    length_ += units;
}

void TraceLine::literal(std::string_view text) noexcept
{
    if (!reserve(text.size())) {
        return;
    }
    for (const char c : text) {
        text_[length_++] = static_cast<DbChar>(c);
    }
}

void TraceLine::put(const Plain& text) noexcept
{
    if (text.text == nullptr) {
        return literal(kNoText);
    }
    append(text.text, LengthOf(text.text));
}

void TraceLine::put(const Escaped& text) noexcept
{
    EscapeSqlText(text.text, text.until, [this](const DbChar* run, size_t units) { append(run, units); });
}

void TraceLine::put(const LocaleDate& date) noexcept
{
    if (date.value.Status == kDateNull) {
        return;
    }
    DbChar text[256];
    const size_t length =
        date.value.Status == kDateInvalid ? 0 : platform::LocaleDate(date.value.Days, text, std::size(text));
    if (length == 0) {
        return literal(kInvalidDate);
    }
    append(text, length);
}

void TraceLine::put(const Address& address) noexcept
{
    char digits[2 * sizeof(void*)];
    const auto end = std::to_chars(digits, std::end(digits), reinterpret_cast<uintptr_t>(address.value), 16).ptr;
    literal({digits, static_cast<size_t>(end - digits)});
}

void TraceLine::put(int64_t number) noexcept
{
    char digits[24];
    const auto end = std::to_chars(digits, std::end(digits), number).ptr;
    literal({digits, static_cast<size_t>(end - digits)});
}

void TraceLine::send() noexcept
{
    if (lost_) {
        return;
    }
    text_[length_] = 0;
    platform::services.writeTraceLine(text_, length_);
}

}  // namespace kesta
