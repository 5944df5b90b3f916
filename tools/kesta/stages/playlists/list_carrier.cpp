#include "stages/playlists/list_carrier.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/names.h"
#include "os/system.h"
#include "phone/phone_failure.h"
#include "phone/phone_layout.h"
#include "sync/journal.h"

namespace kesta {
namespace {

bool HasFiles(const RecordedPlaylist& list, const std::vector<RecordedFile>& files)
{
    return std::any_of(files.begin(), files.end(),
                       [&](const RecordedFile& file) { return file.basePath == list.name; });
}

// For a list that could not be read completely what it lacks counts as a member still.
std::vector<std::string> MembersToRecord(const PcPlaylist& list, const std::vector<std::string>& former)
{
    std::vector<std::string> names = MemberNames(list);
    if (list.complete) return names;
    const std::set<std::string> present(names.begin(), names.end());
    for (const std::string& name : former)
        if (!present.contains(name)) names.push_back(name);
    return names;
}

}  // namespace

std::vector<ListWork> ListCarrier::findWork(const PlaylistPlan& plan, const std::vector<RecordedPlaylist>& recorded,
                                            const std::function<std::string(const ListMember&)>& placeOf)
{
    PhonePaths places(std::string(kPlaylistFolder), phone_);
    std::map<std::string, std::string> placeOfList;
    for (const RecordedPlaylist& list : recorded) {
        const std::string place = PhonePathOfList(list);
        const bool leaves = std::find(plan.leaving.begin(), plan.leaving.end(), &list) != plan.leaving.end();
        if (place.empty() || leaves || !places.reserve(place)) continue;
        placeOfList.emplace(list.name, place);
        placesInUse_.insert(CaseKey(place));
    }
    std::vector<ListWork> all;
    for (const ListToBring& bring : plan.lists) {
        std::optional<ListText> contents = MakeListText(*bring.list, placeOf);
        if (!contents) {
            summary_.fail(bring.list->path, "an entry cannot be written to a playlist");
            continue;
        }
        ListWork work{bring, *std::move(contents), {}, false, false};
        if (const auto own = placeOfList.find(bring.list->name); own != placeOfList.end()) {
            work.place = own->second;
            if (isOnPhone(work)) {
                ++counts_.unchanged;
                continue;
            }
            if (phone_.find(work.place).entry == PhoneEntry::kOther) work.place.clear();
        }
        if (work.place.empty()) {
            const auto isSame = [&](const std::string& place, const PhoneFile& there) {
                std::string text;
                return there.entry == PhoneEntry::kFile && there.size == work.contents.text.size() &&
                       os::ReadText(phone_.native(place), text).ok() && text == work.contents.text;
            };
            const auto found = places.allocate({bring.list->name + ".m3u8"}, bring.list->name, isSame);
            work.place = found.phonePath;
            work.isThere = found.sameFileIsThere;
            work.isNew = true;
            placesInUse_.insert(CaseKey(work.place));
        }
        all.push_back(std::move(work));
    }
    return all;
}

bool ListCarrier::isOnPhone(const ListWork& work) const
{
    const RecordedPlaylist& record = *work.bring.record;
    if (record.state != PlaylistState::kCurrent || record.digest != work.contents.digest) return false;
    const PhoneFile there = phone_.find(work.place);
    return there.entry == PhoneEntry::kFile && there.size == work.contents.text.size();
}

bool ListCarrier::mayGoOn()
{
    if (os::Interrupted()) summary_.stopWith(ExitCode::kInterrupted, "interrupted");
    if (!summary_.stopped() && !phone_.isStillThere()) summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
    if (summary_.stopped()) ++summary_.notReached;
    return !summary_.stopped();
}

bool ListCarrier::requireDatabase(std::int32_t code, const std::string& name, const char* what)
{
    if (code == 0) return true;
    summary_.fail(name, fmt::format("{}: {}", what, ResultText(code)));
    summary_.stopWith(ExitCode::kDatabase, "the database cannot be written");
    return false;
}

bool ListCarrier::write(const std::vector<ListWork>& all,
                        const std::map<std::string, std::vector<std::string>>& members)
{
    if (all.empty()) return true;
    std::vector<std::string> places;
    places.reserve(all.size());
    for (const ListWork& work : all) places.push_back(work.place);
    if (os::Status status = WriteJournal(phone_, places); !status.ok()) {
        summary_.fail(std::string(kJournalName), "it cannot be written to the phone: " + status.text());
        StopOnPhoneFailure(phone_, status, summary_);
        summary_.stopWith(ExitCode::kFailure, "the phone cannot be written");
        return false;
    }
    bool allWritten = true;
    for (const ListWork& work : all) {
        const auto former = members.find(work.bring.list->name);
        const bool written =
            mayGoOn() && writeOne(work, former == members.end() ? std::vector<std::string>() : former->second);
        allWritten = allWritten && written;
    }
    if (summary_.stop == ExitCode::kPhoneGone || summary_.stop == ExitCode::kDatabase) return false;
    if (os::Status status = RemoveJournal(phone_); !status.ok())
        summary_.fail(std::string(kJournalName), "it cannot be removed from the phone: " + status.text());
    return allWritten;
}

bool ListCarrier::writeOne(const ListWork& work, const std::vector<std::string>& formerMembers)
{
    if (!work.isThere) {
        os::Status status = phone_.makeFolders(work.place);
        const std::string temporary = phone_.native(fmt::format("{}/{}", kPlaylistFolder, kTemporaryName));
        if (status.ok()) status = os::WriteText(phone_.native(work.place), temporary, work.contents.text);
        if (!status.ok()) {
            summary_.fail(work.bring.list->path, "the list cannot be written to the phone: " + status.text());
            StopOnPhoneFailure(phone_, status, summary_);
            return false;
        }
    }
    if (!requireDatabase(record(work, formerMembers), work.bring.list->path,
                         "the list cannot be recorded in the database"))
        return false;
    const bool wasOnPhone = work.bring.record->idInPhone.has_value();
    ++(wasOnPhone ? counts_.updated : counts_.added);
    progress_.endFile(wasOnPhone ? "updated" : work.isThere ? "recorded" : "added", work.place, 0);
    return true;
}

// The digest comes last: it says that everything before it has been done.
std::int32_t ListCarrier::record(const ListWork& work, const std::vector<std::string>& formerMembers)
{
    const std::string& name = work.bring.list->name;
    const std::vector<std::string> names = MembersToRecord(*work.bring.list, formerMembers);
    if (const std::int32_t code = database_.setMembers(name, names); code != 0) return code;
    // The library does not say whether each name was taken.
    const std::vector<std::string> stored = database_.members(name);
    if (std::set<std::string>(stored.begin(), stored.end()) != std::set<std::string>(names.begin(), names.end()))
        return 1;
    const std::int32_t code = work.isNew ? database_.setAdded(name, work.place) : database_.setUpdated(name);
    if (code != 0) return code;
    RecordedPlaylist record = *work.bring.record;
    record.digest = work.contents.digest;
    return database_.confirm(record);
}

void ListCarrier::remove(const std::vector<const RecordedPlaylist*>& leaving, const std::vector<RecordedFile>& files)
{
    for (const RecordedPlaylist* list : leaving)
        if (mayGoOn() && !HasFiles(*list, files)) removeOne(*list);
}

void ListCarrier::removeOne(const RecordedPlaylist& list)
{
    const std::string place = PhonePathOfList(list);
    if (!place.empty() && !placesInUse_.contains(CaseKey(place))) {
        if (os::Status status = phone_.removeFile(place); !status.ok()) {
            summary_.fail(place, "it cannot be removed from the phone: " + status.text());
            return StopOnPhoneFailure(phone_, status, summary_);
        }
    }
    std::int32_t code = database_.setMembers(list.name, {});
    if (code == 0) code = database_.setDeleted(list.name);
    if (!requireDatabase(code, list.name, "the playlist cannot be removed from the database")) return;
    if (!list.idInPhone) return;
    ++counts_.removed;
    progress_.endFile("removed", place.empty() ? list.name : place, 0);
}

void ListCarrier::forget(const std::vector<const RecordedPlaylist*>& lists, const std::vector<RecordedFile>& files)
{
    for (const RecordedPlaylist* list : lists) {
        if (!mayGoOn() || HasFiles(*list, files)) continue;
        std::int32_t code = database_.setMembers(list->name, {});
        if (code == 0) code = database_.forget(list->name);
        if (!requireDatabase(code, list->name, "the playlist cannot be removed from the database")) return;
    }
}

}  // namespace kesta
