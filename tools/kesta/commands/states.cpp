#include "commands/states.h"

#include <fmt/format.h>

#include <algorithm>

#include "report/summary.h"

namespace kesta {

std::string StateOf(const RecordedFolder& folder, size_t filesOnPhone)
{
    const auto onPc = static_cast<size_t>(std::max(folder.count, 0));
    if (folder.deleted) {
        return "gone from the PC";
    }
    if (!folder.selected) {
        return "not selected";
    }
    if (filesOnPhone == 0) {
        return onPc == 0 ? "empty" : "not synced yet";
    }
    return filesOnPhone == onPc ? "synced" : "partly synced";
}

std::string StateOf(const RecordedFolder& folder)
{
    if (folder.deleted) {
        return "gone from the PC";
    }
    return folder.selected ? "selected" : "not selected";
}

std::string StateOf(const RecordedPlaylist& list)
{
    if (!list.selected) {
        return "not selected";
    }
    switch (list.state) {
        case PlaylistState::kCurrent:
            return "on the phone";
        case PlaylistState::kNew:
            return "to be added";
        case PlaylistState::kUnconfirmed:
            return "gone from the PC, to be removed";
        case PlaylistState::kDeleted:
            return "deleted on the phone, kept off it";
    }
    return fmt::format("state {}", static_cast<int32_t>(list.state));
}

std::string SizeText(int64_t bytes)
{
    return FormatSize(static_cast<uint64_t>(std::max<int64_t>(bytes, 0)));
}

}  // namespace kesta
