#include <algorithm>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/playlist.h"

namespace kesta::formats {
namespace {

bool IsSeparator(char c)
{
    return c == '/' || c == '\\';
}

/// "C:" or the "C|" of old file URLs, and a separator.
bool StartsWithDrive(std::string_view text)
{
    return text.size() >= 3 && IsLetter(text[0]) && (text[1] == ':' || text[1] == '|') && IsSeparator(text[2]);
}

std::string WithSlashes(std::string_view text)
{
    std::string path(text);
    std::ranges::replace(path, '\\', '/');
    return path;
}

Location Drive(std::string_view text)
{
    std::string path = WithSlashes(text);
    path[1] = ':';
    return {LocationKind::kDrive, std::move(path)};
}

/// The length of a URL's scheme; 0 when the text is no URL. One letter is a drive.
size_t SchemeLength(std::string_view text)
{
    const size_t length = text.find(':');
    if (length == std::string_view::npos || length < 2 || !IsLetter(text.front())) {
        return 0;
    }
    const auto fits = [](char c) { return IsLetter(c) || IsDigit(c) || c == '+' || c == '-' || c == '.'; };
    return std::ranges::all_of(text.substr(0, length), fits) ? length : 0;
}

/// What follows "file:". Players do not escape '?' and '#', so they are part of the name.
std::optional<Location> FromFileUrl(std::string_view rest)
{
    std::string path = FromUtf8OrLatin1(HexDecoded(rest, '%'));
    if (path.find('\0') != std::string::npos) {
        return {};
    }
    std::string host;
    if (path.starts_with("//")) {
        const size_t end = std::min(path.find('/', 2), path.size());
        host = path.substr(2, end - 2);
        path.erase(0, end);
    }
    // Some write file://C:/Music, which makes the drive look like a host.
    if (StartsWithDrive(host + path)) {
        return Drive(host + path);
    }
    if (path.starts_with('/') && StartsWithDrive(std::string_view(path).substr(1))) {
        return Drive(path.substr(1));
    }
    if (EqualsIgnoringCase(host, "localhost")) {
        host.clear();
    }
    if (std::ranges::all_of(host + path, IsSeparator)) {
        return {};
    }
    if (!host.empty()) {
        return Location{LocationKind::kServer, WithSlashes("//" + host + path)};
    }
    // Four slashes and more: a server's name that became part of the path.
    if (path.starts_with("//")) {
        return Location{LocationKind::kServer, WithSlashes(path)};
    }
    if (!path.starts_with('/')) {
        return {};
    }
    return Location{LocationKind::kAbsolute, std::move(path)};
}

}  // namespace

std::optional<Location> ParseLocation(std::string_view line)
{
    if (Trimmed(line).empty() || line.find('\0') != std::string_view::npos) {
        return {};
    }
    if (const size_t scheme = SchemeLength(Trimmed(line)); scheme > 0) {
        const std::string_view url = Trimmed(line);
        if (EqualsIgnoringCase(url.substr(0, scheme), "file") && url.substr(scheme + 1).starts_with('/')) {
            return FromFileUrl(url.substr(scheme + 1));
        }
        if (url.substr(scheme).starts_with("://")) {
            return Location{LocationKind::kUrl, std::string(url)};
        }
    }
    if (StartsWithDrive(line) && line[1] == ':') {
        return Drive(line);
    }
    if (line.starts_with("\\\\") || line.starts_with("//")) {
        if (std::ranges::all_of(line, IsSeparator)) {
            return {};
        }
        return Location{LocationKind::kServer, WithSlashes(line)};
    }
    std::string path = line.find('/') == std::string_view::npos ? WithSlashes(line) : std::string(line);
    if (path.starts_with('/')) {
        return Location{LocationKind::kAbsolute, std::move(path)};
    }
    while (path.starts_with("./")) {
        path.erase(0, std::min(path.find_first_not_of('/', 1), path.size()));
    }
    if (path.empty() || path == ".") {
        return {};
    }
    return Location{LocationKind::kRelative, std::move(path)};
}

std::optional<std::string> PathOf(const Location& location, std::string_view folder)
{
    if (location.kind == LocationKind::kUrl) {
        return {};
    }
    if (location.kind != LocationKind::kRelative) {
        return location.text;
    }
    std::string path(folder);
    if (!path.empty() && !path.ends_with('/')) {
        path += '/';
    }
    return path + location.text;
}

}  // namespace kesta::formats
