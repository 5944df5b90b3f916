#include "commands/json.h"

#include "commands/phone_settings.h"
#include "database/main_folders.h"
#include "report/output.h"

namespace kesta {
namespace {

struct Value {
    const PhoneSettings& settings;
    Json operator()(const TextSetting& setting) const { return settings.*setting.value; }
    Json operator()(const TruthSetting& setting) const { return settings.*setting.value; }
    Json operator()(const NumberSetting& setting) const { return settings.*setting.value; }
    Json operator()(const DateSetting& setting) const { return TimeJson(settings.*setting.value); }
};

}  // namespace

Json TimeJson(const std::optional<LocalTime>& time)
{
    if (!time) {
        return nullptr;
    }
    return FormatLocalTime(*time);
}

Json SettingsJson(const PhoneSettings& settings)
{
    Json json = Json::object();
    for (const Setting& setting : kSettings) {
        json[std::string(setting.name)] = std::visit(Value{settings}, setting.members);
    }
    return json;
}

Json MainFoldersJson(Database& database, const std::string& imei)
{
    MainFolderRecords mainFolders(database);
    Json json = Json::object();
    for (const MainFolder folder : kMainFolders) {
        json[std::string(KeyOf(folder))] = mainFolders.isSelected(imei, folder);
    }
    return json;
}

Json FileJson(const RecordedFile& file, const char* nameOfBase)
{
    return {{"path", file.path},
            {nameOfBase, file.basePath},
            {"phone_path", file.phonePath},
            {"modified", TimeJson(file.modified)}};
}

void PrintJson(const Json& json)
{
    // Paths of the PC need not be text.
    Print(json.dump(4, ' ', false, Json::error_handler_t::replace) + "\n");
}

}  // namespace kesta
