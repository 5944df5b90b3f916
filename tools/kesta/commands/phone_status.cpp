#include "commands/phone_status.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <set>

#include "base/text.h"
#include "commands/states.h"
#include "database/backups.h"
#include "report/summary.h"
#include "report/table.h"
#include "stages/pim/pim_log_rows.h"

namespace kesta {
namespace {

std::string OnOff(bool on)
{
    return on ? "on" : "off";
}

std::string LastSyncText(const PhoneStatus& status)
{
    if (!status.lastSync) {
        return "never";
    }
    const std::string time = FormatLocalTime(*status.lastSync);
    if (!status.lastRun) {
        return time + ", result unknown";
    }
    if (status.lastRun->code == 0) {
        return time + ", without errors";
    }
    return fmt::format("{}, error {}: {}", time, status.lastRun->code, Printable(status.lastRun->reason));
}

std::string MainFoldersText(const PhoneStatus& status)
{
    std::vector<std::string_view> selected, others;
    for (const auto& [folder, isSelected] : status.mainFolders) {
        (isSelected ? selected : others).push_back(KeyOf(folder));
    }
    return fmt::format("{}{}", selected.empty() ? "none selected" : fmt::format("{}", fmt::join(selected, ", ")),
                       others.empty() ? "" : fmt::format("; not {}", fmt::join(others, ", ")));
}

std::string GalleryText(const PhoneStatus& status)
{
    int64_t size = 0;
    size_t files = 0;
    for (const RecordedFolder& folder : status.gallery) {
        size += folder.size;
        files += static_cast<size_t>(std::max(folder.count, 0));
    }
    std::string text = fmt::format("pictures and videos as one: {}, {}, {}", Counted(status.gallery.size(), "folder"),
                                   Counted(files, "file"), SizeText(size));
    if (status.galleryLeftOut > 0) {
        text += fmt::format("; {} left out by the merge", Counted(status.galleryLeftOut, "folder"));
    }
    return text;
}

std::string LogText(const LogStatus& log)
{
    if (log.profile.empty() && log.entries == 0) {
        return "never synced";
    }
    return fmt::format("{} {} on the phone", log.entries, log.entries == 1 ? "entry" : "entries");
}

std::string FolderTables(const PhoneStatus& status)
{
    std::string text;
    for (const auto& [category, folders] : status.folders) {
        if (folders.empty()) {
            continue;
        }
        Table table({std::string(TitleOf(category)), ">Files", ">Size", ">On phone", "State"});
        for (const auto& [folder, filesOnPhone] : folders) {
            table.add({folder.path, std::to_string(folder.count), SizeText(folder.size), std::to_string(filesOnPhone),
                       StateOf(folder, filesOnPhone)});
        }
        text += "\n" + table.text("  ");
    }
    return text;
}

std::string PlaylistTable(const PhoneStatus& status)
{
    if (status.playlists.empty()) {
        return {};
    }
    Table table({"Playlists", ">Entries", ">Size", "State"});
    for (const RecordedPlaylist& list : status.playlists) {
        table.add({list.name, std::to_string(list.count), SizeText(list.size), StateOf(list)});
    }
    return "\n" + table.text("  ");
}

std::string BackupTable(const PhoneStatus& status)
{
    if (!status.backups || status.backups->empty()) {
        return {};
    }
    Table table({"Backups", ">Size", "Made"});
    for (const RecordedBackup& backup : *status.backups) {
        table.add({backup.path, SizeText(backup.size),
                   backup.modified ? FormatLocalTime(*backup.modified) : std::string("unknown")});
    }
    return "\n" + table.text("  ");
}

Json CategoriesJson(const PhoneStatus& status)
{
    Json categories = Json::array();
    for (const Category category : kCategories) {
        Json folders = Json::array();
        for (const auto& [folder, filesOnPhone] : status.folders.at(category)) {
            folders.push_back({{"path", folder.path},
                               {"files", folder.count},
                               {"size", folder.size},
                               {"total_size", folder.totalSize},
                               {"measured", folder.sized},
                               {"files_on_phone", filesOnPhone},
                               {"selected", folder.selected},
                               {"deleted", folder.deleted},
                               {"added", TimeJson(folder.added)},
                               {"state", StateOf(folder, filesOnPhone)}});
        }
        categories.push_back({{"category", KeyOf(category)},
                              {"files_on_phone", status.files.at(category)},
                              {"folders", std::move(folders)}});
    }
    return categories;
}

size_t CountLeftOut(const PhoneStatus& status)
{
    std::set<std::string> listed;
    for (const RecordedFolder& folder : status.gallery) {
        listed.insert(folder.path);
    }
    std::set<std::string> missing;
    for (const Category category : {Category::kImages, Category::kVideos}) {
        for (const FolderStatus& entry : status.folders.at(category)) {
            if (!listed.contains(entry.folder.path)) {
                missing.insert(entry.folder.path);
            }
        }
    }
    return missing.size();
}

}  // namespace

PhoneStatus Collect(const Database& database, PhoneSettings settings)
{
    PhoneStatus status;
    status.settings = std::move(settings);
    const std::string& imei = status.settings.imei;
    kesta_db::Phones phones = database.phones();
    status.lastSync = phones.lastSync(imei);
    if (status.lastSync) {
        status.lastRun = LoadLastRun(imei, *status.lastSync);
    }
    for (const MainFolder folder : kMainFolders) {
        status.mainFolders[folder] = phones.isSelected(imei, folder);
    }
    for (const Category category : kCategories) {
        std::map<std::string, size_t> counts;
        kesta_db::Media media = database.media(imei, category);
        for (const RecordedFile& file : media.files()) {
            ++counts[file.basePath];
            ++status.files[category];
        }
        (void)status.files[category];  // A category without files has none.
        std::vector<FolderStatus>& folders = status.folders[category];
        for (RecordedFolder& folder : media.folders()) {
            const size_t onPhone = counts[folder.path];
            folders.push_back({std::move(folder), onPhone});
        }
    }
    status.gallery = database.gallery(imei);
    status.galleryLeftOut = CountLeftOut(status);
    kesta_db::Playlists playlists = database.playlists(imei);
    status.playlists = playlists.all();
    status.playlistFiles = playlists.files().size();
    status.bookmarks = database.bookmarks(imei).all().size();
    status.backups = BackupsOf(database, imei);
    for (const PimKind kind : kPimKinds) {
        const PimPhoneLog log = ReadPimPhoneLog(database, imei, kind);
        status.logs[kind] = {log.profile, log.rows.size()};
    }
    return status;
}

Json ToJson(const PhoneStatus& status)
{
    Json json{{"imei", status.settings.imei},
              {"name", status.settings.name},
              {"last_sync", TimeJson(status.lastSync)},
              {"last_error", nullptr},
              {"settings", SettingsJson(status.settings)},
              {"main_folders", Json::object()},
              {"categories", CategoriesJson(status)}};
    if (status.lastRun) {
        json["last_error"] = {{"code", status.lastRun->code}, {"reason", status.lastRun->reason}};
    }
    for (const auto& [folder, isSelected] : status.mainFolders) {
        json["main_folders"][std::string(KeyOf(folder))] = isSelected;
    }
    Json gallery = Json::array();
    for (const RecordedFolder& folder : status.gallery) {
        gallery.push_back(GalleryFolderJson(folder));
    }
    json["gallery"] = {{"folders", std::move(gallery)}, {"left_out", status.galleryLeftOut}};
    Json lists = Json::array();
    for (const RecordedPlaylist& list : status.playlists) {
        lists.push_back(PlaylistJson(list));
    }
    json["playlists"] = {{"files_on_phone", status.playlistFiles}, {"lists", std::move(lists)}};
    json["bookmarks"] = {{"type", status.settings.bookmarkType}, {"count", status.bookmarks}};
    json["backups"] = nullptr;
    if (status.backups) {
        json["backups"] = Json::array();
        for (const RecordedBackup& backup : *status.backups) {
            json["backups"].push_back(BackupJson(backup));
        }
    }
    json["log"] = Json::object();
    for (const auto& [kind, log] : status.logs) {
        json["log"][std::string(KeyOf(kind))] = {{"profile", log.profile}, {"entries", log.entries}};
    }
    return json;
}

std::string ToText(const PhoneStatus& status)
{
    const PhoneSettings& settings = status.settings;
    std::string text = fmt::format("{} (IMEI {})\n", Printable(settings.name), Printable(settings.imei));
    const auto line = [&](const char* title, const std::string& words) {
        text += fmt::format("  {:<12}  {}\n", title, words);
    };
    line("Last sync", LastSyncText(status));
    line("Settings", fmt::format("automatic sync {}, automatic backup {}, Wi-Fi {}", OnOff(settings.autoSync),
                                 OnOff(settings.autoBackup), OnOff(settings.allowWifi)));
    line("Main folders", MainFoldersText(status));
    if (!settings.photoPath.empty()) {
        line("Photos", Printable(settings.photoPath));
    }
    if (!settings.docPath.empty()) {
        line("Documents", Printable(settings.docPath));
    }
    line("Gallery", GalleryText(status));
    line("Playlists", fmt::format("{}, {} copied for them", Counted(status.playlists.size(), "playlist"),
                                  Counted(status.playlistFiles, "file")));
    line("Bookmarks", fmt::format("{} of type {}", status.bookmarks, settings.bookmarkType));
    for (const auto& [kind, log] : status.logs) {
        line(std::string(TitleOf(kind)).c_str(), LogText(log));
    }
    if (status.backups) {
        line("Backups", status.backups->empty() ? "none" : Counted(status.backups->size(), "archive"));
    }
    return text + FolderTables(status) + PlaylistTable(status) + BackupTable(status);
}

Json GalleryFolderJson(const RecordedFolder& folder)
{
    return {{"path", folder.path},
            {"files", folder.count},
            {"size", folder.size},
            {"total_size", folder.totalSize},
            {"selected", folder.selected},
            {"deleted", folder.deleted},
            {"added", TimeJson(folder.added)},
            {"state", StateOf(folder)}};
}

Json PlaylistJson(const RecordedPlaylist& list)
{
    Json json{{"name", list.name},
              {"state", StateOf(list)},
              {"flag", static_cast<int32_t>(list.state)},
              {"selected", list.selected},
              {"entries", list.count},
              {"size", list.size},
              {"total_size", list.totalSize},
              {"measured", list.sized},
              {"id_on_phone", nullptr},
              {"digest", list.digest}};
    if (list.idInPhone) {
        json["id_on_phone"] = *list.idInPhone;
    }
    return json;
}

Json BackupJson(const RecordedBackup& backup)
{
    return {{"path", backup.path},
            {"phone_path", backup.phonePath},
            {"size", backup.size},
            {"modified", TimeJson(backup.modified)}};
}

}  // namespace kesta
