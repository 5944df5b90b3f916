#include "stages/main_folder_stage.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kesta {
namespace {

// The client has nothing for the map.
constexpr std::array kSynced{MainFolder::kMusic,    MainFolder::kGallery,  MainFolder::kDocuments,
                             MainFolder::kContacts, MainFolder::kCalendar, MainFolder::kBookmarks};

}  // namespace

Plan MainFolderStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    bool isChosen = false;
    if (session.isKnown) {
        MainFolderRecords mainFolders(session.database);
        for (const MainFolder folder : kMainFolders) {
            selected_[static_cast<size_t>(folder)] = mainFolders.isSelected(session.imei, folder);
        }
        isChosen = std::find(selected_.begin(), selected_.end(), true) != selected_.end() && !hasBegun_;
        isChosen = isChosen || session.database.lastSync(session.imei);
    }
    if (!isChosen) {
        selectAll(session, plan);
    }
    skipUnselected(session);
    return plan;
}

void MainFolderStage::selectAll(Session& session, Plan& plan)
{
    for (const MainFolder folder : kSynced) {
        bool& isSelected = selected_[static_cast<size_t>(folder)];
        if (std::exchange(isSelected, true)) {
            continue;
        }
        Change change;
        change.record = [&session, folder](const Written&) {
            const Result result = MainFolderRecords(session.database).select(session.imei, folder, true);
            if (!result.ok()) {
                throw DatabaseError(
                    fmt::format("the main folder {} cannot be selected: {}", KeyOf(folder), result.text()));
            }
            return result;
        };
        plan.add(std::move(change));
    }
}

void MainFolderStage::skipUnselected(const Session& session)
{
    const auto isSkipped = [&](MainFolder folder, bool isGiven, std::string_view what) {
        if (!isGiven || selected_[static_cast<size_t>(folder)]) {
            return false;
        }
        session.report.note(
            fmt::format("{} skipped: the main folder {} is not selected for this phone (kesta settings --imei {} "
                        "select.{}=yes selects it).",
                        what, KeyOf(folder), Printable(session.imei), KeyOf(folder)));
        return true;
    };
    for (const Category category : kCategories) {
        auto& chosen = folders_[static_cast<size_t>(category)];
        if (isSkipped(MainFolderOf(category), !chosen.empty(), TitleOf(category))) {
            chosen.clear();
        }
    }
    if (isSkipped(MainFolder::kMusic, options_.playlists.has_value(), "Playlists")) {
        options_.playlists.reset();
    }
    if (isSkipped(MainFolder::kBookmarks, options_.bookmarks.has_value(), "Bookmarks")) {
        options_.bookmarks.reset();
    }
    if (isSkipped(MainFolder::kContacts, !options_.contacts.empty(), "Contacts")) {
        options_.contacts.clear();
    }
    if (isSkipped(MainFolder::kCalendar, !options_.calendars.empty(), "Calendar")) {
        options_.calendars.clear();
    }
}

}  // namespace kesta
