// The options of a command, as manuals and completions tell them.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace kesta {

enum class OptionValue { kNone, kFile, kFolder, kText };

struct ListedOption {
    std::vector<std::string> names;  // "--quiet", "-q"; none: what stands by itself
    std::string type;                // "DIR"; empty for a flag
    std::string about;
    OptionValue value = OptionValue::kNone;
    bool isRepeatable = false;
};

struct ListedCommand {
    std::string name, about;
    std::vector<ListedOption> options;
    std::string footer;  // examples and exit codes
};

/// All that the help shows, in its order.
[[nodiscard]] std::vector<ListedCommand> ListCommands();

}  // namespace kesta
