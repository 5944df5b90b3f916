#include "phone/phone_paths.h"

#include <fmt/format.h>

#include <cstdlib>

#include "phone/unique_name.h"

namespace kesta {
namespace {

constexpr std::string_view kKeptSuffix = " (changed on the phone)";

}  // namespace

bool IsSameFile(const PhoneFile& there, uint64_t size, int64_t modifiedSeconds)
{
    return there.entry == PhoneEntry::kFile && there.size == size &&
           std::abs(there.modifiedSeconds - modifiedSeconds) <= kPhoneTimeTolerance;
}

std::string KeptPath(const std::string& phonePath, const std::function<bool(const std::string& path)>& isFree)
{
    const auto slash = phonePath.rfind('/');
    const std::string folder = phonePath.substr(0, slash + 1), name = phonePath.substr(slash + 1);
    const auto dot = name.rfind('.');
    const std::string extension = dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot);
    const std::string stem = name.substr(0, name.size() - extension.size());
    const std::string wish = SafeName(stem + std::string(kKeptSuffix) + extension);
    return folder + UniqueName(wish, phonePath, [&](const std::string& other) { return isFree(folder + other); });
}

bool PhonePaths::reserve(const std::string& phonePath)
{
    const std::string key = CaseKey(phonePath);
    if (!IsPhonePath(phonePath, top_) || folders_.contains(key) || !files_.insert(key).second) {
        return false;
    }
    for (auto slash = key.find('/'); slash != std::string::npos; slash = key.find('/', slash + 1)) {
        folders_.insert(key.substr(0, slash));
    }
    return true;
}

void PhonePaths::release(const std::string& phonePath)
{
    freed_.insert(CaseKey(phonePath));
}

bool PhonePaths::mayBeRemoved(const std::string& phonePath) const
{
    return IsPhonePath(phonePath, top_) && !files_.contains(CaseKey(phonePath));
}

std::string PhonePaths::allocateFolder(const std::string& parent, const std::string& name)
{
    // Of folders whose names collide the path tells them apart, that of the last attempt.
    std::string path = parent + '/' + name;
    for (unsigned attempt = 0; !takeFolder(path); ++attempt) {
        path = fmt::format("{}/{}", parent, SuffixedName(name, path, attempt));
    }
    return path;
}

bool PhonePaths::takeFolder(const std::string& path)
{
    const std::string key = CaseKey(path);
    if (folders_.contains(key)) {
        return true;
    }
    const bool fileIsThere = phone_.find(path).entry == PhoneEntry::kFile && !isFreed(key);
    return !files_.contains(key) && !fileIsThere && folders_.insert(key).second;
}

std::string PhonePaths::wishFor(const std::vector<std::string>& parts) const
{
    std::string path = top_;
    for (const std::string& part : parts) {
        path += '/' + SafeName(part);
    }
    return path;
}

PhonePaths::Allocated PhonePaths::allocate(const std::vector<std::string>& parts, const std::string& seed,
                                           const IsSame& isSame)
{
    std::string directory = top_;
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
        directory = allocateFolder(directory, SafeName(parts[i]));
    }
    Allocated found;
    (void)UniqueName(SafeName(parts.back()), seed, [&](const std::string& name) {
        found.phonePath = directory + '/' + name;
        const std::string key = CaseKey(found.phonePath);
        if (files_.contains(key) || folders_.contains(key)) {
            return false;
        }
        const PhoneFile there = isFreed(key) ? PhoneFile{} : phone_.find(found.phonePath);
        if (there.entry != PhoneEntry::kNothing && !isSame(found.phonePath, there)) {
            return false;
        }
        files_.insert(key);
        found.sameFileIsThere = there.entry == PhoneEntry::kFile;
        return true;
    });
    return found;
}

std::string PhonePaths::allocateBeside(const std::string& phonePath)
{
    return KeptPath(phonePath, [&](const std::string& path) {
        const std::string key = CaseKey(path);
        const bool isFree =
            !files_.contains(key) && !folders_.contains(key) && phone_.find(path).entry == PhoneEntry::kNothing;
        return isFree && files_.insert(key).second;
    });
}

}  // namespace kesta
