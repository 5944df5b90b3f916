// kesta restore --backup: lists archives of backups, and brings back what they hold.
#pragma once

#include "base/exit_codes.h"
#include "commands/restore_options.h"

namespace kesta {

[[nodiscard]] ExitCode RestoreFromArchives(const RestoreOptions& options);

}  // namespace kesta
