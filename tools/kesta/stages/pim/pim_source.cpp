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

    /// For what does not say when it was changed.
    void setFileTime(std::optional<LocalTime> time) { fileTime_ = time; }
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

PimSourceFolder& AddContactsFolder(PimSource& source, std::string name)
{
    PimSourceFolder& folder = source.folders.emplace_back();
    folder.id = PimFolderId(source.id, {});
    folder.name = std::move(name);
    return folder;
}

formats::Problems ReadContacts(std::string_view contents, FolderFiller& filler)
{
    // There is no other way to write an address book without entries down.
    if (formats::Trimmed(formats::WithoutByteOrderMark(contents)).empty()) {
        return {};
    }
    formats::Cards read = formats::ParseCards(contents);
    for (formats::Card& card : read.cards) {
        filler.add(card.uid, std::move(card.bytes), std::move(card.digest), card.revised);
    }
    return std::move(read.problems);
}

formats::Problems ReadCalendar(std::string_view contents, std::optional<LocalTime> modified, PimSource& source)
{
    formats::Calendars read = formats::ParseCalendars(contents);
    source.leftOut += read.unknownParts;
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

struct SteadyFile {
    os::Status status;
    bool isSteady = false;  // nothing was written to it meanwhile
    std::string contents;
    std::optional<LocalTime> modified;
};

// What changes meanwhile is read once more.
SteadyFile ReadSteadily(const std::string& path)
{
    SteadyFile file;
    os::FileInfo before, after;
    for (int attempt = 0; attempt < 2 && !file.isSteady; ++attempt) {
        file.status = os::ReadInfo(path, before);
        if (file.status.ok() && before.kind != os::FileKind::kFile) {
            file.status = {os::Failure::kOther, "it is not a file"};
        }
        if (file.status.ok()) {
            file.status = os::ReadText(path, file.contents);
        }
        if (file.status.ok()) {
            file.status = os::ReadInfo(path, after);
        }
        if (!file.status.ok()) {
            return file;
        }
        file.isSteady =
            before.size == after.size && before.modified == after.modified && file.contents.size() == after.size;
    }
    file.modified = os::ToLocalTime(after.modified.seconds);
    return file;
}

constexpr const char* kBeingWritten = "it is being written";

// Each card in a file of its own, as address books that are kept in folders have it.
PimSource ReadContactsFolder(PimSource source)
{
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(source.path, entries); !status.ok()) {
        source.problem = "it cannot be read: " + status.text();
        return source;
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    source.readable = true;
    std::string firstProblem;
    size_t problems = 0;
    const auto tell = [&](const std::string& name, const std::string& problem) {
        firstProblem = problems == 0 ? fmt::format("{}: {}", name, problem) : firstProblem;
        ++problems;
    };
    FolderFiller filler(AddContactsFolder(source, os::NameOf(source.path)), std::nullopt);
    for (const os::DirectoryEntry& entry : entries) {
        if (!formats::ToUpper(entry.name).ends_with(".VCF")) {
            source.leftOut += entry.name.starts_with('.') ? 0u : 1u;
            continue;
        }
        const SteadyFile file = ReadSteadily(os::Join(source.path, entry.name));
        if (!file.status.ok()) {
            tell(entry.name, "it cannot be read: " + file.status.text());
            continue;
        }
        if (!file.isSteady) {
            tell(entry.name, kBeingWritten);
        }
        filler.setFileTime(file.modified);
        if (const formats::Problems wrong = ReadContacts(file.contents, filler); !wrong.empty()) {
            tell(entry.name, Describe(wrong));
        }
    }
    source.complete = problems == 0;
    source.problem = problems > 1 ? fmt::format("{} (and {} more files)", firstProblem, problems - 1) : firstProblem;
    return source;
}

}  // namespace

PimSource MakePimSource(PimKind kind, const std::string& canonicalPath, std::string_view contents,
                        std::optional<LocalTime> modified)
{
    PimSource source{canonicalPath, PimSourceId(kind, canonicalPath), true, false, {}, {}, 0};
    formats::Problems problems;
    if (kind == PimKind::kContacts) {
        FolderFiller filler(AddContactsFolder(source, NameWithoutExtension(canonicalPath)), modified);
        problems = ReadContacts(contents, filler);
    } else {
        problems = ReadCalendar(contents, modified, source);
    }
    source.complete = problems.empty();
    if (!source.complete) {
        source.problem = Describe(problems);
    }
    return source;
}

PimSource ReadPimSource(PimKind kind, const std::string& canonicalPath)
{
    PimSource unreadable{canonicalPath, PimSourceId(kind, canonicalPath), false, false, {}, {}, 0};
    if (os::FileInfo info;
        kind == PimKind::kContacts && os::ReadInfo(canonicalPath, info).ok() && info.kind == os::FileKind::kDirectory) {
        return ReadContactsFolder(std::move(unreadable));
    }
    const SteadyFile file = ReadSteadily(canonicalPath);
    if (!file.status.ok()) {
        unreadable.problem = "it cannot be read: " + file.status.text();
        return unreadable;
    }
    PimSource source = MakePimSource(kind, canonicalPath, file.contents, file.modified);
    if (!file.isSteady) {
        source.complete = false;
        source.problem = kBeingWritten;
    }
    return source;
}

}  // namespace kesta
