#include <CLI/CLI.hpp>

#include "commands/option_groups.h"

namespace kesta {
namespace {

constexpr const char* kWhyExamples =
    "Examples:\n"
    "  kesta why ~/Music/Rock/song.mp3\n"
    "  kesta why ~/Pictures/2026 --imei 004999010640000\n"
    "  kesta why ~/Music/Rock/song.mp3 --json\n"
    "\n"
    "The path is a file or folder of the PC, which may be gone by now. Nothing is changed.\n"
    "\n";

}  // namespace

void AddWhy(CLI::App& app, WhyOptions& options)
{
    app.add_option("path", options.path, "the file or folder of the PC")->required()->type_name("PATH");
    app.add_option("--imei", options.imei, "only this phone")->type_name("IMEI");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kWhyExamples) + kExitCodeHelp);
}

}  // namespace kesta
