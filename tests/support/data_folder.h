// A private application-data folder, so that no test meets the database of another one or of the developer. It has to
// exist before the library is loaded; programs started meanwhile inherit it.
#pragma once

#include <filesystem>

namespace kesta::test {

class DataFolder {
public:
    /// Linux: a fresh folder, named by XDG_DATA_HOME and XDG_RUNTIME_DIR as long as this object lives.
    /// Windows: the application-data folder of the user, emptied of what the library makes.
    DataFolder();
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    /// The folder in which the library makes its own.
    [[nodiscard]] const std::filesystem::path& applicationData() const { return applicationData_; }

    /// Where the viewer of the trace binds its socket; empty on Windows.
    [[nodiscard]] const std::filesystem::path& runtimeFolder() const { return runtimeFolder_; }

    [[nodiscard]] std::filesystem::path databaseFolder() const
    {
        return applicationData_ / "NORVIK" / "NORVIK Sync" / "Database";
    }
    [[nodiscard]] std::filesystem::path databasePath() const { return databaseFolder() / "KESTA_DB.s3db"; }

private:
    std::filesystem::path root_;
    std::filesystem::path applicationData_;
    std::filesystem::path runtimeFolder_;
};

/// Gives this process, a child of a test, a runtime folder of its own below the test's, and returns it.
std::filesystem::path OwnRuntimeFolder();

}  // namespace kesta::test
