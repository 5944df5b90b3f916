// Executes what was planned for contacts and calendars: the store first, then the phone, then the phone's log, so
// that a run that is killed is made good by the next one.
#pragma once

#include <string>
#include <vector>

#include "database/pim.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "stages/pim/pim_phone_plan.h"
#include "stages/pim/pim_store_plan.h"
#include "state/pim_journal.h"

namespace kesta {

/// What is to be done for one kind.
struct PimWork {
    PimKind kind = PimKind::kContacts;
    FamilyCounts* counts = nullptr;  // null: only the log is to be put right
    std::vector<PimSource> sources;
    std::vector<StoredPimFolder> stored;
    bool rootIsStored = false;
    PimStorePlans store;
    std::vector<PimLogRow> log;  // each entry once
    bool logIsInOrder = true;    // false: the database holds something else, and are to get the log as a whole
    PimPhonePlans phone;
};

/// What a log's profile says: that it is this program's, and in which form.
[[nodiscard]] std::string PimLogProfile(PimKind kind);

/// By their entries' ids.
[[nodiscard]] std::vector<PimLogRow> SortedPimRows(std::vector<PimLogRow> rows);

class PimExecute {
public:
    PimExecute(PimRecords& database, std::string imei, PhoneFolder& phone, Progress& progress, Summary& summary)
        : database_(database), imei_(std::move(imei)), phone_(phone), progress_(progress), summary_(summary)
    {
    }

    /// hasJournal: the last run has left one. Throws DatabaseError and PhoneError.
    void run(std::vector<PimWork>& works, bool hasJournal);

private:
    void store(const PimWork& work);
    void storeFolder(const PimWork& work, const PimStorePlan& plan);
    void addItem(const PimWork& work, const PimStorePlan& plan, const PimEntry& entry);
    void checkStored(const PimWork& work, const PimStorePlan& plan, const std::string& failure);
    void writeJournal(const PimJournal& journal);
    [[nodiscard]] static PimJournal plannedPlaces(const std::vector<PimWork>& works);
    void saveLogs(const std::vector<PimWork>& works, const PimJournal& journal);
    void writeFiles(std::vector<PimWork>& works);
    [[nodiscard]] bool execute(PimPhonePlan& plan);
    [[nodiscard]] bool write(PimPhonePlan& plan);
    void setPhoneTimes(PimPhonePlan& plan) const;
    void saveLog(const PimWork& work);
    [[nodiscard]] bool mayGoOn();
    void failOnPhone(const PimPhonePlan& plan, const std::string& what, const os::Status& status);

    PimRecords& database_;
    std::string imei_;
    PhoneFolder& phone_;
    Progress& progress_;
    Summary& summary_;
    bool allFilesDone_ = true;
};

}  // namespace kesta
