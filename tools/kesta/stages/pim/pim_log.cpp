#include "stages/pim/pim_log.h"

#include <algorithm>

namespace kesta {
namespace {

// What the log is to hold.
std::vector<PimLogRow> RowsAfter(const PimWork& work)
{
    std::vector<PimLogRow> rows = work.phone.others;
    for (const PimPhonePlan& plan : work.phone.files) {
        const auto& ofFile = plan.isDone ? plan.rows : plan.oldRows;
        rows.insert(rows.end(), ofFile.begin(), ofFile.end());
    }
    return SortedPimRows(std::move(rows));
}

bool IsLogAsPlanned(const PimWork& work)
{
    return work.logIsOurs && RowsAfter(work) == work.storedLog.rows;
}

// Also when it is not in order, or would be more than half stale.
bool IsLogToBeWrittenAnew(const PimWork& work)
{
    if (IsLogAsPlanned(work)) {
        return false;
    }
    const size_t current = RowsAfter(work).size();
    const size_t all = work.storedLog.stored + PimRowsToAppend(work.storedLog.rows, RowsAfter(work)).size();
    return !work.logIsOurs || (all - current) * 2 > all;
}

}  // namespace

PimJournal PimLogKeeper::plannedPaths() const
{
    PimJournal journal;
    for (const PimWork& work : *works_) {
        for (const PimPhonePlan& plan : work.phone.files) {
            if (plan.action != PimFileAction::kKeep && !plan.phonePath.empty()) {
                journal.paths.insert(plan.phonePath);
            }
        }
    }
    return journal;
}

void PimLogKeeper::begin(const std::vector<std::string>& /*phonePaths*/)
{
    PimJournal journal = plannedPaths();
    for (const PimWork& work : *works_) {
        if (hasJournal_) {
            journal.rowsOf(work.kind) = work.log;  // The database need not hold them.
        }
    }
    write(journal);
    hasBegun_ = true;
}

void PimLogKeeper::write(const PimJournal& journal)
{
    if (os::Status status = WritePimJournal(imei_, journal); !status.ok()) {
        throw StopRun(ExitCode::kFailure, "the journal of contacts and calendars cannot be written: " + status.text());
    }
}

// Also after a run that was stopped: the logs are to say what the phone has.
void PimLogKeeper::end(bool /*isInOrder*/)
{
    if (!hasJournal_ && !hasBegun_ && std::all_of(works_->begin(), works_->end(), IsLogAsPlanned)) {
        return;
    }
    const bool areAllDone = std::all_of(works_->begin(), works_->end(), [](const PimWork& work) {
        return std::all_of(work.phone.files.begin(), work.phone.files.end(),
                           [](const PimPhonePlan& plan) { return plan.isDone; });
    });
    if (!hasBegun_ && !areAllDone) {
        return;  // What the last run has left is still to be done.
    }
    const PimJournal paths = plannedPaths();
    PimJournal withRows = paths;
    bool isAnyAnew = hasJournal_;
    for (const PimWork& work : *works_) {
        withRows.rowsOf(work.kind) = RowsAfter(work);
        isAnyAnew = isAnyAnew || IsLogToBeWrittenAnew(work);
    }
    if (isAnyAnew) {
        write(withRows);  // Rows that are appended, or not yet, are made good by the next run without it.
    }
    for (const PimWork& work : *works_) {
        saveLog(work);
    }
    // What could not be written to its end may lie there all the same.
    const os::Status status = areAllDone ? RemovePimJournal(imei_) : WritePimJournal(imei_, paths);
    if (!status.ok()) {
        report_.fail("the journal of contacts and calendars", "it cannot be removed: " + status.text());
    }
}

void PimLogKeeper::saveLog(const PimWork& work)
{
    if (IsLogAsPlanned(work)) {
        return;
    }
    const std::vector<PimLogRow> after = RowsAfter(work);
    std::vector<PimLogRow> rows = PimRowsToAppend(work.storedLog.rows, after);
    const bool isAnew = IsLogToBeWrittenAnew(work);
    kesta_db::PimSyncLog log = database_.pimLog(imei_, TypeOf(work.kind));
    if (isAnew) {
        log.clear();
        rows = after;
    }
    log.append(rows);
    if (CurrentPimRows(log.rows()) != after) {
        throw StopRun(ExitCode::kDatabase, "DB_PIMLOG_SaveLog failed: the log does not hold what was saved");
    }
    if (isAnew || work.storedLog.profile.empty()) {
        log.setProfile(PimLogProfile(work.kind));
    }
}

}  // namespace kesta
