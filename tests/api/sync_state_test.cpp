// DB_LIB_*: chosen main folders, last sync, SD card, and the history of files of a phone.
#include <cstdlib>

#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class SyncState : public OpenDatabase {
protected:
    SyncState()
    {
#if !defined(_WIN32)
        setenv("LC_ALL", "C", 1);
#endif
        givenPhone();
    }

    [[nodiscard]] std::string lastRun() const
    {
        return sql.text("SELECT [IMEI], [LastTime], [ErrCode], [NeedMount] FROM tPhone ORDER BY [ID]");
    }
    [[nodiscard]] std::string cards() const
    {
        return sql.text("SELECT [IMEI], [SDType], [SDOldType] FROM tPhone ORDER BY [ID]");
    }
};

// The same moment, as a user of the plainest locale of each system writes it.
#if defined(_WIN32)
constexpr char kUsersTime[] = "2/29/2024 12:34:56 PM";
#else
constexpr char kUsersTime[] = "02/29/24 12:34:56";
#endif

TEST_F(SyncState, IsFolderSelected_NewPhone_IsZeroForEveryMainFolder)
{
    for (const int32_t id : {1000, 1100, 1400, 1500, 1600, 1900, 2200}) {
        EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W(kImei), id), 0);
        EXPECT_THAT(trace.take(),
                    ElementsAre("Enter DB_LIB_IsFolderSelected(IMEI: 351111, FolderID: " + std::to_string(id) + ").",
                                "Exit DB_LIB_IsFolderSelected() with bSelected = 0."));
    }
}

TEST_F(SyncState, IsFolderSelected_StoredNumber_IsReturnedAsItIs)
{
    sql.exec("UPDATE tSyncContents SET [Selected] = -3 WHERE [lfID] = 1100");
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W(kImei), 1100), -3);
}

TEST_F(SyncState, IsFolderSelected_NoRowOrUnknownPhone_IsOne)
{
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W(kImei), 4711), 1);
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W("999"), 1000), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_IsFolderSelected(IMEI: 351111, FolderID: 4711).",
                                          "Exit DB_LIB_IsFolderSelected() with bSelected = 1.",
                                          "Enter DB_LIB_IsFolderSelected(IMEI: 999, FolderID: 1000).",
                                          "Exit DB_LIB_IsFolderSelected() with bSelected = 1."));
}

TEST_F(SyncState, IsFolderSelected_UnknownPhone_IsAskedForAsMinusOne)
{
    sql.exec("INSERT INTO tSyncContents VALUES (-1, 1000, 0, 0)");
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W("999"), 1000), 0);
}

TEST_F(SyncState, IsFolderSelected_QueryFails_IsOneWithPositionOne)
{
    changeSchema("DROP TABLE tSyncContents");
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W(kImei), 1000), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_IsFolderSelected(IMEI: 351111, FolderID: 1000).",
                                          "Error in DB_LIB_IsFolderSelected(), position 1.",
                                          "Exit DB_LIB_IsFolderSelected() with bSelected = 1."));
}

TEST_F(SyncState, SetFolderSelected_FolderOfAnAnnouncedPhone_IsUpdated)
{
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W(kImei), 1400, 1), 0);
    EXPECT_EQ(sql.text("SELECT * FROM tSyncContents WHERE [Selected] <> 0"), "1|1400|1|0");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tSyncContents"), "7");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_SetFolderSelected(IMEI: 351111, FolderID: 1400, bSelected: 1).",
                                          "Exit DB_LIB_SetFolderSelected() with 0."));
}

TEST_F(SyncState, SetFolderSelected_FolderWithoutRow_IsInsertedWhateverItsNumber)
{
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W(kImei), -17, 5), 0);
    EXPECT_EQ(sql.text("SELECT * FROM tSyncContents WHERE [lfID] = -17"), "1|-17|5|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_SetFolderSelected(IMEI: 351111, FolderID: -17, bSelected: 5).",
                                          "Exit DB_LIB_SetFolderSelected() with 0."));
}

TEST_F(SyncState, SetFolderSelected_UnknownPhone_FailsAndWritesNothing)
{
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W("999"), 1000, 1), 1);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tSyncContents WHERE [Selected] = 1 OR [phoneID] <> 1"), "0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_SetFolderSelected(IMEI: 999, FolderID: 1000, bSelected: 1).",
                                          "Exit DB_LIB_SetFolderSelected() with 1."));
}

TEST_F(SyncState, SetFolderSelected_EachStepFailing_TracesItsPosition)
{
    const std::string enter = "Enter DB_LIB_SetFolderSelected(IMEI: 351111, FolderID: ";
    sql.exec(
        "CREATE TRIGGER refuse BEFORE UPDATE ON tSyncContents BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuse2 BEFORE INSERT ON tSyncContents BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W(kImei), 1000, 1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enter + "1000, bSelected: 1).", "Error in DB_LIB_SetFolderSelected(), position 2.",
                            "Exit DB_LIB_SetFolderSelected() with 1."));
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W(kImei), 5, 1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enter + "5, bSelected: 1).", "Error in DB_LIB_SetFolderSelected(), position 3.",
                            "Exit DB_LIB_SetFolderSelected() with 1."));
    changeSchema("DROP TABLE tSyncContents");
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W(kImei), 1000, 1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enter + "1000, bSelected: 1).", "Error in DB_LIB_SetFolderSelected(), position 1.",
                            "Exit DB_LIB_SetFolderSelected() with 1."));
}

TEST_F(SyncState, SetLastSyncTime_ValidTime_IsWrittenWithCodeAndMount)
{
    givenPhone("352222");
    const DateValue time = Date(2024, 2, 29, 12, 34, 56);
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &time, -5, 0), 0);
    EXPECT_EQ(lastRun(), "351111|2024-02-29 12:34:56|-5|0\n352222|<null>|0|1");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_SetLastSyncTime(IMEI: 351111, LastTime: " +
                                              std::string(kUsersTime) + ", iErrCode: -5).",
                                          "Exit DB_LIB_SetLastSyncTime() with 0."));
}

TEST_F(SyncState, SetLastSyncTime_DayZeroWhateverItsStatus_KeepsTheTime)
{
    const DateValue time = Date(2024, 2, 29);
    ASSERT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &time, 1, 1), 0);
    for (const int32_t status : {kDateValid, kDateInvalid, kDateNull}) {
        const DateValue none = {status == kDateNull ? -0.0 : 0.0, status};
        EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &none, 20 + status, status), 0);
        EXPECT_EQ(lastRun(),
                  "351111|2024-02-29 00:00:00|" + std::to_string(20 + status) + "|" + std::to_string(status));
    }
}

TEST_F(SyncState, SetLastSyncTime_InvalidOrNullTime_WritesItsTextAndTracesItLikewise)
{
    const DateValue invalid = {1.0, kDateInvalid};
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &invalid, 1, 1), 0);
    EXPECT_EQ(lastRun(), "351111|Invalid DateTime|1|1");
    EXPECT_EQ(trace.take().front(),
              "Enter DB_LIB_SetLastSyncTime(IMEI: 351111, LastTime: Invalid DateTime, iErrCode: 1).");
    const DateValue null = {1.0, kDateNull};
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &null, 2, 1), 0);
    EXPECT_EQ(lastRun(), "351111||2|1");
    EXPECT_EQ(trace.take().front(), "Enter DB_LIB_SetLastSyncTime(IMEI: 351111, LastTime: , iErrCode: 2).");
    const DateValue outside = {3e6, kDateValid};
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &outside, 3, 1), 0);
    EXPECT_EQ(lastRun(), "351111|Invalid DateTime|3|1");
    EXPECT_EQ(trace.take().front(),
              "Enter DB_LIB_SetLastSyncTime(IMEI: 351111, LastTime: Invalid DateTime, iErrCode: 3).");
}

TEST_F(SyncState, SetLastSyncTime_UnknownPhone_SucceedsWithoutChange)
{
    const DateValue time = Date(2024, 2, 29, 12, 34, 56);
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W("999"), &time, 5, 0), 0);
    EXPECT_EQ(lastRun(), "351111|<null>|0|1");
}

TEST_F(SyncState, SetLastSyncTime_UpdateFails_TracesPositionOne)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPhone BEGIN SELECT RAISE(ABORT, 'no'); END");
    for (const DateValue& time : {Date(2024, 2, 29, 12, 34, 56), DateValue{0.0, kDateNull}}) {
        EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &time, 5, 0), 1);
        const std::string shown = time.Status == kDateNull ? "" : kUsersTime;
        EXPECT_THAT(
            trace.take(),
            ElementsAre("Enter DB_LIB_SetLastSyncTime(IMEI: 351111, LastTime: " + shown + ", iErrCode: 5).",
                        "Error in DB_LIB_SetLastSyncTime(), position 1.", "Exit DB_LIB_SetLastSyncTime() with 1."));
    }
}

TEST_F(SyncState, GetLastSyncTime_AfterARun_GivesItsTime)
{
    const DateValue time = Date(2024, 2, 29, 12, 34, 56);
    ASSERT_EQ(lib.DB_LIB_SetLastSyncTime(W(kImei), &time, 5, 0), 0);
    trace.take();
    DateValue found = NullDate();
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(kImei), &found), 0);
    EXPECT_EQ(DateText(found), "2024-02-29 12:34:56");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetLastSyncTime(IMEI: 351111).", "Exit DB_LIB_GetLastSyncTime() with 0."));
}

TEST_F(SyncState, GetLastSyncTime_NeverSynced_IsInvalid)
{
    DateValue found = Date(2024, 1, 1);
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(kImei), &found), 0);
    EXPECT_EQ(found.Status, kDateInvalid);
    EXPECT_EQ(DaysOf(found), 0.0);
}

TEST_F(SyncState, GetLastSyncTime_StoredAsNoDate_IsInvalid)
{
    for (const char* stored : {"''", "'Invalid DateTime'", "'yesterday'", "x'00'"}) {
        sql.exec(std::string("UPDATE tPhone SET [LastTime] = ") + stored);
        DateValue found = Date(2024, 1, 1);
        EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(kImei), &found), 0);
        EXPECT_EQ(found.Status, kDateInvalid) << stored;
    }
}

TEST_F(SyncState, GetLastSyncTime_UnknownPhone_FailsAndLeavesTheDate)
{
    DateValue found = Date(2024, 1, 1, 2, 3, 4);
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W("999"), &found), 1);
    EXPECT_EQ(DateText(found), "2024-01-01 02:03:04");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetLastSyncTime(IMEI: 999).", "Exit DB_LIB_GetLastSyncTime() with 1."));
}

TEST_F(SyncState, GetLastSyncTime_QueryFails_TracesPositionOneAndLeavesTheDate)
{
    changeSchema("ALTER TABLE tPhone RENAME COLUMN [LastTime] TO [Elsewhere]");
    DateValue found = Date(2024, 1, 1);
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(kImei), &found), 1);
    EXPECT_EQ(DateText(found), "2024-01-01 00:00:00");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetLastSyncTime(IMEI: 351111).",
                            "Error in DB_LIB_GetLastSyncTime(), position 1.", "Exit DB_LIB_GetLastSyncTime() with 1."));
}

TEST_F(SyncState, SetSDType_KnownPhone_WritesBothNumbersAsGiven)
{
    givenPhone("352222");
    EXPECT_EQ(lib.DB_LIB_SetSDType(W(kImei), 3, -1), 0);
    EXPECT_EQ(cards(), "351111|3|-1\n352222|0|0");
    EXPECT_EQ(lib.DB_LIB_SetSDType(W(kImei), 4, 7), 0);
    EXPECT_EQ(cards(), "351111|4|7\n352222|0|0");
    EXPECT_THAT(
        trace.take(),
        ElementsAre("Enter DB_LIB_SetSDType(IMEI: 351111, Type: 3, OldType: -1).", "Exit DB_LIB_SetSDType() with 0.",
                    "Enter DB_LIB_SetSDType(IMEI: 351111, Type: 4, OldType: 7).", "Exit DB_LIB_SetSDType() with 0."));
}

TEST_F(SyncState, SetSDType_UnknownPhone_SucceedsWithoutChange)
{
    EXPECT_EQ(lib.DB_LIB_SetSDType(W("999"), 3, 4), 0);
    EXPECT_EQ(cards(), "351111|0|0");
}

TEST_F(SyncState, SetSDType_UpdateFails_TracesPositionOne)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPhone BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_SetSDType(W(kImei), 3, 4), 1);
    EXPECT_EQ(cards(), "351111|0|0");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_SetSDType(IMEI: 351111, Type: 3, OldType: 4).",
                            "Error in DB_LIB_SetSDType(), position 1.", "Exit DB_LIB_SetSDType() with 1."));
}

TEST_F(SyncState, GetSDType_KnownPhone_GivesBothNumbers)
{
    int32_t type = 77;
    int32_t oldType = 88;
    EXPECT_EQ(lib.DB_LIB_GetSDType(W(kImei), &type, &oldType), 0);
    EXPECT_EQ(type, 0);
    EXPECT_EQ(oldType, 0);
    ASSERT_EQ(lib.DB_LIB_SetSDType(W(kImei), 3, -4), 0);
    trace.take();
    EXPECT_EQ(lib.DB_LIB_GetSDType(W(kImei), &type, &oldType), 0);
    EXPECT_EQ(type, 3);
    EXPECT_EQ(oldType, -4);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetSDType(IMEI: 351111).", "Exit DB_LIB_GetSDType() with 0."));
}

TEST_F(SyncState, GetSDType_UnknownPhoneOrFailingQuery_FailsAndLeavesTheOutputs)
{
    int32_t type = 77;
    int32_t oldType = 88;
    EXPECT_EQ(lib.DB_LIB_GetSDType(W("999"), &type, &oldType), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetSDType(IMEI: 999).", "Exit DB_LIB_GetSDType() with 1."));
    changeSchema("ALTER TABLE tPhone RENAME COLUMN [SDType] TO [Elsewhere]");
    EXPECT_EQ(lib.DB_LIB_GetSDType(W(kImei), &type, &oldType), 1);
    EXPECT_EQ(type, 77);
    EXPECT_EQ(oldType, 88);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetSDType(IMEI: 351111).", "Error in DB_LIB_GetSDType(), position 1.",
                            "Exit DB_LIB_GetSDType() with 1."));
}

}  // namespace
}  // namespace kesta::test
