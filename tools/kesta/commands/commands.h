// One function for each command. What goes wrong beyond its exit code comes as an exception to the program's start.
#pragma once

#include "commands/options.h"

namespace kesta {

[[nodiscard]] ExitCode RunSync(const SyncOptions& options);
[[nodiscard]] ExitCode RunStatus(const StatusOptions& options);
[[nodiscard]] ExitCode RunFiles(const FilesOptions& options);
[[nodiscard]] ExitCode RunWhy(const WhyOptions& options);
[[nodiscard]] ExitCode RunSettings(const SettingsOptions& options);
[[nodiscard]] ExitCode RunTrace();

}  // namespace kesta
