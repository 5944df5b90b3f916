#include "stages/media/file_filter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "base/glob.h"
#include "os/files.h"
#include "stages/media/file_kinds.h"

namespace kesta {
namespace {

// What systems and programs leave about, and what is not finished.
constexpr std::array<std::string_view, 24> kJunk{".DS_Store",
                                                 "._*",
                                                 ".AppleDouble",
                                                 ".Spotlight-V100",
                                                 ".Trashes",
                                                 ".fseventsd",
                                                 "Thumbs.db",
                                                 "ehthumbs.db",
                                                 "desktop.ini",
                                                 "$RECYCLE.BIN",
                                                 "System Volume Information",
                                                 ".directory",
                                                 ".Trash-*",
                                                 "*.part",
                                                 "*.partial",
                                                 "*.crdownload",
                                                 "*.download",
                                                 "~$*",
                                                 ".~lock.*",
                                                 ".git",
                                                 ".svn",
                                                 ".hg",
                                                 "@eaDir",
                                                 kIgnoreFileName};

std::string_view NameIn(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

// The part of the path below the folder; std::nullopt if it does not lie there.
std::optional<std::string_view> Below(std::string_view folder, std::string_view path)
{
    if (folder.empty()) {
        return path;
    }
    if (path.size() <= folder.size() || !path.starts_with(folder) || path[folder.size()] != '/') {
        return std::nullopt;
    }
    return path.substr(folder.size() + 1);
}

bool FitsExactly(std::string_view glob, std::string_view path, bool isFolder)
{
    if (glob.ends_with('/')) {
        if (!isFolder) {
            return false;
        }
        glob.remove_suffix(1);
    }
    if (glob.find('/') == std::string_view::npos) {
        return MatchesGlob(glob, NameIn(path));
    }
    glob.remove_prefix(glob.starts_with('/') ? 1 : 0);
    return MatchesGlob(glob, path);
}

// Calls for the path and every folder above it, from the outermost one, until the answer is true.
template <class Visit>
bool AnyOfPath(std::string_view path, bool isFolder, const Visit& visit)
{
    for (size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/', slash + 1)) {
        if (visit(path.substr(0, slash), true)) {
            return true;
        }
    }
    return visit(path, isFolder);
}

bool Fits(std::string_view glob, std::string_view path, bool isFolder)
{
    return AnyOfPath(path, isFolder,
                     [&](std::string_view part, bool isPartFolder) { return FitsExactly(glob, part, isPartFolder); });
}

// Takes the verdict of rules about what lies below the folder.
template <class Describe>
void Apply(const std::vector<FilterRule>& rules, std::string_view path, bool isFolder, const Describe& describe,
           std::optional<LeftOut>& verdict)
{
    for (const FilterRule& rule : rules) {
        if (!Fits(rule.glob, path, isFolder)) {
            continue;
        }
        verdict = rule.isInclude ? std::nullopt : std::optional(LeftOut{LeftOut::Reason::kRule, describe(rule.glob)});
    }
}

}  // namespace

void FileFilter::addIgnoreFile(const std::string& folder, std::string_view text)
{
    std::vector<FilterRule>& rules = ofFolders_[folder];
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) {
            line.remove_suffix(1);
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const bool isInclude = line.front() == '!';
        line.remove_prefix(isInclude || line.starts_with("\\#") || line.starts_with("\\!") ? 1 : 0);
        if (!line.empty() && line != "/") {
            rules.push_back({isInclude, std::string(line)});
        }
    }
}

std::optional<LeftOut> FileFilter::judge(std::string_view path, bool isFolder) const
{
    std::optional<LeftOut> verdict;
    const auto applyRules = [&](std::string_view subject, bool isSubjectFolder) {
        for (const auto& [folder, rules] : ofFolders_) {
            if (const auto below = Below(folder, subject)) {
                const std::string where = folder.empty() ? std::string() : " in " + folder;
                Apply(
                    rules, *below, isSubjectFolder,
                    [&](const std::string& glob) { return fmt::format("{}{}: {}", kIgnoreFileName, where, glob); },
                    verdict);
            }
        }
        Apply(
            given_, subject, isSubjectFolder, [](const std::string& glob) { return "--exclude " + glob; }, verdict);
    };
    // Junk stays unless a rule includes the very thing: "*.cue" is not meant to bring in what .git holds.
    const bool isJunk = AnyOfPath(path, isFolder, [&](std::string_view part, bool isPartFolder) {
        const auto junk = std::find_if(kJunk.begin(), kJunk.end(),
                                       [&](std::string_view glob) { return MatchesGlob(glob, NameIn(part)); });
        if (junk == kJunk.end()) {
            return false;
        }
        verdict = LeftOut{LeftOut::Reason::kJunk, fmt::format("{} is junk", *junk)};
        applyRules(part, isPartFolder);
        return verdict.has_value();
    });
    if (isJunk) {
        return verdict;
    }
    verdict.reset();
    if (!isFolder && !IsKindOf(category_, NameIn(path))) {
        verdict =
            LeftOut{LeftOut::Reason::kKind, fmt::format("it is not one of the kinds of files of {}", KeyOf(category_))};
    }
    applyRules(path, isFolder);
    return verdict;
}

std::optional<LeftOut> FileFilter::leftOut(std::string_view path) const
{
    return judge(path, false);
}

std::optional<LeftOut> FileFilter::prunes(std::string_view folder) const
{
    auto verdict = judge(folder, true);
    if (!verdict || verdict->reason == LeftOut::Reason::kJunk) {
        return verdict;
    }
    // A rule that brings something back may be about what lies deeper.
    const auto isInclude = [](const FilterRule& rule) { return rule.isInclude; };
    const bool mayComeBack = std::any_of(given_.begin(), given_.end(), isInclude) ||
                             std::any_of(ofFolders_.begin(), ofFolders_.end(), [&](const auto& ofFolder) {
                                 return std::any_of(ofFolder.second.begin(), ofFolder.second.end(), isInclude);
                             });
    return mayComeBack ? std::nullopt : verdict;
}

std::string RelativeTo(std::string_view folder, std::string_view path)
{
    std::string relative(path.substr(folder.size()));
    std::replace(relative.begin(), relative.end(), os::kSeparator, '/');
    return relative.starts_with('/') ? relative.substr(1) : relative;
}

FileFilter FilterFor(Category category, std::vector<FilterRule> given, std::string_view path,
                     const std::function<bool(const std::string& relative, std::string& text)>& readText)
{
    FileFilter filter(category, std::move(given));
    std::string folder;
    for (size_t begin = 0;;) {
        std::string text;
        if (readText(folder.empty() ? std::string(kIgnoreFileName) : fmt::format("{}/{}", folder, kIgnoreFileName),
                     text)) {
            filter.addIgnoreFile(folder, text);
        }
        const size_t slash = path.find('/', begin);
        if (slash == std::string_view::npos) {
            return filter;
        }
        folder = path.substr(0, slash);
        begin = slash + 1;
    }
}

}  // namespace kesta
