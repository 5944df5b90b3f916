// One run: what every stage may ask, and the two ways to go on with what it answers.
//
//     for (const auto& stage : stages) {
//         Plan plan = stage->plan(session);
//         runner.run(plan);
//     }
//
// A family is one Stage. It reads the PC, the database and the phone, and changes none of them.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/report.h"
#include "state/left_files.h"
#include "sync/deletion_guard.h"
#include "sync/phone_changes.h"
#include "sync/plan.h"
#include "sync/sync_options.h"

namespace kesta {

struct Session {
    const Database& database;
    std::string imei;
    std::string name;           // of the phone
    bool isKnown = false;       // to the database; not so a phone that only a preview has met
    const Phone& phone;         // as the stages before have left it, or would have
    const PhoneFolder& folder;  // as it is
    const SyncOptions& options;
    DeletionGuard& guard;
    LeftFiles& left;
    Report& report;
    std::vector<std::string> movedSources{};  // files and folders of the PC that are gone, and were found elsewhere

    /// Throws when the user has asked for an end.
    static void checkInterrupt();
};

/// What somebody has changed on the session's phone.
[[nodiscard]] PhoneChanges ChangesOf(Session& session);

class Stage {
public:
    virtual ~Stage() = default;
    [[nodiscard]] virtual Plan plan(Session& session) = 0;
};

/// Takes a plan further: the Executor makes its changes, the Preview tells them.
class Runner {
public:
    virtual ~Runner() = default;
    /// The phone for the stages to come.
    [[nodiscard]] virtual const Phone& phone() const = 0;
    virtual void run(const Plan& plan) = 0;
};

}  // namespace kesta
