#include "stages/pim/pim_stage.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

#include "base/text.h"
#include "os/local_time.h"
#include "os/system.h"
#include "phone/names.h"
#include "sync/compare.h"

namespace kesta {
namespace {

const std::vector<std::string>& FilesOf(PimKind kind, const SyncOptions& options)
{
    return kind == PimKind::kContacts ? options.contacts : options.calendars;
}

// The contents of all entries that a run has to do with, by their ids. Gathered when they are first asked for.
class EntryContents {
public:
    explicit EntryContents(const PimWork& work) : work_(work) {}

    [[nodiscard]] std::string titleOf(const std::string& id)
    {
        if (contents_.empty()) {
            gather();
        }
        const auto found = contents_.find(id);
        const std::string title = found == contents_.end() ? std::string() : TitleOfEntry(work_.kind, *found->second);
        return title.empty() ? id : title;
    }

private:
    void gather()
    {
        for (const StoredPimFolder& folder : work_.stored) {
            for (const PimEntry& entry : folder.entries) {
                contents_[entry.id] = &entry.bytes;
            }
        }
        for (const PimStorePlan& folder : work_.store.folders) {
            for (const PlannedPimEntry& planned : folder.entries) {
                contents_[planned.entry.id] = &planned.entry.bytes;
            }
        }
    }

    const PimWork& work_;
    std::unordered_map<std::string, const std::string*> contents_;
};

// What the log says now against what it is going to say.
struct LogRules : CompareRules {
    static std::string_view key(const PimLogRow& row) { return row.guid; }
    static bool isSame(const PimLogRow& before, const PimLogRow& after)
    {
        return FromLuid(before.luid).digest == FromLuid(after.luid).digest;
    }
};

// What happens to which entry of the file.
std::vector<std::string> EntriesOf(EntryContents& contents, const PimPhonePlan& file)
{
    std::vector<std::string> entries;
    const auto tell = [&](const Verb& verb, const std::string& id) {
        entries.push_back(fmt::format("{:<9} {}", verb.planned, contents.titleOf(id)));
    };
    static const std::vector<PimLogRow> kNone;
    const auto diff = Compare(file.oldRows, file.action == PimFileAction::kRemove ? kNone : file.rows, LogRules());
    for (const auto& item : diff.items) {
        if (item.state != Comparison::kSame) {
            tell(item.state == Comparison::kNew ? kAdded : kUpdated, item.wanted->guid);
        }
    }
    std::set<std::string> removed;
    for (const PimLogRow* row : diff.removed) {
        removed.insert(row->guid);
    }
    for (const std::string& id : removed) {
        tell(kRemoved, id);
    }
    return entries;
}

}  // namespace

Plan PimStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);  // of which this stage has none
    takeUpJournal(session, plan);
    works_->reserve(kPimKinds.size());
    for (const PimKind kind : kPimKinds) {
        if (!FilesOf(kind, session.options).empty() || journal_) {
            prepare(kind, session);
        }
    }
    // The store of both kinds first: the phone gets what it holds.
    for (const PimWork& work : *works_) {
        addStoreChanges(work, session, plan);
    }
    for (size_t i = 0; i < works_->size(); ++i) {
        addFileChanges((*works_)[i], *tallies_[i], plan);
    }
    if (!works_->empty()) {
        plan.journal = std::make_shared<PimLogKeeper>(session, works_, hasJournal_);
    }
    return plan;
}

void PimStage::takeUpJournal(Session& session, Plan& plan)
{
    if (!session.isKnown) {
        return;
    }
    const os::Status status = ReadPimJournal(session.imei, journal_);
    if (!status.ok()) {
        session.report.fail("the journal of contacts and calendars", status.text());
    }
    hasJournal_ = journal_ || !status.ok();
    if (!hasJournal_) {
        return;
    }
    session.report.note("the last sync of contacts and calendars was not finished.");
    for (const PimKind kind : kPimKinds) {
        const std::string temporary = fmt::format("{}/{}", TitleOf(kind), kTemporaryName);
        Change change;
        change.record = [this, temporary, &report = session.report](const Written&) {
            if (os::Status removed = phone_.removeFile(temporary); !removed.ok()) {
                report.fail(temporary, "what the last run left cannot be removed: " + removed.text());
            }
            return Result();
        };
        plan.add(std::move(change));
    }
}

void PimStage::prepare(PimKind kind, Session& session)
{
    PimWork work;
    work.kind = kind;
    if (session.isKnown && !readLog(work, session)) {
        return;
    }
    // Where no file is given only the log is put in order.
    const bool isGiven = !FilesOf(kind, session.options).empty();
    Tally& tally = isGiven ? session.report.summary.beginFamily(
                                 std::string(TitleOf(kind)), kind == PimKind::kContacts ? "contact" : "calendar item")
                           : session.report.summary.files;
    readSources(work, session);
    readStore(work);
    work.store = PlanPimStore({kind, work.sources, work.stored, session.guard});
    for (const FailedItem& refusal : work.store.refusals) {
        session.report.fail(refusal.path, refusal.reason);
    }
    static const std::set<std::string> kNone;
    PhoneChanges changes = ChangesOf(session);
    work.phone = PlanPimPhone(
        {kind, work.sources, work.store, work.log, journal_ ? journal_->paths : kNone, session.guard, changes},
        session.phone);
    for (const PimStorePlan& folder : work.store.folders) {
        tally.deferred += folder.deferred;
    }
    for (const PimPhonePlan& file : work.phone.files) {
        tally.deferred += file.deferred;
        if (file.waitsForSource) {
            session.report.note(
                fmt::format("what the phone has of {} stays as it is until that file can be read to its end.",
                            Printable(file.sourcePath)));
        }
    }
    works_->push_back(std::move(work));
    tallies_.push_back(&tally);
}

// False when the log is not this program's.
bool PimStage::readLog(PimWork& work, Session& session)
{
    const std::vector<PimLogRow> rows = records_.log(session.imei, work.kind);
    const bool isOurs = rows.empty() || records_.logProfile(session.imei, work.kind) == PimLogProfile(work.kind);
    if (!isOurs && !journal_) {
        session.report.fail(std::string(TitleOf(work.kind)),
                            "another program keeps this phone's log of them; they are left alone");
        return false;
    }
    const std::vector<PimLogRow> settled = journal_ ? journal_->rowsOf(work.kind).value_or(rows) : rows;
    std::map<std::string, PimLogRow> byGuid;
    for (const PimLogRow& row : settled) {
        byGuid[row.guid] = row;
    }
    for (auto& [guid, row] : byGuid) {
        work.log.push_back(std::move(row));
    }
    work.logIsInOrder = isOurs && work.log == SortedPimRows(rows);
    return true;
}

void PimStage::readSources(PimWork& work, Session& session)
{
    std::set<std::string> seen;
    for (const std::string& given : FilesOf(work.kind, session.options)) {
        std::string path;
        if (!os::CanonicalPath(given, path).ok()) {
            path = os::AbsolutePath(given);
        }
        if (!seen.insert(path).second) {
            continue;
        }
        PimSource& source = work.sources.emplace_back();
        source.path = path;
        if (os::LiesIn(path, session.folder.root())) {
            source.problem = "it lies on the phone itself";
        } else if (!IsValidUtf8(path)) {
            source.problem = "its path is not valid text";
        } else {
            source = ReadPimSource(work.kind, path);
        }
        if (!source.complete) {
            session.report.fail(path, source.problem + "; nothing of it is removed");
        }
    }
}

void PimStage::readStore(PimWork& work)
{
    const std::string root = PimRootFolder(work.kind).id;
    for (const PimFolder& folder : records_.folders(work.kind, {}, false)) {
        work.rootIsStored = work.rootIsStored || folder.id == root;
    }
    if (!work.rootIsStored) {
        return;
    }
    for (PimFolder& folder : records_.folders(work.kind, root, false)) {
        StoredPimFolder& stored = work.stored.emplace_back();
        stored.folder = std::move(folder);
        const bool isWanted = std::any_of(work.sources.begin(), work.sources.end(), [&](const PimSource& source) {
            return source.readable && IsOfPimSource(stored.folder.id, source.id);
        });
        if (!isWanted) {
            continue;
        }
        for (PimItem& item : records_.items(work.kind, stored.folder.id)) {
            stored.entries.push_back(ReadStored(work.kind, std::move(item)));
        }
    }
}

void PimStage::addStoreChanges(const PimWork& work, Session& session, Plan& plan)
{
    const bool hasNew = std::any_of(work.store.folders.begin(), work.store.folders.end(),
                                    [](const PimStorePlan& folder) { return folder.isNew; });
    if (hasNew && !work.rootIsStored) {
        addStep(plan, [this, kind = work.kind] {
            Require("DB_PIM_AddFolder", records_.addFolder(kind, PimRootFolder(kind)));
        });
    }
    for (const PimStorePlan& folder : work.store.folders) {
        addStoreFolder(work, folder, session, plan);
    }
}

void PimStage::addStep(Plan& plan, std::function<void()> step)
{
    Change change;
    change.record = [step = std::move(step)](const Written&) {
        step();
        return Result();
    };
    plan.add(std::move(change));
}

// The work lives as long as the plan: the plan's journal holds it.
void PimStage::addStoreFolder(const PimWork& work, const PimStorePlan& folder, Session& session, Plan& plan)
{
    const PimKind kind = work.kind;
    if (folder.isNew) {
        addStep(plan, [this, kind, &folder] { Require("DB_PIM_AddFolder", records_.addFolder(kind, folder.folder)); });
    }
    const size_t all = folder.changes();
    size_t done = 0;
    const auto addCounted = [&](std::function<void()> step) {
        addStep(plan, [kind, done, all, &session, step = std::move(step)] {
            session.report.progress.remark(fmt::format(" {}: {} of {} changes stored", TitleOf(kind), done, all));
            step();
        });
        ++done;
    };
    for (const PlannedPimEntry& planned : folder.entries) {
        if (planned.state == Comparison::kNew) {
            addCounted([this, kind, &folder, &entry = planned.entry] { addItem(kind, folder.folder, entry); });
        }
    }
    for (const PlannedPimEntry& planned : folder.entries) {
        if (planned.state == Comparison::kChanged) {
            addCounted([this, kind, &entry = planned.entry] {
                Require("DB_PIM_UpdateItem", records_.updateItem(kind, {entry.id, entry.bytes}));
            });
        }
    }
    const auto failure = std::make_shared<std::string>();
    for (const std::string& id : folder.removed) {
        // Another program may have removed it in the meantime: what counts is that it is gone.
        addCounted([this, &id, failure] {
            if (const Result result = records_.removeItem(id); !result.ok()) {
                *failure = "DB_PIM_DeleteItem failed: " + result.text();
            }
        });
    }
    if (all > 0) {
        addStep(plan, [this, kind, &folder, failure] { checkStored(kind, folder, *failure); });
    }
    if (folder.isObsolete) {
        addStep(plan, [this, &folder] { Require("DB_PIM_DeleteFolder", records_.removeFolder(folder.folder.id)); });
    }
}

void PimStage::addItem(PimKind kind, const PimFolder& folder, const PimEntry& entry)
{
    const PimItem item{entry.id, entry.bytes};
    Result result = records_.addItem(kind, folder.path, item);
    // An item that hangs in the air, since somebody removed its folder, keeps its id from being used again.
    if (!result.ok() && records_.removeItem(entry.id).ok()) {
        result = records_.addItem(kind, folder.path, item);
    }
    Require("DB_PIM_AddItem", result);
}

// Items are added by a folder's path, which another program's folder may share.
void PimStage::checkStored(PimKind kind, const PimStorePlan& folder, const std::string& failure)
{
    std::set<std::string> wanted, stored;
    for (const PlannedPimEntry& planned : folder.entries) {
        wanted.insert(planned.entry.id);
    }
    for (const PimItem& item : records_.items(kind, folder.folder.id)) {
        stored.insert(item.id);
    }
    if (stored == wanted) {
        return;
    }
    if (!failure.empty()) {
        throw DatabaseError(failure);
    }
    throw DatabaseError(fmt::format("the database's folder '{}' holds {} entries instead of {}", folder.folder.path,
                                    stored.size(), wanted.size()));
}

void PimStage::addFileChanges(PimWork& work, Tally& tally, Plan& plan)
{
    const auto contents = std::make_shared<EntryContents>(work);
    for (PimPhonePlan& file : work.phone.files) {
        Change change;
        change.tally = &tally;
        change.counts = {file.added, file.updated, 0, file.removed, file.unchanged, 0};
        file.isDone = file.action == PimFileAction::kKeep;
        if (file.action == PimFileAction::kKeep) {
            tally += change.counts;
            continue;
        }
        change.phonePath = file.phonePath;
        change.keepAs = file.keepAs;
        change.subject = file.phonePath.empty() ? file.sourcePath : file.phonePath;
        change.entries = [contents, &file] { return EntriesOf(*contents, file); };
        switch (file.action) {
            case PimFileAction::kRemove:
                change.kind = ChangeKind::kRemove;
                change.verb = kRemoved;
                break;
            case PimFileAction::kWrite:
                change.kind = ChangeKind::kReplace;
                change.verb = kWritten;
                change.size = file.text.size();
                change.text = std::move(file.text);
                break;
            default:
                change.kind = ChangeKind::kAdopt;
                change.verb = kRecorded;
        }
        // Without the file's time the next run looks into the file.
        change.record = [this, &file](const Written& written) {
            std::optional<LocalTime> modified = written.modified;
            os::FileInfo info;
            if (file.action == PimFileAction::kRecord && os::ReadInfo(phone_.native(file.phonePath), info).ok()) {
                modified = os::ToLocalTime(info.modified.seconds);
            }
            for (PimLogRow& row : file.rows) {
                if (!row.phoneTime) {
                    row.phoneTime = modified;
                }
            }
            file.isDone = true;
            return Result();
        };
        plan.add(std::move(change));
    }
}

}  // namespace kesta
