#include "stages/main_folder_stage.h"

#include <fmt/format.h>

#include <array>

#include "base/text.h"
#include "database/failures.h"

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
        kesta_db::Phones phones = session.database.phones();
        for (const MainFolder folder : kMainFolders) {
            if (phones.isSelected(session.imei, folder)) {
                selected_.insert(folder);
            }
        }
        isChosen = (!selected_.empty() && !hasBegun_) || phones.lastSync(session.imei);
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
        if (!selected_.insert(folder).second) {
            continue;
        }
        Change change;
        change.record = [&session, folder](const Written&) {
            try {
                session.database.phones().select(session.imei, folder, true);
            } catch (const kesta_db::Error& failure) {
                throw StopRun(ExitCode::kDatabase, fmt::format("the main folder {} cannot be selected: {}",
                                                               KeyOf(folder), SentenceOf(failure.code())));
            }
        };
        plan.add(std::move(change));
    }
}

void MainFolderStage::skipUnselected(const Session& session)
{
    const auto isSkipped = [&](MainFolder folder, bool isGiven, std::string_view what) {
        if (!isGiven || selected_.contains(folder)) {
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
