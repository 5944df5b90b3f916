// The command line.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "category.h"
#include "exit_codes.h"

namespace kesta {

struct SyncOptions {
    std::string phone;
    std::optional<std::string> imei;
    std::optional<std::string> name;
    std::array<std::vector<std::string>, kCategories.size()> folders;  // by category
    bool dryRun = false;
    bool force = false;
    bool quiet = false;
};

struct StatusOptions {
    std::optional<std::string> imei;
    bool json = false;
};

struct FilesOptions {
    std::string imei;
    Category category = Category::kMusic;
    std::optional<std::string> folder;
    bool json = false;
};

struct TraceOptions {};

using Options = std::variant<SyncOptions, StatusOptions, FilesOptions, TraceOptions>;

/// Nothing when there is nothing to run: help or a mistake has been printed, and exitCode says which.
[[nodiscard]] std::optional<Options> ParseOptions(std::vector<std::string> arguments, ExitCode& exitCode);

}  // namespace kesta
