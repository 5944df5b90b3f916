#include "report/summary_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace kesta {
namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const Tally& tally)
{
    return {{"added", tally.added},      {"updated", tally.updated}, {"removed", tally.removed},
            {"moved", tally.moved},      {"adopted", tally.adopted}, {"unchanged", tally.unchanged},
            {"deferred", tally.deferred}};
}

}  // namespace

std::string SummaryJsonLine(const Summary& summary, bool isPreview, double seconds)
{
    Json json{{"event", "summary"},
              {"exit_code", static_cast<int>(summary.exitCode())},
              {"dry_run", isPreview},
              {"stopped", nullptr},
              {"seconds", std::round(seconds * 1000) / 1000},
              {"bytes", summary.bytes},
              {"failed", summary.failures.size()},
              {"kept", summary.kept.size()},
              {"not_reached", summary.notReached},
              {"files", ToJson(summary.files)},
              {"families", Json::object()},
              {"left_out", Json::array()}};
    if (summary.isStopped()) {
        json["stopped"] = summary.stopReason;
    }
    for (const FamilyTally& family : summary.families) {
        json["families"][family.title] = ToJson(family.tally);
    }
    for (const LeftOutItems& items : summary.leftOut) {
        json["left_out"].push_back({{"from", items.from}, {"why", items.why}, {"count", items.count}});
    }
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace kesta
