#include "stages/media/phone_names.h"

#include <fmt/format.h>

#include <algorithm>

#include "phone/unique_name.h"

namespace kesta {
namespace {

std::string NameForRoot(const std::string& folder)
{
    const std::string name = os::NameOf(folder);
    if (!name.empty()) {
        return SafeName(name);
    }
    return folder.size() > 1 && folder[1] == ':' ? folder.substr(0, 1) : "root";
}

}  // namespace

void PhoneNames::chooseRoots(const PlanInput& input, const MovedRecords& moved)
{
    std::map<std::string, std::string> ownerOfKey;
    for (const RecordedFile& file : input.recorded) {
        if (!IsPhonePath(file.phonePath, category_) || moved.contains(&file)) {
            continue;
        }
        const auto parts = SplitPath(file.phonePath);
        if (parts.size() < 3) {
            continue;
        }
        const auto [owner, isFirst] = ownerOfKey.emplace(CaseKey(parts[1]), file.basePath);
        if (owner->second == file.basePath) {
            roots_.emplace(file.basePath, parts[1]);
        }
    }
    // Folders get their names in the order in which the database came to know them, new ones in the user's order.
    std::vector<const RecordedFolder*> known;
    for (const RecordedFolder& folder : input.known) {
        known.push_back(&folder);
    }
    std::sort(known.begin(), known.end(), [](const auto* a, const auto* b) { return a->rowId < b->rowId; });
    std::vector<std::string> order;
    const auto isChosen = [&](const std::string& path) {
        return std::any_of(input.folders.begin(), input.folders.end(), [&](const auto* f) { return f->path == path; });
    };
    for (const RecordedFolder* folder : known) {
        if (isChosen(folder->path)) {
            order.push_back(folder->path);
        }
    }
    for (const FolderScan* folder : input.folders) {
        order.push_back(folder->path);
    }
    for (const std::string& folder : order) {
        if (roots_.contains(folder)) {
            continue;
        }
        const std::string name = UniqueName(NameForRoot(folder), folder, [&](const std::string& wish) {
            return ownerOfKey.emplace(CaseKey(wish), folder).second;
        });
        roots_.emplace(folder, name);
    }
}

PhoneNames::Allocated PhoneNames::allocate(const std::string& folder, const ScannedFile& file)
{
    return PhonePaths::allocate(partsOf(folder, file), file.path, [&](const std::string&, const PhoneFile& there) {
        return IsSameFile(there, file.size, file.modified.seconds);
    });
}

std::string PhoneNames::allocateMoved(const std::string& folder, const ScannedFile& file, const std::string& phonePath)
{
    const std::vector<std::string> parts = partsOf(folder, file);
    if (wishFor(parts) == phonePath) {
        return phonePath;
    }
    const auto isSame = [](const std::string&, const PhoneFile&) { return false; };
    return PhonePaths::allocate(parts, file.path, isSame).phonePath;
}

std::vector<std::string> PhoneNames::partsOf(const std::string& folder, const ScannedFile& file) const
{
    std::vector<std::string> parts = SplitPath(file.relative);
    parts.insert(parts.begin(), roots_.at(folder));
    return parts;
}

}  // namespace kesta
