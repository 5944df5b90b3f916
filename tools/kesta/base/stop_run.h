// What ends a run, from however deep: the exit code and the sentence that the user reads. What concerns one item alone
// is an os::Status instead, which the report collects:
//
//     if (os::Status status = phone.removeFile(path); !status.ok()) report.fail(path, status.text());
//     if (os::Interrupted()) throw StopRun(ExitCode::kInterrupted, "interrupted");
#pragma once

#include <exception>
#include <string>

#include "base/exit_codes.h"

namespace kesta {

class StopRun : public std::exception {
public:
    StopRun(ExitCode code, std::string reason) : code_(code), reason_(std::move(reason)) {}
    [[nodiscard]] const char* what() const noexcept override { return reason_.c_str(); }
    [[nodiscard]] ExitCode code() const { return code_; }

private:
    ExitCode code_;
    std::string reason_;
};

}  // namespace kesta
