#include "stages/pim/sync_pim.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "base/names.h"
#include "base/text.h"
#include "os/system.h"
#include "stages/pim/pim_carry_out.h"

namespace kesta {
namespace {

class PhoneOfRun : public PimPhoneView {
public:
    explicit PhoneOfRun(const PhoneFolder& phone) : phone_(phone) {}

    [[nodiscard]] PhoneFile find(const std::string& phonePath) const override { return phone_.find(phonePath); }

    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const override
    {
        // A file in the folder's place shows when something is to be written there.
        if (phone_.find(folder).entry != PhoneEntry::kOther) return {};
        std::vector<os::DirectoryEntry> entries;
        if (os::Status status = os::ListDirectory(phone_.native(folder), entries); !status.ok())
            throw PhoneError(fmt::format("the phone cannot be read: {}: {}", folder, status.text()));
        std::vector<std::string> names;
        for (os::DirectoryEntry& entry : entries)
            if (entry.valid) names.push_back(std::move(entry.name));
        return names;
    }

    [[nodiscard]] bool holds(const std::string& phonePath, const std::string& text) const override
    {
        std::string contents;
        return os::ReadText(phone_.native(phonePath), contents).ok() && contents == text;
    }

private:
    const PhoneFolder& phone_;
};

class PimRun {
public:
    PimRun(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
           DeletionGuard& guard, Progress& progress, Summary& summary)
        : pim_(database),
          imei_(imei),
          phone_(phone),
          options_(options),
          guard_(guard),
          progress_(progress),
          summary_(summary)
    {
        isKnown_ = !imei.empty() && database.phone(imei).has_value();
    }

    void run()
    {
        takeUpJournal();
        if (summary_.stopped()) return;
        std::vector<PimWork> works;
        for (const PimKind kind : kPimKinds) {
            const bool isGiven = !filesOf(kind).empty();
            if (isGiven || journal_) prepare(kind, isGiven, works);
        }
        if (options_.dryRun) return preview(works);
        guard_.save(summary_);
        PimExecute(pim_, imei_, phone_, progress_, summary_).run(works, hasJournal_);
    }

private:
    [[nodiscard]] const std::vector<std::string>& filesOf(PimKind kind) const
    {
        return kind == PimKind::kContacts ? options_.contacts : options_.calendars;
    }

    void takeUpJournal()
    {
        if (!isKnown_) return;
        const os::Status status = ReadPimJournal(imei_, journal_);
        if (!status.ok()) summary_.fail("the journal of contacts and calendars", status.text());
        hasJournal_ = journal_ || !status.ok();
        if (!hasJournal_) return;
        summary_.notes.emplace_back("the last sync of contacts and calendars was not finished.");
        if (options_.dryRun) return;
        for (const PimKind kind : kPimKinds) {
            const std::string temporary = fmt::format("{}/{}", TitleOf(kind), kTemporaryName);
            if (os::Status removed = phone_.removeFile(temporary); !removed.ok())
                summary_.fail(temporary, "what the last run left cannot be removed: " + removed.text());
        }
    }

    void prepare(PimKind kind, bool isGiven, std::vector<PimWork>& works)
    {
        PimWork work;
        work.kind = kind;
        if (isKnown_ && !readLog(work)) return;
        const bool isContacts = kind == PimKind::kContacts;
        if (isGiven)
            work.counts = &summary_.beginFamily(std::string(TitleOf(kind)), isContacts ? "contact" : "calendar item");
        readSources(work);
        readStore(work);
        work.store = PlanPimStore({kind, work.sources, work.stored, guard_});
        for (FailedItem& refusal : work.store.refusals) summary_.failures.push_back(std::move(refusal));
        static const std::set<std::string> kNone;
        work.phone =
            PlanPimPhone({kind, work.sources, work.store, work.log, journal_ ? journal_->places : kNone, guard_},
                         PhoneOfRun(phone_));
        report(work);
        works.push_back(std::move(work));
    }

    // False when the log is not this program's.
    [[nodiscard]] bool readLog(PimWork& work)
    {
        const std::vector<PimLogRow> rows = pim_.log(imei_, work.kind);
        const bool isOurs = rows.empty() || pim_.logProfile(imei_, work.kind) == PimLogProfile(work.kind);
        if (!isOurs && !journal_) {
            summary_.fail(std::string(TitleOf(work.kind)),
                          "another program keeps this phone's log of them; they are left alone");
            return false;
        }
        const std::vector<PimLogRow> settled = journal_ ? journal_->rowsOf(work.kind).value_or(rows) : rows;
        std::map<std::string, PimLogRow> byGuid;
        for (const PimLogRow& row : settled) byGuid[row.guid] = row;
        for (auto& [guid, row] : byGuid) work.log.push_back(std::move(row));
        work.logIsInOrder = isOurs && work.log == SortedPimRows(rows);
        return true;
    }

    void readSources(PimWork& work)
    {
        for (const std::string& given : filesOf(work.kind)) {
            std::string path;
            if (!os::CanonicalPath(given, path).ok()) path = os::AbsolutePath(given);
            const bool isRepeated = std::any_of(work.sources.begin(), work.sources.end(),
                                                [&](const PimSource& source) { return source.path == path; });
            if (isRepeated) continue;
            PimSource& source = work.sources.emplace_back();
            source.path = path;
            if (os::LiesIn(path, phone_.root()))
                source.problem = "it lies on the phone itself";
            else if (!IsValidUtf8(path))
                source.problem = "its path is not valid text";
            else
                source = ReadPimSource(work.kind, path);
            if (!source.complete) summary_.fail(path, source.problem + "; nothing of it is removed");
        }
    }

    void readStore(PimWork& work)
    {
        const std::string root = PimRootFolder(work.kind).id;
        for (const PimFolder& folder : pim_.folders(work.kind, {}, false))
            if (folder.id == root) work.rootIsStored = true;
        if (!work.rootIsStored) return;
        for (PimFolder& folder : pim_.folders(work.kind, root, false)) {
            StoredPimFolder& stored = work.stored.emplace_back();
            stored.folder = std::move(folder);
            const bool isWanted = std::any_of(work.sources.begin(), work.sources.end(), [&](const PimSource& source) {
                return source.readable && IsOfPimSource(stored.folder.id, source.id);
            });
            if (!isWanted) continue;
            for (PimItem& item : pim_.items(work.kind, stored.folder.id))
                stored.entries.push_back(ReadStored(work.kind, std::move(item)));
        }
    }

    void report(const PimWork& work)
    {
        for (const PimStorePlan& plan : work.store.folders) work.counts->deferred += plan.deferred.size();
        for (const PimPhonePlan& plan : work.phone.files) {
            work.counts->deferred += plan.deferred;
            if (plan.waitsForSource)
                summary_.notes.push_back(
                    fmt::format("what the phone has of {} stays as it is until that file can be read to its end.",
                                Printable(plan.sourcePath)));
        }
    }

    void preview(const std::vector<PimWork>& works)
    {
        for (const PimWork& work : works) {
            for (const PimPhonePlan& plan : work.phone.files) {
                work.counts->added += plan.added;
                work.counts->updated += plan.updated;
                work.counts->removed += plan.removed;
                work.counts->unchanged += plan.unchanged;
                if (plan.action == PimFileAction::kKeep || options_.quiet) continue;
                const char* verb = plan.action == PimFileAction::kRemove  ? "remove"
                                   : plan.action == PimFileAction::kWrite ? "write"
                                                                          : "record";
                const std::string& place = plan.phonePath.empty() ? plan.sourcePath : plan.phonePath;
                progress_.say(fmt::format("{:<9} {}", verb, Printable(place)));
            }
        }
    }

    PimRecords pim_;
    std::string imei_;
    PhoneFolder& phone_;
    const SyncOptions& options_;
    DeletionGuard& guard_;
    Progress& progress_;
    Summary& summary_;
    bool isKnown_ = false;
    bool hasJournal_ = false;
    std::optional<PimJournal> journal_;  // nothing as well when it cannot be read: the run writes another one
};

}  // namespace

void SyncPim(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
             DeletionGuard& guard, Progress& progress, Summary& summary)
{
    try {
        PimRun(database, imei, phone, options, guard, progress, summary).run();
    } catch (const DatabaseError& failure) {
        summary.stopWith(ExitCode::kDatabase, failure.what());
    } catch (const PhoneError& failure) {
        summary.stopWith(ExitCode::kPhoneGone, failure.what());
    }
}

}  // namespace kesta
