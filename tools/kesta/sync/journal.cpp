#include "sync/journal.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "formats/digest.h"
#include "phone/move_file.h"
#include "phone/names.h"
#include "phone/phone_layout.h"
#include "phone/put_text.h"
#include "sync/placed_note.h"

namespace kesta {
namespace {

constexpr char kDigestFollows = '\t';  // no path on a phone holds it

std::string JournalPath(const PhoneFolder& phone)
{
    return phone.native(std::string(kJournalName));
}

os::Status RemoveJournal(const PhoneFolder& phone)
{
    return os::RemoveFileIfThere(JournalPath(phone));
}

bool IsOfJournal(const std::string& line)
{
    return IsPhonePath(line, kPlaylistFolder) || IsPhonePath(line, kBookmarkFolder) ||
           std::any_of(kCategories.begin(), kCategories.end(), [&](Category c) { return IsPhonePath(line, c); });
}

// Files under temporary names of their own.
void FindCopiedAhead(const std::string& folder, Leftovers& leftovers)
{
    std::vector<os::DirectoryEntry> entries;
    (void)os::ListDirectory(folder, entries);  // It may not have been made yet.
    const std::string prefix = std::string(kTemporaryName) + '-';
    for (const os::DirectoryEntry& entry : entries) {
        if (entry.valid && entry.name.starts_with(prefix)) {
            leftovers.temporaryFiles.push_back(os::Join(folder, entry.name));
        }
    }
}

// What files are known to have been on their way, and those of them that lie there unrecorded: one of another size is
// somebody else's.
os::Status FindPlaced(const PhoneFolder& phone, const std::unordered_set<std::string>& recorded,
                      std::set<std::string>& noted, std::set<std::string>& placed, Leftovers& leftovers)
{
    PlacedNotes notes;
    if (os::Status status = ReadPlacedNotes(phone, notes); !status.ok()) {
        return status;
    }
    for (const std::string& name : notes.names) {
        leftovers.notes.push_back(phone.native(name));
    }
    for (const PlacedFile& file : notes.files) {
        if (!IsOfJournal(file.phonePath) || recorded.contains(file.phonePath)) {
            continue;
        }
        noted.insert(file.phonePath);
        const PhoneFile there = phone.find(file.phonePath);
        if (there.entry == PhoneEntry::kFile && (!file.size || there.size == *file.size)) {
            placed.insert(file.phonePath);
        }
    }
    return {};
}

}  // namespace

std::string JournalLine(const Change& change)
{
    const bool isText = change.isToWrite() && change.pcFile.empty();
    return isText ? change.phonePath + kDigestFollows + formats::Digest(change.text) : change.phonePath;
}

void PhoneJournal::begin(const std::vector<std::string>& phonePaths)
{
    std::string text;
    for (const std::string& path : phonePaths) {
        text += path + '\n';
    }
    const os::Status status = PutText({.target = JournalPath(phone_), .text = text, .abilities = phone_.abilities()});
    hasBegun_ = status.ok();
    if (hasBegun_) {
        return;
    }
    report_.fail(std::string(kJournalName), "it cannot be written to the phone: " + status.text());
    throw phone_.whyNothingCanBeWritten(status).value_or(StopRun(ExitCode::kFailure, "the phone cannot be written"));
}

void PhoneJournal::end(bool isInOrder)
{
    // What a run leaves behind the next one finds by it.
    if (!std::exchange(hasBegun_, false) || !isInOrder || !phone_.isStillThere()) {
        return;
    }
    if (os::Status status = RemoveJournal(phone_); !status.ok()) {
        report_.fail(std::string(kJournalName), "it cannot be removed from the phone: " + status.text());
    }
}

os::Status FindLeftovers(const PhoneFolder& phone, const std::vector<std::string>& recordedPaths, Leftovers& leftovers)
{
    std::string text;
    std::set<std::string> folders{phone.root()};
    if (os::Status status = os::ReadText(JournalPath(phone), text); status.ok()) {
        leftovers.journalFound = true;
    } else if (status.failure() != os::Failure::kMissing) {
        return status;
    }

    const std::unordered_set<std::string> recorded(recordedPaths.begin(), recordedPaths.end());
    std::set<std::string> noted;
    std::set<std::string> placed;
    if (os::Status status = FindPlaced(phone, recorded, noted, placed, leftovers); !status.ok()) {
        return status;
    }
    // A journal that was cut short is of a run that had not copied anything; its last line may name any file.
    std::istringstream lines(text.substr(0, text.rfind('\n') + 1));
    for (std::string line; std::getline(lines, line);) {
        const auto tab = line.find(kDigestFollows);
        const std::string digest = tab == std::string::npos ? std::string() : line.substr(tab + 1);
        line.erase(std::min(tab, line.size()));
        if (!digest.empty()) {
            leftovers.digests[line] = digest;
        }
        if (!IsOfJournal(line)) {
            continue;
        }
        folders.insert(os::ParentOf(phone.native(line)));
        leftovers.foldersOf.push_back(line);
        if (!noted.contains(line) && phone.find(line).entry == PhoneEntry::kFile) {
            (recorded.contains(line) ? leftovers.recordedFiles : leftovers.unknownFiles).push_back(line);
        }
    }
    bool wasCopying = false;
    for (const std::string& folder : folders) {
        const std::string path = os::Join(folder, kTemporaryName);
        os::FileInfo info;
        if (os::ReadInfoOfLink(path, info).ok()) {
            leftovers.temporaryFiles.push_back(path);
            wasCopying = true;
        }
        if (leftovers.journalFound) {
            FindCopiedAhead(folder, leftovers);
        }
    }
    // A killed run leaves at most one without a note, and none if it was still copying. More mean that these are not
    // the database the files were recorded in, or that the user has put files there: they stay, and planning takes
    // those in that are what the PC has.
    if (leftovers.unknownFiles.size() > 1 || wasCopying) {
        leftovers.unknownFiles.clear();
    }
    leftovers.unknownFiles.insert(leftovers.unknownFiles.end(), placed.begin(), placed.end());
    leftovers.isMoveUnfinished = IsMoveUnfinished(phone);
    return {};
}

os::Status RemoveLeftovers(PhoneFolder& phone, const Leftovers& leftovers)
{
    if (os::Status status = UndoUnfinishedMove(phone); !status.ok()) {
        return status;
    }
    for (const std::string& path : leftovers.temporaryFiles) {
        if (os::Status status = os::RemoveFile(path); !status.ok()) {
            return status;
        }
    }
    for (const std::string& path : leftovers.unknownFiles) {
        if (os::Status status = phone.removeFile(path); !status.ok()) {
            return status;
        }
    }
    for (const std::string& path : leftovers.foldersOf) {
        if (os::Status status = phone.tidyAbove(path); !status.ok()) {
            return status;
        }
    }
    for (const std::string& note : leftovers.notes) {
        if (os::Status status = os::RemoveFileIfThere(note); !status.ok()) {
            return status;
        }
    }
    return leftovers.journalFound ? RemoveJournal(phone) : os::Status();
}

}  // namespace kesta
