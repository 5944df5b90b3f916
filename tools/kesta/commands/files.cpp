#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>

#include "base/text.h"
#include "commands/command.h"
#include "commands/json.h"
#include "commands/pc_path.h"
#include "commands/phone_status.h"
#include "commands/phones.h"
#include "commands/pim_tree.h"
#include "commands/states.h"
#include "database/backups.h"
#include "database/database.h"
#include "report/output.h"
#include "report/summary.h"
#include "report/table.h"
#include "stages/pim/pim_entry.h"
#include "stages/pim/pim_log_rows.h"

namespace kesta {
namespace {

/// What kesta files lists: the categories of media and the other families.
inline constexpr std::array<std::string_view, 11> kFilesCategories{"music",    "images",    "videos",    "documents",
                                                                   "gallery",  "playlists", "bookmarks", "backups",
                                                                   "contacts", "calendar",  "log"};

struct FilesOptions {
    std::string imei;
    std::string category;  // one of kFilesCategories
    std::optional<std::string> folder;
    bool json = false;
};

// What a category holds, in both forms.
struct Listing {
    Json json = Json::object();
    std::string text;  // ends with the number of what is listed
};

std::string TimeText(const std::optional<LocalTime>& time)
{
    return time ? FormatLocalTime(*time) : std::string("unknown");
}

std::string EndOf(size_t count, const char* noun)
{
    return count == 0 ? std::string("Nothing is recorded here.\n") : Counted(count, noun) + "\n";
}

Listing ListMedia(const Database& database, const FilesOptions& options, Category category)
{
    std::vector<RecordedFile> files = database.media(options.imei, category).files();
    if (options.folder) {
        std::erase_if(files, [&](const RecordedFile& file) { return !IsNamed(file.basePath, *options.folder); });
    }
    Listing listing;
    listing.json["files"] = Json::array();
    Table table({"Modified", "File", "On the phone"});
    for (const RecordedFile& file : files) {
        listing.json["files"].push_back(FileJson(file, "folder"));
        table.add({TimeText(file.modified), file.path, file.phonePath});
    }
    if (!files.empty()) {
        listing.text = table.text("");
    }
    listing.text += EndOf(files.size(), "file");
    return listing;
}

Listing ListGallery(const Database& database, const FilesOptions& options)
{
    std::vector<RecordedFolder> folders = database.gallery(options.imei);
    if (options.folder) {
        std::erase_if(folders, [&](const RecordedFolder& folder) { return !IsNamed(folder.path, *options.folder); });
    }
    Listing listing;
    listing.json["folders"] = Json::array();
    Table table({"Folder", ">Files", ">Size", "Added", "State"});
    for (const RecordedFolder& folder : folders) {
        listing.json["folders"].push_back(GalleryFolderJson(folder));
        table.add({folder.path, std::to_string(folder.count), SizeText(folder.size), TimeText(folder.added),
                   StateOf(folder)});
    }
    if (!folders.empty()) {
        listing.text = table.text("");
    }
    listing.text += EndOf(folders.size(), "folder");
    return listing;
}

Listing ListPlaylists(const Database& database, const FilesOptions& options)
{
    kesta_db::Playlists playlists = database.playlists(options.imei);
    Listing listing;
    listing.json["playlists"] = Json::array();
    size_t count = 0;
    for (const RecordedPlaylist& list : playlists.all()) {
        if (options.folder && list.name != *options.folder) {
            continue;
        }
        ++count;
        const std::vector<std::string> members = playlists.members(list.name);
        Json json = PlaylistJson(list);
        json["members"] = members;
        listing.json["playlists"].push_back(std::move(json));
        listing.text += fmt::format("{}: {}{}\n", Printable(list.name), StateOf(list),
                                    list.idInPhone ? ", as " + Printable(*list.idInPhone) : std::string());
        for (const std::string& member : members) {
            listing.text += fmt::format("  {}\n", Printable(member));
        }
    }
    listing.json["files"] = Json::array();
    Table table({"Copied for playlists", "Playlist", "On the phone"});
    size_t copied = 0;
    for (const RecordedFile& file : playlists.files()) {
        if (options.folder && file.basePath != *options.folder) {
            continue;
        }
        ++copied;
        listing.json["files"].push_back(FileJson(file, "playlist"));
        table.add({file.path, file.basePath, file.phonePath});
    }
    if (copied > 0) {
        listing.text += "\n" + table.text("");
    }
    listing.text += EndOf(count, "playlist");
    return listing;
}

Listing ListBookmarks(const Database& database, const FilesOptions& options)
{
    const auto phone = database.phones().find(options.imei);
    const std::vector<RecordedBookmark> bookmarks = database.bookmarks(options.imei).all();
    Listing listing;
    listing.json["type"] = phone ? phone->bookmarkType : 0;
    listing.json["bookmarks"] = Json::array();
    Table table({"Title", "URL"});
    for (const RecordedBookmark& bookmark : bookmarks) {
        listing.json["bookmarks"].push_back({{"title", bookmark.title},
                                             {"url", bookmark.url},
                                             {"id_on_phone", bookmark.idOnPhone},
                                             {"flag", bookmark.flag}});
        table.add({bookmark.title, bookmark.url});
    }
    if (!bookmarks.empty()) {
        listing.text = table.text("");
    }
    listing.text += EndOf(bookmarks.size(), "bookmark");
    return listing;
}

Listing ListBackups(const Database& database, const FilesOptions& options)
{
    const auto backups = BackupsOf(database, options.imei);
    Listing listing;
    listing.json["backups"] = nullptr;
    if (!backups) {
        listing.text = "The database has no table for backups: archives are not recorded in them.\n";
        return listing;
    }
    listing.json["backups"] = Json::array();
    Table table({"Made", "Archive", ">Size", "Of"});
    for (const RecordedBackup& backup : *backups) {
        listing.json["backups"].push_back(BackupJson(backup));
        table.add({TimeText(backup.modified), backup.path, SizeText(backup.size), backup.phonePath});
    }
    if (!backups->empty()) {
        listing.text = table.text("");
    }
    listing.text += EndOf(backups->size(), "backup");
    return listing;
}

Listing ListPim(const Database& database, const FilesOptions& options, PimKind kind)
{
    std::set<std::string> onPhone;
    for (PimLogRow& row : ReadPimPhoneLog(database, options.imei, kind).rows) {
        onPhone.insert(std::move(row.guid));
    }
    Listing listing;
    listing.json["folders"] = Json::array();
    size_t count = 0;
    for (const PimNode& node : ReadPimTree(database, kind)) {
        if (options.folder && node.folder.path != *options.folder && node.name != *options.folder) {
            continue;
        }
        Json json = PimTreeJson({node}).at(0);
        json["items"] = Json::array();
        listing.text += fmt::format("{}{}: {}\n", std::string(2 * node.depth, ' '), Printable(node.name),
                                    CountedEntries(node.items.size()));
        for (const PimItem& item : node.items) {
            const std::string title = TitleOfEntry(kind, item.data);
            const bool isOnPhone = onPhone.contains(item.id);
            json["items"].push_back(
                {{"id", item.id}, {"title", title}, {"size", item.data.size()}, {"on_phone", isOnPhone}});
            listing.text += fmt::format("{}{}{}\n", std::string(2 * node.depth + 2, ' '),
                                        title.empty() ? "(without a name)" : Printable(title),
                                        isOnPhone ? "" : " (not on this phone)");
        }
        count += node.items.size();
        listing.json["folders"].push_back(std::move(json));
    }
    listing.text += count == 0 ? std::string("Nothing is recorded here.\n") : CountedEntries(count) + "\n";
    return listing;
}

Listing ListLog(const Database& database, const FilesOptions& options)
{
    Listing listing;
    Table table({"Kind", "Entry", "On the phone as", "Changed on the PC", "Changed on the phone"});
    size_t count = 0;
    for (const PimKind kind : kPimKinds) {
        Json entries = Json::array();
        const PimPhoneLog log = ReadPimPhoneLog(database, options.imei, kind);
        for (const PimLogRow& row : log.rows) {
            ++count;
            entries.push_back({{"id", row.guid},
                               {"id_on_phone", row.luid},
                               {"pc_time", TimeJson(row.pcTime)},
                               {"phone_time", TimeJson(row.phoneTime)}});
            table.add({std::string(KeyOf(kind)), row.guid, row.luid, TimeText(row.pcTime), TimeText(row.phoneTime)});
        }
        listing.json[std::string(KeyOf(kind))] = {{"profile", log.profile}, {"entries", std::move(entries)}};
    }
    if (count > 0) {
        listing.text = table.text("");
    }
    listing.text += count == 0 ? std::string("Nothing is recorded here.\n") : CountedEntries(count) + "\n";
    return listing;
}

Listing List(const Database& database, const FilesOptions& options)
{
    if (const auto category = CategoryOfKey(options.category)) {
        return ListMedia(database, options, *category);
    }
    if (const auto kind = PimKindOfKey(options.category)) {
        return ListPim(database, options, *kind);
    }
    if (options.category == "gallery") {
        return ListGallery(database, options);
    }
    if (options.category == "playlists") {
        return ListPlaylists(database, options);
    }
    if (options.category == "bookmarks") {
        return ListBookmarks(database, options);
    }
    if (options.category == "backups") {
        return ListBackups(database, options);
    }
    return ListLog(database, options);
}

// Bookmarks, backups and the log have no folders.
bool HasFolders(const std::string& category)
{
    return category != "bookmarks" && category != "backups" && category != "log";
}

ExitCode Run(const FilesOptions& options)
{
    if (options.folder && !HasFolders(options.category)) {
        (void)std::fprintf(stderr, "kesta: --folder has no meaning for %s\n", options.category.c_str());
        return ExitCode::kUsage;
    }
    Database database;
    (void)KnownPhone(database, options.imei);
    Listing listing = List(database, options);
    if (!options.json) {
        Print(listing.text);
        return ExitCode::kSuccess;
    }
    Json json{{"imei", options.imei}, {"category", options.category}};
    json.update(listing.json);
    PrintJson(json);
    return ExitCode::kSuccess;
}

constexpr const char* kFilesExamples =
    "Examples:\n"
    "  kesta files --imei 004999010640000 --category music\n"
    "  kesta files --imei 004999010640000 --category images --folder ~/Pictures/2026 --json\n"
    "  kesta files --imei 004999010640000 --category playlists\n"
    "\n"
    "Categories:\n"
    "  music, images, videos, documents  the files copied from folders of that category\n"
    "  gallery                           the folders of pictures and videos as one list\n"
    "  playlists                         the playlists, their members and the music copied for them\n"
    "  bookmarks                         the web bookmarks of the phone's present bookmark type\n"
    "  backups                           the archives made of the phone\n"
    "  contacts, calendar                the entries of the store, folder by folder\n"
    "  log                               which contacts and calendar entries the phone has\n"
    "\n";

std::string CategoryProblem(const std::string& key)
{
    if (std::find(kFilesCategories.begin(), kFilesCategories.end(), key) != kFilesCategories.end()) {
        return {};
    }
    return fmt::format("the categories are {}", fmt::join(kFilesCategories, ", "));
}

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<FilesOptions>();
    app.add_option("--imei", options->imei, "the phone")->required()->type_name("IMEI");
    app.add_option("--category", options->category, "what to list: see below")
        ->required()
        ->type_name("NAME")
        ->check(CategoryProblem);
    app.add_option("--folder", options->folder, "only what belongs to this folder, or to the playlist of this name")
        ->type_name("DIR");
    app.add_flag("--json", options->json, "as JSON");
    app.footer(std::string(kFilesExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command FilesCommand()
{
    return {"files", "list the files or entries recorded for a phone", Prepare};
}

}  // namespace kesta
