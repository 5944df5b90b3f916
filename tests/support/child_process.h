// A program started by a test, with pipes to its input and output.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kesta::test {

using std::chrono::milliseconds;

class ChildProcess {
public:
    /// Starts the program with this process's environment; throws std::runtime_error when that fails.
    explicit ChildProcess(const std::string& program, const std::vector<std::string>& arguments = {});
    /// Ends the program, if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void writeLine(const std::string& line);
    /// The next line of its output; std::nullopt if none comes in time or the output has ended.
    std::optional<std::string> readLine(milliseconds patience);

    /// Ends it at once, in the middle of whatever it does.
    void kill();
    /// Its exit code; std::nullopt if it still runs after that time. Minus the signal's number when a signal ended it.
    std::optional<int> wait(milliseconds patience);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kesta::test
