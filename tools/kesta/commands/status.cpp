#include <fmt/format.h>

#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "books.h"
#include "commands/commands.h"
#include "last_run.h"
#include "output.h"
#include "summary.h"
#include "table.h"
#include "text.h"

namespace kesta {
namespace {

struct FolderStatus {
    RecordedFolder folder;
    std::size_t filesOnPhone = 0;
};

struct PhoneStatus {
    PhoneSettings settings;
    std::optional<LocalTime> lastSync;
    std::optional<LastRun> lastRun;
    std::map<Category, std::vector<FolderStatus>> folders;
    std::map<Category, std::size_t> files;
};

std::string StateOf(const FolderStatus& status)
{
    const auto onPhone = status.filesOnPhone;
    const auto onPc = static_cast<std::size_t>(std::max(status.folder.count, 0));
    if (status.folder.deleted) return "gone from the PC";
    if (!status.folder.selected) return "not selected";
    if (onPhone == 0) return onPc == 0 ? "empty" : "not synced yet";
    return onPhone == onPc ? "synced" : "partly synced";
}

PhoneStatus Collect(Books& books, PhoneSettings settings)
{
    PhoneStatus status;
    status.settings = std::move(settings);
    const std::string& imei = status.settings.imei;
    status.lastSync = books.lastSync(imei);
    if (status.lastSync) status.lastRun = LoadLastRun(imei, *status.lastSync);
    for (const Category category : kCategories) {
        std::map<std::string, std::size_t> counts;
        for (const RecordedFile& file : books.files(imei, category)) {
            ++counts[file.basePath];
            ++status.files[category];
        }
        for (RecordedFolder& folder : books.folders(imei, category)) {
            const std::size_t onPhone = counts[folder.path];
            status.folders[category].push_back({std::move(folder), onPhone});
        }
    }
    return status;
}

nlohmann::ordered_json TimeJson(const std::optional<LocalTime>& time)
{
    if (!time) return nullptr;
    return FormatLocalTime(*time);
}

nlohmann::ordered_json ToJson(const PhoneSettings& settings)
{
    return {{"photo_path", settings.photoPath},
            {"document_path", settings.docPath},
            {"wifi_mac", settings.wifiMac},
            {"auto_sync", settings.autoSync},
            {"auto_backup", settings.autoBackup},
            {"allow_wifi", settings.allowWifi},
            {"contact_prefer_side", settings.contactPreferSide},
            {"calendar_prefer_side", settings.calendarPreferSide},
            {"contact_program", settings.contactProgram},
            {"calendar_program", settings.calendarProgram},
            {"calendar_period", settings.calendarPeriod},
            {"calendar_period_text", settings.calendarPeriodText},
            {"calendar_start", TimeJson(settings.calendarStart)},
            {"calendar_end", TimeJson(settings.calendarEnd)},
            {"bookmark_type", settings.bookmarkType},
            {"sync_documents_from_folder", settings.syncDocFromFolder},
            {"sync_documents_from_phone", settings.syncDocFromPhone},
            {"sync_photos_from_folder", settings.syncPhotoFromFolder},
            {"sync_photos_from_phone", settings.syncPhotoFromPhone},
            {"sync_music_from_folder", settings.syncMusicFromFolder},
            {"sync_music_from_player", settings.syncMusicFromPlayer},
            {"sync_music_all", settings.syncMusicAll},
            {"need_mount", settings.needMount}};
}

nlohmann::ordered_json ToJson(const PhoneStatus& status)
{
    nlohmann::ordered_json json{
        {"imei", status.settings.imei},           {"name", status.settings.name},
        {"last_sync", TimeJson(status.lastSync)}, {"last_error", nullptr},
        {"settings", ToJson(status.settings)},    {"categories", nlohmann::ordered_json::array()}};
    if (status.lastRun) json["last_error"] = {{"code", status.lastRun->code}, {"reason", status.lastRun->reason}};
    for (const Category category : kCategories) {
        nlohmann::ordered_json folders = nlohmann::ordered_json::array();
        if (const auto found = status.folders.find(category); found != status.folders.end()) {
            for (const FolderStatus& entry : found->second) {
                const RecordedFolder& folder = entry.folder;
                folders.push_back({{"path", folder.path},
                                   {"files", folder.count},
                                   {"size", folder.size},
                                   {"total_size", folder.totalSize},
                                   {"measured", folder.sized},
                                   {"files_on_phone", entry.filesOnPhone},
                                   {"selected", folder.selected},
                                   {"deleted", folder.deleted},
                                   {"added", TimeJson(folder.added)},
                                   {"state", StateOf(entry)}});
            }
        }
        const auto files = status.files.find(category);
        json["categories"].push_back({{"category", KeyOf(category)},
                                      {"files_on_phone", files == status.files.end() ? 0 : files->second},
                                      {"folders", std::move(folders)}});
    }
    return json;
}

std::string OnOff(bool on)
{
    return on ? "on" : "off";
}

std::string LastSyncText(const PhoneStatus& status)
{
    if (!status.lastSync) return "never";
    const std::string time = FormatLocalTime(*status.lastSync);
    if (!status.lastRun) return time + ", result unknown";
    if (status.lastRun->code == 0) return time + ", without errors";
    return fmt::format("{}, error {}: {}", time, status.lastRun->code, Printable(status.lastRun->reason));
}

void PrintPhone(const PhoneStatus& status)
{
    const PhoneSettings& settings = status.settings;
    Print(fmt::format("{} (IMEI {})\n", Printable(settings.name), Printable(settings.imei)));
    Print(fmt::format("  Last sync  {}\n", LastSyncText(status)));
    Print(fmt::format("  Settings   automatic sync {}, automatic backup {}, Wi-Fi {}\n", OnOff(settings.autoSync),
                      OnOff(settings.autoBackup), OnOff(settings.allowWifi)));
    if (!settings.photoPath.empty()) Print(fmt::format("  Photos     {}\n", Printable(settings.photoPath)));
    if (!settings.docPath.empty()) Print(fmt::format("  Documents  {}\n", Printable(settings.docPath)));
    for (const auto& [category, folders] : status.folders) {
        Table table({std::string(TitleOf(category)), ">Files", ">Size", ">On phone", "State"});
        for (const FolderStatus& entry : folders) {
            const auto size = static_cast<std::uint64_t>(std::max<std::int64_t>(entry.folder.size, 0));
            table.add({entry.folder.path, std::to_string(entry.folder.count), FormatSize(size),
                       std::to_string(entry.filesOnPhone), StateOf(entry)});
        }
        Print(fmt::format("\n{}", table.text("  ")));
    }
    Print("\n");
}

}  // namespace

ExitCode RunStatus(const StatusOptions& options)
{
    Books books;
    std::vector<PhoneSettings> phones;
    if (options.imei) {
        auto phone = books.phone(*options.imei);
        if (!phone) {
            (void)std::fprintf(stderr, "kesta: no phone with the IMEI %s is known\n", Printable(*options.imei).c_str());
            return ExitCode::kFailure;
        }
        phones.push_back(*std::move(phone));
    } else {
        phones = books.phones();
    }
    nlohmann::ordered_json json{{"phones", nlohmann::ordered_json::array()}};
    if (phones.empty() && !options.json) Print("No phone has been synced yet. Begin with: kesta sync --help\n");
    for (PhoneSettings& phone : phones) {
        const PhoneStatus status = Collect(books, std::move(phone));
        if (options.json)
            json["phones"].push_back(ToJson(status));
        else
            PrintPhone(status);
    }
    if (options.json) Print(fmt::format("{}\n", json.dump(4)));
    return ExitCode::kSuccess;
}

}  // namespace kesta
