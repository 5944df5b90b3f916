#include "commands/phone_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "base/byte_escapes.h"
#include "base/text.h"

namespace kesta {
namespace {

struct Show {
    const PhoneSettings& settings;
    std::string operator()(TextSetting member) const { return settings.*member; }
    std::string operator()(TruthSetting member) const { return settings.*member ? "yes" : "no"; }
    std::string operator()(NumberSetting member) const { return std::to_string(settings.*member); }
    std::string operator()(DateSetting member) const
    {
        return settings.*member ? FormatLocalTime(*(settings.*member)) : std::string();
    }
};

struct Take {
    PhoneSettings& settings;
    const std::string& text;

    std::string operator()(TextSetting member) const
    {
        if (!IsValidUtf8(text) || text.find('\0') != std::string::npos || HasEscapedBytes(text)) {
            return "it is not valid text";
        }
        settings.*member = text;
        return {};
    }
    std::string operator()(TruthSetting member) const
    {
        const auto truth = ParseTruth(text);
        if (!truth) {
            return "it is yes or no";
        }
        settings.*member = *truth;
        return {};
    }
    std::string operator()(NumberSetting member) const
    {
        int32_t number = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end) {
            return "it is a whole number from -2147483648 to 2147483647";
        }
        settings.*member = number;
        return {};
    }
    std::string operator()(DateSetting member) const
    {
        const auto time = ParseLocalTime(text);
        if (!time && !text.empty()) {
            return "it is a date of the years 100 to 9999 such as 2026-01-31 or 2026-01-31 18:30:00";
        }
        settings.*member = time;
        return {};
    }
};

// How many characters have to be put in, taken out or replaced to get from one name to the other.
size_t Distance(std::string_view from, std::string_view to)
{
    std::vector<size_t> row;
    row.reserve(to.size() + 1);
    for (size_t j = 0; j <= to.size(); ++j) {
        row.push_back(j);
    }
    for (size_t i = 0; i < from.size(); ++i) {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

}  // namespace

const Setting* FindSetting(std::string_view name)
{
    const auto found =
        std::find_if(kSettings.begin(), kSettings.end(), [&](const Setting& setting) { return setting.name == name; });
    return found == kSettings.end() ? nullptr : &*found;
}

std::string ShowSetting(const PhoneSettings& settings, const Setting& setting)
{
    return std::visit(Show{settings}, setting.member);
}

std::string TakeSetting(PhoneSettings& settings, const Setting& setting, const std::string& text)
{
    if (!setting.isWritable) {
        return "the end of each sync sets it; it cannot be changed by hand";
    }
    return std::visit(Take{settings, text}, setting.member);
}

std::optional<bool> ParseTruth(std::string_view text)
{
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    for (const char* yes : {"yes", "true", "on", "1"}) {
        if (lower == yes) {
            return true;
        }
    }
    for (const char* no : {"no", "false", "off", "0"}) {
        if (lower == no) {
            return false;
        }
    }
    return std::nullopt;
}

std::vector<std::string> NearNames(std::string_view written, std::span<const std::string> names)
{
    // A name is written down to the letter more often in part than with many mistakes, so a part counts as near.
    const size_t allowed = std::max<size_t>(2, written.size() / 4);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string& name : names) {
        const bool isPart = written.size() >= 3 && name.find(written) != std::string::npos;
        const size_t distance = isPart ? 1 : Distance(written, name);
        if (distance <= allowed) {
            near.emplace_back(distance, name);
        }
    }
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> result;
    result.reserve(near.size());
    for (auto& [distance, name] : near) {
        result.push_back(std::move(name));
    }
    return result;
}

}  // namespace kesta
