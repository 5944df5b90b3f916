// Keeps an accident on the PC from emptying the phone: removals of more than half of what is recorded wait until the
// user forces them.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "report/report.h"

namespace kesta {

class DeletionGuard {
public:
    /// Remembers nothing; force: lets everything pass.
    explicit DeletionGuard(bool force) : force_(force) {}
    /// With what the phone's earlier runs have deferred.
    DeletionGuard(const std::string& imei, bool force);

    /// Whether so many removals wait. While some do, what has been added since does not count as recorded: otherwise
    /// the next run would find them to be less than half.
    [[nodiscard]] bool defers(const std::string& what, size_t removals, size_t recorded);

    /// Writes the state file that says what waits, to be called before anything is added.
    void save(Report& report);

private:
    std::string imei_;
    bool force_;
    bool hasChanged_ = false;
    std::map<std::string, size_t> recordedBefore_;  // of all kinds of which removals wait
};

}  // namespace kesta
