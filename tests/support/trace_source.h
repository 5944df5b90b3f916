// Where the system delivers the library's debug output to a test.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kesta::test {

class TraceSource {
public:
    virtual ~TraceSource() = default;

    /// The lines since the last call, exactly as written: all of those whose call has returned.
    virtual std::vector<std::string> take() = 0;

    /// `runtimeFolder` is where the socket is bound on Linux.
    static std::unique_ptr<TraceSource> open(const std::filesystem::path& runtimeFolder);
};

}  // namespace kesta::test
