// The two kinds of PIM data: what the user calls them, how the database numbers them, and where they go on the phone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kesta {

enum class PimKind { kContacts, kCalendar };

inline constexpr std::array kPimKinds{PimKind::kContacts, PimKind::kCalendar};

/// A listing of the store ends at so many folders or items without a word.
inline constexpr size_t kMostListedPimFolders = 1023;
inline constexpr size_t kMostListedPimItems = 1'048'575;

/// As in options, in JSON and in the database's identifiers: "contacts".
[[nodiscard]] constexpr std::string_view KeyOf(PimKind kind)
{
    return kind == PimKind::kContacts ? "contacts" : "calendar";
}

/// The root folder in the database and the folder in the phone's root.
[[nodiscard]] constexpr std::string_view TitleOf(PimKind kind)
{
    return kind == PimKind::kContacts ? "Contacts" : "Calendar";
}

/// Of the files on the phone.
[[nodiscard]] constexpr std::string_view ExtensionOf(PimKind kind)
{
    return kind == PimKind::kContacts ? ".vcf" : ".ics";
}

/// The database leaves the numbers of the kinds to their callers: here they are those of the main folders people and
/// calendar, so that a number means one thing throughout the database.
[[nodiscard]] constexpr int32_t TypeOf(PimKind kind)
{
    return kind == PimKind::kContacts ? 1500 : 1600;
}

[[nodiscard]] constexpr std::optional<PimKind> PimKindOfKey(std::string_view key)
{
    for (const PimKind kind : kPimKinds) {
        if (KeyOf(kind) == key) {
            return kind;
        }
    }
    return std::nullopt;
}

}  // namespace kesta
