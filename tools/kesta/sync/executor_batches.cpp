// Runs of files to be copied, batch by batch: while the database takes in one, the next ones are copied. A file that
// cannot go that way is copied when its turn has come, as every other change is made.
#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"
#include "sync/executor.h"
#include "sync/placed_note.h"

namespace kesta {
namespace {

// A large file is copied in its turn: it shows its progress, and the database does not hold it up.
bool CanGoAhead(const Change& change)
{
    return change.isToWrite() && !change.pcFile.empty() && !change.needsAllBefore &&
           change.size <= CopyAhead::kMostBytes;
}

}  // namespace

void Executor::copyAhead(const Plan& plan)
{
    aheadFrom_ = std::max(aheadFrom_, next_);
    while (phone_.abilities().renames && batches_.size() < CopyAhead::kMostBatches &&
           aheadFrom_ < plan.changes.size()) {
        std::vector<StagedFile> files = nextBatch(plan);
        if (files.empty()) {
            continue;
        }
        uint64_t bytes = 0;
        for (const StagedFile& file : files) {
            bytes += plan.changes[file.change].size;
        }
        if (files.size() < 2 || !hasRoomAhead(bytes)) {
            continue;
        }
        if (!ahead_) {
            ahead_.emplace(phone_);
        }
        for (StagedFile& file : files) {
            const Change& change = plan.changes[file.change];
            if (!phone_.makeFolders(change.phonePath, ahead_->folderFlush()).ok()) {
                continue;  // This is told when its turn has come.
            }
            file.phonePath = change.phonePath;
            file.source = change.pcFile;
            file.temporary = os::Join(os::ParentOf(phone_.native(change.phonePath)),
                                      fmt::format("{}-{}", kTemporaryName, file.change));
        }
        batches_.emplace_back(files.front().change, bytes);
        ahead_->submit(std::move(files));
    }
}

// The files that come one after the other from aheadFrom_ on, which it moves behind them; none if there is another
// change first.
std::vector<StagedFile> Executor::nextBatch(const Plan& plan)
{
    std::vector<StagedFile> files;
    uint64_t bytes = 0;
    for (; aheadFrom_ < plan.changes.size() && files.size() < CopyAhead::kMostFiles; ++aheadFrom_) {
        const Change& change = plan.changes[aheadFrom_];
        if (!CanGoAhead(change) || bytes + change.size > CopyAhead::kMostBytes) {
            break;
        }
        bytes += change.size;
        files.emplace_back().change = aheadFrom_;
    }
    if (files.empty()) {
        ++aheadFrom_;
    }
    return files;
}

// With some to spare: where room is short, files of the trash make way for one file at a time.
bool Executor::hasRoomAhead(uint64_t bytes) const
{
    constexpr uint64_t kToSpare = uint64_t{4} << 20;
    for (const auto& [first, pending] : batches_) {
        bytes += pending;
    }
    std::optional<uint64_t> free;
    (void)os::ReadFreeSpace(phone_.root(), free);
    return !free || *free >= bytes + bytes / 4 + kToSpare;
}

bool Executor::makeBatch(const Plan& plan)
{
    StagedBatch batch = ahead_->take();
    batches_.pop_front();
    try {
        const bool areAllMade = makeBatch(plan, batch);
        if (!isLeftBehind_) {
            (void)RemovePlacedNote(phone_, batch.number);  // The next run finds its files recorded.
        }
        return areAllMade;
    } catch (...) {
        discard(plan, batch);
        throw;
    }
}

bool Executor::makeBatch(const Plan& plan, StagedBatch& batch)
{
    std::vector<Placed> placed;
    bool areAllMade = true;
    for (StagedFile& file : batch.files) {
        const Change& change = plan.changes[file.change];
        const bool isEnding = os::Interrupted() || !phone_.isStillThere();
        if (!isEnding && file.isReady && place(change, file, placed)) {
            continue;
        }
        areAllMade = recordPlaced(plan, placed) && areAllMade;
        next_ = file.change;
        hasFailed_ = false;
        Session::checkInterrupt();
        checkPhone();
        (void)os::RemoveFileIfThere(file.temporary);  // What stays is removed with the batch.
        areAllMade = make(change, plan) && areAllMade;
    }
    areAllMade = recordPlaced(plan, placed) && areAllMade;
    next_ = batch.files.back().change;
    return areAllMade;
}

bool Executor::place(const Change& change, StagedFile& file, std::vector<Placed>& placed)
{
    CopyRequest request;
    request.target = phone_.native(change.phonePath);
    request.mayReplace = change.kind == ChangeKind::kReplace;
    request.abilities = phone_.abilities();
    request.makeWay = way_.maker(change);
    const CopyResult result = PlaceCopy(request, file.temporary, file.copied);
    if (result.outcome != CopyOutcome::kDone) {
        return false;
    }
    file.temporary.clear();
    timesLost_ += result.timeKept ? 0u : 1u;
    noteLeft(change, result.copy, result.source.modified.nanoseconds);
    placed.push_back({file.change, {true, result.source.size, os::ToLocalTime(result.source.modified.seconds)}});
    return true;
}

// Once their folders have been flushed. What a stop leaves unrecorded is taken off the phone again.
bool Executor::recordPlaced(const Plan& plan, std::vector<Placed>& placed)
{
    std::vector<std::string> folders;
    folders.reserve(placed.size());
    for (const Placed& file : placed) {
        folders.push_back(os::ParentOf(phone_.native(plan.changes[file.change].phonePath)));
    }
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    const os::Status flushed = ahead_->flushFolders(folders);
    const std::vector<Placed> files = std::exchange(placed, {});
    bool areAllRecorded = true;
    size_t i = 0;
    try {
        for (; i < files.size(); ++i) {
            next_ = files[i].change;
            hasFailed_ = false;
            const Change& change = plan.changes[next_];
            if (flushed.ok()) {
                report_.progress.addBytes(files[i].written.size);
                areAllRecorded = finish(change, plan, files[i].written) && areAllRecorded;
                continue;
            }
            areAllRecorded = false;
            if (change.kind == ChangeKind::kPut) {
                takeBack(change);
            }
            fail(change, "it cannot be written to the phone: " + flushed.text());
            stopIfNothingCanBeWritten(flushed);
        }
    } catch (...) {
        for (++i; i < files.size(); ++i) {
            const Change& change = plan.changes[files[i].change];
            if (change.kind == ChangeKind::kPut) {
                takeBack(change);
            }
        }
        throw;
    }
    return areAllRecorded;
}

void Executor::discard(const Plan& plan, const StagedBatch& batch)
{
    for (const StagedFile& file : batch.files) {
        if (file.temporary.empty()) {
            continue;
        }
        (void)os::RemoveFileIfThere(file.temporary);  // The next run finds what stays by the journal.
        if (plan.changes[file.change].kind == ChangeKind::kPut) {
            (void)phone_.tidyAbove(file.phonePath);
        }
    }
    if (!isLeftBehind_) {
        (void)RemovePlacedNote(phone_, batch.number);
    }
}

// After a run that was stopped.
void Executor::discardAhead(const Plan& plan)
{
    if (ahead_) {
        ahead_->stop();
        while (ahead_->pending() > 0) {
            discard(plan, ahead_->take());
        }
    }
    ahead_.reset();
    batches_.clear();
    aheadFrom_ = 0;
}

}  // namespace kesta
