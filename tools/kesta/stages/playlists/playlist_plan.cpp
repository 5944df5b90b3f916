#include "stages/playlists/playlist_plan.h"

#include <algorithm>

#include "os/files.h"
#include "os/local_time.h"
#include "phone/names.h"
#include "phone/phone_layout.h"
#include "phone/phone_paths.h"

namespace kesta {
namespace {

struct Need {
    const ListMember* member = nullptr;
    std::string owner;  // the first list that needs it
};

// The music that lists need, without a guard of its own: the guard has been asked about the lists.
class MemberRules : public CompareRules {
public:
    using Keepers = std::map<std::string, std::string>;

    explicit MemberRules(const Keepers& kept) : kept_(kept) {}
    [[nodiscard]] static std::string_view key(const RecordedFile& file) { return file.path; }
    [[nodiscard]] static std::string_view key(const Need& need) { return need.member->path; }
    [[nodiscard]] static bool isSame(const RecordedFile& recorded, const Need& need)
    {
        return recorded.modified == need.member->localTime;
    }
    [[nodiscard]] bool isGone(const RecordedFile& file) const { return !kept_.contains(file.path); }

private:
    const Keepers& kept_;
};

class Planner {
public:
    Planner(const PlaylistPlanInput& input, const PhoneView& phone)
        : input_(input), phone_(phone), paths_(std::string(kPlaylistMediaFolder), phone)
    {
    }

    PlaylistPlan run() &&
    {
        sortOut();
        defer();
        for (const ListToBring& bring : plan_.lists) {
            collectNeeds(bring);
        }
        planFiles();
        reassign();
        return std::move(plan_);
    }

private:
    void sortOut()
    {
        std::map<std::string, const PcPlaylist*> listOfName;
        for (const PcPlaylist& list : input_.lists) {
            listOfName.emplace(list.name, &list);
        }
        for (const RecordedPlaylist& record : input_.recorded) {
            const auto found = listOfName.find(record.name);
            if (found == listOfName.end()) {
                sortOutGone(record);
            } else if (record.state == PlaylistState::kDeleted) {
                plan_.deletedOnPhone.push_back(&record);
            } else if (!record.selected) {
                skip(record);
            } else if (!found->second->readable) {
                keep(record);
            } else {
                plan_.lists.push_back({found->second, &record});
            }
        }
        std::sort(plan_.lists.begin(), plan_.lists.end(),
                  [](const ListToBring& a, const ListToBring& b) { return a.list->name < b.list->name; });
    }

    void sortOutGone(const RecordedPlaylist& record)
    {
        if (record.state == PlaylistState::kDeleted) {
            plan_.forgotten.push_back(&record);
        } else if (record.state == PlaylistState::kUnconfirmed) {
            plan_.obsolete.push_back(&record);
        } else if (!record.selected) {
            skip(record);
        } else {
            keep(record);
        }
    }

    void skip(const RecordedPlaylist& record)
    {
        plan_.notSelected.push_back(&record);
        keep(record);
    }

    // What the list has on the phone stays there.
    void keep(const RecordedPlaylist& record)
    {
        for (const std::string& member : membersOf(record)) {
            kept_.emplace(member, record.name);
        }
    }

    [[nodiscard]] const std::vector<std::string>& membersOf(const RecordedPlaylist& record) const
    {
        static const std::vector<std::string> kNone;
        const auto found = input_.members.find(record.name);
        return found == input_.members.end() ? kNone : found->second;
    }

    // A list that has lost all its entries is as good as gone, and as likely to be an accident.
    [[nodiscard]] bool isEmptied(const ListToBring& bring) const
    {
        return bring.record->idInPhone && bring.list->members.empty() && !membersOf(*bring.record).empty();
    }

    void defer()
    {
        const auto isOnPhone = [](const RecordedPlaylist& record) { return record.idInPhone.has_value(); };
        const auto onPhone =
            static_cast<size_t>(std::count_if(input_.recorded.begin(), input_.recorded.end(), isOnPhone));
        const auto losses =
            static_cast<size_t>(std::count_if(plan_.obsolete.begin(), plan_.obsolete.end(),
                                              [&](const RecordedPlaylist* record) { return isOnPhone(*record); }) +
                                std::count_if(plan_.lists.begin(), plan_.lists.end(),
                                              [&](const ListToBring& bring) { return isEmptied(bring); }));
        if (!input_.guard.defers("playlists", losses, onPhone)) {
            return;
        }
        plan_.deferred = losses;
        std::erase_if(plan_.obsolete, [&](const RecordedPlaylist* record) {
            if (isOnPhone(*record)) {
                keep(*record);
            }
            return isOnPhone(*record);
        });
        std::erase_if(plan_.lists, [&](const ListToBring& bring) {
            if (isEmptied(bring)) {
                keep(*bring.record);
            }
            return isEmptied(bring);
        });
    }

    void collectNeeds(const ListToBring& bring)
    {
        for (const ListMember& member : bring.list->members) {
            if (member.isUrl()) {
                continue;
            }
            if (PathInMedia(member, input_.media, phone_).empty()) {
                needs_.try_emplace(member.path, Need{&member, bring.list->name});
                for (const std::string& path : member.otherPaths) {
                    kept_.emplace(path, bring.list->name);
                }
            } else {
                carried_.insert(member.path);
            }
        }
        if (!bring.list->complete) {
            keep(*bring.record);
        }
    }

    void planFiles()
    {
        std::vector<Need> needs;
        needs.reserve(needs_.size());
        for (const auto& [path, need] : needs_) {
            needs.push_back(need);
        }
        const auto diff = Compare(input_.files, needs, MemberRules(kept_));
        for (const RecordedFile* file : ReservePaths(input_.files, diff.removed, diff.deferred, paths_)) {
            plan_.phonePaths[file->path] = file->phonePath;
        }
        for (const RecordedFile* file : diff.removed) {
            planRemoval(*file);
        }
        for (const auto& item : diff.items) {
            planMember(*item.wanted, item.state, item.recorded);
        }
        plan_.files.recorded = input_.files.size();
    }

    // The file of the PC mostly is still there: it is only in no list any more.
    [[nodiscard]] bool isChangedOnPhone(const RecordedFile& file) const
    {
        os::FileInfo info;
        const bool isOnPc = os::ReadInfo(file.path, info).ok() && info.kind == os::FileKind::kFile;
        const PcFile pc{file.path, info.size, info.modified.seconds, os::ToLocalTime(info.modified.seconds)};
        return input_.changes.isChanged(file.phonePath, phone_.find(file.phonePath), file.modified,
                                        isOnPc ? &pc : nullptr);
    }

    void planRemoval(const RecordedFile& file)
    {
        FileChange change{ChangeKind::kRemove, Category::kMusic, file, 0, {}};
        std::string& phonePath = change.file.phonePath;
        if (!paths_.mayBeRemoved(phonePath)) {
            phonePath.clear();
        } else if (isChangedOnPhone(file)) {
            change.keepAs = paths_.allocateBeside(phonePath);
        }
        if (carried_.contains(file.path)) {
            return plan_.superseded.removals.push_back(std::move(change));
        }
        if (!phonePath.empty()) {
            paths_.release(phonePath);
        }
        plan_.files.removals.push_back(std::move(change));
    }

    void planMember(const Need& need, Comparison state, const RecordedFile* record)
    {
        const ListMember& member = *need.member;
        const auto path = plan_.phonePaths.find(member.path);
        const PhoneFile there =
            path == plan_.phonePaths.end() ? PhoneFile{PhoneEntry::kOther, 0, 0} : phone_.find(path->second);
        if (!member.found) {
            // The list still names it, so it stays on the phone, if it got there while it could be read.
            if (there.entry != PhoneEntry::kFile) {
                plan_.phonePaths.erase(member.path);
            }
            return;
        }
        const auto allocate = [&] {
            const auto isSame = [&](const std::string&, const PhoneFile& other) {
                return IsSameFile(other, member.size, member.modified.seconds);
            };
            return paths_.allocate({os::NameOf(os::ParentOf(member.path)), os::NameOf(member.path)}, member.path,
                                   isSame);
        };
        auto change = PlanFile(
            {{member.path, member.size, member.modified.seconds, member.localTime, member.modified.nanoseconds},
             state,
             record,
             there},
            Category::kMusic, need.owner, input_.changes, paths_, allocate);
        if (!change) {
            ++plan_.files.unchanged;
            return;
        }
        plan_.phonePaths[member.path] = change->file.phonePath;
        plan_.files.copies.push_back(*std::move(change));
    }

    // The library forgets a list's files with the list, those that other lists need as well.
    void reassign()
    {
        std::set<std::string> ending;
        for (const RecordedPlaylist* record : plan_.obsolete) {
            ending.insert(record->name);
        }
        for (const RecordedPlaylist* record : plan_.forgotten) {
            ending.insert(record->name);
        }
        for (const RecordedFile& file : input_.files) {
            if (!ending.contains(file.basePath)) {
                continue;
            }
            const auto need = needs_.find(file.path);
            const auto keeper = kept_.find(file.path);
            if (need == needs_.end() && keeper == kept_.end()) {
                continue;
            }
            plan_.reassigned.push_back(file);
            plan_.reassigned.back().basePath = need != needs_.end() ? need->second.owner : keeper->second;
        }
    }

    const PlaylistPlanInput& input_;
    const PhoneView& phone_;
    PhonePaths paths_;
    PlaylistPlan plan_;
    std::map<std::string, Need> needs_;  // by path on the PC
    MemberRules::Keepers kept_;          // path on the PC to the list that keeps it
    std::set<std::string> carried_;      // by media sync
};

}  // namespace

PlaylistPlan PlanPlaylists(const PlaylistPlanInput& input, const PhoneView& phone)
{
    return Planner(input, phone).run();
}

std::string PathInMedia(const ListMember& member, const MediaPhonePaths& media, const PhoneView& phone)
{
    for (const std::string* path : {&member.path, &member.namedPath}) {
        const auto found = media.find(*path);
        if (found == media.end()) {
            continue;
        }
        if (phone.find(found->second).entry == PhoneEntry::kFile) {
            return found->second;
        }
    }
    return {};
}

std::string PhonePathOfList(const RecordedPlaylist& list)
{
    const std::string path = list.idInPhone.value_or(std::string());
    return IsPhonePath(path, kPlaylistFolder) && SplitPath(path).size() == 2 ? path : std::string();
}

}  // namespace kesta
