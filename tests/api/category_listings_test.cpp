// Folder after folder is listed: whatever the library remembers in between, each list is what the view holds just then.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

class CategoryListings : public CategoryExports {
protected:
    CategoryListings()
    {
        givenPhone("352222");
        for (const char* folder : {"C:\\b", "C:\\a", "it's",
                                   "Mus\xC3\xAF"
                                   "c"}) {
            for (const char* file : {"3", "1", "2"}) {
                givenFile(std::string(folder) + "\\" + file, folder);
            }
        }
        sql.exec("INSERT INTO " + fileTable() + " VALUES (2, 'of the other', 'C:\\a', 'P', '2024-01-01 00:00:00')");
    }

    /// What the library lists of a folder.
    std::string listed(const std::string& folder, const char* imei = kImei)
    {
        SyncedFileList list = {};
        EXPECT_EQ(call.GetSyncedFiles(W(imei), W(folder), &list), 0);
        std::string paths;
        for (int32_t i = 0; i < list.Count; ++i) {
            const SyncedFileRecord& file = list.Items[i];
            EXPECT_EQ(Utf8(file.BasePath), folder);
            paths += ToString(file) + "\n";
        }
        EXPECT_EQ(call.GetSyncedFiles(W("no such phone"), nullptr, &list), 0);  // gives the list back
        return paths;
    }

    /// How many files of each folder are listed, in a round over all of them.
    std::string round()
    {
        std::string counts;
        for (const char* folder : {"C:\\b", "C:\\a", "it's",
                                   "Mus\xC3\xAF"
                                   "c",
                                   "unknown", "C:\\A"}) {
            const std::string paths = listed(folder);
            counts += std::to_string(std::count(paths.begin(), paths.end(), '\n'));
        }
        return counts;
    }
};
INSTANTIATE_TEST_SUITE_P(, CategoryListings, ::testing::ValuesIn(Categories()), CategoryName);

TEST_P(CategoryListings, GetSyncedFiles_FolderAfterFolder_GivesEachItsOwn)
{
    EXPECT_EQ(round(), "333300");
    EXPECT_EQ(round(), "333300");
    const std::string first = listed("C:\\a");
    EXPECT_EQ(first.find("C:\\a\\1|"), 0u);
    EXPECT_LT(first.find("C:\\a\\1|"), first.find("C:\\a\\2|"));
    EXPECT_LT(first.find("C:\\a\\2|"), first.find("C:\\a\\3|"));
    EXPECT_EQ(listed("C:\\a"), first);
    EXPECT_EQ(listed("C:\\a", "352222"), listed("C:\\a", "352222"));
    EXPECT_EQ(listed("C:\\a", "352222").substr(0, 12), "of the other");
}

TEST_P(CategoryListings, GetSyncedFiles_AnotherCategoryInBetween_HasItsOwn)
{
    EXPECT_EQ(round(), "333300");
    const bool isMusic = GetParam().family == std::string("MUSIC");
    const auto ofAnother = isMusic ? lib.DB_IMAGE_GetSyncedFiles : lib.DB_MUSIC_GetSyncedFiles;
    sql.exec(std::string("INSERT INTO ") + (isMusic ? "tIFile" : "tMFile") +
             " VALUES (1, 'another', 'C:\\a', 'P', '2024-01-01 00:00:00')");
    EXPECT_EQ(round(), "333300");
    SyncedFileList list = {};
    EXPECT_EQ(ofAnother(W(kImei), W("C:\\a"), &list), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(Utf8(list.Items[0].Path), "another");
    EXPECT_EQ(round(), "333300");
}

TEST_P(CategoryListings, GetSyncedFiles_WritesInBetween_AreSeenAtOnce)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(round(), "333300");
        const SyncedFile added("C:\\a\\0", "C:\\a", "P");
        EXPECT_EQ(call.SetAddedFile(W(kImei), &added), 0);
        EXPECT_EQ(round(), "343300");
        const SyncedFile renamed("C:\\a\\0", "C:\\a", "elsewhere");
        EXPECT_EQ(call.SetUpdatedFile(W(kImei), &renamed), 0);
        EXPECT_EQ(listed("C:\\a").substr(0, 22), "C:\\a\\0|C:\\a|elsewhere|");
        EXPECT_EQ(call.SetDeletedFile(W(kImei), &added), 0);
    }
    EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("it's")), 0);
    EXPECT_EQ(round(), "330300");
}

TEST_P(CategoryListings, GetSyncedFiles_AnotherProgramWritesInBetween_IsSeenAtOnce)
{
    EXPECT_EQ(round(), "333300");
    sql.exec("DELETE FROM " + fileTable() + " WHERE [Path] = 'C:\\a\\2'");
    EXPECT_EQ(round(), "323300");
    sql.exec("UPDATE " + fileTable() + " SET [BasePath] = 'C:\\b' WHERE [Path] = 'C:\\a\\1'");
    EXPECT_EQ(round(), "413300");
    sql.exec("UPDATE tPhone SET [IMEI] = 'x' WHERE [ID] = 1");
    EXPECT_EQ(round(), "000000");
}

/// With an index or another view the statement's order may be another one: then it is asked each time.
TEST_P(CategoryListings, GetSyncedFiles_TablesThatSomebodyChanged_AreReadByStatement)
{
    EXPECT_EQ(round(), "333300");
    changeSchema("CREATE INDEX other ON " + fileTable() + "([BasePath], [Path] DESC)");
    EXPECT_EQ(round(), "333300");
    const std::string paths = listed("C:\\a");
    EXPECT_GT(paths.find("C:\\a\\1|"), paths.find("C:\\a\\3|"));
    EXPECT_EQ(listed("C:\\a"), paths);
    changeSchema("DROP INDEX other; DROP VIEW " + fileView() + "; CREATE VIEW " + fileView() +
                 " AS SELECT IMEI, f.* FROM tPhone, " + fileTable() +
                 " f WHERE tPhone.ID = f.PhoneID AND f.[Path] NOT "
                 "LIKE '%2'");
    EXPECT_EQ(round(), "222200");
    EXPECT_EQ(round(), "222200");
}

TEST_P(CategoryListings, GetSyncedFiles_ViewGoneInBetween_FailsAsItDoesAtOnce)
{
    EXPECT_EQ(round(), "333300");
    sql.exec("DROP VIEW " + fileView());
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("C:\\a"), &list), 0);  // only the step notices, and counts nothing
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("C:\\a"), &list), 1);
}

TEST_P(CategoryListings, GetSyncedFiles_RowsThatAreNoText_AreReadByStatement)
{
    sql.exec("INSERT INTO " + fileTable() + " VALUES (1, 'odd', x'433A5C61', 'P', '2024-01-01 00:00:00')");
    EXPECT_EQ(round(), "333300");
    EXPECT_EQ(round(), "333300");
}

}  // namespace
}  // namespace kesta::test
