// Kept on the PC while a phone's contacts and calendars are written and logged: first the phone paths that are about to
// be written, then, since a log can only be replaced by clearing it first, what the logs are going to hold. The run
// after a killed one takes it from here.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "database/database.h"
#include "database/pim_kind.h"
#include "os/status.h"

namespace kesta {

struct PimJournal {
    std::set<std::string> paths;
    /// By kind, once what is on the phone is settled. None: the database's log holds.
    std::array<std::optional<std::vector<PimLogRow>>, kPimKinds.size()> rows;
    [[nodiscard]] auto& rowsOf(PimKind kind) { return rows[static_cast<size_t>(kind)]; }
    [[nodiscard]] const auto& rowsOf(PimKind kind) const { return rows[static_cast<size_t>(kind)]; }
};

os::Status WritePimJournal(const std::string& imei, const PimJournal& journal);
/// The journal is std::nullopt if there is none. Fails when there is one that cannot be read or understood.
os::Status ReadPimJournal(const std::string& imei, std::optional<PimJournal>& journal);
os::Status RemovePimJournal(const std::string& imei);

}  // namespace kesta
