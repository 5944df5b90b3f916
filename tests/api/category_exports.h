// The four media families as one: the same tests run over each of them.
#pragma once

#include <string>
#include <vector>

#include "api/given.h"

namespace kesta::test {

/// The fourteen exports of one family.
struct CategoryCalls {
    decltype(&::DB_MUSIC_AddFolder) AddFolder;
    decltype(&::DB_MUSIC_ClearAll) ClearAll;
    decltype(&::DB_MUSIC_GetFolders) GetFolders;
    decltype(&::DB_MUSIC_GetFolder) GetFolder;
    decltype(&::DB_MUSIC_IsFolderSelected) IsFolderSelected;
    decltype(&::DB_MUSIC_SetFolderSelected) SetFolderSelected;
    decltype(&::DB_MUSIC_IsFolderDeleted) IsFolderDeleted;
    decltype(&::DB_MUSIC_SetFolderDeleted) SetFolderDeleted;
    decltype(&::DB_MUSIC_IsSyncedFile) IsSyncedFile;
    decltype(&::DB_MUSIC_GetSyncedFiles) GetSyncedFiles;
    decltype(&::DB_MUSIC_SetAddedFile) SetAddedFile;
    decltype(&::DB_MUSIC_SetDeletedFile) SetDeletedFile;
    decltype(&::DB_MUSIC_SetUpdatedFile) SetUpdatedFile;
    decltype(&::DB_MUSIC_SetDeletedFolder) SetDeletedFolder;
};

struct Category {
    const char* family;
    char letter;                  // of its tables
    const char* deletedArgument;  // as SetFolderDeleted's entry line calls it
    CategoryCalls (*of)(const Exports&);
};

inline void PrintTo(const Category& category, std::ostream* out)
{
    *out << category.family;
}

const std::vector<Category>& Categories();
std::string CategoryName(const ::testing::TestParamInfo<Category>& info);

/// A phone is announced; its number is 1.
class CategoryExports : public OpenDatabase, public ::testing::WithParamInterface<Category> {
protected:
    CategoryExports() { givenPhone(); }

    [[nodiscard]] std::string folderTable() const { return std::string("t") + GetParam().letter + "Folder"; }
    [[nodiscard]] std::string folderView() const { return std::string("v") + GetParam().letter + "Folder"; }
    [[nodiscard]] std::string fileTable() const { return std::string("t") + GetParam().letter + "File"; }
    [[nodiscard]] std::string fileView() const { return std::string("v") + GetParam().letter + "File"; }

    /// A row of the folder table, for phone 1.
    void givenFolder(std::string_view path, int flag = 1, int deleted = 0, int selected = 1,
                     std::string_view addTime = "2024-01-01 00:00:00") const;
    /// A row of the file table, for phone 1.
    void givenFile(std::string_view path, std::string_view basePath) const;

    /// Columns of all folders, in the order of the paths.
    [[nodiscard]] std::string folders(const std::string& columns) const;
    /// Everything in the file table, in the order of the paths.
    [[nodiscard]] std::string files() const;

    [[nodiscard]] std::string enter(const std::string& operation, const std::string& arguments) const
    {
        return "Enter DB_" + std::string(GetParam().family) + "_" + operation + "(" + arguments + ").";
    }

    const CategoryCalls call = GetParam().of(lib);
};

}  // namespace kesta::test
