// One sync of one phone: the stages in their turn, what is remembered of the phone, and how it is told.
#pragma once

#include "base/exit_codes.h"
#include "phone/phone_folder.h"
#include "report/run_log.h"
#include "sync/sync_options.h"

namespace kesta {

/// Throws StopRun, or the library's Error, for what ends the run before it has begun.
ExitCode SyncPhone(const SyncOptions& options, PhoneFolder& phone, RunLog& log);

}  // namespace kesta
