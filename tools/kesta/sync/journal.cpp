#include "sync/journal.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "formats/digest.h"
#include "phone/names.h"
#include "phone/phone_layout.h"

namespace kesta {
namespace {

constexpr char kDigestFollows = '\t';  // no path on a phone holds it

std::string JournalPath(const PhoneFolder& phone)
{
    return phone.native(std::string(kJournalName));
}

os::Status RemoveJournal(const PhoneFolder& phone)
{
    os::Status status = os::RemoveFile(JournalPath(phone));
    return status.failure() == os::Failure::kMissing ? os::Status() : status;
}

bool IsOfJournal(const std::string& line)
{
    return IsPhonePath(line, kPlaylistFolder) || IsPhonePath(line, kBookmarkFolder) ||
           std::any_of(kCategories.begin(), kCategories.end(), [&](Category c) { return IsPhonePath(line, c); });
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
    const os::Status status = os::WriteText(JournalPath(phone_), phone_.native(std::string(kTemporaryName)), text);
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
    std::istringstream lines(text);
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
        if (phone.find(line).entry == PhoneEntry::kFile) {
            (recorded.contains(line) ? leftovers.recordedFiles : leftovers.unknownFiles).push_back(line);
        }
    }
    for (const std::string& folder : folders) {
        const std::string path = os::Join(folder, kTemporaryName);
        os::FileInfo info;
        if (os::ReadInfoOfLink(path, info).ok()) {
            leftovers.temporaryFiles.push_back(path);
        }
    }
    // A killed run leaves at most one, and none if it was still copying. More mean that these are not the database
    // the files were recorded in, or that the user has put files there: they stay, and planning takes those in that are
    // what the PC has.
    if (leftovers.unknownFiles.size() > 1 || !leftovers.temporaryFiles.empty()) {
        leftovers.unknownFiles.clear();
    }
    return {};
}

os::Status RemoveLeftovers(PhoneFolder& phone, const Leftovers& leftovers)
{
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
    return leftovers.journalFound ? RemoveJournal(phone) : os::Status();
}

}  // namespace kesta
