#include "stages/leftover_stage.h"

#include <fmt/format.h>

#include <unordered_set>

#include "phone/names.h"
#include "phone/phone_layout.h"
#include "stages/bookmarks/bookmark_stage.h"
#include "stages/playlists/playlist_stage.h"

namespace kesta {

// A file that was replaced, but not yet recorded so, would look as if somebody had changed it on the phone.
void LeftoverStage::settle(const Leftovers& leftovers, LeftFiles& left) const
{
    std::unordered_set<std::string> media;
    for (const MediaState::OfCategory& category : state_.categories) {
        for (const RecordedFile& file : category.recorded) {
            media.insert(file.phonePath);
        }
    }
    for (const std::string& path : leftovers.recordedFiles) {
        const PhoneFile there = phone_.find(path);
        if (there.entry == PhoneEntry::kFile) {
            const bool isText = !media.contains(path) && !IsPhonePath(path, kPlaylistMediaFolder);
            left.leave(path, {there.size, there.modifiedSeconds, isText ? phone_.digest(path) : std::string()});
        }
    }
}

Plan LeftoverStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    std::vector<std::string> phonePaths;
    if (session.isKnown) {
        for (const Category category : kCategories) {
            MediaState::OfCategory& state = state_.categories[static_cast<size_t>(category)];
            kesta_db::Media media = session.database.media(session.imei, category);
            state.known = media.folders();
            state.recorded = media.files();
            for (const RecordedFile& file : state.recorded) {
                phonePaths.push_back(file.phonePath);
            }
        }
        for (std::string& path : PhonePathsOfPlaylists(session.database, session.imei)) {
            phonePaths.push_back(std::move(path));
        }
        for (std::string& path : PhonePathsOfBookmarks(session.database, session.imei)) {
            phonePaths.push_back(std::move(path));
        }
    }
    Leftovers leftovers;
    if (os::Status status = FindLeftovers(phone_, phonePaths, leftovers); !status.ok()) {
        throw StopRun(ExitCodeOf(status), "the phone's journal cannot be read: " + status.text());
    }
    if (!leftovers.areAny()) {
        return plan;
    }
    settle(leftovers, session.left);
    const size_t files = leftovers.temporaryFiles.size() + leftovers.unknownFiles.size();
    const std::string counted = Counted(files, "leftover");
    Change change;
    change.verb.planned = kRemoved.planned;
    change.shown = counted + " of the last run, which was cut short";
    change.record = [this, leftovers, counted, &left = session.left, &report = session.report](const Written&) {
        if (os::Status status = left.save(); !status.ok()) {
            report.note("what the phone was left with cannot be noted for the next run: " + status.text());
        }
        if (os::Status status = RemoveLeftovers(phone_, leftovers); !status.ok()) {
            throw StopRun(ExitCodeOf(status),
                          "what the last run left on the phone cannot be removed: " + status.text());
        }
        report.note(fmt::format("the last run was cut short; {} of it removed.", counted));
    };
    plan.add(std::move(change));
    return plan;
}

}  // namespace kesta
