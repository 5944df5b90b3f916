#pragma once

#include "base/stop_run.h"
#include "database/failures.h"
#include "report/summary.h"

namespace kesta {

/// What ends a run is the summary's matter as soon as the run has a summary.
template <class Work>
void Guarded(Summary& summary, const Work& work)
{
    try {
        work();
    } catch (const StopRun& stop) {
        summary.stopWith(stop.code(), stop.what());
    } catch (const kesta_db::Error& failure) {
        summary.stopWith(ExitCode::kDatabase, TextOf(failure));
    }
}

}  // namespace kesta
