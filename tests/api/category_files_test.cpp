// Files of a category: recorded, updated, removed, asked for.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class CategoryFiles : public CategoryExports {};
INSTANTIATE_TEST_SUITE_P(, CategoryFiles, ::testing::ValuesIn(Categories()), CategoryName);

TEST_P(CategoryFiles, SetAddedFile_NewFile_InsertsRowAndClearsItsFoldersFlag)
{
    givenFolder("C:\\A", /*flag=*/1);
    givenFolder("C:\\B", /*flag=*/1);
    const SyncedFile file("C:\\A\\song.mp3", "C:\\A", "E:/Music/song.mp3", Date(2024, 2, 29, 23, 59, 58));
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|C:\\A\\song.mp3|C:\\A|E:/Music/song.mp3|2024-02-29 23:59:58");
    EXPECT_EQ(folders("[Path], [Flag]"), "C:\\A|0\nC:\\B|1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 351111, Path: C:\\A\\song.mp3")));
}

TEST_P(CategoryFiles, SetAddedFile_FlagFourFolder_IsClearedToo)
{
    givenFolder("C:\\A", /*flag=*/4);
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(folders("[Flag]"), "0");
}

TEST_P(CategoryFiles, SetAddedFile_OtherPhonesFolder_KeepsItsFlag)
{
    givenFolder("C:\\A", /*flag=*/1);
    givenPhone("352222");
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W("352222"), &file), 0);
    EXPECT_EQ(folders("[PhoneID], [Flag]"), "1|1");
    EXPECT_EQ(files(), "2|C:\\A\\1|C:\\A|P:/1|2024-02-29 12:34:56");
}

TEST_P(CategoryFiles, SetAddedFile_FolderNotRecorded_RecordsTheFile)
{
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/1|2024-02-29 12:34:56");
    EXPECT_EQ(folders("*"), "");
}

TEST_P(CategoryFiles, SetAddedFile_KnownFile_GivesTheConstraintCodeAndLeavesFileAndFolder)
{
    givenFolder("C:\\A", /*flag=*/1);
    givenFile("C:\\A\\1", "C:\\A");
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/other");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 19);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(folders("[Flag]"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_SetAddedFile(), position 3."));
}

TEST_P(CategoryFiles, SetAddedFile_TableMissing_GivesSqlitesOwnCode)
{
    givenFolder("C:\\A", /*flag=*/1);
    changeSchema("DROP TABLE " + fileTable());
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 1);
    EXPECT_EQ(folders("[Flag]"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_SetAddedFile(), position 3."));
}

TEST_P(CategoryFiles, SetAddedFile_FlagCannotBeCleared_SucceedsAfterPositionTwo)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON " + folderTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    givenFolder("C:\\A", /*flag=*/1);
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/1|2024-02-29 12:34:56");
    EXPECT_EQ(folders("[Flag]"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_SetAddedFile(), position 2."));
}

TEST_P(CategoryFiles, SetAddedFile_UnknownPhone_FailsWithoutErrorLine)
{
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetAddedFile(W("999"), &file), 1);
    EXPECT_EQ(files(), "");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 999, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, SetAddedFile_NullAndInvalidDates_AreStoredAsTheirTexts)
{
    const SyncedFile undated("C:\\A\\1", "C:\\A", "P:/1", NullDate());
    const SyncedFile invalid("C:\\A\\2", "C:\\A", "P:/2", InvalidDate());
    const SyncedFile outside("C:\\A\\3", "C:\\A", "P:/3", {1e9, kDateValid});
    EXPECT_EQ(call.SetAddedFile(W(kImei), &undated), 0);
    EXPECT_EQ(call.SetAddedFile(W(kImei), &invalid), 0);
    EXPECT_EQ(call.SetAddedFile(W(kImei), &outside), 0);
    EXPECT_EQ(sql.text("SELECT [ModifiedTime], typeof([ModifiedTime]) FROM " + fileTable() + " ORDER BY [Path]"),
              "|text\nInvalid DateTime|text\nInvalid DateTime|text");
}

TEST_P(CategoryFiles, SetAddedFile_NullTexts_AreStoredEmptyAndTracedAsNull)
{
    const SyncedFileRecord file = {Date(2024, 1, 1), nullptr, nullptr, nullptr};
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1||||2024-01-01 00:00:00");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetAddedFile", "IMEI: 351111, Path: (null)")));
}

TEST_P(CategoryFiles, SetDeletedFile_KnownFile_IsRemovedAndItsFolderStays)
{
    givenFolder("C:\\A", /*flag=*/0);
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\A\\2", "C:\\A");
    Text path("C:\\A\\1");
    const SyncedFileRecord onlyPath = {Date(1999, 1, 1), path.get(), nullptr, nullptr};
    EXPECT_EQ(call.SetDeletedFile(W(kImei), &onlyPath), 0);
    EXPECT_EQ(files(), "1|C:\\A\\2|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(folders("[Path], [Count], [Flag]"), "C:\\A|3|0");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFile", "IMEI: 351111, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, SetDeletedFile_UnknownFile_Succeeds)
{
    givenFile("C:\\A\\1", "C:\\A");
    const SyncedFile file("C:\\A\\2", "C:\\A", "P:/2");
    EXPECT_EQ(call.SetDeletedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
}

TEST_P(CategoryFiles, SetDeletedFile_UnknownPhone_FailsWithoutErrorLine)
{
    givenFile("C:\\A\\1", "C:\\A");
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetDeletedFile(W("999"), &file), 1);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFile", "IMEI: 999, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, SetDeletedFile_DeleteFails_TracesPositionOne)
{
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON " + fileTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    givenFile("C:\\A\\1", "C:\\A");
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetDeletedFile(W(kImei), &file), 1);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_SetDeletedFile(), position 1."));
}

TEST_P(CategoryFiles, SetUpdatedFile_KnownFile_WritesPhonePathAndTimeOnly)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\A\\2", "C:\\A");
    const SyncedFile file("C:\\A\\1", "C:\\Elsewhere", "E:/new", Date(2023, 12, 31, 23, 59, 59));
    EXPECT_EQ(call.SetUpdatedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|E:/new|2023-12-31 23:59:59\n1|C:\\A\\2|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetUpdatedFile", "IMEI: 351111, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, SetUpdatedFile_UnknownFile_SucceedsWithoutRow)
{
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetUpdatedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "");
}

TEST_P(CategoryFiles, SetUpdatedFile_UnknownPhone_FailsWithoutErrorLine)
{
    givenFile("C:\\A\\1", "C:\\A");
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetUpdatedFile(W("999"), &file), 1);
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetUpdatedFile", "IMEI: 999, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, SetUpdatedFile_UpdateFails_TracesPositionOne)
{
    changeSchema("DROP TABLE " + fileTable());
    const SyncedFile file("C:\\A\\1", "C:\\A", "P:/1");
    EXPECT_EQ(call.SetUpdatedFile(W(kImei), &file), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetUpdatedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_SetUpdatedFile(), position 1."));
}

TEST_P(CategoryFiles, IsSyncedFile_RecordedFile_FillsTheRecordAndAnswersOne)
{
    givenFile("C:\\A\\1", "C:\\A");
    SyncedFileRecord file = {};
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W("C:\\A\\1"), &file), 1);
    EXPECT_EQ(ToString(file), "C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsSyncedFile", "IMEI: 351111, Path: C:\\A\\1"), "Memory NEW.",
                                          "Memory NEW.", "Memory NEW."));
}

TEST_P(CategoryFiles, IsSyncedFile_TextsFromBefore_AreNotFreed)
{
    givenFile("C:\\A\\1", "C:\\A");
    SyncedFile file("before", "before", "before", Date(1999, 1, 1));
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W("C:\\A\\1"), &file), 1);
    EXPECT_EQ(ToString(file), "C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsSyncedFile", "IMEI: 351111, Path: C:\\A\\1"), "Memory NEW.",
                                          "Memory NEW.", "Memory NEW."));
}

TEST_P(CategoryFiles, IsSyncedFile_UnknownFileOrPhone_IsZeroAndLeavesTheRecord)
{
    givenFile("C:\\A\\1", "C:\\A");
    SyncedFile file("before", "base", "phone", Date(1999, 1, 1));
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W("C:\\A\\2"), &file), 0);
    EXPECT_EQ(call.IsSyncedFile(W("999"), W("C:\\A\\1"), &file), 0);
    EXPECT_EQ(ToString(file), "before|base|phone|1999-01-01 00:00:00");
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsSyncedFile", "IMEI: 351111, Path: C:\\A\\2"),
                                          enter("IsSyncedFile", "IMEI: 999, Path: C:\\A\\1")));
}

TEST_P(CategoryFiles, IsSyncedFile_EmptyAndNullColumns_ReadAsNullAndInvalid)
{
    sql.exec("INSERT INTO " + fileTable() + " VALUES (1, 'C:\\A\\1', '', '', NULL)");
    SyncedFileRecord file = {};
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W("C:\\A\\1"), &file), 1);
    EXPECT_EQ(ToString(file), "C:\\A\\1|<null>|<null>|<invalid>");
    EXPECT_EQ(DaysOf(file.ModifiedTime), 0.0);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsSyncedFile", "IMEI: 351111, Path: C:\\A\\1"), "Memory NEW."));
}

TEST_P(CategoryFiles, IsSyncedFile_QueryFails_IsZeroWithPositionOne)
{
    changeSchema("DROP VIEW " + fileView());
    SyncedFileRecord file = {};
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W("C:\\A\\1"), &file), 0);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsSyncedFile", "IMEI: 351111, Path: C:\\A\\1"),
                                          "Error in DB_INTERNAL_IsSyncedFile(), position 1."));
}

TEST_P(CategoryFiles, SetAddedFile_ApostrophesEmojiAndLoneSurrogates_ComeBackAsTheWholeText)
{
    const std::string path = "C:\\O'Brien's\\'\\\xF0\x9F\x8E\xB5 \xC3\xA9.mp3";
    givenFolder("C:\\O'Brien's", /*flag=*/1);
    const SyncedFile file(path, "C:\\O'Brien's", "E:/''/\xE6\x97\xA5");
    EXPECT_EQ(call.SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(files(), "1|" + path + "|C:\\O'Brien's|E:/''/\xE6\x97\xA5|2024-02-29 12:34:56");
    EXPECT_EQ(folders("[Flag]"), "0");
    SyncedFileRecord found = {};
    EXPECT_EQ(call.IsSyncedFile(W(kImei), W(path), &found), 1);
    EXPECT_EQ(ToString(found), path + "|C:\\O'Brien's|E:/''/\xE6\x97\xA5|2024-02-29 12:34:56");

    Text lone = Text::ofUnits({'a', 0xD800, 'b', 0xDC00});
    const SyncedFileRecord odd = {Date(2024, 1, 1), lone.get(), lone.get(), lone.get()};
    EXPECT_EQ(call.SetAddedFile(W(kImei), &odd), 0);
    EXPECT_EQ(sql.text("SELECT [Path] FROM " + fileTable() + " WHERE [Path] LIKE 'a%'"),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

}  // namespace
}  // namespace kesta::test
