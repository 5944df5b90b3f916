#include "commands/application.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "base/text.h"
#include "commands/commands.h"
#include "commands/phone_settings.h"

namespace kesta {
namespace {

std::vector<std::string> CommandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string Unknown(const char* what, const std::string& word, const std::vector<std::string>& names)
{
    if (std::find(names.begin(), names.end(), word) != names.end()) {
        return {};
    }
    const std::vector<std::string> near = NearNames(word, names);
    const std::string hint = near.empty() ? "" : fmt::format(": did you mean {}?", fmt::join(near, " or "));
    return fmt::format("unknown {} '{}'{}", what, Printable(word), hint);
}

}  // namespace

void AddCommands(CLI::App& app, CommandRuns& runs)
{
    const auto add = [&](const Command& command) {
        CLI::App* subcommand = app.add_subcommand(command.name, command.about);
        if (command.isHidden) {
            subcommand->group("");
        }
        runs.push_back({subcommand, command.prepare(*subcommand), command.onDatabaseLoss});
    };
#define KESTA_ADD(NAME) add(NAME##Command());
    KESTA_COMMANDS(KESTA_ADD)
#undef KESTA_ADD
}

std::string UnknownWord(const CLI::App& app, const std::vector<std::string>& arguments)
{
    if (arguments.empty() || arguments[0].starts_with('-')) {
        return {};
    }
    if (std::string problem = Unknown("command", arguments[0], CommandNames(app)); !problem.empty()) {
        return problem;
    }
    const std::vector<std::string> options = OptionNames(*app.get_subcommand(arguments[0]));
    for (auto word = arguments.begin() + 1; word != arguments.end() && *word != "--"; ++word) {
        if (word->size() < 3 || !word->starts_with("--")) {
            continue;
        }
        if (std::string problem = Unknown("option", word->substr(0, word->find('=')), options); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

}  // namespace kesta
