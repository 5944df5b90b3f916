// Selecting and marking deleted in both categories of the gallery at once.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

constexpr char kPath[] = "C:\\O'Brien";
constexpr char kSelectedError[] = "Error in DB_INTERNAL_IsFolderSelected(), position 1.";
constexpr char kDeletedError[] = "Error in DB_INTERNAL_IsFolderDeleted(), position 1.";

std::string Enter(const std::string& operation, const std::string& more = "")
{
    return "Enter DB_GALLERY_" + operation + "(IMEI: 351111, Path: " + kPath + more + ").";
}

class GalleryState : public FamilyExports {
protected:
    void given(const std::string& table, int selected, int flag = 0) const
    {
        sql.exec("INSERT INTO " + table + " ([PhoneID], [Path], [Selected], [Flag], [AddTime]) VALUES (1, " +
                 Quoted(kPath) + ", " + std::to_string(selected) + ", " + std::to_string(flag) + ", '')");
    }
    [[nodiscard]] std::string of(const std::string& column, const std::string& table) const
    {
        return sql.text("SELECT " + column + " FROM " + table);
    }
    /// Gives the views the column that the question for deleted folders asks by.
    void givenNamedViews()
    {
        for (const std::string letter : {"I", "V"}) {
            givenSchema("DROP VIEW v" + letter + "Folder; CREATE VIEW v" + letter +
                        "Folder AS SELECT IMEI, [Path] AS [Name], [Deleted] FROM tPhone, t" + letter +
                        "Folder WHERE [ID] = [PhoneID]");
        }
    }
    int32_t isSelected() { return lib.DB_GALLERY_IsFolderSelected(W(kImei), W(kPath)); }
    int32_t isDeleted() { return lib.DB_GALLERY_IsFolderDeleted(W(kImei), W(kPath)); }
};

TEST_F(GalleryState, IsFolderSelected_BothRows_IsSelectedWhenEitherIs)
{
    given("tIFolder", 0);
    given("tVFolder", 0);
    EXPECT_EQ(isSelected(), 0);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsFolderSelected")));
    sql.exec("UPDATE tIFolder SET [Selected] = 5");
    EXPECT_EQ(isSelected(), 1);
    sql.exec("UPDATE tIFolder SET [Selected] = 0; UPDATE tVFolder SET [Selected] = -3");
    EXPECT_EQ(isSelected(), 1);
    sql.exec("UPDATE tIFolder SET [Selected] = 1; UPDATE tVFolder SET [Selected] = -1");
    EXPECT_EQ(isSelected(), 1);
}

TEST_F(GalleryState, IsFolderSelected_OneRowOnly_IsSelected)
{
    EXPECT_EQ(isSelected(), 1);
    given("tIFolder", 0);
    EXPECT_EQ(isSelected(), 1);
    sql.exec("DELETE FROM tIFolder");
    given("tVFolder", 0);
    EXPECT_EQ(isSelected(), 1);
    EXPECT_EQ(lib.DB_GALLERY_IsFolderSelected(W("999"), W(kPath)), 1);
}

TEST_F(GalleryState, IsFolderSelected_QueriesFail_AsksBoth)
{
    givenSchema("DROP VIEW vIFolder; DROP VIEW vVFolder");
    EXPECT_EQ(isSelected(), 1);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsFolderSelected"), kSelectedError, kSelectedError));
}

TEST_F(GalleryState, SetFolderSelected_BothRows_BothAreWritten)
{
    given("tIFolder", 1);
    given("tVFolder", 1);
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 0), 0);
    EXPECT_EQ(of("[Selected]", "tIFolder") + of("[Selected]", "tVFolder"), "00");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetFolderSelected", ", Selected: 0")));
}

TEST_F(GalleryState, SetFolderSelected_ImagesOnly_WritesThatRowAndSucceeds)
{
    given("tIFolder", 1);
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 7), 0);
    EXPECT_EQ(of("[Selected]", "tIFolder"), "7");
    EXPECT_EQ(of("count(*)", "tVFolder"), "0");
}

TEST_F(GalleryState, SetFolderSelected_Failures_AreCounted)
{
    given("tVFolder", 1);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tVFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 0), 1);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetFolderSelected", ", Selected: 0"),
                                          "Error in DB_INTERNAL_SetFolderSelected(), position 2."));
    givenSchema("DROP TABLE tIFolder");
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 0), 2);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetFolderSelected", ", Selected: 0"),
                                          "Error in DB_INTERNAL_SetFolderSelected(), position 2.",
                                          "Error in DB_INTERNAL_SetFolderSelected(), position 2."));
}

TEST_F(GalleryState, SetFolderSelected_ImagesFail_VideosAreWrittenAllTheSame)
{
    given("tVFolder", 1);
    givenSchema("DROP TABLE tIFolder");
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 0), 1);
    EXPECT_EQ(of("[Selected]", "tVFolder"), "0");
}

TEST_F(GalleryState, SetFolderSelected_UnknownPhone_FailsTwice)
{
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W("999"), W("C:\\A"), 1), 2);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_GALLERY_SetFolderSelected(IMEI: 999, Path: C:\\A, Selected: 1)."));
}

TEST_F(GalleryState, IsFolderDeleted_AnyFolder_IsDeletedAndTracesTwoErrors)
{
    EXPECT_EQ(isDeleted(), 1);
    given("tIFolder", 1);
    given("tVFolder", 1);
    trace.take();
    EXPECT_EQ(isDeleted(), 1);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsFolderDeleted"), kDeletedError, kDeletedError));
}

/// With views that have the column asked for, the answer is told from both.
TEST_F(GalleryState, IsFolderDeleted_ViewsWithNames_IsDeletedWhenBothAre)
{
    given("tIFolder", 1);
    given("tVFolder", 1);
    givenNamedViews();
    EXPECT_EQ(isDeleted(), 0);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsFolderDeleted")));
    sql.exec("UPDATE tIFolder SET [Deleted] = 1");
    EXPECT_EQ(isDeleted(), 0);
    sql.exec("UPDATE tIFolder SET [Deleted] = 0; UPDATE tVFolder SET [Deleted] = 1");
    EXPECT_EQ(isDeleted(), 0);
    sql.exec("UPDATE tIFolder SET [Deleted] = 2");
    EXPECT_EQ(isDeleted(), 1);
}

TEST_F(GalleryState, SetFolderDeleted_SyncedFolders_AreMarkedAndKept)
{
    given("tIFolder", 1);
    given("tVFolder", 1);
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W(kImei), W(kPath), 1), 0);
    EXPECT_EQ(of("[Deleted]", "tIFolder") + of("[Deleted]", "tVFolder"), "11");
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W(kImei), W(kPath), 0), 0);
    EXPECT_EQ(of("[Deleted]", "tIFolder") + of("[Deleted]", "tVFolder"), "00");
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetFolderDeleted", ", Deleted: 1"), Enter("SetFolderDeleted", ", Deleted: 0")));
}

TEST_F(GalleryState, SetFolderDeleted_NeverSyncedForOne_GoesThereWithItsFiles)
{
    given("tIFolder", 1, /*flag=*/1);
    given("tVFolder", 1, /*flag=*/0);
    for (const std::string table : {"tIFile", "tVFile"}) {
        sql.exec("INSERT INTO " + table + " VALUES (1, 'f', " + Quoted(kPath) + ", 'P:/', '')");
    }
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W(kImei), W(kPath), 1), 0);
    EXPECT_EQ(of("count(*)", "tIFolder") + of("count(*)", "tIFile"), "00");
    EXPECT_EQ(of("[Deleted]", "tVFolder") + of("count(*)", "tVFile"), "11");
}

TEST_F(GalleryState, SetFolderDeleted_Failures_AreCounted)
{
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W("999"), W(kPath), 1), 2);
    given("tIFolder", 1);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tIFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    given("tVFolder", 1);
    trace.take();
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W(kImei), W(kPath), 1), 1);
    EXPECT_EQ(of("[Deleted]", "tVFolder"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetFolderDeleted", ", Deleted: 1"),
                                          "Error in DB_INTERNAL_SetFolderDeleted(), position 2."));
}

TEST_F(GalleryState, NullPath_IsTheEmptyPath)
{
    sql.exec("INSERT INTO tIFolder ([PhoneID], [Path], [AddTime]) VALUES (1, '', '')");
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), nullptr, 0), 0);
    EXPECT_EQ(of("[Selected]", "tIFolder"), "0");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_GALLERY_SetFolderSelected(IMEI: 351111, Path: (null), Selected: 0)."));
}

TEST_F(ClosedDatabase, GalleryState_EveryExport_AnswersFailure)
{
    EXPECT_EQ(lib.DB_GALLERY_IsFolderSelected(W(kImei), W(kPath)), 1);
    EXPECT_EQ(lib.DB_GALLERY_SetFolderSelected(W(kImei), W(kPath), 1), 2);
    EXPECT_EQ(lib.DB_GALLERY_IsFolderDeleted(W(kImei), W(kPath)), 1);
    EXPECT_EQ(lib.DB_GALLERY_SetFolderDeleted(W(kImei), W(kPath), 1), 2);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsFolderSelected"), Enter("SetFolderSelected", ", Selected: 1"),
                                          Enter("IsFolderDeleted"), Enter("SetFolderDeleted", ", Deleted: 1")));
}

}  // namespace
}  // namespace kesta::test
