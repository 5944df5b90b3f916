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

Json LibraryJson(Books& books)
{
    Json folders = Json::array();
    for (const MainFolderFigures& figures : MainFolderBooks(books).all()) {
        folders.push_back({{"folder", KeyOf(figures.folder)},
                           {"items", figures.items},
                           {"size", figures.size},
                           {"setting", figures.setting}});
    }
    return folders;
}

void PrintAsJson(Books& books, std::vector<PhoneSettings> phones)
{
    Json json{{"phones", Json::array()}, {"library", LibraryJson(books)}, {"store", Json::object()}};
    for (PhoneSettings& phone : phones) json["phones"].push_back(ToJson(Collect(books, std::move(phone))));
    for (const PimKind kind : kPimKinds)
        json["store"][std::string(KeyOf(kind))] = PimTreeJson(ReadPimTree(books, kind));
    PrintJson(json);
}

void PrintAsText(Books& books, std::vector<PhoneSettings> phones)
{
    if (phones.empty()) Print("No phone has been synced yet. Begin with: kesta sync --help\n");
    for (PhoneSettings& phone : phones) Print(ToText(Collect(books, std::move(phone))) + "\n");
    std::string store;
    for (const PimKind kind : kPimKinds) store += PimTreeText(ReadPimTree(books, kind), "  ");
    if (!store.empty()) Print("Contacts and calendar in the books, for all phones\n" + store + "\n");
}

}  // namespace

ExitCode RunStatus(const StatusOptions& options)
{
    Books books;
    std::vector<PhoneSettings> phones = ChosenPhones(books, options.imei);
    if (options.json)
        PrintAsJson(books, std::move(phones));
    else
        PrintAsText(books, std::move(phones));
    return ExitCode::kSuccess;
}

}  // namespace kesta
