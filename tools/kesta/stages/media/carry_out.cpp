#include "stages/media/carry_out.h"

#include <fmt/format.h>

#include "base/text.h"
#include "os/system.h"
#include "phone/copy_file.h"
#include "phone/phone_failure.h"
#include "sync/journal.h"

namespace kesta {
namespace {

constexpr std::int32_t kRecordedAlready = 19;
constexpr std::int32_t kStatementTooLong = 18;

}  // namespace

std::int32_t MediaRecords::add(const Action& action)
{
    return database_.addFile(imei_, action.category, action.file);
}

std::int32_t MediaRecords::update(const Action& action)
{
    return database_.updateFile(imei_, action.category, action.file);
}

std::int32_t MediaRecords::remove(const Action& action)
{
    return database_.removeFile(imei_, action.category, action.file.path);
}

bool MediaRecords::holds(const Action& action)
{
    return database_.isRecorded(imei_, action.category, action.file);
}

void Preview(const std::vector<CategoryPlan>& plans, bool quiet, Progress& progress, Summary& summary)
{
    const auto preview = [&](const char* verb, const Action& action, std::size_t& count) {
        ++count;
        const std::string& place = action.file.phonePath.empty() ? action.file.path : action.file.phonePath;
        if (!quiet) progress.say(fmt::format("{:<9} {}", verb, Printable(place)));
    };
    for (const CategoryPlan& plan : plans) {
        for (const Action& action : plan.removals) preview("remove", action, summary.removed);
        for (const Action& action : plan.copies) {
            if (action.kind == ActionKind::kAdopt) {
                preview("record", action, summary.adopted);
                continue;
            }
            const bool isUpdate = action.kind == ActionKind::kUpdate;
            preview(isUpdate ? "update" : "copy", action, isUpdate ? summary.updated : summary.copied);
            summary.bytes += action.size;
        }
    }
}

void Execute::run(const std::vector<CategoryPlan>& plans)
{
    std::size_t actions = 0;
    std::uint64_t bytes = 0;
    for (const CategoryPlan& plan : plans) {
        actions += plan.removals.size() + plan.copies.size();
        for (const Action& action : plan.copies)
            if (action.kind != ActionKind::kAdopt) bytes += action.size;
    }
    progress_.start(actions, bytes);
    removeAll(plans);
    copyAll(plans);
    progress_.finish();
    if (timesLost_ > 0)
        summary_.notes.push_back(
            fmt::format("the phone did not take the modification time of {}.", Counted(timesLost_, "file")));
}

bool Execute::mayGoOn()
{
    if (os::Interrupted()) summary_.stopWith(ExitCode::kInterrupted, "interrupted");
    if (!summary_.stopped() && !phone_.isStillThere()) summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
    if (summary_.stopped()) ++summary_.notReached;
    return !summary_.stopped();
}

void Execute::removeAll(const std::vector<CategoryPlan>& plans)
{
    for (const CategoryPlan& plan : plans)
        for (const Action& action : plan.removals)
            if (mayGoOn()) remove(action);
}

void Execute::remove(const Action& action)
{
    const std::string& place = action.file.phonePath;
    if (!place.empty()) {
        if (os::Status status = phone_.removeFile(place); !status.ok()) {
            summary_.fail(place, "it cannot be removed from the phone: " + status.text());
            return stopOnPhoneFailure(status, place);
        }
        // While the database still know the file: what a killed run leaves of the folders, the next one comes by again.
        if (os::Status status = phone_.tidyAbove(place); !status.ok())
            summary_.fail(place, "the empty folder above it cannot be removed from the phone: " + status.text());
    }
    if (const std::int32_t code = records_.remove(action); code != 0) {
        summary_.fail(action.file.path, "it cannot be removed from the database: " + ResultText(code));
        return summary_.stopWith(ExitCode::kDatabase, "the database cannot be written");
    }
    ++summary_.removed;
    progress_.endFile("removed", place.empty() ? action.file.path : place, 0);
}

void Execute::copyAll(const std::vector<CategoryPlan>& plans)
{
    std::vector<std::string> places;
    for (const CategoryPlan& plan : plans)
        for (const Action& action : plan.copies) places.push_back(action.file.phonePath);
    if (places.empty()) return;
    if (!summary_.stopped()) {
        if (os::Status status = WriteJournal(phone_, places); !status.ok()) {
            summary_.fail(std::string(kJournalName), "it cannot be written to the phone: " + status.text());
            stopOnPhoneFailure(status, std::string(kJournalName));
            summary_.stopWith(ExitCode::kFailure, "the phone cannot be written");
        }
    }
    for (const CategoryPlan& plan : plans)
        for (const Action& action : plan.copies)
            if (mayGoOn()) copy(action);
    // The journal stays as long as there is something for the next run to find.
    if (filesLeftBehind_ || summary_.stop == ExitCode::kPhoneGone) return;
    if (os::Status status = RemoveJournal(phone_); !status.ok())
        summary_.fail(std::string(kJournalName), "it cannot be removed from the phone: " + status.text());
}

void Execute::copy(const Action& action)
{
    if (action.kind == ActionKind::kAdopt) return record(action);
    if (os::Status status = phone_.makeFolders(action.file.phonePath); !status.ok()) {
        summary_.fail(action.file.path, "its folder cannot be made on the phone: " + status.text());
        return stopOnPhoneFailure(status, action.file.phonePath);
    }
    copyContents(action);
}

void Execute::copyContents(const Action& action)
{
    CopyRequest request;
    request.source = action.file.path;
    request.target = phone_.native(action.file.phonePath);
    request.mayReplace = action.kind == ActionKind::kUpdate;
    request.onBytes = [&](std::size_t bytes) {
        progress_.addBytes(bytes);
        return !os::Interrupted();
    };
    request.onRestart = [&] { progress_.restartFile(); };
    const CopyResult result = CopySafely(request);
    if (result.outcome == CopyOutcome::kDone) {
        timesLost_ += result.timeKept ? 0 : 1;
        Action done = action;
        done.size = result.source.size;
        done.file.modified = ToLocalTime(result.source.modified.seconds);
        return record(done);
    }
    if (!request.mayReplace) {
        if (os::Status status = phone_.tidyAbove(action.file.phonePath); !status.ok())
            summary_.notes.push_back("an empty folder stays on the phone: " + status.text());
    }
    switch (result.outcome) {
        case CopyOutcome::kInterrupted:
            ++summary_.notReached;
            return summary_.stopWith(ExitCode::kInterrupted, "interrupted");
        case CopyOutcome::kPhoneFull:
            summary_.stopWith(ExitCode::kPhoneFull, result.reason);
            break;
        case CopyOutcome::kPhoneReadOnly:
            summary_.stopWith(ExitCode::kPhoneReadOnly, result.reason);
            break;
        default:
            if (!phone_.isStillThere()) summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
            break;
    }
    summary_.fail(action.file.path, result.reason);
    progress_.endFile("failed", action.file.phonePath, action.size);
}

void Execute::record(const Action& action)
{
    std::int32_t code = 0;
    if (action.kind != ActionKind::kUpdate) code = records_.add(action);
    if (action.kind == ActionKind::kUpdate) code = records_.update(action);
    // Recorded in the meantime by somebody else, as a rule: what counts is what lies on the phone now. But the row can
    // also have been refused for another reason, and updating a row that is not there succeeds.
    if (code == kRecordedAlready) {
        const std::int32_t updated = records_.update(action);
        if (updated != 0 || records_.holds(action)) code = updated;
    }
    if (code == 0) {
        const bool isUpdate = action.kind == ActionKind::kUpdate;
        const bool isAdopted = action.kind == ActionKind::kAdopt;
        ++(isUpdate ? summary_.updated : isAdopted ? summary_.adopted : summary_.copied);
        summary_.bytes += isAdopted ? 0 : action.size;
        return progress_.endFile(isUpdate    ? "updated"
                                 : isAdopted ? "recorded"
                                             : "copied",
                                 action.file.phonePath, isAdopted ? 0 : action.size);
    }
    summary_.fail(action.file.path, "it cannot be recorded in the database: " + ResultText(code));
    // A text that is too long is that file's own matter; anything else would fail again for the next one.
    if (code != kStatementTooLong) summary_.stopWith(ExitCode::kDatabase, "the database cannot be written");
    if (action.kind != ActionKind::kCopy) return;
    os::Status status = phone_.removeFile(action.file.phonePath);
    if (status.ok()) status = phone_.tidyAbove(action.file.phonePath);
    if (!status.ok()) filesLeftBehind_ = true;
}

void Execute::stopOnPhoneFailure(const os::Status& status, const std::string& path)
{
    StopOnPhoneFailure(phone_, status, summary_);
    if (!summary_.stopped()) progress_.endFile("failed", path, 0);
}

}  // namespace kesta
