// The test's own look into the database file, past the library.
//
// It opens and closes the file anew for every question and holds no lock in between. It must not be used while a call
// of the library runs in this process: on POSIX systems closing a file drops every lock that the process has on it. For
// the same reason it cannot lock the library out; HelperProcess can.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace kesta::test {

class Sql {
public:
    explicit Sql(std::filesystem::path file) : file_(std::move(file)) {}

    /// The result set as one text: columns separated by "|", rows by "\n"; a NULL is "<null>".
    /// A statement that fails throws std::runtime_error.
    [[nodiscard]] std::string text(const std::string& query) const;

    /// Runs statements without rows; throws std::runtime_error when one fails.
    void exec(const std::string& statements) const;

private:
    std::filesystem::path file_;
};

}  // namespace kesta::test
