#include "support/data_folder.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include <stdexcept>

namespace kesta::test {
namespace {

namespace fs = std::filesystem;

fs::path ApplicationData()
{
    wchar_t name[MAX_PATH];
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, name))) {
        throw std::runtime_error("no application-data folder");
    }
    return name;
}

void RemoveAll(const fs::path& folder)
{
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored)) {
        SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    fs::remove_all(folder, ignored);
}

}  // namespace

DataFolder::DataFolder() : root_(ApplicationData() / "NORVIK"), applicationData_(ApplicationData())
{
    RemoveAll(root_);
    if (fs::exists(root_)) {
        throw std::runtime_error("left over by another test, and in use: " + root_.string());
    }
}

DataFolder::~DataFolder()
{
    RemoveAll(root_);
}

fs::path OwnRuntimeFolder()
{
    return {};
}

}  // namespace kesta::test
