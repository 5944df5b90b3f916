#include "phone/phone_paths.h"

#include <fmt/format.h>

#include <cstdlib>

#include "base/names.h"

namespace kesta {
namespace {

// FAT keeps times to two seconds only.
constexpr std::int64_t kTimeTolerance = 2;

}  // namespace

bool IsSameFile(const PhoneFile& there, std::uint64_t size, std::int64_t modifiedSeconds)
{
    return there.entry == PhoneEntry::kFile && there.size == size &&
           std::abs(there.modifiedSeconds - modifiedSeconds) <= kTimeTolerance;
}

bool PhonePaths::reserve(const std::string& phonePath)
{
    const std::string key = CaseKey(phonePath);
    if (folders_.contains(key) || !files_.insert(key).second) return false;
    for (auto slash = key.find('/'); slash != std::string::npos; slash = key.find('/', slash + 1))
        folders_.insert(key.substr(0, slash));
    return true;
}

void PhonePaths::release(const std::string& phonePath)
{
    freed_.insert(CaseKey(phonePath));
}

bool PhonePaths::isReserved(const std::string& phonePath) const
{
    return files_.contains(CaseKey(phonePath));
}

std::string PhonePaths::allocateFolder(const std::string& parent, const std::string& name)
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
        path = fmt::format("{}/{}", parent, SuffixedName(name, path, attempt));
    }
}

PhonePaths::Place PhonePaths::allocate(const std::vector<std::string>& parts, const std::string& seed,
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
        path = fmt::format("{}/{}", directory, SuffixedName(name, seed, attempt));
    }
}

}  // namespace kesta
