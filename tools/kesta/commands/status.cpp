#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "base/text.h"
#include "commands/command.h"
#include "commands/json.h"
#include "commands/phone_status.h"
#include "commands/phones.h"
#include "commands/pim_tree.h"
#include "database/database.h"
#include "database/main_folders.h"
#include "report/output.h"

namespace kesta {
namespace {

struct StatusOptions {
    std::optional<std::string> imei;
    bool json = false;
};

Json LibraryJson(const Database& database)
{
    Json folders = Json::array();
    for (const kesta_db::MainFolderFigures& figures : database.phones().mainFolders()) {
        if (KeyOf(figures.folder).empty()) {
            continue;
        }
        folders.push_back({{"folder", KeyOf(figures.folder)},
                           {"items", figures.items},
                           {"size", figures.size},
                           {"setting", figures.setting}});
    }
    return folders;
}

void PrintAsJson(const Database& database, std::vector<PhoneSettings> phones)
{
    Json json{{"phones", Json::array()}, {"library", LibraryJson(database)}, {"store", Json::object()}};
    for (PhoneSettings& phone : phones) {
        json["phones"].push_back(ToJson(Collect(database, std::move(phone))));
    }
    for (const PimKind kind : kPimKinds) {
        json["store"][std::string(KeyOf(kind))] = PimTreeJson(ReadPimTree(database, kind));
    }
    PrintJson(json);
}

void PrintAsText(const Database& database, std::vector<PhoneSettings> phones)
{
    if (phones.empty()) {
        Print("No phone has been synced yet. Begin with: kesta sync --help\n");
    }
    for (PhoneSettings& phone : phones) {
        Print(ToText(Collect(database, std::move(phone))) + "\n");
    }
    std::string store;
    for (const PimKind kind : kPimKinds) {
        store += PimTreeText(ReadPimTree(database, kind), "  ");
    }
    if (!store.empty()) {
        Print("Contacts and calendar in the database, for all phones\n" + store + "\n");
    }
}

ExitCode Run(const StatusOptions& options)
{
    Database database;
    std::vector<PhoneSettings> phones = ChosenPhones(database, options.imei);
    if (options.json) {
        PrintAsJson(database, std::move(phones));
    } else {
        PrintAsText(database, std::move(phones));
    }
    return ExitCode::kSuccess;
}

constexpr const char* kStatusExamples =
    "Examples:\n"
    "  kesta status\n"
    "  kesta status --imei 004999010640000 --json\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<StatusOptions>();
    app.add_option("--imei", options->imei, "only this phone")->type_name("IMEI");
    app.add_flag("--json", options->json, "as JSON");
    app.footer(std::string(kStatusExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command StatusCommand()
{
    return {"status", "show the phones and what the database holds for each", Prepare};
}

}  // namespace kesta
