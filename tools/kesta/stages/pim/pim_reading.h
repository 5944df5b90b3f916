// What a sync of contacts or calendars starts from: the files of the PC, the database's store and the phone's log.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "stages/pim/pim_log.h"
#include "stages/pim/pim_stage.h"

namespace kesta {

/// The files that the user has given.
[[nodiscard]] const std::vector<std::string>& FilesOf(PimKind kind, const SyncOptions& options);

/// False when the log is not this program's: the user has been told. journal: of a run that was cut short.
[[nodiscard]] bool ReadPimLog(const std::optional<PimJournal>& journal, Session& session, PimWork& work);
void ReadPimSources(PimAim aim, Session& session, PimWork& work);
/// Files that are gone, but whose entries another file holds: renamed or moved ones, which are not to be there twice.
void AddMovedPimSources(kesta_db::PimStore& store, Session& session, PimWork& work);
/// The folders of the sources with their entries, of all others the names.
void ReadPimStore(kesta_db::PimStore& store, PimWork& work);

}  // namespace kesta
