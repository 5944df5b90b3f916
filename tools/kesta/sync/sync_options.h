// What a sync is asked to do.
#pragma once

#include <optional>
#include <string>

#include "state/sync_sources.h"

namespace kesta {

struct SyncOptions : SyncSources {
    SyncSources remembered;  // with what is given
    std::string phone;       // empty: where phones were last seen
    std::optional<std::string> imei;
    std::optional<std::string> name;
    bool dryRun = false;
    bool force = false;
    bool quiet = false;
    bool noTrash = false;
    bool json = false;
    std::optional<std::string> log;  // a file
    bool acceptFolder = false;       // a folder without a marker, though a phone is expected there
};

}  // namespace kesta
