#include "sync/room.h"

#include <fmt/format.h>

#include <algorithm>

namespace kesta {
namespace {

// What has been replaced or removed counts as room: it is gone, or in the trash.
uint64_t PeakOf(const Plan& plan, const Phone& phone)
{
    int64_t used = 0, peak = 0;
    for (const Change& change : plan.changes) {
        const bool isCopy = change.isToWrite() && !change.pcFile.empty();
        const bool isOldGone = change.kind == ChangeKind::kReplace || change.kind == ChangeKind::kRemove;
        used += isCopy ? static_cast<int64_t>(change.size) : 0;
        peak = std::max(peak, used);
        if (isOldGone && change.keepAs.empty() && !change.phonePath.empty()) {
            used -= static_cast<int64_t>(phone.find(change.phonePath).size);
        }
    }
    return static_cast<uint64_t>(peak);
}

}  // namespace

std::string Room::text() const
{
    std::string text = "needs " + FormatSize(needed);
    if (free) {
        text += fmt::format(", {} free", FormatSize(*free));
    }
    if (inTrash > 0) {
        text += fmt::format(", {} in the phone's trash, which goes first", FormatSize(inTrash));
    }
    return text;
}

Event Room::event() const
{
    Event event{"room", {{"needed", needed}, {"in_trash", inTrash}}};
    if (free) {
        event.fields.emplace_back("free", *free);
    }
    return event;
}

Room MeasureRoom(const Plan& plan, const Phone& phone, const PhoneFolder& folder, const Trash& trash)
{
    Room room;
    const bool isAnythingCopied = std::any_of(plan.changes.begin(), plan.changes.end(), [](const Change& change) {
        return change.isToWrite() && !change.pcFile.empty();
    });
    if (!isAnythingCopied) {
        return room;
    }
    room.needed = PeakOf(plan, phone);
    (void)os::ReadFreeSpace(folder.root(), room.free);  // A phone that is gone shows at the first change.
    if (room.free && room.needed > *room.free) {
        for (const TrashedFile& file : trash.files()) {
            room.inTrash += file.size;
        }
    }
    return room;
}

}  // namespace kesta
