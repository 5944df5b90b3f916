#include "stages/pim/pim_carry_out.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "base/names.h"
#include "os/system.h"

namespace kesta {
namespace {

[[noreturn]] void Fail(std::string_view call, std::int32_t code)
{
    throw DatabaseError(fmt::format("{} failed: {}", call, ResultText(code)));
}

void Require(std::string_view call, std::int32_t code)
{
    if (code != 0) Fail(call, code);
}

// What the log is to hold.
std::vector<PimLogRow> RowsAfter(const PimWork& work)
{
    std::vector<PimLogRow> rows = work.phone.others;
    for (const PimPhonePlan& plan : work.phone.files) rows.insert(rows.end(), plan.rows.begin(), plan.rows.end());
    return SortedPimRows(std::move(rows));
}

bool IsLogAsPlanned(const PimWork& work)
{
    return work.logIsInOrder && RowsAfter(work) == SortedPimRows(work.log);
}

void Count(const PimPhonePlan& plan, FamilyCounts& counts)
{
    counts.added += plan.added;
    counts.updated += plan.updated;
    counts.removed += plan.removed;
    counts.unchanged += plan.unchanged;
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

void PimExecute::run(std::vector<PimWork>& works, bool hasJournal)
{
    for (const PimWork& work : works) store(work);
    if (summary_.stopped()) return;
    const PimJournal places = plannedPlaces(works);
    const bool logsStay = std::all_of(works.begin(), works.end(), IsLogAsPlanned);
    const bool isIdle = !hasJournal && logsStay && places.places.empty();
    if (!isIdle) writeJournal(places);
    if (summary_.stopped()) return;
    writeFiles(works);
    if (!isIdle) saveLogs(works, places);
}

PimJournal PimExecute::plannedPlaces(const std::vector<PimWork>& works)
{
    PimJournal journal;
    for (const PimWork& work : works)
        for (const PimPhonePlan& plan : work.phone.files)
            if (plan.action != PimFileAction::kKeep && !plan.phonePath.empty()) journal.places.insert(plan.phonePath);
    return journal;
}

void PimExecute::writeJournal(const PimJournal& journal)
{
    if (os::Status status = WritePimJournal(imei_, journal); !status.ok())
        summary_.stopWith(ExitCode::kFailure,
                          "the journal of contacts and calendars cannot be written: " + status.text());
}

// Also after a run that was stopped: the logs are to say what the phone has.
void PimExecute::saveLogs(const std::vector<PimWork>& works, const PimJournal& journal)
{
    PimJournal withRows = journal;
    for (const PimWork& work : works) withRows.rowsOf(work.kind) = RowsAfter(work);
    if (os::Status status = WritePimJournal(imei_, withRows); !status.ok())
        return summary_.stopWith(ExitCode::kFailure,
                                 "the journal of contacts and calendars cannot be written: " + status.text());
    for (const PimWork& work : works) saveLog(work);
    // What could not be written to its end may lie in its place all the same.
    const os::Status status = allFilesDone_ ? RemovePimJournal(imei_) : WritePimJournal(imei_, journal);
    if (!status.ok()) summary_.fail("the journal of contacts and calendars", "it cannot be removed: " + status.text());
}

bool PimExecute::mayGoOn()
{
    if (os::Interrupted()) summary_.stopWith(ExitCode::kInterrupted, "interrupted");
    return !summary_.stopped();
}

void PimExecute::store(const PimWork& work)
{
    const bool hasNew = std::any_of(work.store.folders.begin(), work.store.folders.end(),
                                    [](const PimStorePlan& plan) { return plan.isNew; });
    if (hasNew && !work.rootIsStored && mayGoOn())
        Require("DB_PIM_AddFolder", database_.addFolder(work.kind, PimRootFolder(work.kind)));
    for (const PimStorePlan& plan : work.store.folders)
        if (mayGoOn()) storeFolder(work, plan);
}

void PimExecute::storeFolder(const PimWork& work, const PimStorePlan& plan)
{
    if (plan.isNew) Require("DB_PIM_AddFolder", database_.addFolder(work.kind, plan.folder));
    std::size_t done = 0;
    const auto goesOn = [&] {
        progress_.remark(fmt::format(" {}: {} of {} changes stored", TitleOf(work.kind), done++,
                                     plan.added.size() + plan.updated.size() + plan.removed.size()));
        return mayGoOn();
    };
    for (const std::size_t i : plan.added)
        if (goesOn()) addItem(work, plan, plan.entries[i]);
    for (const std::size_t i : plan.updated)
        if (goesOn())
            Require("DB_PIM_UpdateItem", database_.updateItem(work.kind, {plan.entries[i].id, plan.entries[i].bytes}));
    std::string failure;
    for (const std::string& id : plan.removed) {
        if (!goesOn()) break;
        // Another program may have removed it in the meantime: what counts is that it is gone.
        if (const std::int32_t code = database_.removeItem(id); code != 0)
            failure = "DB_PIM_DeleteItem failed: " + ResultText(code);
    }
    if (summary_.stopped()) return;
    if (plan.changes()) checkStored(work, plan, failure);
    if (plan.isLeaving) Require("DB_PIM_DeleteFolder", database_.removeFolder(plan.folder.id));
}

void PimExecute::addItem(const PimWork& work, const PimStorePlan& plan, const PimEntry& entry)
{
    const PimItem item{entry.id, entry.bytes};
    std::int32_t code = database_.addItem(work.kind, plan.folder.path, item);
    // An item that hangs in the air, since somebody removed its folder, keeps its id from being used again.
    if (code != 0 && database_.removeItem(entry.id) == 0) code = database_.addItem(work.kind, plan.folder.path, item);
    Require("DB_PIM_AddItem", code);
}

// Items are added by a folder's path, which another program's folder may share.
void PimExecute::checkStored(const PimWork& work, const PimStorePlan& plan, const std::string& failure)
{
    std::set<std::string> wanted, stored;
    for (const PimEntry& entry : plan.entries) wanted.insert(entry.id);
    for (const PimItem& item : database_.items(work.kind, plan.folder.id)) stored.insert(item.id);
    if (stored == wanted) return;
    if (!failure.empty()) throw DatabaseError(failure);
    throw DatabaseError(fmt::format("the database's folder '{}' holds {} entries instead of {}", plan.folder.path,
                                    stored.size(), wanted.size()));
}

void PimExecute::writeFiles(std::vector<PimWork>& works)
{
    std::size_t files = 0;
    std::uint64_t bytes = 0;
    for (const PimWork& work : works) {
        for (const PimPhonePlan& plan : work.phone.files) {
            if (plan.action == PimFileAction::kKeep) continue;
            ++files;
            if (plan.action == PimFileAction::kWrite) bytes += plan.text.size();
        }
    }
    progress_.start(files, bytes);
    for (PimWork& work : works) {
        for (PimPhonePlan& plan : work.phone.files) {
            if (execute(plan)) {
                Count(plan, *work.counts);
            } else {
                plan.rows = plan.oldRows;
                allFilesDone_ = false;
            }
        }
    }
    progress_.finish();
}

bool PimExecute::execute(PimPhonePlan& plan)
{
    if (plan.action == PimFileAction::kKeep) return true;
    if (mayGoOn() && !phone_.isStillThere()) summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
    if (summary_.stopped()) {
        ++summary_.notReached;
        return false;
    }
    if (plan.action == PimFileAction::kRemove) {
        if (!plan.phonePath.empty()) {
            if (os::Status status = phone_.removeFile(plan.phonePath); !status.ok()) {
                failOnPhone(plan, "it cannot be removed from the phone", status);
                return false;
            }
        }
        progress_.endFile("removed", plan.phonePath.empty() ? plan.sourcePath : plan.phonePath, 0);
        return true;
    }
    if (plan.action == PimFileAction::kWrite && !write(plan)) return false;
    setPhoneTimes(plan);
    const bool isWritten = plan.action == PimFileAction::kWrite;
    progress_.endFile(isWritten ? "written" : "recorded", plan.phonePath, isWritten ? plan.text.size() : 0);
    return true;
}

bool PimExecute::write(PimPhonePlan& plan)
{
    if (os::Status status = phone_.makeFolders(plan.phonePath); !status.ok()) {
        failOnPhone(plan, "its folder cannot be made on the phone", status);
        return false;
    }
    const std::string path = phone_.native(plan.phonePath);
    const std::string temporary = os::Join(os::ParentOf(path), kTemporaryName);
    if (os::Status status = os::WriteText(path, temporary, plan.text); !status.ok()) {
        failOnPhone(plan, "it cannot be written to the phone", status);
        return false;
    }
    return true;
}

// Without the file's time the next run looks into the file.
void PimExecute::setPhoneTimes(PimPhonePlan& plan) const
{
    os::FileInfo info;
    if (!os::ReadInfo(phone_.native(plan.phonePath), info).ok()) return;
    for (PimLogRow& row : plan.rows)
        if (!row.phoneTime) row.phoneTime = ToLocalTime(info.modified.seconds);
}

void PimExecute::failOnPhone(const PimPhonePlan& plan, const std::string& what, const os::Status& status)
{
    summary_.fail(plan.phonePath, fmt::format("{}: {}", what, status.text()));
    progress_.endFile("failed", plan.phonePath, plan.text.size());
    if (!phone_.isStillThere()) return summary_.stopWith(ExitCode::kPhoneGone, "the phone went away");
    if (status.failure() == os::Failure::kFull) return summary_.stopWith(ExitCode::kPhoneFull, "the phone is full");
    if (status.failure() == os::Failure::kReadOnly)
        summary_.stopWith(ExitCode::kPhoneReadOnly, "the phone is read-only");
}

// A log cannot be changed, only cleared and appended to; where nothing old changes, appending will do.
void PimExecute::saveLog(const PimWork& work)
{
    const std::vector<PimLogRow> after = RowsAfter(work), before = SortedPimRows(work.log);
    if (IsLogAsPlanned(work)) return;
    const auto byGuid = [](const PimLogRow& a, const PimLogRow& b) { return a.guid < b.guid; };
    const bool onlyNew = work.logIsInOrder && std::all_of(before.begin(), before.end(), [&](const PimLogRow& row) {
                             const auto place = std::lower_bound(after.begin(), after.end(), row, byGuid);
                             return place != after.end() && *place == row;
                         });
    std::vector<PimLogRow> rows = after;
    if (onlyNew)
        std::erase_if(
            rows, [&](const PimLogRow& row) { return std::binary_search(before.begin(), before.end(), row, byGuid); });
    else
        Require("DB_PIMLOG_ClearAll", database_.clearLog(imei_, work.kind));
    Require("DB_PIMLOG_SaveLog", database_.appendToLog(imei_, work.kind, rows));
    if (SortedPimRows(database_.log(imei_, work.kind)) != after)
        throw DatabaseError("DB_PIMLOG_SaveLog failed: the log does not hold what was saved");
    if (!onlyNew || before.empty())
        Require("DB_PIMLOG_SetPimProfile", database_.setLogProfile(imei_, work.kind, PimLogProfile(work.kind)));
}

}  // namespace kesta
