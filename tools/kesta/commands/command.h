// What a command of the client is. A further one is one file with a function that returns its Command, and one line in
// commands/commands.h.
#pragma once

#include <functional>
#include <string>

#include "base/exit_codes.h"

namespace CLI {  // NOLINT(readability-identifier-naming): not ours
class App;
}

namespace kesta {

/// What a command does when the database is not the one that the client knows.
enum class OnDatabaseLoss {
    kStop,   // says so, and does nothing else when the library has replaced it
    kTell,   // does not need the database
    kIgnore  // sees to it itself
};

/// What goes wrong beyond its exit code a command throws.
struct Command {
    const char* name;
    const char* about;
    /// Adds the command's options, which the function that is returned runs it with.
    std::function<ExitCode()> (*prepare)(CLI::App& app);
    OnDatabaseLoss onDatabaseLoss = OnDatabaseLoss::kStop;
    bool isHidden = false;  // from help, manual and completions
};

/// The end of every command's help.
inline constexpr const char* kExitCodeHelp =
    "Exit codes:\n"
    "  0    everything is in order\n"
    "  1    the command could not do its work\n"
    "  2    the command line is wrong\n"
    "  3    finished, but some files or folders could not be synced\n"
    "  4    finished, but removals are deferred until --force is given\n"
    "  5    the phone is full, or has not enough room: not everything was copied\n"
    "  6    the phone cannot be written\n"
    "  7    another sync of this phone is running\n"
    "  8    the database cannot be read or written\n"
    "  9    stopped: the phone went away\n"
    "  10   the folder is not the phone that it should be: not mounted, as a rule\n"
    "  130  interrupted\n";

/// For paths. An empty one would stand for the current folder, which nobody means who writes "$UNSET".
[[nodiscard]] inline std::string EmptyPathProblem(const std::string& path)
{
    return path.empty() ? "a path cannot be empty" : "";
}

}  // namespace kesta
