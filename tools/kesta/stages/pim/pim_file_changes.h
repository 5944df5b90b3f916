// The changes that bring the files of contacts or calendars to the phone, and take them off it.
#pragma once

#include "stages/pim/pim_log.h"

namespace kesta {

/// All that is passed in lives as long as the plan.
void AddPimFileChanges(PimWork& work, Tally& tally, const PhoneFolder& phone, Plan& plan);

}  // namespace kesta
