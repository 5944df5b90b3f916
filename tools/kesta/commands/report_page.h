// The page that kesta report writes: HTML that needs nothing beside it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commands/phone_status.h"
#include "state/run_history.h"

namespace kesta {

/// What stands first in every such page, so that no other file is overwritten.
inline constexpr std::string_view kReportStart = "<!DOCTYPE html>\n<!-- kesta report -->\n";

struct ReportPicture {
    std::string caption;
    std::string address;  // "data:image/jpeg;base64,..."
};

struct ReportPhone {
    PhoneStatus status;
    std::vector<RunRecord> runs;
    std::vector<ReportPicture> pictures;
};

[[nodiscard]] std::string ReportPage(const std::vector<ReportPhone>& phones, const std::string& time);

}  // namespace kesta
