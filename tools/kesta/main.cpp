// kesta: brings a phone up to date with the PC and shows what is recorded about it.

#include <kesta_db/kesta_db.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/commands.h"
#include "database/failures.h"
#include "os/startup_watch.h"
#include "os/system.h"
#include "report/output.h"
#include "state/database_notice.h"

namespace {

int Report(kesta::ExitCode code, const std::exception& failure)
{
    std::string text;
    std::istringstream lines(failure.what());
    for (std::string line; std::getline(lines, line);) {
        text += kesta::Printable(line) + '\n';
    }
    (void)std::fprintf(stderr, "kesta: %s", text.c_str());
    return static_cast<int>(code);
}

// Nobody is told by the library that what was recorded is gone.
void CheckDatabase(kesta::OnDatabaseLoss onLoss)
{
    if (onLoss == kesta::OnDatabaseLoss::kIgnore) {
        return;
    }
    const auto notice = kesta::FindDatabaseNotice();
    if (!notice) {
        return;
    }
    const kesta::StopRun loss(kesta::ExitCode::kDatabase, notice->text + '\n' + notice->advice);
    if (onLoss == kesta::OnDatabaseLoss::kStop && notice->isToStop) {
        throw loss;
    }
    (void)Report(loss.code(), loss);
}

// The command that the arguments name, with its options; none if help or a mistake has been printed.
std::function<kesta::ExitCode()> Parse(std::vector<std::string> arguments, kesta::ExitCode& exitCode)
{
    CLI::App app("Brings a phone up to date with the PC and records what is on it.", "kesta");
    app.require_subcommand(1);
    app.set_version_flag("--version", "kesta " KESTA_DB_VERSION ", SQLite " KESTA_SQLITE_VERSION);
    app.footer(std::string("kesta COMMAND --help shows a command's options and examples.\n\n") + kesta::kExitCodeHelp);
    std::vector<std::pair<const CLI::App*, std::function<kesta::ExitCode()>>> commands;
    const auto add = [&](const kesta::Command& command) {
        CLI::App* subcommand = app.add_subcommand(command.name, command.about);
        commands.emplace_back(subcommand, [onLoss = command.onDatabaseLoss, run = command.prepare(*subcommand)] {
            CheckDatabase(onLoss);
            return run();
        });
    };
#define KESTA_ADD(NAME) add(kesta::NAME##Command());
    KESTA_COMMANDS(KESTA_ADD)
#undef KESTA_ADD
    try {
        std::reverse(arguments.begin(), arguments.end());  // The parser takes them from the back.
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        (void)app.exit(help, std::cout, std::cerr);
        return {};
    } catch (const CLI::ParseError& mistake) {
        exitCode = kesta::ExitCode::kUsage;
        std::cerr << "kesta: " << kesta::Printable(mistake.what()) << "\nTry kesta --help, or kesta COMMAND --help.\n";
        return {};
    }
    for (const auto& [command, run] : commands) {
        if (command->parsed()) {
            return run;
        }
    }
    return {};
}

}  // namespace

int main(int argc, char** argv)
{
    kesta::os::EndStartupWatch();
    try {
        kesta::os::PrepareOutput();
        kesta::ExitCode exitCode = kesta::ExitCode::kSuccess;
        if (const auto run = Parse(kesta::os::Arguments(argc, argv), exitCode)) {
            exitCode = run();
        }
        if (kesta::outputHasFailed && exitCode == kesta::ExitCode::kSuccess) {
            (void)std::fputs("kesta: the output could not be written\n", stderr);
            exitCode = kesta::ExitCode::kFailure;
        }
        return static_cast<int>(exitCode);
    } catch (const kesta::StopRun& stop) {
        return Report(stop.code(), stop);
    } catch (const kesta_db::Error& failure) {
        return Report(kesta::ExitCode::kDatabase, kesta::StopRun(kesta::ExitCode::kDatabase, kesta::TextOf(failure)));
    } catch (const std::exception& failure) {
        return Report(kesta::ExitCode::kFailure, failure);
    }
}
