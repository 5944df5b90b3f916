// The changes that bring the database's store of contacts or calendars up to the files of the PC.
#pragma once

#include "stages/pim/pim_log.h"

namespace kesta {

/// All that is passed in lives as long as the plan.
void AddPimStoreChanges(const PimWork& work, kesta_db::PimStore& store, Session& session, Plan& plan);

}  // namespace kesta
