// The client as a process, with what it wrote.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kesta::test {

struct Ended {
    int exitCode = -1;  // minus the signal's number when a signal ended it
    std::string out;
    std::string err;
};

using Environment = std::map<std::string, std::string>;

class ClientProcess {
public:
    /// Starts the client; texts are UTF-8. Output goes to files in the folder.
    ClientProcess(const std::filesystem::path& folder, const std::vector<std::string>& arguments,
                  const Environment& environment = {});
    /// Kills it, if it still runs.
    ~ClientProcess();
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    /// Ends it at once, wherever it is.
    void kill();
    /// As Ctrl-C does. Linux only.
    void interrupt();
    /// What it has written so far.
    [[nodiscard]] std::string outputSoFar() const;
    /// True once the output holds the text; false when the client ends first, or after a long while.
    [[nodiscard]] bool waitForOutput(const std::string& text);
    [[nodiscard]] bool hasEnded();
    Ended wait();
    [[nodiscard]] long id() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kesta::test
