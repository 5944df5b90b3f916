// The picture and video folders as one list: the walk through both, and what is read of them.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr char kEnter[] = "Enter DB_GALLERY_GetFolders(IMEI: 351111).";
constexpr char kNoon[] = "2024-01-01 12:00:00";

struct Row {
    std::string_view path;
    std::string_view addTime = kNoon;
    int count = 1;
    int64_t size = 10;
    int64_t totalSize = 100;
    int selected = 1;
    int deleted = 0;
    int sized = 0;
};

class GalleryFolders : public FamilyExports {
protected:
    /// A row of phone 1 in tIFolder or tVFolder.
    void given(char letter, const Row& row) const
    {
        sql.exec("INSERT INTO t" + std::string(1, letter) +
                 "Folder ([PhoneID], [Path], [Count], [Size], [TotalSize], [Selected], [Deleted], [Flag], [AddTime], "
                 "[Sized]) VALUES (1, " +
                 Quoted(row.path) + ", " + std::to_string(row.count) + ", " + std::to_string(row.size) + ", " +
                 std::to_string(row.totalSize) + ", " + std::to_string(row.selected) + ", " +
                 std::to_string(row.deleted) + ", 0, " + Quoted(row.addTime) + ", " + std::to_string(row.sized) + ")");
    }
    void givenImages(std::initializer_list<std::string_view> paths) const
    {
        for (const std::string_view path : paths) {
            given('I', {.path = path});
        }
    }
    void givenVideos(std::initializer_list<std::string_view> paths) const
    {
        for (const std::string_view path : paths) {
            given('V', {.path = path});
        }
    }

    /// The paths of the gallery. All folders of a test with equal times keep the order of the walk.
    std::vector<std::string> paths()
    {
        FolderList list = {};
        EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
        std::vector<std::string> found;
        for (int32_t i = 0; i < list.Count; ++i) {
            found.push_back(Utf8(list.Items[i].Path));
        }
        return found;
    }
};

TEST_F(GalleryFolders, GetFolders_ImagesOnly_AreListedAsReadNeitherMergedNorSorted)
{
    given('I', {"C:\\A", "2024-01-01 00:00:01"});
    given('I', {"C:\\B", "2024-01-01 00:00:03", 2, 20, 200, 5, 4, 1});
    given('I', {"C:\\C", "2024-01-01 00:00:02"});
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list),
              "C:\\A|1|10|100|1|0|2024-01-01 00:00:01|0\n"
              "C:\\B|2|20|200|5|4|2024-01-01 00:00:03|1\n"
              "C:\\C|1|10|100|1|0|2024-01-01 00:00:02|0");
    EXPECT_THAT(trace.take(), ElementsAreArray(WithNew({kEnter}, 4)));
}

/// Nothing sorts them: they come as the statement yields them.
TEST_F(GalleryFolders, GetFolders_ImagesAddedInAnyOrder_ComeAsSqliteYieldsThem)
{
    given('I', {"C:\\C", "2024-01-01 00:00:01"});
    given('I', {"C:\\A", "2024-01-01 00:00:03"});
    given('I', {"C:\\B", "2024-01-01 00:00:02"});
    std::string expected;
    for (const std::string& path : paths()) {
        expected += (expected.empty() ? "" : "\n") + path;
    }
    EXPECT_EQ(sql.text("SELECT [Path] FROM (SELECT ROWID, [Path], [Count] FROM tIFolder WHERE [PhoneID] = 1)"),
              expected);
}

TEST_F(GalleryFolders, GetFolders_NoFolders_IsEmpty)
{
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter));
}

TEST_F(GalleryFolders, GetFolders_VideosOnly_AreAllListed)
{
    givenVideos({"C:\\A", "C:\\B", "C:\\C"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A", "C:\\B", "C:\\C"));
}

TEST_F(GalleryFolders, GetFolders_VideosOnly_KeepEveryField)
{
    given('V', {"C:\\A", kNoon, 2, 20, 200, 5, 4, 1});
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list), "C:\\A|2|20|200|5|4|2024-01-01 12:00:00|1");
    EXPECT_EQ(list.Items[0].RowId, 1);
}

TEST_F(GalleryFolders, GetFolders_ImagesLastLeft_DropsTheRestOfTheImages)
{
    givenImages({"C:\\A", "C:\\C"});
    givenVideos({"C:\\B"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A", "C:\\B"));
}

TEST_F(GalleryFolders, GetFolders_VideosLastLeft_DropsTheRestOfTheVideos)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\B", "C:\\C"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A"));
}

TEST_F(GalleryFolders, GetFolders_VideosAheadOfAllImages_DropsAllImages)
{
    givenImages({"C:\\B", "C:\\C"});
    givenVideos({"C:\\A"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A"));
}

TEST_F(GalleryFolders, GetFolders_BothEndTogether_DropsNothing)
{
    givenImages({"C:\\A", "C:\\C", "C:\\D"});
    givenVideos({"C:\\B", "C:\\D"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A", "C:\\B", "C:\\C", "C:\\D"));
}

TEST_F(GalleryFolders, GetFolders_PairAtTheEndOfTheImages_StopsBehindIt)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\A", "C:\\B"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A"));
}

TEST_F(GalleryFolders, GetFolders_PairedFolder_IsListedOnceWithSums)
{
    given('I', {"C:\\0"});
    given('I', {"C:\\A", "2024-01-01 12:00:00", 3, 3'000'000'000, 30'000'000'000, 1, 1, 1});
    given('V', {"C:\\A", "2025-05-05 05:05:05", 4, 4'000'000'000, 40'000'000'000, 0, 1, 0});
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list),
              "C:\\0|1|10|100|1|0|2024-01-01 12:00:00|0\n"
              "C:\\A|7|7000000000|70000000000|1|1|2024-01-01 12:00:00|1");
    EXPECT_EQ(list.Items[1].RowId, 2) << "the images' row";
}

struct Pair {
    int image;
    int video;
    int expected;
};

TEST_F(GalleryFolders, GetFolders_PairedFolder_IsSelectedWhenEitherIs)
{
    for (const Pair& pair : {Pair{0, 0, 0}, Pair{1, 0, 1}, Pair{0, 1, 1}, Pair{1, 1, 1}, Pair{5, 0, 1}}) {
        sql.exec("DELETE FROM tIFolder; DELETE FROM tVFolder");
        given('I', {.path = "C:\\A", .selected = pair.image});
        given('V', {.path = "C:\\A", .selected = pair.video});
        FolderList list = {};
        EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
        ASSERT_EQ(list.Count, 1);
        EXPECT_EQ(list.Items[0].Selected, pair.expected) << pair.image << " and " << pair.video;
    }
}

TEST_F(GalleryFolders, GetFolders_PairedFolder_IsDeletedWhenBothAre)
{
    for (const Pair& pair : {Pair{0, 0, 0}, Pair{1, 0, 0}, Pair{0, 1, 0}, Pair{1, 1, 1}, Pair{4, 1, 1}}) {
        sql.exec("DELETE FROM tIFolder; DELETE FROM tVFolder");
        given('I', {.path = "C:\\A", .deleted = pair.image});
        given('V', {.path = "C:\\A", .deleted = pair.video});
        FolderList list = {};
        EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
        ASSERT_EQ(list.Count, 1);
        EXPECT_EQ(list.Items[0].Deleted, pair.expected) << pair.image << " and " << pair.video;
    }
}

TEST_F(GalleryFolders, GetFolders_PathsThatDifferInCase_AreNotPaired)
{
    givenImages({"C:\\a"});
    givenVideos({"C:\\A"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A")) << "the capital is the lower code unit";
}

TEST_F(GalleryFolders, GetFolders_Paths_AreComparedByCodeUnits)
{
    givenImages({"C:\\\xEF\xBC\xA1"});      // U+FF21
    givenVideos({"C:\\\xF0\x9F\x98\x80"});  // U+1F600, whose first unit is D83D
    EXPECT_THAT(paths(), ElementsAre("C:\\\xF0\x9F\x98\x80"));
}

TEST_F(GalleryFolders, GetFolders_PathThatBeginsLikeAnother_ComesFirst)
{
    givenImages({"C:\\A", "C:\\A\\B"});
    givenVideos({"C:\\A"});
    EXPECT_THAT(paths(), ElementsAre("C:\\A"));
}

TEST_F(GalleryFolders, GetFolders_EmptyPaths_AreNullAndPaired)
{
    given('I', {"", kNoon, 3});
    given('V', {"", kNoon, 4});
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list), "<null>|7|20|200|1|0|2024-01-01 12:00:00|0");
}

TEST_F(GalleryFolders, GetFolders_OtherPhone_HasItsOwn)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\A"});
    givenPhone("352222");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W("352222"), &list), 0);
    EXPECT_EQ(list.Count, 0);
}

TEST_F(GalleryFolders, GetFolders_UnknownPhone_FailsWithAnEmptyList)
{
    givenImages({"C:\\A", "C:\\B"});
    FolderList list = {};
    ASSERT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    trace.take();
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W("999"), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", "Memory DELETE.", "Memory DELETE.",
                                          "Enter DB_GALLERY_GetFolders(IMEI: 999)."));
}

TEST_F(GalleryFolders, GetFolders_ImagesCannotBeCounted_ListsNothing)
{
    givenVideos({"C:\\A"});
    givenSchema("DROP TABLE tIFolder");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    AliveMemory memory;
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 0u) << "the videos were read and let go";
}

TEST_F(GalleryFolders, GetFolders_VideosCannotBeCounted_KeepsTheImages)
{
    givenImages({"C:\\A", "C:\\B"});
    givenSchema("DROP TABLE tVFolder");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(ToString(list), "C:\\A|1|10|100|1|0|2024-01-01 12:00:00|0\nC:\\B|1|10|100|1|0|2024-01-01 12:00:00|0");
    EXPECT_THAT(trace.take(), ElementsAreArray(WithNew({kEnter}, 3)));
}

TEST_F(GalleryFolders, GetFolders_VideosCannotBeRead_KeepsTheImagesAndFreesTheVideos)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\A"});
    givenSchema("DROP VIEW vVFolder; ALTER TABLE tVFolder RENAME COLUMN [Sized] TO [Elsewhere]");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(ToString(list), "C:\\A|1|10|100|1|0|2024-01-01 12:00:00|0");
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Error in DB_INTERNAL_GetFolders(), position 1.", "Memory DELETE."));
}

TEST_F(GalleryFolders, GetFolders_ReadingTheImagesFails_AsksForTheVideosAllTheSame)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\B"});
    changeSchema("DROP VIEW vIFolder; ALTER TABLE tIFolder RENAME COLUMN [TotalSize] TO [Elsewhere]");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", "Error in DB_INTERNAL_GetFolders(), position 1.",
                                          "Memory NEW.", "Memory NEW.", "Memory DELETE.", "Memory DELETE."));
}

TEST_F(GalleryFolders, GetFolders_ReadingTheVideosEndsWithACode_FailsWithOneAndKeepsTheImages)
{
    givenImages({"C:\\A"});
    givenVideos({"C:\\A", "C:\\B"});
    givenSchema(
        "DROP VIEW vVFolder; ALTER TABLE tVFolder RENAME TO kept; CREATE VIEW tVFolder AS SELECT rowid AS ROWID, "
        "[PhoneID], CASE WHEN [Path] = 'C:\\B' THEN zeroblob(2000000000) ELSE [Path] END AS [Path], [Count], [Size], "
        "[TotalSize], [Selected], [Deleted], [Flag], [AddTime], [Sized] FROM kept");
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(ToString(list), "C:\\A|1|10|100|1|0|2024-01-01 12:00:00|0");
    AliveMemory memory;
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 2u);
}

TEST_F(GalleryFolders, GetFolders_MergedList_LeavesItsOwnArrayAndTextsAlive)
{
    givenImages({"C:\\A", "C:\\B", "C:\\C"});
    givenVideos({"C:\\A", "C:\\B"});
    FolderList list = {};
    AliveMemory memory;
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(list.Count, 2);
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    EXPECT_EQ(lines.front(), kEnter);
    EXPECT_EQ(memory.after(lines), 3u);
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 3u);
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W("999"), &list), 1);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 0u);
}

TEST_F(GalleryFolders, GetFolders_NullList_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre("An exception occured in DB_GALLERY_GetFolders()."));
}

TEST_F(GalleryFolders, GetFolders_NullImei_IsAnUnknownPhone)
{
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(nullptr, &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_GALLERY_GetFolders(IMEI: (null))."));
}

TEST_F(ClosedDatabase, GalleryGetFolders_FailsAfterItsEntryLine)
{
    FolderList list = {};
    EXPECT_EQ(lib.DB_GALLERY_GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter));
}

}  // namespace
}  // namespace kesta::test
