// A command as CONTRIBUTING.md says how to add one: this file, a line in commands/commands.h, and its name among the
// sources.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "commands/command.h"

namespace kesta {
namespace {

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto name = std::make_shared<std::string>("phone");
    app.add_option("--name", *name, "whom to greet");
    return [name] {
        std::printf("hello, %s\n", name->c_str());
        return ExitCode::kSuccess;
    };
}

}  // namespace

Command HelloCommand()
{
    return {"hello", "Greets.", Prepare};
}

}  // namespace kesta
