#include "support/data_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace kesta::test {
namespace {

namespace fs = std::filesystem;

/// A new database is flushed to the disk many times, which costs nothing in memory.
fs::path TemporaryFolder()
{
    const fs::path memory = "/dev/shm";
    return access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
}

fs::path FreshFolder()
{
    std::string name = TemporaryFolder() / "kesta-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + name);
    }
    return name;
}

/// Folders that a test has closed to itself would keep their contents.
void RemoveAll(const fs::path& folder)
{
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored)) {
        if (entry.is_directory(ignored)) {
            fs::permissions(entry.path(), fs::perms::owner_all, ignored);
        }
    }
    fs::remove_all(folder, ignored);
}

}  // namespace

DataFolder::DataFolder() : root_(FreshFolder()), applicationData_(root_ / "data"), runtimeFolder_(root_ / "runtime")
{
    fs::create_directory(applicationData_);
    fs::create_directory(runtimeFolder_);
    setenv("XDG_DATA_HOME", applicationData_.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", runtimeFolder_.c_str(), 1);
}

DataFolder::~DataFolder()
{
    // A library loaded after this must not find the developer's own data by accident.
    setenv("XDG_DATA_HOME", "/nonexistent", 1);
    setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    RemoveAll(root_);
}

fs::path OwnRuntimeFolder()
{
    const char* given = std::getenv("XDG_RUNTIME_DIR");
    if (given == nullptr) {
        throw std::runtime_error("no runtime folder was given to this process");
    }
    const fs::path own = fs::path(given) / std::to_string(getpid());
    fs::create_directory(own);
    setenv("XDG_RUNTIME_DIR", own.c_str(), 1);
    return own;
}

}  // namespace kesta::test
