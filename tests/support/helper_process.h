// A second process that uses the library or the database file, driven by commands; tests/process/helper.cpp carries
// them out and lists them.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.h"

namespace kesta::test {

class HelperProcess {
public:
    /// Starts the helper in the data folder that this process uses now.
    HelperProcess();

    /// Sends a command with its arguments and returns the answer; throws std::runtime_error when none comes in a
    /// minute.
    std::string ask(const std::vector<std::string>& command);

    /// The two halves of ask().
    void tell(const std::vector<std::string>& command);
    std::string answer();

    void kill() { process_.kill(); }
    std::optional<int> wait(milliseconds patience) { return process_.wait(patience); }

private:
    ChildProcess process_;
};

}  // namespace kesta::test
