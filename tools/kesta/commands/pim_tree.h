// The store of contacts and calendar entries as a tree. All phones share it.
#pragma once

#include <string>
#include <vector>

#include "commands/json.h"
#include "database/database.h"
#include "database/pim_kind.h"

namespace kesta {

struct PimNode {
    PimFolder folder;
    std::string name;  // the folder's path without that of the folder above
    size_t depth = 0;
    std::vector<PimItem> items;
};

/// Each folder before those below it.
[[nodiscard]] std::vector<PimNode> ReadPimTree(const Database& database, PimKind kind);
[[nodiscard]] Json PimTreeJson(const std::vector<PimNode>& tree);
/// With a line for each folder and the number of its entries.
[[nodiscard]] std::string PimTreeText(const std::vector<PimNode>& tree, const std::string& indent);
/// "1 entry", "2 entries"
[[nodiscard]] std::string CountedEntries(size_t count);

}  // namespace kesta
