#include "phone/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text.h"
#include "os/system.h"

namespace kesta {
namespace {

constexpr size_t kLongestName = 255;  // bytes, and so never more UTF-16 units than FAT and exFAT take
constexpr size_t kLongestExtension = 16;

bool IsForbidden(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c > kLastCharacter ||
           std::u32string_view(U"<>:\"/\\|?*").find(c) != std::u32string_view::npos;
}

// CON, COM1.txt and the like are devices on Windows, whatever follows the first dot.
bool IsDeviceName(std::string_view name)
{
    std::string stem = CaseKey(name.substr(0, name.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    constexpr std::array<std::string_view, 6> kDevices{"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) {
        return true;
    }
    if (!stem.starts_with("COM") && !stem.starts_with("LPT")) {
        return false;
    }
    const std::string_view number = std::string_view(stem).substr(3);
    return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\u00B9" || number == "\u00B2" ||
           number == "\u00B3";
}

uint64_t Hash(std::string_view text)
{
    uint64_t hash = 14695981039346656037u;  // FNV-1a: the suffix must be the same in every run and build
    for (const char c : text) {
        hash = (hash ^ static_cast<uint8_t>(c)) * 1099511628211u;
    }
    return hash;
}

struct StemAndExtension {
    std::string_view stem, extension;
};

StemAndExtension SplitExtension(std::string_view name)
{
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.size() - dot > kLongestExtension) {
        return {name, {}};
    }
    return {name.substr(0, dot), name.substr(dot)};
}

std::string_view CutToWholeCharacters(std::string_view text, size_t bytes)
{
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<uint8_t>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.substr(0, bytes);
}

}  // namespace

std::string SafeName(std::string_view name)
{
    std::string safe;
    for (std::string_view rest = name; !rest.empty();) {
        const char32_t c = NextCharacter(rest);
        AppendCharacter(safe, IsForbidden(c) ? U'_' : c);
    }
    if (safe.empty()) {
        return "_";
    }
    for (auto last = safe.size(); last > 0 && (safe[last - 1] == '.' || safe[last - 1] == ' '); --last) {
        safe[last - 1] = '_';
    }
    static const std::string kOwnKey = CaseKey(kOwnPrefix);
    if (IsDeviceName(safe) || CaseKey(safe).starts_with(kOwnKey)) {
        safe.insert(safe.begin(), '_');
    }
    // The suffix tells apart what the cut would make equal.
    return safe.size() <= kLongestName ? safe : SuffixedName(safe, name, 0);
}

std::string CaseKey(std::string_view path)
{
    std::string key;
    key.reserve(path.size());
    while (!path.empty()) {
        // Nearly all there is, and every file of a sync comes along here several times.
        if (const char first = path.front(); static_cast<uint8_t>(first) < 0x80) {
            key += first >= 'a' && first <= 'z' ? static_cast<char>(first - 'a' + 'A') : first;
            path.remove_prefix(1);
            continue;
        }
        const char32_t c = NextCharacter(path);
        AppendCharacter(key, c <= kLastCharacter ? os::UpperCase(c) : U'\uFFFD');
    }
    return key;
}

std::string SuffixedName(std::string_view name, std::string_view seed, unsigned attempt)
{
    const uint64_t hash = attempt == 0 ? Hash(seed) : Hash(fmt::format("{}#{}", seed, attempt));
    const std::string suffix = fmt::format("~{:06x}", hash & 0xFFFFFF);
    const auto [stem, extension] = SplitExtension(name);
    const auto cut = CutToWholeCharacters(stem, kLongestName - extension.size() - suffix.size());
    return fmt::format("{}{}{}", cut, suffix, extension);
}

std::vector<std::string> SplitPath(std::string_view path)
{
    std::vector<std::string> parts;
    for (;;) {
        const auto slash = path.find('/');
        parts.emplace_back(path.substr(0, slash));
        if (slash == std::string_view::npos) {
            return parts;
        }
        path.remove_prefix(slash + 1);
    }
}

bool IsPhonePath(std::string_view path, Category category)
{
    return IsPhonePath(path, PhoneFolderOf(category));
}

bool IsPhonePath(std::string_view path, std::string_view folder)
{
    if (!path.starts_with(folder) || !path.substr(folder.size()).starts_with('/')) {
        return false;
    }
    const auto parts = SplitPath(path);
    return std::all_of(parts.begin(), parts.end(), [](const std::string& part) {
        return !part.empty() && part != "." && part != ".." && IsValidUtf8(part) && SafeName(part) == part;
    });
}

}  // namespace kesta
