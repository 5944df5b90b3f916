#include "stages/pim/pim_source.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_map>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/icalendar.h"
#include "formats/vcard.h"
#include "os/files.h"
#include "os/local_time.h"

namespace kesta {
namespace {

std::string NameWithoutExtension(const std::string& path)
{
    const std::string name = os::NameOf(path);
    const auto dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

std::string Describe(const formats::Problems& problems)
{
    const formats::Problem& first = problems.front();
    std::string text = first.line > 0 ? fmt::format("line {}: {}", first.line, first.text) : first.text;
    if (problems.size() > 1) {
        text += fmt::format(" (and {} more)", problems.size() - 1);
    }
    return text;
}

// Fills a folder with entries, each under an id of its own.
class FolderFiller {
public:
    FolderFiller(PimSourceFolder& folder, std::optional<LocalTime> fileTime) : folder_(folder), fileTime_(fileTime) {}

    void add(std::string_view uid, std::string bytes, std::string digest, const std::optional<int64_t>& modifiedUtc)
    {
        const size_t copy = ++copies_[std::string(uid)];
        std::optional<LocalTime> modified = modifiedUtc ? os::ToLocalTime(*modifiedUtc) : std::nullopt;
        if (!modified) {
            modified = fileTime_;
        }
        folder_.entries.push_back({PimEntryId(folder_.id, uid, copy), std::move(bytes), std::move(digest), modified});
    }

private:
    PimSourceFolder& folder_;
    std::optional<LocalTime> fileTime_;
    std::map<std::string, size_t> copies_;
};

formats::Problems ReadContacts(std::string_view contents, std::optional<LocalTime> modified, PimSource& source)
{
    PimSourceFolder& folder = source.folders.emplace_back();
    folder.id = PimFolderId(source.id, {});
    folder.name = NameWithoutExtension(source.path);
    // There is no other way to write an address book without entries down.
    if (formats::Trimmed(formats::WithoutByteOrderMark(contents)).empty()) {
        return {};
    }
    formats::Cards read = formats::ParseCards(contents);
    FolderFiller filler(folder, modified);
    for (formats::Card& card : read.cards) {
        filler.add(card.uid, std::move(card.bytes), std::move(card.digest), card.revised);
    }
    return std::move(read.problems);
}

formats::Problems ReadCalendar(std::string_view contents, std::optional<LocalTime> modified, PimSource& source)
{
    formats::Calendars read = formats::ParseCalendars(contents);
    for (const std::string& name : read.names) {
        source.folders.push_back(
            {PimFolderId(source.id, name), name.empty() ? NameWithoutExtension(source.path) : name, {}});
    }
    std::unordered_map<std::string_view, FolderFiller> fillers;
    for (size_t i = 0; i < read.names.size(); ++i) {
        fillers.try_emplace(read.names[i], source.folders[i], modified);
    }
    for (formats::CalendarEntry& entry : read.entries) {
        const auto filler = fillers.find(entry.calendar);
        if (filler == fillers.end()) {
            continue;
        }
        filler->second.add(entry.uid, std::move(entry.bytes), std::move(entry.digest), entry.modified);
    }
    return std::move(read.problems);
}

}  // namespace

PimSource MakePimSource(PimKind kind, const std::string& canonicalPath, std::string_view contents,
                        std::optional<LocalTime> modified)
{
    PimSource source{canonicalPath, PimSourceId(kind, canonicalPath), true, false, {}, {}};
    const formats::Problems problems = kind == PimKind::kContacts ? ReadContacts(contents, modified, source)
                                                                  : ReadCalendar(contents, modified, source);
    source.complete = problems.empty();
    if (!source.complete) {
        source.problem = Describe(problems);
    }
    return source;
}

PimSource ReadPimSource(PimKind kind, const std::string& canonicalPath)
{
    PimSource unreadable{canonicalPath, PimSourceId(kind, canonicalPath), false, false, {}, {}};
    bool isSteady = false;
    std::string contents;
    os::FileInfo before, after;
    for (int attempt = 0; attempt < 2 && !isSteady; ++attempt) {
        os::Status status = os::ReadInfo(canonicalPath, before);
        if (status.ok() && before.kind != os::FileKind::kFile) {
            status = {os::Failure::kOther, "it is not a file"};
        }
        if (status.ok()) {
            status = os::ReadText(canonicalPath, contents);
        }
        if (status.ok()) {
            status = os::ReadInfo(canonicalPath, after);
        }
        if (!status.ok()) {
            unreadable.problem = "it cannot be read: " + status.text();
            return unreadable;
        }
        isSteady = before.size == after.size && before.modified == after.modified && contents.size() == after.size;
    }
    PimSource source = MakePimSource(kind, canonicalPath, contents, os::ToLocalTime(after.modified.seconds));
    if (isSteady) {
        return source;
    }
    source.complete = false;
    source.problem = "it is being written";
    return source;
}

}  // namespace kesta
