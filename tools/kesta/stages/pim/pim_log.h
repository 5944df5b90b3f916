// A phone's log of contacts and calendars: what is on the phone. It is appended to when the files have been written,
// and replaced when too much of it is stale; a journal on the PC makes the run after a killed one able to finish that.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "database/database.h"
#include "stages/pim/pim_log_rows.h"
#include "stages/pim/pim_phone_plan.h"
#include "stages/pim/pim_store_plan.h"
#include "state/pim_journal.h"
#include "sync/session.h"

namespace kesta {

/// What is to be done for one kind.
struct PimWork {
    PimKind kind = PimKind::kContacts;
    std::vector<PimSource> sources;
    std::vector<StoredPimFolder> stored;
    bool rootIsStored = false;
    PimStorePlans store;
    std::vector<PimLogRow> log;  // each entry once
    PimPhoneLog storedLog;       // what the database says, which a killed run may have left behind that
    bool logIsOurs = true;       // false: the database is to get the log as a whole
    PimPhonePlans phone;         // a file that does not get there keeps its old rows
};

/// Notes what is about to be written on the PC, and saves the logs at the end.
class PimLogKeeper : public Journal {
public:
    /// hasJournal: the last run has left one.
    PimLogKeeper(const Session& session, std::shared_ptr<std::vector<PimWork>> works, bool hasJournal)
        : database_(session.database),
          imei_(session.imei),
          report_(session.report),
          works_(std::move(works)),
          hasJournal_(hasJournal)
    {
    }

    void begin(const std::vector<std::string>& phonePaths) override;
    void end(bool isInOrder) override;

private:
    void write(const PimJournal& journal);
    void saveLog(const PimWork& work);
    [[nodiscard]] PimJournal plannedPaths() const;

    const Database& database_;
    std::string imei_;
    Report& report_;
    std::shared_ptr<std::vector<PimWork>> works_;
    bool hasJournal_;
    bool hasBegun_ = false;
};

}  // namespace kesta
