#include "phone_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "names.h"

namespace kesta {
namespace {

// FAT keeps times to two seconds only.
constexpr std::int64_t kTimeTolerance = 2;

std::string NameForRoot(const std::string& folder)
{
    const std::string name = os::NameOf(folder);
    if (!name.empty()) return SafeName(name);
    return folder.size() > 1 && folder[1] == ':' ? folder.substr(0, 1) : "root";
}

}  // namespace

bool IsSameFile(const PhoneFile& there, std::uint64_t size, std::int64_t modifiedSeconds)
{
    return there.entry == PhoneEntry::kFile && there.size == size &&
           std::abs(there.modifiedSeconds - modifiedSeconds) <= kTimeTolerance;
}

bool PhonePlaces::reserve(const std::string& phonePath)
{
    const std::string key = CaseKey(phonePath);
    if (folders_.contains(key) || !files_.insert(key).second) return false;
    for (auto slash = key.find('/'); slash != std::string::npos; slash = key.find('/', slash + 1))
        folders_.insert(key.substr(0, slash));
    return true;
}

void PhonePlaces::free(const std::string& phonePath)
{
    freed_.insert(CaseKey(phonePath));
}

bool PhonePlaces::isReserved(const std::string& phonePath) const
{
    return files_.contains(CaseKey(phonePath));
}

void PhoneNames::chooseRoots(const PlanInput& input)
{
    std::map<std::string, std::string> ownerOfKey;
    for (const RecordedFile& file : input.recorded) {
        if (!IsPhonePath(file.phonePath, category_)) continue;
        const auto parts = SplitPath(file.phonePath);
        if (parts.size() < 3) continue;
        const auto [owner, isFirst] = ownerOfKey.emplace(CaseKey(parts[1]), file.basePath);
        if (owner->second == file.basePath) roots_.emplace(file.basePath, parts[1]);
    }
    // Folders get their names in the order in which the books came to know them, new ones in the user's order.
    std::vector<const RecordedFolder*> known;
    for (const RecordedFolder& folder : input.known) known.push_back(&folder);
    std::sort(known.begin(), known.end(), [](const auto* a, const auto* b) { return a->rowId < b->rowId; });
    std::vector<std::string> order;
    const auto isChosen = [&](const std::string& path) {
        return std::any_of(input.folders.begin(), input.folders.end(), [&](const auto* f) { return f->path == path; });
    };
    for (const RecordedFolder* folder : known)
        if (isChosen(folder->path)) order.push_back(folder->path);
    for (const FolderScan* folder : input.folders) order.push_back(folder->path);
    for (const std::string& folder : order) {
        if (roots_.contains(folder)) continue;
        std::string name = NameForRoot(folder);
        for (unsigned attempt = 0; !ownerOfKey.emplace(CaseKey(name), folder).second; ++attempt)
            name = MarkedName(NameForRoot(folder), folder, attempt);
        roots_.emplace(folder, name);
    }
}

std::string PhonePlaces::allocateFolder(const std::string& parent, const std::string& name)
{
    std::string path = parent + '/' + name;
    for (unsigned attempt = 0;; ++attempt) {
        const std::string key = CaseKey(path);
        if (folders_.contains(key)) return path;
        const bool fileIsThere = phone_.find(path).entry == PhoneEntry::kFile && !isFreed(key);
        if (!files_.contains(key) && !fileIsThere) {
            folders_.insert(key);
            return path;
        }
        path = fmt::format("{}/{}", parent, MarkedName(name, path, attempt));
    }
}

PhonePlaces::Place PhonePlaces::allocate(const std::vector<std::string>& parts, const std::string& seed,
                                         const IsSame& isSame)
{
    std::string directory = top_;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) directory = allocateFolder(directory, SafeName(parts[i]));
    const std::string name = SafeName(parts.back());
    std::string path = directory + '/' + name;
    for (unsigned attempt = 0;; ++attempt) {
        const std::string key = CaseKey(path);
        if (!files_.contains(key) && !folders_.contains(key)) {
            const PhoneFile there = isFreed(key) ? PhoneFile{} : phone_.find(path);
            if (there.entry == PhoneEntry::kNothing || isSame(path, there)) {
                files_.insert(key);
                return {path, there.entry == PhoneEntry::kFile};
            }
        }
        path = fmt::format("{}/{}", directory, MarkedName(name, seed, attempt));
    }
}

PhoneNames::Place PhoneNames::allocate(const std::string& folder, const ScannedFile& file)
{
    std::vector<std::string> parts = SplitPath(file.relative);
    parts.insert(parts.begin(), roots_.at(folder));
    return PhonePlaces::allocate(parts, file.path, [&](const std::string&, const PhoneFile& there) {
        return IsSameFile(there, file.size, file.modified.seconds);
    });
}

}  // namespace kesta
