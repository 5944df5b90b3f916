// kesta restore --backup: lists archives of backups, and brings back what they hold.
#pragma once

#include "base/exit_codes.h"
#include "commands/restore_options.h"

namespace kesta {

/// Those of this phone in the folder.
void ListArchivesIn(const std::string& folder, const PhoneFolder& phone);
[[nodiscard]] ExitCode RestoreFromArchives(const RestoreOptions& options);

}  // namespace kesta
