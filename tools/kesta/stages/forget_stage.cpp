#include "stages/forget_stage.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

#include "base/text.h"
#include "phone/names.h"
#include "phone/phone_layout.h"

namespace kesta {
namespace {

bool IsOf(const RecordedFile& file, const std::string& path)
{
    return file.basePath == path || os::LiesIn(file.path, path);
}

}  // namespace

bool ForgetMediaStage::isRecorded() const
{
    return std::any_of(state_.categories.begin(), state_.categories.end(), [&](const MediaState::OfCategory& category) {
        return std::any_of(category.recorded.begin(), category.recorded.end(),
                           [&](const RecordedFile& file) { return IsOf(file, path_); }) ||
               std::any_of(category.known.begin(), category.known.end(),
                           [&](const RecordedFolder& folder) { return os::LiesIn(folder.path, path_); });
    });
}

Plan ForgetMediaStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    for (const Category category : kCategories) {
        addCategory(category, session, plan);
    }
    return plan;
}

void ForgetMediaStage::addCategory(Category category, Session& session, Plan& plan)
{
    const MediaState::OfCategory& state = state_.categories[static_cast<size_t>(category)];
    PhonePaths paths(std::string(PhoneFolderOf(category)), session.phone);
    std::unordered_set<std::string> shared;  // What several records share stays for the others.
    std::vector<const RecordedFile*> leaving;
    for (const RecordedFile& file : state.recorded) {
        if (IsOf(file, path_)) {
            leaving.push_back(&file);
        } else {
            (void)paths.reserve(file.phonePath);
            shared.insert(CaseKey(file.phonePath));
        }
    }
    if (session.guard.defers(fmt::format("forget {}", KeyOf(category)), leaving.size(), state.recorded.size())) {
        plan.found.deferred += leaving.size();
        return;
    }
    const PhoneChanges changes = ChangesOf(session);
    for (const RecordedFile* file : leaving) {
        FileChange removal{ChangeKind::kRemove, category, *file, 0, {}};
        if (!IsPhonePath(file->phonePath, category) || shared.contains(CaseKey(file->phonePath))) {
            removal.file.phonePath.clear();
        } else if (changes.isChanged(file->phonePath, session.phone.find(file->phonePath), file->modified, nullptr)) {
            removal.keepAs = paths.allocateBeside(file->phonePath);
        }
        plan.add(ToChange(removal, records_));
    }
    for (const RecordedFolder& folder : state.known) {
        if (!os::LiesIn(folder.path, path_)) {
            continue;
        }
        Change change;
        change.subject = folder.path;
        change.needsAllBefore = true;  // With the folder the library forgets its files.
        change.record = [category, path = folder.path, &session](const Written&) {
            session.database.media(session.imei, category).removeFolder(path);
        };
        plan.add(std::move(change));
    }
}

Plan ForgetPlaylistStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    state_.pc.found = true;
    std::vector<RecordedPlaylist> others;
    for (RecordedPlaylist& list : state_.records.all()) {
        if (list.name == name_) {
            list.state = PlaylistState::kUnconfirmed;
        } else if (list.state == PlaylistState::kDeleted) {
            continue;  // It is kept off the phone.
        } else {
            list.state = list.idInPhone ? PlaylistState::kCurrent : PlaylistState::kNew;
            others.push_back(list);
        }
        state_.members[list.name] = state_.records.members(list.name);
        state_.recorded.push_back(std::move(list));
    }
    state_.files = state_.records.files();
    PhoneChanges changes = ChangesOf(session);
    state_.plan = PlanPlaylists(
        {state_.pc.lists, state_.recorded, state_.members, state_.files, state_.media, session.guard, changes},
        session.phone);
    files_.addChanges(std::move(others), plan);
    return plan;
}

}  // namespace kesta
