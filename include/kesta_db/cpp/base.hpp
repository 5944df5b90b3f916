/**
 * @file
 * @brief What every part of the C++ interface stands on: errors, texts, local time, lists that free themselves.
 *
 * A program includes kesta_db/kesta_db.hpp, which has an example. What is in namespace detail is not for callers.
 */
#pragma once

#include <kesta_db/kesta_db.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The library for C++.
namespace kesta_db {

/// A result code of the library, or why the library was not asked at all.
enum class Code : int32_t {
    kUnreadable = -3,     ///< what was found is not all that there is: reading it broke off
    kNotStored = -2,      ///< the library answered success, but the row is not as it was given
    kInvalidText = -1,    ///< a text that is no UTF-8, holds a zero character, or must not stand in a statement
    kFailed = 1,          ///< the library's plain failure: unknown phone, closed database, a statement that failed
    kBusy = 5,            ///< another program has the database locked
    kNoMemory = 7,        ///< no memory
    kReadOnly = 8,        ///< the file cannot be written
    kIoError = 10,        ///< the disk cannot be read or written
    kDamaged = 11,        ///< the file is damaged
    kDiskFull = 13,       ///< no space is left
    kTooLong = 18,        ///< the statement with its texts is longer than the library takes
    kExists = 19,         ///< the row exists already, or its table refused it; at opening: the file is read-only
    kRefused = 23,        ///< a statement that is not let through
    kMoreRows = 100,      ///< another process adds rows faster than they can be listed
    kFileInTheWay = 8398  ///< at opening: a file of another version, or one that cannot be looked at for now
};

namespace detail {

[[nodiscard]] inline std::string Describe(Code code)
{
    switch (code) {
        case Code::kUnreadable:
            return "reading it broke off";
        case Code::kNotStored:
            return "it was not stored";
        case Code::kInvalidText:
            return "a text cannot be passed on";
        case Code::kFailed:
            return "unknown phone, closed database, or a statement failed";
        case Code::kBusy:
            return "another program has the database locked";
        case Code::kNoMemory:
            return "there is no memory";
        case Code::kReadOnly:
            return "the database is read-only";
        case Code::kIoError:
            return "the database cannot be read or written";
        case Code::kDamaged:
            return "the database is damaged";
        case Code::kDiskFull:
            return "no space is left for the database";
        case Code::kTooLong:
            return "the texts are too long for the database";
        case Code::kExists:
            return "it exists already";
        case Code::kRefused:
            return "a statement was refused";
        case Code::kMoreRows:
            return "rows were added meanwhile";
        case Code::kFileInTheWay:
            return "its file is of another version, or held by another program";
    }
    return "result " + std::to_string(static_cast<int32_t>(code));
}

}  // namespace detail

/// Every failure of this interface, with its code and a text that names the call.
class Error : public std::runtime_error {
public:
    Error(std::string_view call, Code code)
        : std::runtime_error(std::string(call) + " failed: " + detail::Describe(code)),
          code_(code),
          length_(call.size())
    {
    }
    [[nodiscard]] Code code() const noexcept { return code_; }
    /// The function of the library, as a rule: "DB_LIB_GetAllPhones".
    [[nodiscard]] std::string_view call() const noexcept { return std::string_view(what()).substr(0, length_); }

private:
    Code code_;
    size_t length_;  // of the call in what()
};

/// A point in the user's local time, to the second, as the database keeps it. Years 100 to 9999.
using LocalTime = std::chrono::local_seconds;

/// The day that the database numbers 0.
inline constexpr std::chrono::local_days kDayZero{std::chrono::year(1899) / 12 / 30};

namespace detail {

inline void Require(std::string_view call, int32_t result)
{
    if (result != 0) throw Error(call, static_cast<Code>(result));
}

// ---- Texts

using Utf16 = std::basic_string<DbChar>;

/// The next character of valid UTF-8, taken off the text; std::nullopt for bytes that are none.
[[nodiscard]] inline std::optional<char32_t> TakeCharacter(std::string_view& utf8)
{
    const auto byte = [&](size_t at) { return static_cast<uint8_t>(utf8[at]); };
    const uint8_t first = byte(0);
    const size_t length = first < 0x80   ? 1
                          : first < 0xC2 ? 0
                          : first < 0xE0 ? 2
                          : first < 0xF0 ? 3
                          : first < 0xF5 ? 4
                                         : 0;
    if (length == 0 || utf8.size() < length) return std::nullopt;
    char32_t character = length == 1 ? first : first & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0u) != 0x80u) return std::nullopt;
        character = (character << 6) | (byte(i) & 0x3Fu);
    }
    const bool isOverlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    if (isOverlong || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) return std::nullopt;
    utf8.remove_prefix(length);
    return character;
}

/// Throws kInvalidText.
[[nodiscard]] inline Utf16 Text(std::string_view utf8)
{
    Utf16 text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const std::optional<char32_t> character = TakeCharacter(utf8);
        if (!character || *character == 0)
            throw Error("A call with a text that is not valid UTF-8", Code::kInvalidText);
        if (*character >= 0x10000) {
            text += static_cast<DbChar>(0xD800 + ((*character - 0x10000) >> 10));
            text += static_cast<DbChar>(0xDC00 + ((*character - 0x10000) & 0x3FF));
        } else {
            text += static_cast<DbChar>(*character);
        }
    }
    return text;
}

/// A text that goes into statements as it is, and is to be stored: printable ASCII without an apostrophe. Throws
/// kInvalidText.
[[nodiscard]] inline Utf16 Identifier(std::string_view ascii)
{
    for (const char c : ascii) {
        if (c < ' ' || c > '~' || c == '\'')
            throw Error("A call with an identifier that is not ASCII without apostrophes", Code::kInvalidText);
    }
    return Text(ascii);
}

/// The same for one by which something is looked up. Another program may have stored it; where the library does not
/// take such texts through a code page it can be asked for, then.
[[nodiscard]] inline Utf16 KnownIdentifier(std::string_view text)
{
#if defined(_WIN32)
    return Identifier(text);
#else
    if (text.find('\'') != std::string_view::npos)
        throw Error("A call with an identifier that has an apostrophe", Code::kInvalidText);
    return Text(text);
#endif
}

inline void AppendUtf8(std::string& utf8, char32_t c)
{
    const auto put = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

/// Null is the empty text; half a surrogate pair becomes U+FFFD.
[[nodiscard]] inline std::string Utf8(const DbChar* text)
{
    std::string utf8;
    if (text == nullptr) return utf8;
    while (*text != 0) {
        char32_t c = static_cast<char32_t>(*text++);
        if (c >= 0xD800 && c <= 0xDFFF) {
            const char32_t next = static_cast<char32_t>(*text);
            const bool isPair = c < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF;
            c = isPair ? 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00) : 0xFFFD;
            if (isPair) ++text;
        }
        AppendUtf8(utf8, c);
    }
    return utf8;
}

// ---- Dates

/// std::nullopt is the null date.
[[nodiscard]] inline DateValue ToDateValue(std::optional<LocalTime> time)
{
    if (!time) return {0.0, kDateNull};
    const auto day = std::chrono::floor<std::chrono::days>(*time);
    const double fraction = static_cast<double>((*time - day).count()) / 86400;
    const auto days = static_cast<double>((day - kDayZero).count());
    // The fraction runs forward in the day also where the day number is negative.
    return {days < 0 ? days - fraction : days + fraction, kDateValid};
}

/// std::nullopt for a date that is not valid.
[[nodiscard]] inline std::optional<LocalTime> FromDateValue(const DateValue& date)
{
    constexpr double kBeyondTheCalendar = 3e6;
    const double days = date.Days;
    if (date.Status != kDateValid || !(std::fabs(days) < kBeyondTheCalendar)) return std::nullopt;
    const double day = std::trunc(days);
    const auto seconds = std::llround(std::fabs(days - day) * 86400);
    return kDayZero + std::chrono::days(static_cast<int32_t>(day)) + std::chrono::seconds(seconds);
}

// ---- Lists

/// Names no phone and no folder: asking for something of it makes the library take back what a list holds.
inline constexpr DbChar kUnknown[] = {'n', 'o', ' ', 's', 'u', 'c', 'h', 0};

/// A list record that is given back by `release`.
template <class List, class Release>
class OwnedList {
public:
    explicit OwnedList(Release release) : release_(std::move(release)) {}
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;
    ~OwnedList()
    {
        if (list_.Items != nullptr) release_(&list_);
    }
    [[nodiscard]] List* get() { return &list_; }

    /// The records in C++.
    template <class Convert>
    [[nodiscard]] auto records(Convert&& convert) const
    {
        std::vector<decltype(convert(*list_.Items))> records;
        records.reserve(static_cast<size_t>(list_.Count));
        for (int32_t i = 0; i < list_.Count; ++i) records.push_back(convert(list_.Items[i]));
        return records;
    }

private:
    List list_{};
    Release release_;
};

/// Reads a list. Another process may add a row between the library's count and its query; it is then asked for again.
template <class Read>
void ReadList(std::string_view call, Read&& read)
{
    int32_t result = read();
    for (int again = 0; result == static_cast<int32_t>(Code::kMoreRows) && again < 10; ++again) result = read();
    Require(call, result);
}

/// One record for the whole program, for lists that no argument makes the library empty.
template <class List>
struct SharedList {
    std::mutex mutex;
    List list{};
};

inline SharedList<MainFolderList>& SharedMainFolders()
{
    static SharedList<MainFolderList> shared;
    return shared;
}

/// Whether rows that every database has can be read now.
[[nodiscard]] inline bool CanKnownRowsBeRead()
{
    auto& shared = SharedMainFolders();
    const std::scoped_lock lock(shared.mutex);
    return DB_LIB_GetAllMainFolders(&shared.list) == 0 && shared.list.Count > 0;
}

/// Asks until the answer can be believed; ask says whether there was anything in it. When the library cannot look into
/// the database - it is locked for too long, the disk fails - many calls answer as they do when there is nothing. An
/// empty answer is believed when it came twice without waiting, and other rows can be read right after. Throws
/// kUnreadable after a few attempts.
template <class Ask>
void AskUntilBelieved(std::string_view call, Ask&& ask)
{
    constexpr int kAttempts = 4;
    constexpr std::chrono::milliseconds kNoWaiting{500};  // a call that meets a lock waits longer before it looks again
    if (ask()) return;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const auto before = std::chrono::steady_clock::now();
        if (ask()) return;
        const bool isTrue = CanKnownRowsBeRead();
        if (isTrue && std::chrono::steady_clock::now() - before < kNoWaiting) return;
    }
    throw Error(call, Code::kUnreadable);
}

/// Reads a list whose emptiness is to be believed.
template <class List, class Read>
void ReadCountedList(std::string_view call, const List& list, Read&& read)
{
    AskUntilBelieved(call, [&] {
        ReadList(call, read);
        return list.Count != 0;
    });
}

}  // namespace detail
}  // namespace kesta_db
