// Contacts and calendars: the database's store is brought up to the files of the PC, then the phone up to the store.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "stages/pim/pim_log.h"
#include "sync/session.h"

namespace kesta {

enum class PimAim {
    kSync,
    kForget  // the files that are given are to go, whatever the PC has
};

class PimStage : public Stage {
public:
    /// The folder of the phone is for what a run that was cut short has left.
    PimStage(const Database& database, PhoneFolder& phone, PimAim aim = PimAim::kSync)
        : store_(database.pimStore()), phone_(phone), aim_(aim)
    {
    }
    [[nodiscard]] Plan plan(Session& session) override;

private:
    void takeUpJournal(Session& session, Plan& plan);
    void prepare(PimKind kind, Session& session);

    kesta_db::PimStore store_;
    PhoneFolder& phone_;
    PimAim aim_;
    bool hasJournal_ = false;
    std::optional<PimJournal> journal_;  // none as well when it cannot be read: the run writes another one
    std::vector<Tally*> tallies_;        // of each work
    std::shared_ptr<std::vector<PimWork>> works_ = std::make_shared<std::vector<PimWork>>();
};

}  // namespace kesta
