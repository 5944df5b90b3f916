#include "stages/playlists/list_changes.h"

#include <algorithm>

#include "phone/names.h"
#include "phone/phone_layout.h"

namespace kesta {
namespace {

// For a list that could not be read completely what it lacks counts as a member still.
std::vector<std::string> MembersToRecord(const PcPlaylist& list, const std::vector<std::string>& former)
{
    std::vector<std::string> names = MemberNames(list);
    if (list.complete) {
        return names;
    }
    const std::set<std::string> present(names.begin(), names.end());
    for (const std::string& name : former) {
        if (!present.contains(name)) {
            names.push_back(name);
        }
    }
    return names;
}

// The digest comes last: it says that everything before it has been done.
void RecordList(kesta_db::Playlists& records, const RecordedPlaylist& list, const std::vector<std::string>& members,
                const std::optional<std::string>& newPath)
{
    records.setMembers(list.name, members);
    if (newPath) {
        records.setAdded(list.name, *newPath);
    } else {
        records.setUpdated(list.name);
    }
    records.confirm(list);
}

}  // namespace

void ListChanges::add()
{
    findWork();
    const std::set<std::string> waiting = listsWithFiles();
    for (const RecordedPlaylist* list : state_.plan.obsolete) {
        if (!waiting.contains(list->name)) {
            addRemoval(*list);
        }
    }
    for (const RecordedPlaylist* list : state_.plan.forgotten) {
        if (!waiting.contains(list->name)) {
            addForgetting(*list);
        }
    }
    for (const Work& work : work_) {
        plan_.add(toChange(work));
    }
}

// The library forgets a list's files with the list, so a list waits for the next run until they are gone.
std::set<std::string> ListChanges::listsWithFiles() const
{
    std::set<std::string> lists;
    for (const FileChange& removal : state_.plan.superseded.removals) {
        lists.insert(removal.file.basePath);
    }
    for (const FileChange& removal : state_.plan.files.removals) {
        if (!removal.file.phonePath.empty() && phone_.find(removal.file.phonePath).entry == PhoneEntry::kFile) {
            lists.insert(removal.file.basePath);
        }
    }
    return lists;
}

std::string ListChanges::pathOf(const ListMember& member) const
{
    if (std::string path = PathInMedia(member, state_.media, phone_); !path.empty()) {
        return path;
    }
    const auto own = state_.plan.phonePaths.find(member.path);
    const bool isThere = own != state_.plan.phonePaths.end() && phone_.find(own->second).entry == PhoneEntry::kFile;
    return isThere ? own->second : std::string();
}

void ListChanges::findWork()
{
    std::map<std::string, std::string> pathOfList;
    const auto& leaving = state_.plan.obsolete;
    for (const RecordedPlaylist& list : state_.recorded) {
        const std::string path = PhonePathOfList(list);
        const bool leaves = std::find(leaving.begin(), leaving.end(), &list) != leaving.end();
        if (path.empty() || leaves || !paths_.reserve(path)) {
            continue;
        }
        pathOfList.emplace(list.name, path);
        pathsInUse_.insert(CaseKey(path));
    }
    for (const ListToBring& bring : state_.plan.lists) {
        std::optional<ListText> contents =
            MakeListText(*bring.list, [this](const ListMember& member) { return pathOf(member); });
        if (!contents) {
            report_.fail(bring.list->path, "an entry cannot be written to a playlist");
            continue;
        }
        Work work{&bring, *std::move(contents), {}, {}, false, false};
        if (const auto own = pathOfList.find(bring.list->name); own != pathOfList.end()) {
            work.phonePath = own->second;
            if (isOnPhone(work)) {
                ++plan_.found.unchanged;
                continue;
            }
            if (phone_.find(work.phonePath).entry == PhoneEntry::kOther) {
                work.phonePath.clear();
            } else {
                work.keepAs = keptPathOf(work.phonePath);
            }
        }
        if (work.phonePath.empty()) {
            const auto isSame = [&](const std::string& path, const PhoneFile& there) {
                return there.entry == PhoneEntry::kFile && there.size == work.contents.text.size() &&
                       phone_.holds(path, work.contents.text);
            };
            const auto found = paths_.allocate({bring.list->name + ".m3u8"}, bring.list->name, isSame);
            work.phonePath = found.phonePath;
            work.isThere = found.sameFileIsThere;
            work.isNew = true;
            pathsInUse_.insert(CaseKey(work.phonePath));
        }
        work_.push_back(std::move(work));
    }
}

std::string ListChanges::keptPathOf(const std::string& phonePath)
{
    const bool isChanged = changes_.isChanged(phonePath, phone_.find(phonePath));
    return isChanged ? paths_.allocateBeside(phonePath) : std::string();
}

bool ListChanges::isOnPhone(const Work& work) const
{
    const RecordedPlaylist& record = *work.bring->record;
    if (record.state != PlaylistState::kCurrent || record.digest != work.contents.digest) {
        return false;
    }
    const PhoneFile there = phone_.find(work.phonePath);
    return there.entry == PhoneEntry::kFile && there.size == work.contents.text.size() &&
           (!changes_.isChanged(work.phonePath, there) || phone_.holds(work.phonePath, work.contents.text));
}

Change ListChanges::toChange(const Work& work)
{
    const PcPlaylist& list = *work.bring->list;
    const bool wasOnPhone = work.bring->record->idInPhone.has_value();
    Change change;
    change.kind = work.isThere ? ChangeKind::kAdopt : work.isNew ? ChangeKind::kPut : ChangeKind::kReplace;
    change.phonePath = work.phonePath;
    change.keepAs = work.keepAs;
    change.subject = list.path;
    change.text = work.contents.text;
    change.size = change.text.size();
    change.verb = wasOnPhone ? kUpdated : work.isThere ? kRecorded : kAdded;
    (wasOnPhone ? change.counts.updated : change.counts.added) = 1;
    const auto former = state_.members.find(list.name);
    RecordedPlaylist record = *work.bring->record;
    record.digest = work.contents.digest;
    change.record =
        [records = &state_.records, record,
         members = MembersToRecord(list, former == state_.members.end() ? std::vector<std::string>() : former->second),
         newPath = work.isNew ? std::optional(work.phonePath) : std::nullopt](const Written&) {
            RecordList(*records, record, members, newPath);
        };
    return change;
}

void ListChanges::addRemoval(const RecordedPlaylist& list)
{
    Change change;
    change.subject = list.name;
    if (list.idInPhone) {
        change.kind = ChangeKind::kRemove;
        change.verb = kRemoved;
        change.counts.removed = 1;
        const std::string path = PhonePathOfList(list);
        if (!path.empty() && !pathsInUse_.contains(CaseKey(path))) {
            change.phonePath = path;
            change.keepAs = keptPathOf(path);
        }
        change.shown = path;
    }
    change.record = [&records = state_.records, name = list.name](const Written&) {
        records.setMembers(name, {});
        records.setDeleted(name);
    };
    plan_.add(std::move(change));
}

void ListChanges::addForgetting(const RecordedPlaylist& list)
{
    Change change;
    change.subject = list.name;
    change.record = [&records = state_.records, name = list.name](const Written&) {
        records.setMembers(name, {});
        records.forget(name);
    };
    plan_.add(std::move(change));
}

}  // namespace kesta
