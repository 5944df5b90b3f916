// SetFolderDeleted: a folder gone from the PC is marked, or removed when nothing of it was ever synced.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class CategoryFolderDeletion : public CategoryExports {
protected:
    [[nodiscard]] std::string enterDeleted(int deleted, const std::string& imei = kImei) const
    {
        return enter("SetFolderDeleted",
                     "IMEI: " + imei + ", Path: C:\\A, " + GetParam().deletedArgument + ": " + std::to_string(deleted));
    }
};
INSTANTIATE_TEST_SUITE_P(, CategoryFolderDeletion, ::testing::ValuesIn(Categories()), CategoryName);

TEST_P(CategoryFolderDeletion, SetFolderDeleted_SyncedFolder_IsMarkedAndKeepsItsFiles)
{
    givenFolder("C:\\A", /*flag=*/0);
    givenFolder("C:\\B", /*flag=*/0);
    givenFile("C:\\A\\1", "C:\\A");
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("[Path], [Deleted], [Flag]"), "C:\\A|1|0\nC:\\B|0|0");
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1)));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_NeverSyncedFolder_IsRemovedWithItsFiles)
{
    givenFolder("C:\\A", /*flag=*/1);
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\B\\1", "C:\\B");
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("[Path]"), "");
    EXPECT_EQ(files(), "1|C:\\B\\1|C:\\B|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1)));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_FlagThreeOrFour_IsOnlyMarked)
{
    for (const int flag : {3, 4}) {
        givenFolder("C:\\A", flag);
        EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
        EXPECT_EQ(folders("[Deleted], [Flag]"), "1|" + std::to_string(flag));
        sql.exec("DELETE FROM " + folderTable());
    }
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_BackAgain_ClearsTheFlagWithoutAskingForTheFlag)
{
    givenFolder("C:\\A", /*flag=*/1, /*deleted=*/1);
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 0), 0);
    EXPECT_EQ(folders("[Path], [Deleted], [Flag]"), "C:\\A|0|1");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(0)));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_AnyOtherNumber_IsStoredAsItIs)
{
    givenFolder("C:\\A", /*flag=*/0);
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), -4), 0);
    EXPECT_EQ(folders("[Deleted]"), "-4");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(-4)));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_AnyOtherNumberForANeverSyncedFolder_RemovesIt)
{
    givenFolder("C:\\A", /*flag=*/1);
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 2), 0);
    EXPECT_EQ(folders("[Path]"), "");
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_UnknownFolder_Succeeds)
{
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("*"), "");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1)));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_UnknownPhone_FailsWithoutErrorLine)
{
    givenFolder("C:\\A");
    EXPECT_EQ(call.SetFolderDeleted(W("999"), W("C:\\A"), 1), 1);
    EXPECT_EQ(folders("[Deleted]"), "0");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1, "999")));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_FlagCannotBeRead_MarksTheFolderAfterAnErrorLine)
{
    givenFolder("C:\\A", /*flag=*/1);
    changeSchema("DROP VIEW " + folderView());
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("[Path], [Deleted]"), "C:\\A|1");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1), "Error in DB_INTNOLOCK_GetFlag(), position 1."));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_UpdateFails_TracesPositionTwo)
{
    givenFolder("C:\\A", /*flag=*/0);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON " + folderTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 1);
    EXPECT_EQ(folders("[Deleted]"), "0");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1), "Error in DB_INTERNAL_SetFolderDeleted(), position 2."));
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_RemovalOfTheFilesFails_TellsUnderTheRemovalsName)
{
    givenFolder("C:\\A", /*flag=*/1);
    givenFile("C:\\A\\1", "C:\\A");
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON " + fileTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 1);
    EXPECT_EQ(folders("[Path]"), "");
    EXPECT_THAT(trace.take(), ElementsAre(enterDeleted(1), "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

TEST_P(CategoryFolderDeletion, AddFolder_AfterItWasMarked_IsLiveAgain)
{
    givenFolder("C:\\A", /*flag=*/0);
    const Folder folder("C:\\A", 1);
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(folders("[Path], [Deleted], [Flag]"), "C:\\A|0|0");
}

TEST_P(CategoryFolderDeletion, SetFolderDeleted_AfterAFileWasAdded_OnlySetsTheFlag)
{
    const Folder folder("C:\\A", 1);
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(call.SetFolderDeleted(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("[Path], [Deleted], [Flag]"), "C:\\A|1|0");
}

}  // namespace
}  // namespace kesta::test
