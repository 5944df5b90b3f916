// Single bookmarks of a phone: recording, looking up, changing, removing.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

constexpr char kUrl[] = "http://a/";

std::string Enter(const std::string& operation, const std::string& label, const std::string& url = kUrl)
{
    return "Enter DB_BOOKMARK_" + operation + "(IMEI: 351111, " + label + ": " + url + ").";
}
std::string Exit(const std::string& operation, int result)
{
    return "Exit DB_BOOKMARK_" + operation + "() with " + std::to_string(result) + ".";
}
std::string Error(const std::string& operation, int position)
{
    return "Error in DB_BOOKMARK_" + operation + "(), position " + std::to_string(position) + ".";
}

class BookmarkRecords : public FamilyExports {
protected:
    void givenBookmark(const std::string& url, int type = 1, int phoneId = 1) const
    {
        sql.exec("INSERT INTO tBFile VALUES (" + std::to_string(phoneId) + ", 'old', " + Quoted(url) +
                 ", 'm0', 3, 4, " + std::to_string(type) + ")");
    }
    void givenType(int type) const { sql.exec("UPDATE tPhone SET [BookMarkType] = " + std::to_string(type)); }
    [[nodiscard]] std::string rows() const
    {
        return sql.text(
            "SELECT [PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type] FROM tBFile ORDER BY 1, "
            "3, 7");
    }
    const Bookmark bookmark{kUrl};
};

TEST_F(BookmarkRecords, SetAddedMark_NewBookmark_IsRecordedUnderThePhonesType)
{
    Bookmark given(kUrl);
    given.Type = 99;
    givenType(6);
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &given), 0);
    EXPECT_EQ(rows(), "1|A title|http://a/|m1|11|22|6");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetAddedMark", "URL"), Exit("SetAddedMark", 0)));
}

TEST_F(BookmarkRecords, SetAddedMark_KnownBookmark_GivesTheConstraintCode)
{
    givenBookmark(kUrl);
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &bookmark), 19);
    EXPECT_EQ(rows(), "1|old|http://a/|m0|3|4|1");
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetAddedMark", "URL"), Error("SetAddedMark", 3), Exit("SetAddedMark", 19)));
}

TEST_F(BookmarkRecords, SetAddedMark_SameUrlOfAnotherType_IsAnotherBookmark)
{
    givenBookmark(kUrl);
    givenType(2);
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &bookmark), 0);
    EXPECT_EQ(rows(), "1|old|http://a/|m0|3|4|1\n1|A title|http://a/|m1|11|22|2");
}

TEST_F(BookmarkRecords, SetAddedMark_OtherFailures_GiveTheirOwnCode)
{
    givenSchema("DROP TABLE tBFile");
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &bookmark), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetAddedMark", "URL"), Error("SetAddedMark", 3), Exit("SetAddedMark", 1)));
}

TEST_F(BookmarkRecords, SetAddedMark_StatementTooLong_GivesItsCode)
{
    const Bookmark longBookmark(kUrl, std::string(41000, 'x'));
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &longBookmark), 18);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetAddedMark", "URL"), Error("SetAddedMark", 3), Exit("SetAddedMark", 18)));
}

TEST_F(BookmarkRecords, SetAddedMark_NullTexts_AreStoredEmpty)
{
    Bookmark given(kUrl);
    given.Title = given.Path = given.PhoneMID = nullptr;
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &given), 0);
    EXPECT_EQ(rows(), "1||||11|22|1");
    EXPECT_EQ(trace.take().front(), Enter("SetAddedMark", "URL", "(null)"));
}

TEST_F(BookmarkRecords, SetAddedMark_ApostrophesAndEmoji_ReadBackIntact)
{
    const std::string odd = "it's \xF0\x9F\x98\x80 '' \xC3\xBC";
    // Stored in UTF-8 and looked up through the code page, which has to leave it as it is.
    const std::string url = "it's " + (AnsiCharacter().size() == 4 ? AnsiCharacter() : "") + " ''/url";
    const Bookmark given(url, odd + "/title", odd + "/mid");
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &given), 0);
    BookmarkRecord read = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(url), &read), 0);
    EXPECT_EQ(ToString(read), odd + "/title|" + url + "|" + odd + "/mid|11|22|1");
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W(url)), 1);
}

TEST_F(BookmarkRecords, SetAddedMark_LoneSurrogate_BecomesTheReplacementCharacter)
{
    Text title = Text::ofUnits({0xDC00, 'x'});
    Bookmark given(kUrl);
    given.Title = title.get();
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &given), 0);
    EXPECT_EQ(sql.text("SELECT [Title] FROM tBFile"), "\xEF\xBF\xBDx");
}

TEST_F(BookmarkRecords, IsSyncedMark_BookmarkOfThePresentType_IsSeen)
{
    givenBookmark(kUrl, 1);
    givenBookmark("http://b/", 2);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W(kUrl)), 1);
    EXPECT_THAT(trace.take(), ElementsAre(Enter("IsSyncedMark", "URL"), Exit("IsSyncedMark", 1)));
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W("http://b/")), 0);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W("http://A/")), 0);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W("999"), W(kUrl)), 0);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), nullptr), 0);
    givenType(2);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W(kUrl)), 0);
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W("http://b/")), 1);
}

TEST_F(BookmarkRecords, IsSyncedMark_QueryFails_AnswersZeroWithPositionOne)
{
    givenSchema("DROP VIEW vBFile");
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W(kUrl)), 0);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("IsSyncedMark", "URL"), Error("IsSyncedMark", 1), Exit("IsSyncedMark", 0)));
}

TEST_F(BookmarkRecords, IsSyncedMark_ImeiWithApostrophe_BreaksTheQuery)
{
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W("35'1"), W(kUrl)), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BOOKMARK_IsSyncedMark(IMEI: 35'1, URL: http://a/).",
                                          Error("IsSyncedMark", 1), Exit("IsSyncedMark", 0)));
}

TEST_F(BookmarkRecords, GetSyncedMark_KnownBookmark_FillsEveryField)
{
    givenBookmark(kUrl, 7);
    givenType(7);
    BookmarkRecord read = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), &read), 0);
    EXPECT_EQ(ToString(read), "old|http://a/|m0|3|4|7");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("GetSyncedMark", "Url"), "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          Exit("GetSyncedMark", 0)));
}

TEST_F(BookmarkRecords, GetSyncedMark_EmptyTexts_ReadAsNull)
{
    sql.exec("INSERT INTO tBFile VALUES (1, '', 'http://a/', NULL, NULL, NULL, 1)");
    BookmarkRecord read = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), &read), 0);
    EXPECT_EQ(ToString(read), "<null>|http://a/|<null>|0|0|1");
}

TEST_F(BookmarkRecords, GetSyncedMark_UnknownBookmark_FreesTheTextsAndLeavesTheNumbers)
{
    givenBookmark(kUrl);
    BookmarkRecord read = {};
    ASSERT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), &read), 0);
    trace.take();
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W("http://b/"), &read), 1);
    EXPECT_EQ(ToString(read), "<null>|<null>|<null>|3|4|1");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("GetSyncedMark", "Url", "http://b/"), "Memory DELETE.",
                                          "Memory DELETE.", "Memory DELETE.", Exit("GetSyncedMark", 1)));
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W("999"), W(kUrl), &read), 1);
}

TEST_F(BookmarkRecords, GetSyncedMark_QueryFails_TracesPositionThree)
{
    givenSchema("DROP VIEW vBFile");
    BookmarkRecord read = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), &read), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("GetSyncedMark", "Url"), Error("GetSyncedMark", 3), Exit("GetSyncedMark", 1)));
}

TEST_F(BookmarkRecords, SetUpdatedMark_KnownBookmark_GetsTitleMidAndFlagOnly)
{
    givenBookmark(kUrl);
    givenBookmark(kUrl, 2);
    givenBookmark(kUrl, 1, 2);
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W(kImei), &bookmark), 0);
    EXPECT_EQ(rows(), "1|A title|http://a/|m1|3|22|1\n1|old|http://a/|m0|3|4|2\n2|old|http://a/|m0|3|4|1");
    EXPECT_THAT(trace.take(), ElementsAre(Enter("SetUpdatedMark", "Url"), Exit("SetUpdatedMark", 0)));
}

TEST_F(BookmarkRecords, SetUpdatedMark_UnknownBookmark_SucceedsAndInsertsNothing)
{
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W(kImei), &bookmark), 0);
    EXPECT_EQ(rows(), "");
}

TEST_F(BookmarkRecords, SetUpdatedMark_UpdateFails_TracesPositionOne)
{
    givenBookmark(kUrl);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tBFile BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W(kImei), &bookmark), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetUpdatedMark", "Url"), Error("SetUpdatedMark", 1), Exit("SetUpdatedMark", 1)));
}

TEST_F(BookmarkRecords, SetDeletedMark_PresentType_GoesAlone)
{
    givenBookmark("http://o'brien/");
    givenBookmark("http://o'brien/", 2);
    givenBookmark("http://o'brien/", 1, 2);
    givenBookmark("http://other/");
    EXPECT_EQ(lib.DB_BOOKMARK_SetDeletedMark(W(kImei), W("http://o'brien/")), 0);
    EXPECT_EQ(rows(), "1|old|http://o'brien/|m0|3|4|2\n1|old|http://other/|m0|3|4|1\n2|old|http://o'brien/|m0|3|4|1");
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetDeletedMark", "Url", "http://o'brien/"), Exit("SetDeletedMark", 0)));
}

TEST_F(BookmarkRecords, SetDeletedMark_UnknownUrl_Succeeds)
{
    EXPECT_EQ(lib.DB_BOOKMARK_SetDeletedMark(W(kImei), W(kUrl)), 0);
}

TEST_F(BookmarkRecords, SetDeletedMark_DeleteFails_TracesPositionOne)
{
    givenBookmark(kUrl);
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON tBFile BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_BOOKMARK_SetDeletedMark(W(kImei), W(kUrl)), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("SetDeletedMark", "Url"), Error("SetDeletedMark", 1), Exit("SetDeletedMark", 1)));
}

TEST_F(BookmarkRecords, UnknownPhone_WritersFailWithoutErrorLine)
{
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W("999"), &bookmark), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W("999"), &bookmark), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetDeletedMark(W("999"), W(kUrl)), 1);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BOOKMARK_SetAddedMark(IMEI: 999, URL: http://a/).", Exit("SetAddedMark", 1),
                            "Enter DB_BOOKMARK_SetUpdatedMark(IMEI: 999, Url: http://a/).", Exit("SetUpdatedMark", 1),
                            "Enter DB_BOOKMARK_SetDeletedMark(IMEI: 999, Url: http://a/).", Exit("SetDeletedMark", 1)));
}

TEST_F(BookmarkRecords, NullRecords_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), nullptr), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("An exception occured in DB_BOOKMARK_SetAddedMark().", Exit("SetAddedMark", 1),
                            "An exception occured in DB_BOOKMARK_SetUpdatedMark().", Exit("SetUpdatedMark", 1),
                            Enter("GetSyncedMark", "Url"), "An exception occured in DB_BOOKMARK_GetSyncedMark().",
                            Exit("GetSyncedMark", 1)));
}

TEST_F(ClosedDatabase, BookmarkRecords_EveryExport_AnswersItsPreset)
{
    const Bookmark bookmark(kUrl);
    BookmarkRecord read = {};
    EXPECT_EQ(lib.DB_BOOKMARK_IsSyncedMark(W(kImei), W(kUrl)), 0);
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(W(kImei), W(kUrl), &read), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetAddedMark(W(kImei), &bookmark), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetDeletedMark(W(kImei), W(kUrl)), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_SetUpdatedMark(W(kImei), &bookmark), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(Enter("IsSyncedMark", "URL"), Exit("IsSyncedMark", 0), Enter("GetSyncedMark", "Url"),
                            Exit("GetSyncedMark", 1), Enter("SetAddedMark", "URL"), Exit("SetAddedMark", 1),
                            Enter("SetDeletedMark", "Url"), Exit("SetDeletedMark", 1), Enter("SetUpdatedMark", "Url"),
                            Exit("SetUpdatedMark", 1)));
}

}  // namespace
}  // namespace kesta::test
