#include "sync/executor.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

#include "database/failures.h"
#include "formats/digest.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/put_text.h"
#include "sync/placed_note.h"

namespace kesta {

void Session::checkInterrupt()
{
    if (os::Interrupted()) {
        throw StopRun(ExitCode::kInterrupted, "interrupted");
    }
}

PhoneChanges ChangesOf(Session& session)
{
    return {session.left, session.options.force,
            [&phone = session.phone](const auto& phonePath, const auto& pcPath) {
                return phone.holdsFile(phonePath, pcPath);
            },
            [&folder = session.folder](const auto& phonePath) { return folder.digest(phonePath); }};
}

void Executor::run(const Plan& plan)
{
    guard_.save(report_);
    way_.expire();
    *plan.tally += plan.found;
    const Room room = MeasureRoom(plan, phone_, phone_, way_.trash());
    if (room.needed > 0) {
        report_.progress.say("Room      " + room.text(), room.event());
    }
    if (!room.fits() && !options_.force) {
        throw StopRun(ExitCode::kPhoneFull, fmt::format("the phone has not enough room: {}. Nothing of it was copied; "
                                                        "--force copies what fits",
                                                        room.text()));
    }
    size_t count = 0;
    uint64_t bytes = 0;
    for (const Change& change : plan.changes) {
        count += change.isSilent() ? 0u : 1u;
        bytes += change.isToWrite() && !change.isSilent() ? change.size : 0;
    }
    report_.progress.start(count, bytes);
    isLeftBehind_ = false;
    timesLost_ = 0;
    Journal& journal = plan.journal ? *plan.journal : journal_;
    std::exception_ptr ending;
    try {
        makeAll(plan, journal);
    } catch (...) {
        ending = std::current_exception();
        for (size_t i = next_ + (hasFailed_ ? 1u : 0u); i < plan.changes.size(); ++i) {
            report_.summary.notReached += plan.changes[i].isSilent() ? 0u : 1u;
        }
    }
    discardAhead(plan);
    if (os::Status status = left_.save(); !status.ok()) {
        report_.note("what the phone was left with cannot be noted for the next run: " + status.text());
    }
    try {
        journal.end(!isLeftBehind_);
    } catch (...) {
        if (!ending) {
            ending = std::current_exception();  // The first reason counts.
        }
    }
    report_.progress.finish();
    if (timesLost_ > 0) {
        report_.note(fmt::format("the phone did not take the modification time of {}.", Counted(timesLost_, "file")));
    }
    if (ending) {
        std::rethrow_exception(ending);
    }
}

void Executor::makeAll(const Plan& plan, Journal& journal)
{
    std::vector<std::string> paths;
    for (const Change& change : plan.changes) {
        if (!change.phonePath.empty() && change.kind != ChangeKind::kRemove) {
            paths.push_back(plan.journal ? change.phonePath : JournalLine(change));
        }
    }
    bool areAllMade = true, hasBegun = paths.empty();
    for (next_ = 0; next_ < plan.changes.size(); ++next_) {
        const Change& change = plan.changes[next_];
        if (change.needsAllBefore && !areAllMade) {
            continue;
        }
        hasFailed_ = false;
        Session::checkInterrupt();
        checkPhone();
        // What is removed makes room for the journal, too.
        if (!hasBegun && !change.phonePath.empty() && change.kind != ChangeKind::kRemove) {
            journal.begin(paths);
            hasBegun = true;
        }
        if (hasBegun) {
            copyAhead(plan);
        }
        const bool isAhead = !batches_.empty() && batches_.front().first == next_;
        areAllMade = (isAhead ? makeBatch(plan) : make(change, plan)) && areAllMade;
    }
}

void Executor::checkPhone() const
{
    if (!phone_.isStillThere()) {
        throw StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
}

// A mount that dies may leave its root known for a while.
void Executor::checkPhoneAnswers() const
{
    if (!phone_.isAnswering()) {
        throw StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
}

bool Executor::make(const Change& change, const Plan& plan)
{
    const bool isMade = makeNoted(change, plan);
    forgetPlacing();
    return isMade;
}

bool Executor::makeNoted(const Change& change, const Plan& plan)
{
    Written written;
    if (change.kind == ChangeKind::kRemove && !remove(change)) {
        return false;
    }
    if (change.kind == ChangeKind::kMove && !move(change)) {
        return false;
    }
    if (change.isToWrite() && !write(change, written)) {
        return false;
    }
    if (const LeftFile* left = change.kind == ChangeKind::kAdopt ? left_.find(change.phonePath) : nullptr) {
        const PhoneFile there = phone_.find(change.phonePath);
        const bool isText = !left->digest.empty();
        left_.leave(change.phonePath,
                    {there.size, there.modifiedSeconds, isText ? phone_.digest(change.phonePath) : std::string()});
    }
    return finish(change, plan, written);
}

bool Executor::finish(const Change& change, const Plan& plan, const Written& written)
{
    if (!record(change, written)) {
        return false;
    }
    (change.tally != nullptr ? *change.tally : *plan.tally) += change.counts;
    if (written.isWritten && !change.pcFile.empty()) {
        report_.summary.bytes += written.size;
    }
    if (!change.isSilent()) {
        report_.progress.endFile(change.verb.done, change.name(), change.isToWrite() ? change.size : 0);
    }
    return true;
}

bool Executor::remove(const Change& change)
{
    if (change.phonePath.empty()) {
        return true;
    }
    os::Status status = way_.make(change);
    if (status.ok()) {
        status = phone_.removeFile(change.phonePath);
    }
    if (!status.ok()) {
        fail(change, "it cannot be removed from the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    left_.forget(change.phonePath);
    // While the database still knows the file: the folders that a killed run leaves are found by the next one.
    status = phone_.tidyAbove(change.phonePath);
    if (!status.ok()) {
        report_.fail(change.phonePath, "the empty folder above it cannot be removed from the phone: " + status.text());
    }
    return true;
}

bool Executor::move(const Change& change)
{
    if (os::Status status = phone_.move(change.movedFrom, change.phonePath); !status.ok()) {
        fail(change, "it cannot be moved on the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    moveLeft(change.movedFrom, change.phonePath);
    if (os::Status status = phone_.tidyAbove(change.movedFrom); !status.ok()) {
        report_.fail(change.movedFrom, "the empty folder above it cannot be removed from the phone: " + status.text());
    }
    return true;
}

void Executor::moveLeft(const std::string& from, const std::string& to)
{
    if (const LeftFile* left = left_.find(from)) {
        left_.leave(to, LeftFile(*left));
        left_.forget(from);
    }
}

os::Status Executor::notePlacing(const Change& change)
{
    hasPlacedNote_ = true;
    return WritePlacedNote(phone_, 0, {{change.phonePath, std::nullopt}});
}

void Executor::forgetPlacing()
{
    if (std::exchange(hasPlacedNote_, false) && !isLeftBehind_) {
        (void)RemovePlacedNote(phone_, 0);  // The next run finds the file recorded, or gone.
    }
}

// For the next run, which is to notice what somebody changes there.
void Executor::noteLeft(const Change& change, const os::FileInfo& copy, std::optional<int32_t> pcNanoseconds)
{
    left_.leave(change.phonePath,
                {copy.size, copy.modified.seconds, change.pcFile.empty() ? formats::Digest(change.text) : std::string(),
                 pcNanoseconds});
}

bool Executor::write(const Change& change, Written& written)
{
    if (os::Status status = phone_.makeFolders(change.phonePath); !status.ok()) {
        fail(change, "its folder cannot be made on the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    written.isWritten = true;
    return change.pcFile.empty() ? writeText(change, written) : copy(change, written);
}

bool Executor::writeText(const Change& change, Written& written)
{
    const std::string path = phone_.native(change.phonePath);
    if (os::Status status = PutText({.target = path,
                                     .text = change.text,
                                     .abilities = phone_.abilities(),
                                     .makeWay = way_.maker(change),
                                     .beforeInPlace = [&] { return notePlacing(change); }});
        !status.ok()) {
        fail(change, "it cannot be written to the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    os::FileInfo info;
    written.size = change.text.size();
    if (os::ReadInfo(path, info).ok()) {
        written.modified = os::ToLocalTime(info.modified.seconds);
        noteLeft(change, info, std::nullopt);
    }
    return true;
}

bool Executor::copy(const Change& change, Written& written)
{
    CopyRequest request;
    request.source = change.pcFile;
    request.target = phone_.native(change.phonePath);
    request.mayReplace = change.kind == ChangeKind::kReplace;
    request.abilities = phone_.abilities();
    request.makeWay = way_.maker(change);
    request.beforeInPlace = [&] { return notePlacing(change); };
    request.onBytes = [&](size_t bytes) {
        report_.progress.addBytes(bytes);
        return !os::Interrupted();
    };
    request.onRestart = [&] { report_.progress.restartFile(); };
    CopyResult result =
        way_.hasRoomFor(change.size) ? CopySafely(request) : CopyResult{CopyOutcome::kPhoneFull, {}, {}, true};
    if (result.outcome == CopyOutcome::kPhoneFull && way_.free(change.size)) {
        request.onRestart();
        result = CopySafely(request);
    }
    if (result.outcome == CopyOutcome::kDone) {
        if (result.isInPlace && phone_.abilities().renames) {
            // The mount is not what it was, or this was one file's own matter.
            MountAbilities abilities = phone_.abilities();
            if (ProbeMount(phone_.root(), abilities).ok()) {
                phone_.setAbilities(abilities);
            }
        }
        timesLost_ += result.timeKept ? 0u : 1u;
        written.size = result.source.size;
        written.modified = os::ToLocalTime(result.source.modified.seconds);
        noteLeft(change, result.copy, result.source.modified.nanoseconds);
        return true;
    }
    if (!request.mayReplace) {
        if (os::Status status = phone_.tidyAbove(change.phonePath); !status.ok()) {
            report_.note("an empty folder stays on the phone: " + status.text());
        }
    }
    if (result.outcome == CopyOutcome::kInterrupted) {
        throw StopRun(ExitCode::kInterrupted, result.reason);
    }
    if (result.outcome == CopyOutcome::kPhoneFull) {
        // Smaller files may still fit, and so may lists and contacts.
        fail(change, fmt::format("the phone is full: there is no room for {}", FormatSize(change.size)));
        report_.summary.stopWith(ExitCode::kPhoneFull, "the phone is full");
        checkPhoneAnswers();
        return false;
    }
    fail(change, result.reason);
    if (result.outcome == CopyOutcome::kPhoneReadOnly) {
        throw StopRun(ExitCode::kPhoneReadOnly, result.reason);
    }
    checkPhoneAnswers();
    return false;
}

bool Executor::record(const Change& change, const Written& written)
{
    if (!change.record) {
        return true;
    }
    const bool wasLeftBehind = isLeftBehind_;
    const bool isNew = change.kind == ChangeKind::kPut || change.kind == ChangeKind::kMove;
    isLeftBehind_ = isLeftBehind_ || isNew;  // as long as it can throw
    kesta_db::Code code{};
    try {
        change.record(written);
        isLeftBehind_ = wasLeftBehind;
        return true;
    } catch (const kesta_db::Error& failure) {
        code = failure.code();
        if (code == kesta_db::Code::kUnreadable) {
            throw;  // what was written may be recorded or not
        }
    }
    isLeftBehind_ = wasLeftBehind;
    fail(change, fmt::format("it cannot be {} the database: {}",
                             change.kind == ChangeKind::kRemove ? "removed from" : "recorded in", SentenceOf(code)));
    if (isNew) {
        takeBack(change);
    }
    // A text that is too long is that item's own matter; anything else would fail again for the next one.
    if (code != kesta_db::Code::kTooLong) {
        throw StopRun(ExitCode::kDatabase, "the database cannot be written");
    }
    return false;
}

void Executor::takeBack(const Change& change)
{
    os::Status status;
    if (change.kind == ChangeKind::kMove) {
        status = phone_.move(change.phonePath, change.movedFrom);
        moveLeft(change.phonePath, change.movedFrom);
    } else {
        left_.forget(change.phonePath);
        status = phone_.removeFile(change.phonePath);
    }
    if (status.ok()) {
        status = phone_.tidyAbove(change.phonePath);
    }
    isLeftBehind_ = isLeftBehind_ || !status.ok();
}

void Executor::fail(const Change& change, const std::string& reason)
{
    hasFailed_ = true;
    report_.fail(change.subject.empty() ? change.phonePath : change.subject, reason);
    if (!change.isSilent()) {
        report_.progress.endFile("failed", change.name(), change.isToWrite() ? change.size : 0);
    }
}

void Executor::stopIfNothingCanBeWritten(const os::Status& status) const
{
    if (const auto reason = phone_.whyNothingCanBeWritten(status)) {
        throw *reason;
    }
}

}  // namespace kesta
