// Dates on their way into the database and back.
#include <sqlite3.h>

#include <cmath>
#include <limits>

#include "api/given.h"

namespace kesta::test {
namespace {

struct Case {
    const char* name;
    DateValue given;
    const char* stored;
    const char* readBack;  // as DateText
};

double Seconds(double count)
{
    return count / 86400;
}

const Case kCases[] = {
    {"plain", Date(2024, 2, 29, 12, 34, 56), "2024-02-29 12:34:56", "2024-02-29 12:34:56"},
    {"midnight", Date(2000, 1, 1), "2000-01-01 00:00:00", "2000-01-01 00:00:00"},
    {"lastSecond", Date(1999, 12, 31, 23, 59, 59), "1999-12-31 23:59:59", "1999-12-31 23:59:59"},
    {"roundedDown", {45351.5 + Seconds(0.4), kDateValid}, "2024-02-29 12:00:00", "2024-02-29 12:00:00"},
    {"roundedUp", {45351.5 + Seconds(0.6), kDateValid}, "2024-02-29 12:00:01", "2024-02-29 12:00:01"},
    {"roundedIntoTheNextDay", {45351 + Seconds(86399.7), kDateValid}, "2024-03-01 00:00:00", "2024-03-01 00:00:00"},
    {"dayZero", {0.0, kDateValid}, "1899-12-30 00:00:00", "1899-12-30 00:00:00"},
    {"dayZeroAtNoon", {0.5, kDateValid}, "1899-12-30 12:00:00", "1899-12-30 12:00:00"},
    {"minusHalfADayIsNoonOfDayZero", {-0.5, kDateValid}, "1899-12-30 12:00:00", "1899-12-30 12:00:00"},
    {"dayBeforeZeroAtSix", {-1.25, kDateValid}, "1899-12-29 06:00:00", "1899-12-29 06:00:00"},
    {"firstYear", Date(100, 1, 1), "0100-01-01 00:00:00", "0100-01-01 00:00:00"},
    {"lastYear", Date(9999, 12, 31, 23, 59, 59), "9999-12-31 23:59:59", "9999-12-31 23:59:59"},
    {"beforeTheFirstYear", Date(99, 12, 31, 23, 59, 59), "Invalid DateTime", "<invalid>"},
    {"afterTheLastYear", Date(10000, 1, 1), "Invalid DateTime", "<invalid>"},
    {"roundedBehindTheLastYear", {2958465 + Seconds(86399.6), kDateValid}, "Invalid DateTime", "<invalid>"},
    {"huge", {1e300, kDateValid}, "Invalid DateTime", "<invalid>"},
    {"notANumber", {std::numeric_limits<double>::quiet_NaN(), kDateValid}, "Invalid DateTime", "<invalid>"},
    {"infinite", {std::numeric_limits<double>::infinity(), kDateValid}, "Invalid DateTime", "<invalid>"},
    {"minusInfinite", {-std::numeric_limits<double>::infinity(), kDateValid}, "Invalid DateTime", "<invalid>"},
    {"invalid", {45351.5, kDateInvalid}, "Invalid DateTime", "<invalid>"},
    {"null", {45351.5, kDateNull}, "", "<invalid>"}};

class StoredDates : public OpenDatabase, public ::testing::WithParamInterface<Case> {};

void PrintTo(const Case& each, std::ostream* out)
{
    *out << each.name;
}

INSTANTIATE_TEST_SUITE_P(, StoredDates, ::testing::ValuesIn(kCases),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(StoredDates, SetAddedFile_Date_IsStoredAsTextAndReadBack)
{
    givenPhone();
    const SyncedFile file("p", "b", "q", GetParam().given);
    ASSERT_EQ(lib.DB_MUSIC_SetAddedFile(W(kImei), &file), 0);
    EXPECT_EQ(sql.text("SELECT [ModifiedTime] FROM tMFile"), GetParam().stored);
    SyncedFileRecord found = {};
    ASSERT_EQ(lib.DB_MUSIC_IsSyncedFile(W(kImei), W("p"), &found), 1);
    EXPECT_EQ(DateText(found.ModifiedTime), GetParam().readBack);
    EXPECT_EQ(lib.DB_MUSIC_SetUpdatedFile(W(kImei), &file), 0);
    EXPECT_EQ(sql.text("SELECT [ModifiedTime] FROM tMFile"), GetParam().stored);
}

class ReadDates : public OpenDatabase {};

TEST_F(ReadDates, GetLastSyncTime_TextsThatSqliteUnderstands_AreReadAsItGivesThem)
{
    givenPhone();
    struct Stored {
        const char* text;
        const char* date;
    };
    for (const Stored& stored :
         {Stored{"'2024-02-29'", "2024-02-29 00:00:00"}, Stored{"'2024-02-29T01:02'", "2024-02-29 01:02:00"},
          Stored{"'2024-02-29 01:02:03.9'", "2024-02-29 01:02:03"}, Stored{"'12:34:56'", "2000-01-01 12:34:56"},
          Stored{"2451545", "2000-01-01 12:00:00"},
          // Newer versions move such a day to where it belongs, older ones give it as it is.
          Stored{"'2023-02-30 00:00:00'", sqlite3_libversion_number() < 3046000 ? "<invalid>" : "2023-03-02 00:00:00"},
          Stored{"'29.02.2024'", "<invalid>"}, Stored{"'2024-13-01 00:00:00'", "<invalid>"},
          Stored{"NULL", "<invalid>"}}) {
        sql.exec(std::string("UPDATE tPhone SET [LastTime] = ") + stored.text);
        DateValue found = {};
        EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(kImei), &found), 0);
        EXPECT_EQ(DateText(found), stored.date) << stored.text;
    }
}

}  // namespace
}  // namespace kesta::test
