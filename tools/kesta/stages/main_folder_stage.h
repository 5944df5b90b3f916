// Which parts of a sync the phone takes part in: a family whose main folder is not selected for it is skipped.
#pragma once

#include <set>

#include "database/main_folders.h"
#include "stages/media/media_stage.h"
#include "sync/session.h"

namespace kesta {

/// The library registers a phone with nothing selected, so a phone that nobody has chosen anything for begins with
/// everything that this client can sync. That is one that has never been synced, and either has nothing selected or
/// was begun by a run of this client that did not get to its end.
class MainFolderStage : public Stage {
public:
    /// hasBegun: such a run has marked the phone. What is not selected is taken out of options and folders.
    MainFolderStage(bool hasBegun, SyncOptions& options, ChosenFolders& folders)
        : hasBegun_(hasBegun), options_(options), folders_(folders)
    {
    }
    [[nodiscard]] Plan plan(Session& session) override;

private:
    void selectAll(Session& session, Plan& plan);
    void skipUnselected(const Session& session);

    bool hasBegun_;
    SyncOptions& options_;
    ChosenFolders& folders_;
    std::set<MainFolder> selected_;
};

}  // namespace kesta
