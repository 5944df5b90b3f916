// What a sync has to do on a phone, so that its address books and calendars are what the store holds. Changes nothing.
//
// A folder of the store is one file on the phone. The phone's log says what the phone has: a row for each entry, with
// the file that holds it and the digest of its contents.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "phone/phone_view.h"
#include "stages/pim/pim_store_plan.h"
#include "sync/deletion_guard.h"
#include "sync/phone_changes.h"

namespace kesta {

struct PimPhoneInput {
    PimKind kind = PimKind::kContacts;
    const std::vector<PimSource>& sources;
    const PimStorePlans& store;
    const std::vector<PimLogRow>& log;   // all of the kind
    const std::set<std::string>& owned;  // phone paths that the last run, which was cut short, was about to write
    DeletionGuard& guard;
    PhoneChanges& changes;
};

enum class PimFileAction {
    kKeep,
    kRecord,  // lies on the phone already, with these contents: only the log is to say so
    kWrite,
    kRemove
};

struct PimPhonePlan {
    PimFileAction action = PimFileAction::kKeep;
    std::string sourcePath;  // on the PC
    std::string phonePath;   // empty for a file to be removed that is not there
    std::string text;        // to be written
    std::string keepAs;      // for a file that somebody has changed on the phone
    size_t added = 0, updated = 0, removed = 0, unchanged = 0;
    size_t deferred = 0;          // removals for which the whole file is left as it is
    bool waitsForSource = false;  // it is left as it is because the file of the PC is not known to be complete
    bool isDone = false;          // executed: rows holds, and no longer oldRows
    std::vector<PimLogRow> oldRows;
    std::vector<PimLogRow> rows;  // once it is executed; without a phone time where it is the file's
};

struct PimPhonePlans {
    std::vector<PimPhonePlan> files;
    std::vector<PimLogRow> others;  // rows that this run has nothing to do with
};

[[nodiscard]] PimPhonePlans PlanPimPhone(const PimPhoneInput& input, const Phone& phone);

}  // namespace kesta
