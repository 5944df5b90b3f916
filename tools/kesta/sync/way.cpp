#include "sync/way.h"

#include <fmt/format.h>

#include <utility>

#include "base/text.h"
#include "os/local_time.h"
#include "os/system.h"

namespace kesta {

void Way::expire()
{
    if (std::exchange(hasExpired_, true)) {
        return;
    }
    if (os::Status status = trash_.expire(); !status.ok()) {
        report_.note("old files cannot be removed from the phone's trash: " + status.text());
    }
}

os::Status Way::make(const Change& change)
{
    if (change.kind != ChangeKind::kReplace && change.kind != ChangeKind::kRemove) {
        return {};
    }
    if (!change.keepAs.empty()) {
        return keep(change);
    }
    if (options_.noTrash || isTrashRefused_) {
        return {};
    }
    // What takes the file's place has its folder flushed.
    const os::Flush flush = change.kind == ChangeKind::kReplace ? os::Flush::kLater : os::Flush::kNow;
    if (os::Status status = trash_.take(change.phonePath, flush); !status.ok()) {
        if (const auto reason = phone_.whyNothingCanBeWritten(status);
            reason && status.failure() != os::Failure::kFull) {
            throw *reason;
        }
        isTrashRefused_ = true;
        report_.note("the phone does not let files be moved to the trash, they are removed: " + status.text());
    }
    return {};
}

os::Status Way::keep(const Change& change)
{
    if (phone_.find(change.phonePath).entry == PhoneEntry::kNothing) {
        return {};  // It has made way already.
    }
    if (os::Status status = phone_.move(change.phonePath, change.keepAs); !status.ok()) {
        return status;
    }
    const std::string& path = change.subject.empty() ? change.phonePath : change.subject;
    left_.keep({path, change.phonePath, change.keepAs, os::ToLocalTime(os::Now())});
    report_.summary.kept.push_back({change.phonePath, change.keepAs});
    if (!report_.isQuiet) {
        report_.progress.say(fmt::format("{:<9} {}", kKept.done, Printable(change.keepAs)),
                             {"kept", {{"path", change.phonePath}, {"kept_as", change.keepAs}}});
    }
    return {};
}

std::function<os::Status()> Way::maker(const Change& change)
{
    return [this, &change, isMade = false]() mutable -> os::Status {
        if (isMade) {
            return {};
        }
        os::Status status = make(change);
        isMade = status.ok();
        return status;
    };
}

bool Way::hasRoomFor(uint64_t bytes)
{
    std::optional<uint64_t> available;
    const auto isEnough = [&] {
        (void)os::ReadFreeSpace(phone_.root(), available);
        return !available || *available >= bytes;
    };
    if (isEnough()) {
        return true;
    }
    (void)free(bytes - *available);  // What stays shows in the room that there is.
    return isEnough();
}

bool Way::free(uint64_t bytes)
{
    uint64_t freed = 0;
    return trash_.free(bytes, freed).ok() && freed > 0;
}

}  // namespace kesta
