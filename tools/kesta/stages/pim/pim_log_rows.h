// A phone's log of contacts and calendars as it counts. A log can only be appended to: of an entry the last row says
// what the phone has of it, or that it is gone.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "database/pim_kind.h"

namespace kesta {

struct PimPhoneLog {
    std::vector<PimLogRow> rows;  // each entry once, by their ids; of another program's log all there is
    size_t stored = 0;            // rows in the database
    std::string profile;          // empty: there is no log
};

/// The phone must have been announced.
[[nodiscard]] PimPhoneLog ReadPimPhoneLog(const Database& database, const std::string& imei, PimKind kind);

/// What a log's profile says: that it is this program's, and in which form.
[[nodiscard]] std::string PimLogProfile(PimKind kind);

/// By their entries' ids.
[[nodiscard]] std::vector<PimLogRow> SortedPimRows(std::vector<PimLogRow> rows);
/// Each entry once, by their ids.
[[nodiscard]] std::vector<PimLogRow> CurrentPimRows(const std::vector<PimLogRow>& stored);
/// What is to be appended to a log that says the one for it to say the other. Both by their entries' ids.
[[nodiscard]] std::vector<PimLogRow> PimRowsToAppend(const std::vector<PimLogRow>& before,
                                                     const std::vector<PimLogRow>& after);

}  // namespace kesta
