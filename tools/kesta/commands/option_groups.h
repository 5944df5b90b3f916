// The command line's options, a group for each command.
#pragma once

#include <string>

#include "commands/options.h"

namespace CLI {
class App;
}

namespace kesta {

/// The end of every command's help.
inline constexpr const char* kExitCodeHelp =
    "Exit codes:\n"
    "  0    everything is in order\n"
    "  1    the command could not do its work\n"
    "  2    the command line is wrong\n"
    "  3    finished, but some files or folders could not be synced\n"
    "  4    finished, but removals are deferred until --force is given\n"
    "  5    stopped: the phone is full\n"
    "  6    the phone cannot be written\n"
    "  7    another sync of this phone is running\n"
    "  8    the database cannot be read or written\n"
    "  9    stopped: the phone went away\n"
    "  130  interrupted\n";

/// For paths. An empty one would stand for the current folder, which nobody means who writes "$UNSET".
[[nodiscard]] inline std::string EmptyPathProblem(const std::string& path)
{
    return path.empty() ? "a path cannot be empty" : "";
}

void AddSync(CLI::App& app, SyncOptions& options);
void AddStatus(CLI::App& app, StatusOptions& options);
void AddFiles(CLI::App& app, FilesOptions& options);
void AddWhy(CLI::App& app, WhyOptions& options);
void AddSettings(CLI::App& app, SettingsOptions& options);

}  // namespace kesta
