#include "commands/trace.h"

#include <CLI/CLI.hpp>

#include "commands/command.h"

namespace kesta {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kesta trace\n"
    "  kesta trace | grep -v Memory\n"
    "\n"
    "Shows the library's trace lines of all of the user's programs as they come, each with the time and the process\n"
    "that wrote it, until Ctrl-C. One viewer can run at a time. On Windows use a debug output viewer instead.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    app.footer(std::string(kExamples) + kExitCodeHelp);
    return RunTrace;
}

}  // namespace

Command TraceCommand()
{
    return {"trace", "show the library's trace lines as they come", Prepare, OnDatabaseLoss::kTell};
}

}  // namespace kesta
