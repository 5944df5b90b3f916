#include <fmt/format.h>

#include <cstdio>

#include "base/text.h"
#include "commands/commands.h"
#include "commands/json.h"
#include "commands/phone_status.h"
#include "commands/phones.h"
#include "commands/pim_tree.h"
#include "database/database.h"
#include "database/main_folders.h"
#include "report/output.h"

namespace kesta {
namespace {

Json LibraryJson(Database& database)
{
    Json folders = Json::array();
    for (const MainFolderFigures& figures : MainFolderRecords(database).all()) {
        folders.push_back({{"folder", KeyOf(figures.folder)},
                           {"items", figures.items},
                           {"size", figures.size},
                           {"setting", figures.setting}});
    }
    return folders;
}

void PrintAsJson(Database& database, std::vector<PhoneSettings> phones)
{
    Json json{{"phones", Json::array()}, {"library", LibraryJson(database)}, {"store", Json::object()}};
    for (PhoneSettings& phone : phones) json["phones"].push_back(ToJson(Collect(database, std::move(phone))));
    for (const PimKind kind : kPimKinds)
        json["store"][std::string(KeyOf(kind))] = PimTreeJson(ReadPimTree(database, kind));
    PrintJson(json);
}

void PrintAsText(Database& database, std::vector<PhoneSettings> phones)
{
    if (phones.empty()) Print("No phone has been synced yet. Begin with: kesta sync --help\n");
    for (PhoneSettings& phone : phones) Print(ToText(Collect(database, std::move(phone))) + "\n");
    std::string store;
    for (const PimKind kind : kPimKinds) store += PimTreeText(ReadPimTree(database, kind), "  ");
    if (!store.empty()) Print("Contacts and calendar in the database, for all phones\n" + store + "\n");
}

}  // namespace

ExitCode RunStatus(const StatusOptions& options)
{
    Database database;
    std::vector<PhoneSettings> phones = ChosenPhones(database, options.imei);
    if (options.json)
        PrintAsJson(database, std::move(phones));
    else
        PrintAsText(database, std::move(phones));
    return ExitCode::kSuccess;
}

}  // namespace kesta
