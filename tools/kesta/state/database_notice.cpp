#include "state/database_notice.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "database/database_file.h"
#include "os/files.h"
#include "state/known_database.h"
#include "state/snapshots.h"

namespace kesta {

std::optional<DatabaseNotice> FindDatabaseNotice()
{
    const DatabaseLoss loss = FindDatabaseLoss();
    if (!loss.isSeen()) {
        return std::nullopt;
    }
    DatabaseNotice notice;
    const std::string folder = os::ParentOf(DatabasePath());
    for (const std::string& name : loss.replaced) {
        notice.files.push_back(os::Join(folder, name));
    }
    if (notice.files.empty()) {
        notice.text = fmt::format("the database {} is not the one that was synced: it does not know the phone {}.",
                                  DatabasePath(), fmt::join(loss.missingPhones, ", "));
    } else {
        notice.text = fmt::format(
            "the database could not be used and was replaced by an empty one: what was recorded is not in it.\n"
            "The former file is kept as {}.",
            notice.files.back());
    }
    const std::vector<Snapshot> snapshots = ReadSnapshots();
    notice.isToStop = !notice.files.empty() && !snapshots.empty();
    if (!snapshots.empty()) {
        notice.text += fmt::format("\nThe latest snapshot is {}, of {}.", snapshots.front().path,
                                   FormatLocalTime(snapshots.front().time));
        notice.advice =
            "kesta doctor --restore brings it back; kesta doctor --accept-database goes on with the present one.";
    } else {
        notice.text += "\nThere is no snapshot of it.";
        notice.advice = "kesta doctor tells more; kesta doctor --accept-database goes on with the present one.";
    }
    return notice;
}

}  // namespace kesta
