#include "commands/pim_tree.h"

#include <fmt/format.h>

#include "base/text.h"

namespace kesta {
namespace {

void AddBelow(kesta_db::PimStore& store, PimKind kind, const PimFolder& parent, size_t depth,
              std::vector<PimNode>& tree)
{
    for (const PimFolder& folder : store.folders(TypeOf(kind), parent.id)) {
        if (tree.size() >= kMostListedPimFolders) {
            return;  // A store that goes round in circles has no end.
        }
        std::vector<PimItem> items = store.items(folder.id, TypeOf(kind));
        const bool isLonger = !parent.path.empty() && folder.path.starts_with(parent.path + "/");
        std::string name = isLonger ? folder.path.substr(parent.path.size() + 1) : folder.path;
        tree.push_back({folder, std::move(name), depth, std::move(items)});
        AddBelow(store, kind, folder, depth + 1, tree);
    }
}

}  // namespace

std::vector<PimNode> ReadPimTree(const Database& database, PimKind kind)
{
    std::vector<PimNode> tree;
    kesta_db::PimStore store = database.pimStore();
    AddBelow(store, kind, {}, 0, tree);
    return tree;
}

Json PimTreeJson(const std::vector<PimNode>& tree)
{
    Json folders = Json::array();
    for (const PimNode& node : tree) {
        Json parent = nullptr;
        if (node.depth > 0) {
            parent = node.folder.parentId;
        }
        folders.push_back({{"id", node.folder.id},
                           {"parent", std::move(parent)},
                           {"path", node.folder.path},
                           {"depth", node.depth},
                           {"entries", node.items.size()}});
    }
    return folders;
}

std::string PimTreeText(const std::vector<PimNode>& tree, const std::string& indent)
{
    std::string text;
    for (const PimNode& node : tree) {
        const std::string name = std::string(2 * node.depth, ' ') + Printable(node.name);
        const size_t width = DisplayWidth(name);
        text += fmt::format("{}{}{}  {}\n", indent, name, std::string(width < 40 ? 40 - width : 0, ' '),
                            CountedEntries(node.items.size()));
    }
    return text;
}

std::string CountedEntries(size_t count)
{
    return fmt::format("{} {}", count, count == 1 ? "entry" : "entries");
}

}  // namespace kesta
