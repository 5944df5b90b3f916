#include "api/category_exports.h"

namespace kesta::test {

#define KESTA_CATEGORY(FAMILY, letter, deletedArgument)                                             \
    Category                                                                                        \
    {                                                                                               \
#FAMILY, letter, deletedArgument, [](const Exports& lib) {                                        \
            return CategoryCalls{lib.DB_##FAMILY##_AddFolder,        lib.DB_##FAMILY##_ClearAll,          \
                                 lib.DB_##FAMILY##_GetFolders,       lib.DB_##FAMILY##_GetFolder,         \
                                 lib.DB_##FAMILY##_IsFolderSelected, lib.DB_##FAMILY##_SetFolderSelected, \
                                 lib.DB_##FAMILY##_IsFolderDeleted,  lib.DB_##FAMILY##_SetFolderDeleted,  \
                                 lib.DB_##FAMILY##_IsSyncedFile,     lib.DB_##FAMILY##_GetSyncedFiles,    \
                                 lib.DB_##FAMILY##_SetAddedFile,     lib.DB_##FAMILY##_SetDeletedFile,    \
                                 lib.DB_##FAMILY##_SetUpdatedFile,   lib.DB_##FAMILY##_SetDeletedFolder}; \
        } \
    }

const std::vector<Category>& Categories()
{
    static const std::vector<Category> categories = {
        KESTA_CATEGORY(MUSIC, 'M', "bDeleted"), KESTA_CATEGORY(IMAGE, 'I', "Deleted"),
        KESTA_CATEGORY(VIDEO, 'V', "Deleted"), KESTA_CATEGORY(DOCUMENT, 'D', "Deleted")};
    return categories;
}

#undef KESTA_CATEGORY

std::string CategoryName(const ::testing::TestParamInfo<Category>& info)
{
    return info.param.family;
}

void CategoryExports::givenFolder(std::string_view path, int flag, int deleted, int selected,
                                  std::string_view addTime) const
{
    sql.exec("INSERT INTO " + folderTable() +
             " ([PhoneID], [Path], [Count], [Size], [TotalSize], [Selected], [Deleted], [Flag], [AddTime], [Sized]) "
             "VALUES (1, " +
             Quoted(path) + ", 3, 30, 300, " + std::to_string(selected) + ", " + std::to_string(deleted) + ", " +
             std::to_string(flag) + ", " + Quoted(addTime) + ", 1)");
}

void CategoryExports::givenFile(std::string_view path, std::string_view basePath) const
{
    sql.exec("INSERT INTO " + fileTable() + " VALUES (1, " + Quoted(path) + ", " + Quoted(basePath) +
             ", 'P:/given', '2024-01-01 10:20:30')");
}

std::string CategoryExports::folders(const std::string& columns) const
{
    return sql.text("SELECT " + columns + " FROM " + folderTable() + " ORDER BY [PhoneID], [Path]");
}

std::string CategoryExports::files() const
{
    return sql.text("SELECT * FROM " + fileTable() + " ORDER BY [PhoneID], [Path]");
}

}  // namespace kesta::test
