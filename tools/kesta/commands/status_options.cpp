#include <CLI/CLI.hpp>

#include "commands/option_groups.h"

namespace kesta {
namespace {

constexpr const char* kStatusExamples =
    "Examples:\n"
    "  kesta status\n"
    "  kesta status --imei 004999010640000 --json\n"
    "\n";

}  // namespace

void AddStatus(CLI::App& app, StatusOptions& options)
{
    app.add_option("--imei", options.imei, "only this phone")->type_name("IMEI");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kStatusExamples) + kExitCodeHelp);
}

}  // namespace kesta
