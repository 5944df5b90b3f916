// What kesta doctor has looked at, and what it has found there.
//
//     findings.begin("disk_space", "disk space");
//     findings.add({.severity = Severity::kWarning, .text = "...", .advice = "Make room."});
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "os/status.h"

namespace kesta {

enum class Severity {
    kNote,     // good to know; nothing has to be done
    kWarning,  // something is not as it should be
    kError     // something is lost or damaged
};

struct Finding {
    Severity severity = Severity::kWarning;
    std::string text = {};
    std::string advice = {};              // what to do
    std::vector<std::string> items = {};  // the files or rows that it is about
    /// Mends it without a loss. Empty: that takes the user.
    std::function<os::Status()> fix = {};
    std::string outcome = {};  // of the fix; empty when it was not asked for
    bool isFixed = false;
};

struct Check {
    std::string key, title;
    std::vector<Finding> findings;
};

class Findings {
public:
    void begin(std::string key, std::string title) { checks_.push_back({std::move(key), std::move(title), {}}); }
    /// Of the check that was begun last.
    void add(Finding finding) { checks_.back().findings.push_back(std::move(finding)); }
    [[nodiscard]] const std::vector<Check>& checks() const { return checks_; }

    /// Mends what can be mended.
    void fix();
    /// The worst of what has not been mended; kNote when there is nothing.
    [[nodiscard]] Severity worst() const;

private:
    std::vector<Check> checks_;
};

}  // namespace kesta
