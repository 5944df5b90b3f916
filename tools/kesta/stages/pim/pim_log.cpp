#include "stages/pim/pim_log.h"

#include <fmt/format.h>

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
    return work.logIsInOrder && RowsAfter(work) == SortedPimRows(work.log);
}

}  // namespace

std::vector<PimLogRow> SortedPimRows(std::vector<PimLogRow> rows)
{
    std::sort(rows.begin(), rows.end(), [](const PimLogRow& a, const PimLogRow& b) { return a.guid < b.guid; });
    return rows;
}

std::string PimLogProfile(PimKind kind)
{
    return fmt::format("kesta 1 {}", KeyOf(kind));
}

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
    write(plannedPaths());
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
    for (const PimWork& work : *works_) {
        withRows.rowsOf(work.kind) = RowsAfter(work);
    }
    write(withRows);
    for (const PimWork& work : *works_) {
        saveLog(work);
    }
    // What could not be written to its end may lie there all the same.
    const os::Status status = areAllDone ? RemovePimJournal(imei_) : WritePimJournal(imei_, paths);
    if (!status.ok()) {
        report_.fail("the journal of contacts and calendars", "it cannot be removed: " + status.text());
    }
}

// A log cannot be changed, only cleared and appended to; where nothing old changes, appending will do.
void PimLogKeeper::saveLog(const PimWork& work)
{
    const std::vector<PimLogRow> after = RowsAfter(work), before = SortedPimRows(work.log);
    if (IsLogAsPlanned(work)) {
        return;
    }
    const auto byGuid = [](const PimLogRow& a, const PimLogRow& b) { return a.guid < b.guid; };
    const bool onlyNew = work.logIsInOrder && std::all_of(before.begin(), before.end(), [&](const PimLogRow& row) {
                             const auto found = std::lower_bound(after.begin(), after.end(), row, byGuid);
                             return found != after.end() && *found == row;
                         });
    kesta_db::PimSyncLog log = database_.pimLog(imei_, TypeOf(work.kind));
    std::vector<PimLogRow> rows = after;
    if (onlyNew) {
        std::erase_if(
            rows, [&](const PimLogRow& row) { return std::binary_search(before.begin(), before.end(), row, byGuid); });
    } else {
        log.clear();
    }
    log.append(rows);
    if (SortedPimRows(log.rows()) != after) {
        throw StopRun(ExitCode::kDatabase, "DB_PIMLOG_SaveLog failed: the log does not hold what was saved");
    }
    if (!onlyNew || before.empty()) {
        log.setProfile(PimLogProfile(work.kind));
    }
}

}  // namespace kesta
