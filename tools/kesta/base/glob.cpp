#include "base/glob.h"

#include <optional>

#include "base/text.h"

namespace kesta {
namespace {

char32_t Lower(char32_t character)
{
    return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
}

struct SetMatch {
    bool isIn = false;
    std::string_view rest;  // of the glob, behind the set
};

// The glob begins behind the '['. std::nullopt if the set has no end.
std::optional<SetMatch> MatchSet(std::string_view glob, char32_t character)
{
    bool isNegated = false;
    if (!glob.empty() && (glob.front() == '!' || glob.front() == '^')) {
        isNegated = true;
        glob.remove_prefix(1);
    }
    bool isIn = false;
    for (bool isFirst = true; !glob.empty(); isFirst = false) {
        if (glob.front() == ']' && !isFirst) {
            return SetMatch{isIn != isNegated, glob.substr(1)};
        }
        const char32_t low = Lower(NextCharacter(glob));
        char32_t high = low;
        if (glob.size() >= 2 && glob[0] == '-' && glob[1] != ']') {
            glob.remove_prefix(1);
            high = Lower(NextCharacter(glob));
        }
        isIn = isIn || (character >= low && character <= high);
    }
    return std::nullopt;
}

// The part of a glob behind its last star, and where in the path it was tried last.
struct Retry {
    std::string_view glob, path;
    bool isOpen = false;
    bool isForFolders = false;  // "**/" ends where a folder's name does
};

// Takes one character off both. False if they do not match.
bool MatchOne(std::string_view& glob, std::string_view& path)
{
    if (glob.empty() || path.empty()) {
        return false;
    }
    std::string_view pathRest = path;
    const char32_t character = Lower(NextCharacter(pathRest));
    if (glob.front() == '[' && character != '/') {
        if (const auto set = MatchSet(glob.substr(1), character)) {
            glob = set->rest;
            path = pathRest;
            return set->isIn;
        }
    }
    std::string_view globRest = glob;
    const char32_t wanted = Lower(NextCharacter(globRest));
    if (wanted == '?' ? character == '/' : wanted != character) {
        return false;
    }
    glob = globRest;
    path = pathRest;
    return true;
}

// Lets the star take more of the path. False if there is nothing more that it can take.
bool Extend(Retry& star, bool mayCrossFolders)
{
    const bool isAtEnd = star.path.empty() || (star.path.front() == '/' && !mayCrossFolders);
    const size_t slash = star.isForFolders ? star.path.find('/') : 0;
    star.isOpen = star.isOpen && !isAtEnd && slash != std::string_view::npos;
    if (!star.isOpen) {
        return false;
    }
    if (star.isForFolders) {
        star.path.remove_prefix(slash + 1);
    } else {
        (void)NextCharacter(star.path);
    }
    return true;
}

}  // namespace

// The last star of each kind is enough to come back to: what an earlier one could take, the later one can as well.
bool MatchesGlob(std::string_view glob, std::string_view path)
{
    Retry inFolder, acrossFolders;
    for (;;) {
        if (glob.starts_with("**")) {
            const bool isForFolders = glob.starts_with("**/");
            glob.remove_prefix(isForFolders ? 3 : 2);
            acrossFolders = {glob, path, true, isForFolders};
            inFolder = {};
            continue;
        }
        if (glob.starts_with('*')) {
            glob.remove_prefix(1);
            inFolder = {glob, path, true, false};
            continue;
        }
        if (glob.empty() && path.empty()) {
            return true;
        }
        if (std::string_view globHere = glob, pathHere = path; MatchOne(globHere, pathHere)) {
            glob = globHere;
            path = pathHere;
            continue;
        }
        if (Extend(inFolder, false)) {
            glob = inFolder.glob;
            path = inFolder.path;
        } else if (Extend(acrossFolders, true)) {
            glob = acrossFolders.glob;
            path = acrossFolders.path;
        } else {
            return false;
        }
    }
}

}  // namespace kesta
