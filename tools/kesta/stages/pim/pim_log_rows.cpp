#include "stages/pim/pim_log_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace kesta {
namespace {

// In place of what the phone has of an entry: nothing any more.
constexpr const char* kGone = "gone";

bool ByGuid(const PimLogRow& a, const PimLogRow& b)
{
    return a.guid < b.guid;
}

// Null if there is none.
const PimLogRow* Find(const std::vector<PimLogRow>& rows, const PimLogRow& wanted)
{
    const auto found = std::lower_bound(rows.begin(), rows.end(), wanted, ByGuid);
    return found != rows.end() && found->guid == wanted.guid ? &*found : nullptr;
}

}  // namespace

PimPhoneLog ReadPimPhoneLog(const Database& database, const std::string& imei, PimKind kind)
{
    kesta_db::PimSyncLog stored = database.pimLog(imei, TypeOf(kind));
    PimPhoneLog log{stored.rows(), 0, stored.profile()};
    log.stored = log.rows.size();
    if (log.profile == PimLogProfile(kind)) {
        log.rows = CurrentPimRows(log.rows);
    }
    return log;
}

std::string PimLogProfile(PimKind kind)
{
    return fmt::format("kesta 1 {}", KeyOf(kind));
}

std::vector<PimLogRow> SortedPimRows(std::vector<PimLogRow> rows)
{
    std::sort(rows.begin(), rows.end(), ByGuid);
    return rows;
}

std::vector<PimLogRow> CurrentPimRows(const std::vector<PimLogRow>& stored)
{
    std::map<std::string, const PimLogRow*> last;
    for (const PimLogRow& row : stored) {
        last[row.guid] = &row;
    }
    std::vector<PimLogRow> rows;
    for (const auto& [guid, row] : last) {
        if (row->luid != kGone) {
            rows.push_back(*row);
        }
    }
    return rows;
}

std::vector<PimLogRow> PimRowsToAppend(const std::vector<PimLogRow>& before, const std::vector<PimLogRow>& after)
{
    std::vector<PimLogRow> rows;
    for (const PimLogRow& row : after) {
        const PimLogRow* old = Find(before, row);
        if (old == nullptr || *old != row) {
            rows.push_back(row);
        }
    }
    for (const PimLogRow& row : before) {
        if (Find(after, row) == nullptr) {
            rows.push_back({row.guid, kGone, std::nullopt, std::nullopt});
        }
    }
    return rows;
}

}  // namespace kesta
