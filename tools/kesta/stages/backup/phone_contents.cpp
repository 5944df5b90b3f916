#include "stages/backup/phone_contents.h"

#include <algorithm>

#include "phone/names.h"

namespace kesta {
namespace {

class Lister {
public:
    Lister(PhoneContents& contents, const std::function<bool(size_t)>& keepGoing)
        : contents_(contents), keepGoing_(keepGoing)
    {
    }

    // The path on the phone is empty for its root.
    void list(const std::string& path, const std::string& phonePath, const os::FileInfo& info)
    {
        std::vector<os::DirectoryEntry> entries;
        if (os::Status status = os::ListDirectory(path, entries); !status.ok()) {
            contents_.problems.push_back({phonePath.empty() ? "/" : phonePath, status.text()});
            return;
        }
        bool isEmpty = true;
        for (const os::DirectoryEntry& entry : entries) {
            if (!keepGoing_(contents_.files.size())) {
                return;
            }
            if (CaseKey(entry.name).starts_with(CaseKey(kOwnPrefix))) {
                continue;
            }
            isEmpty = false;
            take(os::Join(path, entry.name), phonePath.empty() ? entry.name : phonePath + '/' + entry.name,
                 entry.valid);
        }
        if (isEmpty && !phonePath.empty()) {
            contents_.emptyFolders.push_back({phonePath, info});
        }
    }

private:
    void take(const std::string& path, const std::string& phonePath, bool isValidName)
    {
        os::FileInfo info;
        if (!isValidName) {
            contents_.problems.push_back({phonePath, "the name is not valid text"});
        } else if (os::Status status = os::ReadInfoOfLink(path, info); !status.ok()) {
            contents_.problems.push_back({phonePath, status.text()});
        } else if (info.kind == os::FileKind::kDirectory) {
            list(path, phonePath, info);
        } else if (info.kind == os::FileKind::kFile) {
            contents_.bytes += info.size;
            contents_.files.push_back({phonePath, info});
        } else {
            ++contents_.others;
        }
    }

    PhoneContents& contents_;
    const std::function<bool(size_t)>& keepGoing_;
};

}  // namespace

PhoneContents ListPhone(const std::string& root, const std::function<bool(size_t)>& keepGoing)
{
    PhoneContents contents;
    Lister(contents, keepGoing).list(root, {}, {});
    const auto byPath = [](const PhoneItem& a, const PhoneItem& b) { return a.phonePath < b.phonePath; };
    std::sort(contents.files.begin(), contents.files.end(), byPath);
    std::sort(contents.emptyFolders.begin(), contents.emptyFolders.end(), byPath);
    return contents;
}

}  // namespace kesta
