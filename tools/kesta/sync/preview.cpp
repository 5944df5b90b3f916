#include "sync/preview.h"

#include <fmt/format.h>

#include "base/text.h"

namespace kesta {

void PlannedPhone::make(const Change& change)
{
    if (change.phonePath.empty()) {
        return;
    }
    if (!change.keepAs.empty()) {
        changed_[change.keepAs] = find(change.phonePath);
    }
    if (change.kind == ChangeKind::kMove) {
        changed_[change.phonePath] = find(change.movedFrom);
        changed_[change.movedFrom] = {};
    } else if (change.isToWrite()) {
        changed_[change.phonePath] = {PhoneEntry::kFile, change.size, 0};
    } else if (change.kind == ChangeKind::kRemove) {
        changed_[change.phonePath] = {};
    }
}

PhoneFile PlannedPhone::find(const std::string& phonePath) const
{
    const auto changed = changed_.find(phonePath);
    return changed == changed_.end() ? phone_.find(phonePath) : changed->second;
}

void Preview::run(const Plan& plan)
{
    *plan.tally += plan.found;
    const Room room = MeasureRoom(plan, phone_, folder_, trash_);
    if (room.needed > 0) {
        report_.progress.say("Room      " + room.text(), room.event());
    }
    if (!room.fits() && !options_.force) {
        report_.summary.stopWith(ExitCode::kPhoneFull, "the phone has not enough room: " + room.text());
    }
    for (const Change& change : plan.changes) {
        (change.tally != nullptr ? *change.tally : *plan.tally) += change.counts;
        if (!change.pcFile.empty() && change.isToWrite()) {
            report_.summary.bytes += change.size;
        }
        phone_.make(change);
        if (!change.keepAs.empty()) {
            report_.summary.kept.push_back({change.phonePath, change.keepAs});
            if (!report_.isQuiet) {
                report_.progress.say(fmt::format("{:<9} {}", kKept.planned, Printable(change.keepAs)),
                                     {"kept", {{"path", change.phonePath}, {"kept_as", change.keepAs}}});
            }
        }
        if (change.verb.planned[0] == '\0' || report_.isQuiet) {
            continue;
        }
        report_.progress.say(fmt::format("{:<9} {}", change.verb.planned, Printable(change.name())),
                             {"file",
                              {{"action", change.verb.planned},
                               {"path", change.name()},
                               {"size", change.isToWrite() ? change.size : uint64_t{0}}}});
        if (!change.entries) {
            continue;
        }
        for (const std::string& entry : change.entries()) {
            report_.progress.say(fmt::format("{:<9}   {}", "", Printable(entry)),
                                 {"entry", {{"path", change.name()}, {"text", entry}}});
        }
    }
}

}  // namespace kesta
