// The order of the gallery: a merge sort in bins of doubling length that lets whatever is merged in go first unless the
// times are equal. The expected orders were worked out by hand.
#include "api/records.h"

namespace kesta::test {
namespace {

/// Folder after folder the time of its adding, one letter a second; and the folders in the order that comes of it.
struct Order {
    const char* name;
    std::string_view times;
    std::string_view sorted;
};

class GalleryOrder : public FamilyExports, public ::testing::WithParamInterface<Order> {
protected:
    static std::string timeOf(char letter) { return "2024-01-01 00:00:1" + std::to_string(letter - 'A'); }

    /// The folders 1, 2, 3 ... with the times of the letters.
    void givenFolders(const std::string& table) const
    {
        int number = 0;
        for (const char letter : GetParam().times) {
            sql.exec("INSERT INTO " + table + " ([PhoneID], [Path], [AddTime]) VALUES (1, '" +
                     std::to_string(++number) + "', " + Quoted(timeOf(letter)) + ")");
        }
    }

    /// "2B 1A": number and letter of each folder.
    std::string listed()
    {
        FolderList list = {};
        EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
        std::string text;
        for (int32_t i = 0; i < list.Count; ++i) {
            const std::string time = DateText(list.Items[i].AddTime);
            text += (i > 0 ? " " : "") + Utf8(list.Items[i].Path) + static_cast<char>('A' + time.back() - '0');
        }
        return text;
    }
};

INSTANTIATE_TEST_SUITE_P(, GalleryOrder,
                         ::testing::Values(Order{"One", "A", "1A"},                                              //
                                           Order{"TwoEqual", "AA", "1A 2A"},                                     //
                                           Order{"TwoRising", "AB", "2B 1A"},                                    //
                                           Order{"TwoFalling", "BA", "2A 1B"},                                   //
                                           Order{"ThreeEqual", "AAA", "1A 2A 3A"},                               //
                                           Order{"ThreeDistinct", "ACB", "3B 2C 1A"},                            //
                                           Order{"ThreeOuterEqual", "ABA", "3A 2B 1A"},                          //
                                           Order{"ThreeFirstTwoEqual", "AAB", "3B 1A 2A"},                       //
                                           Order{"ThreeLastTwoEqual", "ABB", "2B 3B 1A"},                        //
                                           Order{"FourDistinct", "ABCD", "4D 3C 2B 1A"},                         //
                                           Order{"FourAlternating", "ABAB", "2B 4B 1A 3A"},                      //
                                           Order{"FourInPairs", "AABB", "3B 4B 1A 2A"},                          //
                                           Order{"FourMirrored", "ABBA", "4A 2B 3B 1A"},                         //
                                           Order{"FiveAlternating", "ABABA", "5A 2B 4B 1A 3A"},                  //
                                           Order{"SixTwiceThree", "ABCABC", "6C 5B 4A 3C 2B 1A"},                //
                                           Order{"SevenMixed", "AABBAAB", "3B 4B 7B 1A 2A 5A 6A"},               //
                                           Order{"EightAlternating", "ABABABAB", "2B 4B 6B 8B 1A 3A 5A 7A"},     //
                                           Order{"NineDistinct", "ACEGIHFDB", "9B 8D 7F 6H 5I 4G 3E 2C 1A"},     //
                                           Order{"NineAlternating", "ABABABABA", "9A 2B 4B 6B 8B 1A 3A 5A 7A"},  //
                                           Order{"NineEqual", "AAAAAAAAA", "1A 2A 3A 4A 5A 6A 7A 8A 9A"}),
                         [](const auto& one) { return one.param.name; });

TEST_P(GalleryOrder, GetFolders_VideosOnly_ComeInTheOrderOfTheSort)
{
    givenFolders("tVFolder");
    EXPECT_EQ(listed(), GetParam().sorted);
}

TEST_P(GalleryOrder, GetFolders_PairedFolders_ComeInTheOrderOfTheSort)
{
    givenFolders("tIFolder");
    givenFolders("tVFolder");
    EXPECT_EQ(listed(), GetParam().sorted);
}

class GalleryTimes : public FamilyExports {
protected:
    std::vector<std::string> order(std::initializer_list<const char*> times)
    {
        sql.exec("DELETE FROM tVFolder");
        int number = 0;
        for (const char* time : times) {
            sql.exec("INSERT INTO tVFolder ([PhoneID], [Path], [AddTime]) VALUES (1, '" + std::to_string(++number) +
                     "', " + Quoted(time) + ")");
        }
        FolderList list = {};
        EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
        std::vector<std::string> paths;
        for (int32_t i = 0; i < list.Count; ++i) {
            paths.push_back(Utf8(list.Items[i].Path));
        }
        return paths;
    }
};

TEST_F(GalleryTimes, GetFolders_OneSecondApart_CountsAsDifferentEitherWay)
{
    EXPECT_THAT(order({"2024-02-29 23:59:59", "2024-03-01 00:00:00"}), ::testing::ElementsAre("2", "1"));
    EXPECT_THAT(order({"2024-03-01 00:00:00", "2024-02-29 23:59:59"}), ::testing::ElementsAre("2", "1"));
}

TEST_F(GalleryTimes, GetFolders_TheSameSecondWrittenDifferently_CountsAsEqual)
{
    EXPECT_THAT(order({"2024-03-01 00:00:00", "2024-03-01"}), ::testing::ElementsAre("1", "2"));
}

TEST_F(GalleryTimes, GetFolders_InvalidTimes_AreEqualToEachOtherAndDifferFromValidOnes)
{
    EXPECT_THAT(order({"", "never"}), ::testing::ElementsAre("1", "2"));
    EXPECT_THAT(order({"", "2024-03-01"}), ::testing::ElementsAre("2", "1"));
}

/// More folders than one bin of every length up to the fifth holds; all times differ, so the whole order turns round.
TEST_F(GalleryTimes, GetFolders_HundredDistinctTimes_ComeInReverse)
{
    sql.exec(
        "INSERT INTO tVFolder ([PhoneID], [Path], [AddTime]) WITH RECURSIVE some(n) AS (SELECT 100 UNION ALL SELECT n "
        "+ 1 FROM some WHERE n < 199) SELECT 1, n, datetime('2024-01-01', (n * 37 % 101) || ' seconds') FROM some");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    ASSERT_EQ(list.Count, 100);
    for (int32_t i = 0; i < 100; ++i) {
        EXPECT_EQ(Utf8(list.Items[i].Path), std::to_string(199 - i));
    }
}

}  // namespace
}  // namespace kesta::test
