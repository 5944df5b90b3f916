#include "commands/option_list.h"

#include "commands/application.h"

namespace kesta {
namespace {

OptionValue ValueOf(const std::string& type)
{
    if (type.empty()) {
        return OptionValue::kNone;
    }
    if (type.starts_with("DIR")) {
        return OptionValue::kFolder;
    }
    return type.starts_with("FILE") || type.starts_with("PATH") ? OptionValue::kFile : OptionValue::kText;
}

ListedOption List(const CLI::Option& option)
{
    ListedOption listed;
    for (const std::string& name : option.get_lnames()) {
        listed.names.push_back("--" + name);
    }
    for (const std::string& name : option.get_snames()) {
        listed.names.push_back("-" + name);
    }
    listed.type = option.get_items_expected_max() == 0 ? std::string() : option.get_type_name();
    listed.about = option.get_description();
    listed.value = ValueOf(listed.type);
    listed.isRepeatable = option.get_items_expected_max() > 1;
    return listed;
}

}  // namespace

std::vector<ListedCommand> ListCommands()
{
    CLI::App app;
    CommandRuns runs;
    AddCommands(app, runs);
    std::vector<ListedCommand> commands;
    for (const auto& [command, run, onLoss] : runs) {
        if (command->get_group().empty()) {
            continue;
        }
        ListedCommand listed{command->get_name(), command->get_description(), {}, command->get_footer()};
        for (const CLI::Option* option : command->get_options()) {
            listed.options.push_back(List(*option));
        }
        commands.push_back(std::move(listed));
    }
    return commands;
}

}  // namespace kesta
