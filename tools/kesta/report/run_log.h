// The file of --log: what a run says, line by line, each with its time. It is added to, never written anew.
#pragma once

#include <string>
#include <string_view>

#include "os/append_file.h"

namespace kesta {

class RunLog {
public:
    [[nodiscard]] os::Status open(const std::string& path) { return file_.open(path); }
    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }
    /// The text may have several lines.
    void add(std::string_view text);
    /// Whether something could not be written.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

private:
    os::AppendFile file_;
    bool hasFailed_ = false;
};

}  // namespace kesta
