#include "commands/main_folder_choice.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"

namespace kesta {
namespace {

// The client has nothing for the map.
constexpr std::array kSynced{MainFolder::kMusic,    MainFolder::kGallery,  MainFolder::kDocuments,
                             MainFolder::kContacts, MainFolder::kCalendar, MainFolder::kBookmarks};

}  // namespace

MainFolderChoice::MainFolderChoice(Database& database, const std::string& imei, bool hasBegun, bool dryRun)
    : imei_(imei)
{
    MainFolderRecords mainFolders(database);
    const bool isKnown = !imei.empty() && database.phone(imei).has_value();
    bool isChosen = false;
    if (isKnown) {
        for (const MainFolder folder : kMainFolders)
            selected_[static_cast<std::size_t>(folder)] = mainFolders.isSelected(imei, folder);
        isChosen = std::find(selected_.begin(), selected_.end(), true) != selected_.end() && !hasBegun;
        if (database.lastSync(imei)) isChosen = true;
    }
    if (isChosen) return;
    for (const MainFolder folder : kSynced) {
        bool& selected = selected_[static_cast<std::size_t>(folder)];
        if (!dryRun && !selected) {
            if (const std::int32_t code = mainFolders.select(imei, folder, true); code != 0)
                throw DatabaseError(
                    fmt::format("the main folder {} cannot be selected: {}", KeyOf(folder), ResultText(code)));
        }
        selected = true;
    }
}

void MainFolderChoice::apply(ChosenFolders& folders, SyncOptions& options, Summary& summary) const
{
    const auto skip = [&](MainFolder folder, const std::string& what) {
        summary.notes.push_back(
            fmt::format("{} skipped: the main folder {} is not selected for this phone (kesta settings --imei {} "
                        "select.{}=yes selects it).",
                        what, KeyOf(folder), Printable(imei_), KeyOf(folder)));
    };
    for (const Category category : kCategories) {
        auto& chosen = folders[static_cast<std::size_t>(category)];
        if (chosen.empty() || isSelected(MainFolderOf(category))) continue;
        skip(MainFolderOf(category), std::string(TitleOf(category)));
        chosen.clear();
    }
    if (options.playlists && !isSelected(MainFolder::kMusic)) {
        skip(MainFolder::kMusic, "Playlists");
        options.playlists.reset();
    }
    if (options.bookmarks && !isSelected(MainFolder::kBookmarks)) {
        skip(MainFolder::kBookmarks, "Bookmarks");
        options.bookmarks.reset();
    }
    if (!options.contacts.empty() && !isSelected(MainFolder::kContacts)) {
        skip(MainFolder::kContacts, "Contacts");
        options.contacts.clear();
    }
    if (!options.calendars.empty() && !isSelected(MainFolder::kCalendar)) {
        skip(MainFolder::kCalendar, "Calendar");
        options.calendars.clear();
    }
}

}  // namespace kesta
