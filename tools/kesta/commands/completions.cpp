#include "commands/completions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kesta {
namespace {

std::string Escaped(std::string_view text, std::string_view special)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '\'') {
            escaped += "'\\''";  // within single quotes of a shell
            continue;
        }
        if (special.find(character) != std::string_view::npos) {
            escaped += '\\';
        }
        escaped += character;
    }
    return escaped;
}

std::vector<std::string> NamesOf(const ListedCommand& command)
{
    std::vector<std::string> names;
    for (const ListedOption& option : command.options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::vector<std::string> NamesOf(const std::vector<ListedCommand>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const ListedCommand& command : commands) {
        names.push_back(command.name);
    }
    return names;
}

// The alternatives of a case in bash that stand for the options with such a value; empty if there are none.
std::string BashPattern(const std::vector<ListedCommand>& commands, OptionValue value)
{
    std::vector<std::string> patterns;
    for (const ListedCommand& command : commands) {
        for (const ListedOption& option : command.options) {
            for (const std::string& name : option.names) {
                if (option.value == value) {
                    patterns.push_back(fmt::format("'{} {}'", command.name, name));
                }
            }
        }
    }
    return fmt::format("{}", fmt::join(patterns, " | "));
}

const char* ZshAction(OptionValue value)
{
    switch (value) {
        case OptionValue::kFile:
            return "_files";
        case OptionValue::kFolder:
            return "_files -/";
        default:
            return " ";
    }
}

std::string ZshArgument(const ListedOption& option)
{
    if (option.names.empty()) {
        return fmt::format(" '*:{}:{}'", Escaped(option.type, ":"), ZshAction(option.value));
    }
    std::string arguments;
    for (const std::string& name : option.names) {
        arguments += fmt::format(" '{}{}[{}]", option.isRepeatable ? "*" : "", name, Escaped(option.about, "[]:\\"));
        arguments += option.type.empty() ? std::string("'")
                                         : fmt::format(":{}:{}'", Escaped(option.type, ":"), ZshAction(option.value));
    }
    return arguments;
}

}  // namespace

std::string BashCompletion(const std::vector<ListedCommand>& commands)
{
    std::string script = fmt::format(
        "# Completion of kesta in bash.\n"
        "_kesta()\n"
        "{{\n"
        "    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} words=\n"
        "    COMPREPLY=()\n"
        "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
        "        mapfile -t COMPREPLY < <(compgen -W '{} --help --version' -- \"$current\")\n"
        "        return\n"
        "    fi\n"
        "    case \"${{COMP_WORDS[1]}} $previous\" in\n",
        fmt::join(NamesOf(commands), " "));
    const auto addCase = [&](OptionValue value, const char* completion) {
        if (const std::string pattern = BashPattern(commands, value); !pattern.empty()) {
            script += fmt::format("        {})\n{}            return\n            ;;\n", pattern, completion);
        }
    };
    constexpr const char* kNames = "            compopt -o filenames 2>/dev/null\n";
    addCase(OptionValue::kFolder,
            (std::string(kNames) + "            mapfile -t COMPREPLY < <(compgen -d -- \"$current\")\n").c_str());
    addCase(OptionValue::kFile,
            (std::string(kNames) + "            mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n").c_str());
    addCase(OptionValue::kText, "");
    script += "    esac\n    case \"${COMP_WORDS[1]}\" in\n";
    for (const ListedCommand& command : commands) {
        script += fmt::format("        {}) words='{}' ;;\n", command.name, fmt::join(NamesOf(command), " "));
    }
    script +=
        "    esac\n"
        "    if [[ $current == -* ]]; then\n"
        "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
        "    else\n"
        "        compopt -o filenames 2>/dev/null\n"
        "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
        "    fi\n"
        "}\n"
        "complete -F _kesta kesta\n";
    return script;
}

std::string ZshCompletion(const std::vector<ListedCommand>& commands)
{
    std::string script =
        "#compdef kesta\n# Completion of kesta in zsh.\n_kesta() {\n    local -a commands\n    commands=(\n";
    for (const ListedCommand& command : commands) {
        script += fmt::format("        '{}:{}'\n", command.name, Escaped(command.about, ":\\"));
    }
    script +=
        "    )\n"
        "    if (( CURRENT == 2 )); then\n"
        "        _describe command commands\n"
        "        return\n"
        "    fi\n"
        "    local command=$words[2]\n"
        "    shift words\n"
        "    (( CURRENT-- ))\n"
        "    case $command in\n";
    for (const ListedCommand& command : commands) {
        script += fmt::format("        {}) _arguments", command.name);
        for (const ListedOption& option : command.options) {
            script += ZshArgument(option);
        }
        script += " ;;\n";
    }
    return script + "    esac\n}\n_kesta \"$@\"\n";
}

std::string FishCompletion(const std::vector<ListedCommand>& commands)
{
    std::string script =
        "# Completion of kesta in fish.\n"
        "complete -c kesta -n __fish_use_subcommand -f\n"
        "complete -c kesta -n __fish_use_subcommand -l help -d 'show the commands'\n"
        "complete -c kesta -n __fish_use_subcommand -l version -d 'show the version'\n";
    for (const ListedCommand& command : commands) {
        script += fmt::format("complete -c kesta -n __fish_use_subcommand -a {} -d '{}'\n", command.name,
                              Escaped(command.about, ""));
    }
    for (const ListedCommand& command : commands) {
        for (const ListedOption& option : command.options) {
            if (option.names.empty()) {
                continue;
            }
            script += fmt::format("complete -c kesta -n '__fish_seen_subcommand_from {}'", command.name);
            for (const std::string& name : option.names) {
                const bool isLong = name.starts_with("--");
                script += fmt::format(" {} {}", isLong ? "-l" : "-s", name.substr(isLong ? 2 : 1));
            }
            if (option.value == OptionValue::kFolder) {
                script += " -x -a '(__fish_complete_directories)'";
            } else if (option.value != OptionValue::kNone) {
                script += option.value == OptionValue::kFile ? " -r -F" : " -x";
            }
            script += fmt::format(" -d '{}'\n", Escaped(option.about, ""));
        }
    }
    return script;
}

}  // namespace kesta
