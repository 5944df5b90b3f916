// The closing line of a run for programs.
#pragma once

#include <string>

#include "report/summary.h"

namespace kesta {

/// {"event":"summary","exit_code":0,...}, without an end of line.
[[nodiscard]] std::string SummaryJsonLine(const Summary& summary, bool isPreview, double seconds);

}  // namespace kesta
