// The program's command line: made of the table of commands, for parsing it and for what is written about it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "commands/command.h"

namespace CLI {  // NOLINT(readability-identifier-naming): not ours
class App;
}

namespace kesta {

/// A command as it has been added to the application.
struct CommandRun {
    const CLI::App* app;
    std::function<ExitCode()> run;
    OnDatabaseLoss onDatabaseLoss;
};
using CommandRuns = std::vector<CommandRun>;

/// Adds all commands to the application, and fills what runs them.
void AddCommands(CLI::App& app, CommandRuns& runs);

/// "unknown command 'snyc': did you mean sync?", or the same of an option. Empty when both are known.
[[nodiscard]] std::string UnknownWord(const CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace kesta
