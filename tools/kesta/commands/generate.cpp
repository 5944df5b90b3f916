#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>

#include "base/stop_run.h"
#include "commands/command.h"
#include "commands/completions.h"
#include "commands/manual.h"
#include "os/files.h"
#include "report/output.h"

namespace kesta {
namespace {

struct GenerateOptions {
    std::string what;
    std::string command;
    std::string folder;
};

struct GeneratedFile {
    std::string folder, name, text;
};

std::vector<GeneratedFile> AllFiles(const std::vector<ListedCommand>& commands)
{
    std::vector<GeneratedFile> files{
        {"man/man1", "kesta.1", MainManual(commands)},
        {"bash-completion/completions", "kesta", BashCompletion(commands)},
        {"zsh/vendor-completions", "_kesta", ZshCompletion(commands)},
        {"fish/vendor_completions.d", "kesta.fish", FishCompletion(commands)},
    };
    for (const ListedCommand& command : commands) {
        files.push_back({"man/man1", fmt::format("kesta-{}.1", command.name), CommandManual(command)});
    }
    return files;
}

void Require(const os::Status& status, const std::string& path)
{
    if (!status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{}: {}", path, status.text()));
    }
}

std::string MakeFolders(std::string folder, std::string_view below)
{
    for (;;) {
        const size_t end = below.find('/');
        folder = os::Join(folder, below.substr(0, end));
        if (const os::Status made = os::MakeDirectory(folder); made.failure() != os::Failure::kExists) {
            Require(made, folder);
        }
        if (end == std::string_view::npos) {
            return folder;
        }
        below.remove_prefix(end + 1);
    }
}

ExitCode WriteAll(const GenerateOptions& options, const std::vector<ListedCommand>& commands)
{
    for (const GeneratedFile& file : AllFiles(commands)) {
        const std::string path = os::Join(MakeFolders(options.folder, file.folder), file.name);
        Require(os::WriteText(path, path + ".new", file.text), path);
    }
    return ExitCode::kSuccess;
}

std::string Manual(const std::string& name, const std::vector<ListedCommand>& commands)
{
    if (name.empty()) {
        return MainManual(commands);
    }
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const ListedCommand& command) { return command.name == name; });
    if (found == commands.end()) {
        throw StopRun(ExitCode::kUsage, fmt::format("there is no command {}", name));
    }
    return CommandManual(*found);
}

ExitCode Run(const GenerateOptions& options)
{
    const std::vector<ListedCommand> commands = ListCommands();
    if (options.what == "all") {
        if (options.folder.empty()) {
            throw StopRun(ExitCode::kUsage, "all files need a folder: --into DIR");
        }
        return WriteAll(options, commands);
    }
    Print(options.what == "man"    ? Manual(options.command, commands)
          : options.what == "bash" ? BashCompletion(commands)
          : options.what == "zsh"  ? ZshCompletion(commands)
                                   : FishCompletion(commands));
    return ExitCode::kSuccess;
}

constexpr std::array<const char*, 5> kKinds{"man", "bash", "zsh", "fish", "all"};

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<GenerateOptions>();
    app.add_option("what", options->what, "man, bash, zsh, fish, or all")
        ->required()
        ->type_name("KIND")
        ->check([](const std::string& kind) {
            return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end()
                       ? std::string()
                       : fmt::format("the kinds are {}", fmt::join(kKinds, ", "));
        });
    app.add_option("command", options->command, "the command that the manual page is about")->type_name("COMMAND");
    app.add_option("--into", options->folder, "the folder for all files, as it is below share")->type_name("DIR");
    app.footer(kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

// Hidden: the build calls it, and who wants completions where no package has brought them.
Command GenerateCommand()
{
    return {"generate", "print manual pages and the completions of shells", Prepare, OnDatabaseLoss::kIgnore, true};
}

}  // namespace kesta
