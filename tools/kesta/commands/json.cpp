#include "commands/json.h"

#include "commands/phone_settings.h"
#include "database/main_folders.h"
#include "report/output.h"

namespace kesta {
namespace {

struct Value {
    const PhoneSettings& settings;
    Json operator()(TextSetting member) const { return settings.*member; }
    Json operator()(TruthSetting member) const { return settings.*member; }
    Json operator()(NumberSetting member) const { return settings.*member; }
    Json operator()(DateSetting member) const { return TimeJson(settings.*member); }
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
        json[std::string(setting.name)] = std::visit(Value{settings}, setting.member);
    }
    return json;
}

Json MainFoldersJson(const Database& database, const std::string& imei)
{
    kesta_db::Phones phones = database.phones();
    Json json = Json::object();
    for (const MainFolder folder : kMainFolders) {
        json[std::string(KeyOf(folder))] = phones.isSelected(imei, folder);
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
