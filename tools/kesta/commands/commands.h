// The command line, and one function for each command. What goes wrong beyond its exit code comes as an exception to
// the program's start.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/exit_codes.h"
#include "commands/options.h"

namespace kesta {

/// std::nullopt if there is nothing to run: help or a mistake has been printed, and exitCode says which.
[[nodiscard]] std::optional<Options> ParseOptions(std::vector<std::string> arguments, ExitCode& exitCode);

[[nodiscard]] ExitCode RunSync(const SyncOptions& options);
[[nodiscard]] ExitCode RunStatus(const StatusOptions& options);
[[nodiscard]] ExitCode RunFiles(const FilesOptions& options);
[[nodiscard]] ExitCode RunWhy(const WhyOptions& options);
[[nodiscard]] ExitCode RunSettings(const SettingsOptions& options);
[[nodiscard]] ExitCode RunTrace();

}  // namespace kesta
