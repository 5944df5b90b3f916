// .pls: "File1=", "Title1=" and "Length1=" in any order.
#include <algorithm>
#include <charconv>
#include <map>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/playlist_builder.h"

namespace kesta::formats {
namespace {

struct Item {
    std::string location;
    PlaylistEntry entry;
};

/// The number behind the name; std::nullopt if the key is another one.
std::optional<uint32_t> NumberOf(std::string_view key, std::string_view name)
{
    if (!StartsIgnoringCase(key, name)) {
        return {};
    }
    const std::string_view digits = key.substr(name.size());
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size() && !digits.empty();
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<int> SecondsOf(std::string_view value)
{
    int seconds = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), seconds);
    return error == std::errc() && seconds >= 0 ? std::optional(seconds) : std::nullopt;
}

}  // namespace

Playlist ReadPls(std::string_view file)
{
    const std::string bytes = WithoutByteOrderMark(file);
    const std::string text = FromUtf8OrLatin1(bytes);
    Playlist playlist;
    std::map<uint32_t, Item> items;
    bool hasHeader = false;
    size_t number = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const size_t length = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view line = Trimmed(rest.substr(0, length));
        rest.remove_prefix(length);
        rest.remove_prefix(std::min<size_t>(rest.starts_with("\r\n") ? 2 : 1, rest.size()));
        ++number;
        hasHeader = hasHeader || EqualsIgnoringCase(line, "[playlist]");
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos || line.starts_with(';')) {
            continue;
        }
        const std::string_view key = Trimmed(line.substr(0, equals)), value = Trimmed(line.substr(equals + 1));
        if (const auto ofFile = NumberOf(key, "File")) {
            Item& item = items[*ofFile];
            if (!item.location.empty()) {
                playlist.problems.push_back({number, "a second file of this number"});
                continue;
            }
            item.location = value;
            item.entry.line = number;
        } else if (const auto ofTitle = NumberOf(key, "Title")) {
            items[*ofTitle].entry.title = OneLine(value);
        } else if (const auto ofLength = NumberOf(key, "Length")) {
            items[*ofLength].entry.seconds = SecondsOf(value);
        }
    }
    if (!hasHeader && items.empty()) {
        playlist.problems.push_back({0, "not a .pls playlist"});
    }
    for (auto& [key, item] : items) {
        if (item.entry.line != 0) {
            AddEntry(playlist, item.location, false, std::move(item.entry));
        }
    }
    return playlist;
}

}  // namespace kesta::formats
