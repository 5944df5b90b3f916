// The files that went to a phone because of playlists.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr char kRecord[] = "a.mp3|Rock|P:/given|2024-01-01 10:20:30";

std::string Enter(const std::string& operation, const std::string& path = "a.mp3")
{
    return "Enter DB_PLAYERMUSIC_" + operation + "(IMEI: 351111, Path: " + path + ").";
}

class PlaylistFiles : public FamilyExports {
protected:
    void givenFile(const std::string& path, const std::string& list) const
    {
        sql.exec("INSERT INTO tPFile VALUES (1, " + Quoted(path) + ", " + Quoted(list) +
                 ", 'P:/given', '2024-01-01 10:20:30')");
    }
    [[nodiscard]] std::string files() const { return sql.text("SELECT * FROM tPFile ORDER BY [Path]"); }

    const SyncedFile file{"a.mp3", "Rock", "P:/a.mp3"};
};

TEST_F(PlaylistFiles, IsSyncedFile_RecordedFile_FillsTheRecord)
{
    givenFile("a.mp3", "Rock");
    SyncedFileRecord record = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsSyncedFile(W(kImei), W("a.mp3"), &record), 1);
    EXPECT_EQ(ToString(record), kRecord);
    EXPECT_THAT(trace.take(), ElementsAreArray(WithNew({Enter("IsSyncedFile")}, 3)));
}

TEST_F(PlaylistFiles, IsSyncedFile_UnknownFileOrPhone_AnswersZeroAndLeavesTheRecord)
{
    givenFile("a.mp3", "Rock");
    SyncedFileRecord record = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsSyncedFile(W(kImei), W("b.mp3"), &record), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsSyncedFile(W("999"), W("a.mp3"), &record), 0);
    EXPECT_EQ(record.Path, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsSyncedFile", "b.mp3"),
                                          "Enter DB_PLAYERMUSIC_IsSyncedFile(IMEI: 999, Path: a.mp3)."));
}

TEST_F(PlaylistFiles, IsSyncedFile_QueryFails_TracesTheEnginesPositionOne)
{
    givenSchema("DROP VIEW vPFile");
    SyncedFileRecord record = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsSyncedFile(W(kImei), W("a.mp3"), &record), 0);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsSyncedFile"), "Error in DB_INTERNAL_IsSyncedFile(), position 1."));
}

TEST_F(PlaylistFiles, GetSyncedFiles_AnyListName_ListsTheFilesOfAllPlaylists)
{
    givenFile("a.mp3", "Rock");
    givenFile("b.mp3", "Pop");
    for (const char* name : {"Rock", "Pop", "unknown", ""}) {
        SyncedFileList list = {};
        EXPECT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W(kImei), W(name), &list), 0);
        EXPECT_THAT(Records(list), ElementsAre(kRecord, "b.mp3|Pop|P:/given|2024-01-01 10:20:30")) << name;
        EXPECT_THAT(trace.take(),
                    ElementsAreArray(WithNew(
                        {std::string("Enter DB_PLAYERMUSIC_GetSyncedFiles(IMEI: 351111, List: ") + name + ")."}, 7)));
    }
}

TEST_F(PlaylistFiles, GetSyncedFiles_RecordHoldingAList_IsEmptiedBeforeTheEntryLine)
{
    givenFile("a.mp3", "Rock");
    SyncedFileList list = {};
    ASSERT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W(kImei), nullptr, &list), 0);
    EXPECT_THAT(trace.take(),
                ElementsAreArray(WithNew({"Enter DB_PLAYERMUSIC_GetSyncedFiles(IMEI: 351111, List: (null))."}, 4)));
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W("999"), W("Rock"), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", "Memory DELETE.", "Memory DELETE.", "Memory DELETE.",
                                          "Enter DB_PLAYERMUSIC_GetSyncedFiles(IMEI: 999, List: Rock)."));
}

TEST_F(PlaylistFiles, GetSyncedFiles_CountFails_TracesTheEnginesPositionOne)
{
    givenSchema("DROP VIEW vPFile");
    SyncedFileList list = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W(kImei), W("Rock"), &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_GetSyncedFiles(IMEI: 351111, List: Rock).",
                                          "Error in DB_INTERNAL_GetSyncedFiles(), position 1."));
}

TEST_F(PlaylistFiles, SetAddedFile_NewFile_IsRecordedAndItsListBecomesCurrent)
{
    sql.exec(
        "INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'Rock', 1, ''), (1, 'Pop', 1, ''),"
        " (2, 'Rock', 1, '')");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|a.mp3|Rock|P:/a.mp3|2024-02-29 12:34:56");
    EXPECT_EQ(sql.text("SELECT [PhoneID], [Path], [Flag] FROM tPFolder ORDER BY 1, 2"), "1|Pop|1\n1|Rock|0\n2|Rock|1");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetAddedFile")));
}

TEST_F(PlaylistFiles, SetAddedFile_KnownFile_GivesTheConstraintCodeAndLeavesTheList)
{
    givenFile("a.mp3", "Rock");
    sql.exec("INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'Rock', 3, '')");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W(kImei), &file), 19);
    EXPECT_EQ(files(), "1|a.mp3|Rock|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(sql.text("SELECT [Flag] FROM tPFolder"), "3");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetAddedFile"), "Error in DB_INTERNAL_SetAddedFile(), position 3."));
}

TEST_F(PlaylistFiles, SetAddedFile_ListCannotBeWritten_IsTracedAndSucceeds)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W(kImei), &file), 0);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetAddedFile"), "Error in DB_INTERNAL_SetAddedFile(), position 2."));
}

TEST_F(PlaylistFiles, SetDeletedFile_RecordedFile_IsForgottenAndItsListStays)
{
    givenFile("a.mp3", "Rock");
    givenFile("b.mp3", "Rock");
    sql.exec("INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'Rock', 3, '')");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|b.mp3|Rock|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(sql.text("SELECT [Flag] FROM tPFolder"), "3");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetDeletedFile")));
}

TEST_F(PlaylistFiles, SetDeletedFile_DeleteFails_TracesTheEnginesPositionOne)
{
    givenSchema("DROP TABLE tPFile");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedFile(W(kImei), &file), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetDeletedFile"), "Error in DB_INTERNAL_SetDeletedFile(), position 1."));
}

TEST_F(PlaylistFiles, SetUpdatedFile_RecordedFile_GetsPhonePathAndTimeOnly)
{
    givenFile("a.mp3", "Pop");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|a.mp3|Pop|P:/a.mp3|2024-02-29 12:34:56");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetUpdatedFile")));
}

TEST_F(PlaylistFiles, SetUpdatedFile_UpdateFails_TracesTheEnginesPositionOne)
{
    givenSchema("DROP TABLE tPFile");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedFile(W(kImei), &file), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetUpdatedFile"), "Error in DB_INTERNAL_SetUpdatedFile(), position 1."));
}

TEST_F(PlaylistFiles, UnknownPhone_WritersFailWithoutErrorLine)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W("999"), &file), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedFile(W("999"), &file), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedFile(W("999"), &file), 1);
    EXPECT_EQ(files(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_SetAddedFile(IMEI: 999, Path: a.mp3).",
                                          "Enter DB_PLAYERMUSIC_SetDeletedFile(IMEI: 999, Path: a.mp3).",
                                          "Enter DB_PLAYERMUSIC_SetUpdatedFile(IMEI: 999, Path: a.mp3)."));
}

TEST_F(PlaylistFiles, NullRecords_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedFile(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedFile(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W(kImei), W("Rock"), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre("An exception occured in DB_PLAYERMUSIC_SetAddedFile().",
                                          "An exception occured in DB_PLAYERMUSIC_SetDeletedFile().",
                                          "An exception occured in DB_PLAYERMUSIC_SetUpdatedFile().",
                                          "An exception occured in DB_PLAYERMUSIC_GetSyncedFiles()."));
}

TEST_F(ClosedDatabase, PlaylistFiles_EveryExport_AnswersItsPreset)
{
    const SyncedFile file("a.mp3", "Rock", "P:/a.mp3");
    SyncedFileRecord record = {};
    SyncedFileList list = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsSyncedFile(W(kImei), W("a.mp3"), &record), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetSyncedFiles(W(kImei), W("Rock"), &list), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedFile(W(kImei), &file), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedFile(W(kImei), &file), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedFile(W(kImei), &file), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("IsSyncedFile"), "Enter DB_PLAYERMUSIC_GetSyncedFiles(IMEI: 351111, List: Rock).",
                            Enter("SetAddedFile"), Enter("SetDeletedFile"), Enter("SetUpdatedFile")));
}

}  // namespace
}  // namespace kesta::test
