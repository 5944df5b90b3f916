// Which parts of a sync the phone takes part in: a family whose main folder is not selected for it is skipped.
#pragma once

#include <array>
#include <string>

#include "commands/options.h"
#include "commands/sync_folders.h"
#include "database/main_folders.h"
#include "report/summary.h"

namespace kesta {

class MainFolderChoice {
public:
    /// The library registers a phone with nothing selected, so a phone that nobody has chosen anything for begins with
    /// everything that this client can sync. That is one that has never been synced, and either has nothing selected or
    /// was begun by a run of this client that did not get to its end. hasBegun: such a run has marked the phone.
    /// Unless dryRun the choice is stored. Throws when it cannot be.
    MainFolderChoice(Database& database, const std::string& imei, bool hasBegun, bool dryRun);

    [[nodiscard]] bool isSelected(MainFolder folder) const { return selected_[static_cast<std::size_t>(folder)]; }
    /// Takes what is not selected out of the folders and options of the run, and notes that in the summary.
    void apply(ChosenFolders& folders, SyncOptions& options, Summary& summary) const;

private:
    std::string imei_;
    std::array<bool, kMainFolders.size()> selected_{};
};

}  // namespace kesta
