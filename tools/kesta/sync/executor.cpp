#include "sync/executor.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"

namespace kesta {

void Session::checkInterrupt()
{
    if (os::Interrupted()) {
        throw StopRun(ExitCode::kInterrupted, "interrupted");
    }
}

void Executor::run(const Plan& plan)
{
    guard_.save(report_);
    *plan.tally += plan.found;
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
            paths.push_back(change.phonePath);
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
        areAllMade = make(change, plan) && areAllMade;
    }
}

void Executor::checkPhone() const
{
    if (!phone_.isStillThere()) {
        throw StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
}

bool Executor::make(const Change& change, const Plan& plan)
{
    Written written;
    if (change.kind == ChangeKind::kRemove && !remove(change)) {
        return false;
    }
    if (change.isToWrite() && !write(change, written)) {
        return false;
    }
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
    if (os::Status status = phone_.removeFile(change.phonePath); !status.ok()) {
        fail(change, "it cannot be removed from the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    // While the database still knows the file: the folders that a killed run leaves are found by the next one.
    if (os::Status status = phone_.tidyAbove(change.phonePath); !status.ok()) {
        report_.fail(change.phonePath, "the empty folder above it cannot be removed from the phone: " + status.text());
    }
    return true;
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
    const std::string temporary = os::Join(os::ParentOf(path), kTemporaryName);
    if (os::Status status = os::WriteText(path, temporary, change.text); !status.ok()) {
        fail(change, "it cannot be written to the phone: " + status.text());
        stopIfNothingCanBeWritten(status);
        return false;
    }
    os::FileInfo info;
    written.size = change.text.size();
    if (os::ReadInfo(path, info).ok()) {
        written.modified = os::ToLocalTime(info.modified.seconds);
    }
    return true;
}

bool Executor::copy(const Change& change, Written& written)
{
    CopyRequest request;
    request.source = change.pcFile;
    request.target = phone_.native(change.phonePath);
    request.mayReplace = change.kind == ChangeKind::kReplace;
    request.onBytes = [&](size_t bytes) {
        report_.progress.addBytes(bytes);
        return !os::Interrupted();
    };
    request.onRestart = [&] { report_.progress.restartFile(); };
    const CopyResult result = CopySafely(request);
    if (result.outcome == CopyOutcome::kDone) {
        timesLost_ += result.timeKept ? 0u : 1u;
        written.size = result.source.size;
        written.modified = os::ToLocalTime(result.source.modified.seconds);
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
    fail(change, result.reason);
    if (result.outcome == CopyOutcome::kPhoneFull) {
        throw StopRun(ExitCode::kPhoneFull, result.reason);
    }
    if (result.outcome == CopyOutcome::kPhoneReadOnly) {
        throw StopRun(ExitCode::kPhoneReadOnly, result.reason);
    }
    checkPhone();
    return false;
}

bool Executor::record(const Change& change, const Written& written)
{
    if (!change.record) {
        return true;
    }
    const bool wasLeftBehind = isLeftBehind_;
    isLeftBehind_ = isLeftBehind_ || change.kind == ChangeKind::kPut;  // as long as it can throw
    const Result result = change.record(written);
    isLeftBehind_ = wasLeftBehind;
    if (result.ok()) {
        return true;
    }
    fail(change, fmt::format("it cannot be {} the database: {}",
                             change.kind == ChangeKind::kRemove ? "removed from" : "recorded in", result.text()));
    if (change.kind == ChangeKind::kPut) {
        takeBack(change);
    }
    // A text that is too long is that item's own matter; anything else would fail again for the next one.
    if (!result.isTooLong()) {
        throw StopRun(ExitCode::kDatabase, "the database cannot be written");
    }
    return false;
}

void Executor::takeBack(const Change& change)
{
    os::Status status = phone_.removeFile(change.phonePath);
    if (status.ok()) {
        status = phone_.tidyAbove(change.phonePath);
    }
    if (!status.ok()) {
        isLeftBehind_ = true;
    }
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
