#include "stages/pim/pim_stage.h"

#include <fmt/format.h>

#include <set>

#include "base/text.h"
#include "phone/names.h"
#include "stages/pim/pim_file_changes.h"
#include "stages/pim/pim_reading.h"
#include "stages/pim/pim_store_changes.h"

namespace kesta {

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
        AddPimStoreChanges(work, store_, session, plan);
    }
    for (size_t i = 0; i < works_->size(); ++i) {
        AddPimFileChanges((*works_)[i], *tallies_[i], phone_, plan);
    }
    for (const PimWork& work : *works_) {
        for (const PimSource& source : work.sources) {
            if (!source.isMoved) {
                continue;
            }
            Change change;
            change.needsAllBefore = true;
            change.record = [path = source.path, &session](const Written&) { session.movedSources.push_back(path); };
            plan.add(std::move(change));
        }
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
        };
        plan.add(std::move(change));
    }
}

void PimStage::prepare(PimKind kind, Session& session)
{
    PimWork work;
    work.kind = kind;
    if (session.isKnown && !ReadPimLog(journal_, session, work)) {
        return;
    }
    // Where no file is given only the log is put in order.
    const bool isGiven = !FilesOf(kind, session.options).empty();
    Tally& tally = isGiven ? session.report.summary.beginFamily(
                                 std::string(TitleOf(kind)), kind == PimKind::kContacts ? "contact" : "calendar item")
                           : session.report.summary.files;
    ReadPimSources(aim_, session, work);
    AddMovedPimSources(store_, session, work);
    ReadPimStore(store_, work);
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

}  // namespace kesta
