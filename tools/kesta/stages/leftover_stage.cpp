#include "stages/leftover_stage.h"

#include <fmt/format.h>

#include <unordered_map>

#include "os/local_time.h"
#include "phone/phone_paths.h"
#include "stages/bookmarks/bookmark_stage.h"
#include "stages/playlists/playlist_stage.h"

namespace kesta {
namespace {

// As far as a phone keeps times.
bool IsSameTime(int64_t a, int64_t b)
{
    return IsSameFile({PhoneEntry::kFile, 0, a}, 0, b);
}

}  // namespace

// Whether what lies there can be that run's: somebody may have changed it on the phone since.
bool LeftoverStage::hasWritten(const RecordedFile& file, const PhoneFile& there, const LeftFile* left) const
{
    if (left != nullptr && IsSameTime(left->modifiedSeconds, there.modifiedSeconds)) {
        return false;  // It is what an earlier run has left, or an edit that kept the time.
    }
    os::FileInfo pc;
    const bool isOnPc = os::ReadInfo(file.path, pc).ok();
    if (isOnPc && IsSameFile(there, pc.size, pc.modified.seconds)) {
        return true;
    }
    const auto local = os::ToLocalTime(there.modifiedSeconds);
    if (local && file.modified && IsSameTime(ToNumber(*local), ToNumber(*file.modified))) {
        return true;
    }
    return isOnPc && there.size == pc.size && phone_.holdsFile(file.phonePath, file.path);
}

// A file that was replaced, but not yet recorded so, would look as if somebody had changed it on the phone.
void LeftoverStage::settle(const Leftovers& leftovers, Session& session) const
{
    std::unordered_map<std::string, RecordedFile> media;
    for (const MediaState::OfCategory& category : state_.categories) {
        for (const RecordedFile& file : category.recorded) {
            media.emplace(file.phonePath, file);
        }
    }
    for (const RecordedFile& file : session.database.playlists(session.imei).files()) {
        media.emplace(file.phonePath, file);
    }
    for (const std::string& path : leftovers.recordedFiles) {
        const PhoneFile there = phone_.find(path);
        if (there.entry != PhoneEntry::kFile) {
            continue;
        }
        if (const auto file = media.find(path); file != media.end()) {
            if (hasWritten(file->second, there, session.left.find(path))) {
                session.left.leave(path, {there.size, there.modifiedSeconds, {}});
            }
            continue;
        }
        const auto expected = leftovers.digests.find(path);
        const std::string digest = phone_.digest(path);
        if (expected == leftovers.digests.end() || expected->second == digest) {
            session.left.leave(path, {there.size, there.modifiedSeconds, digest});
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
    if (session.isKnown) {
        settle(leftovers, session);
    }
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
