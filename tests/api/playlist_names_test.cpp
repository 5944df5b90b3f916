// The file names of a playlist, in an array that is the caller's own.
#include <cstdlib>
#include <cstring>

#include "api/records.h"
#if defined(_WIN32)
#include <windows.h>
// Needs the types above.
#include <objbase.h>
#endif

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

constexpr char kEnterSet[] = "Enter DB_PLAYERMUSIC_SetListFilesname(ListName: Rock).";
constexpr char kEnterGet[] = "Enter DB_PLAYERMUSIC_GetListFilesname(Listname: Rock).";
constexpr char kErrorInDelete[] = "Error in DB_PLAYERMUSIC_SetListFilesname(), position 1.";
constexpr char kErrorInInsert[] = "Error in DB_PLAYERMUSIC_SetListFilesname(), position 2.";
constexpr char kExitSet[] = "Exit DB_PLAYERMUSIC_SetListFilesname() with 0.";
constexpr char kExitGet[] = "Exit DB_PLAYERMUSIC_GetListFilesname() with 0.";

/// The allocator that library and caller share.
void* Allocate(size_t bytes)
{
#if defined(_WIN32)
    return CoTaskMemAlloc(bytes);
#else
    return std::malloc(bytes);
#endif
}
void Free(void* memory)
{
#if defined(_WIN32)
    CoTaskMemFree(memory);
#else
    std::free(memory);
#endif
}

/// The caller's array, allocated and freed as the interface has it.
class Names : public FileNameArray {
public:
    Names() : FileNameArray{} {}
    explicit Names(std::initializer_list<std::string_view> names) : Names()
    {
        if (names.size() == 0) {
            return;
        }
        Items = static_cast<DbChar**>(Allocate(names.size() * sizeof(DbChar*)));
        for (const std::string_view name : names) {
            const Text text(name);
            const size_t bytes = (text.length() + 1) * sizeof(DbChar);
            Items[Count] = static_cast<DbChar*>(Allocate(bytes));
            std::memcpy(Items[Count++], static_cast<const DbChar*>(text), bytes);
        }
    }
    ~Names()
    {
        for (int32_t i = 0; i < Count; ++i) {
            Free(Items[i]);
        }
        Free(Items);
    }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    [[nodiscard]] std::vector<std::string> texts() const
    {
        std::vector<std::string> texts;
        for (int32_t i = 0; i < Count; ++i) {
            texts.push_back(Utf8(Items[i]));
        }
        return texts;
    }
};

class PlaylistNames : public OpenDatabase {
protected:
    int32_t set(const Names& names) { return lib.DB_PLAYERMUSIC_SetListFilesname(W(kImei), W("Rock"), &names); }
    int32_t get(Names& names) { return lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("Rock"), &names); }
    /// In the order of their insertion.
    [[nodiscard]] std::string rows() const
    {
        return sql.text("SELECT [IMEI], [Listname], [Filename] FROM tPFilename ORDER BY ROWID");
    }
};

TEST_F(PlaylistNames, SetListFilesname_SeveralNames_AreStoredFromTheLastToTheFirst)
{
    EXPECT_EQ(set(Names({"B", "C", "A"})), 0);
    EXPECT_EQ(rows(), "351111|Rock|A\n351111|Rock|C\n351111|Rock|B");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_KnownList_IsReplacedAndOthersStay)
{
    sql.exec(
        "INSERT INTO tPFilename VALUES ('351111', 'Rock', 'old'), ('351111', 'Pop', 'a'), ('352222', 'Rock', 'b')");
    EXPECT_EQ(set(Names({"new"})), 0);
    EXPECT_EQ(sql.text("SELECT * FROM tPFilename ORDER BY 1, 2"), "351111|Pop|a\n351111|Rock|new\n352222|Rock|b");
}

TEST_F(PlaylistNames, SetListFilesname_EmptyArray_OnlyDeletes)
{
    sql.exec("INSERT INTO tPFilename VALUES ('351111', 'Rock', 'old')");
    EXPECT_EQ(set(Names()), 0);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_NameTwice_IsStoredOnceAndTraced)
{
    EXPECT_EQ(set(Names({"A", "B", "A"})), 0);
    EXPECT_EQ(rows(), "351111|Rock|A\n351111|Rock|B");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kErrorInInsert, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_TextsOfEveryKind_AreStoredAsTheyAre)
{
    const std::string list = "O'Brien''s \xF0\x9F\x98\x80";
    const Names names({"it's \xF0\x9F\x98\x80.mp3", ""});
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W(kImei), W(list), &names), 0);
    EXPECT_EQ(rows(), "351111|" + list + "|\n351111|" + list + "|it's \xF0\x9F\x98\x80.mp3");
    Names read;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W(list), &read), 0);
    EXPECT_THAT(read.texts(), UnorderedElementsAre("it's \xF0\x9F\x98\x80.mp3", ""));
}

TEST_F(PlaylistNames, SetListFilesname_NullElementAndNullName_AreEmptyTexts)
{
    DbChar* items[] = {nullptr};
    const FileNameArray names = {1, items};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W(kImei), nullptr, &names), 0);
    EXPECT_EQ(sql.text("SELECT '<' || [Listname] || '|' || [Filename] || '>' FROM tPFilename"), "<|>");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_SetListFilesname(ListName: (null)).", kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_UnknownPhone_IsStoredUnderItsImei)
{
    const Names names({"A"});
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W("999"), W("Rock"), &names), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(nullptr, W("Rock"), &names), 0);
    EXPECT_EQ(rows(), "999|Rock|A\n(null)|Rock|A");
}

TEST_F(PlaylistNames, SetListFilesname_ImeiWithApostrophe_BreaksEveryStatementAndStillSucceeds)
{
    const Names names({"A", "B"});
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W("35'1"), W("Rock"), &names), 0);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kErrorInDelete, kErrorInInsert, kErrorInInsert, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_DeleteFails_GoesOnWithTheNames)
{
    sql.exec(
        "INSERT INTO tPFilename VALUES ('351111', 'Rock', 'old');"
        "CREATE TRIGGER refuse BEFORE DELETE ON tPFilename BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(set(Names({"A", "old"})), 0);
    EXPECT_EQ(rows(), "351111|Rock|old\n351111|Rock|A");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kErrorInDelete, kErrorInInsert, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_OneInsertFails_GoesOnWithTheOthers)
{
    sql.exec(
        "CREATE TRIGGER refuse BEFORE INSERT ON tPFilename WHEN NEW.[Filename] = 'B' BEGIN SELECT RAISE(ABORT, "
        "'no'); END");
    EXPECT_EQ(set(Names({"A", "B", "C"})), 0);
    EXPECT_EQ(rows(), "351111|Rock|C\n351111|Rock|A");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kErrorInInsert, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_NameTooLongForAStatement_IsSkipped)
{
    const std::string longName(41000, 'x');
    EXPECT_EQ(set(Names({"A", longName})), 0);
    EXPECT_EQ(rows(), "351111|Rock|A");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, kErrorInInsert, kExitSet));
}

TEST_F(PlaylistNames, SetListFilesname_NullArray_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W(kImei), W("Rock"), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, "An exception occured in DB_PLAYERMUSIC_SetListFilesname().",
                                          "Exit DB_PLAYERMUSIC_SetListFilesname() with 1."));
}

TEST_F(PlaylistNames, GetListFilesname_StoredNames_ComeAsSqliteYieldsThem)
{
    EXPECT_EQ(set(Names({"A", "B", "C"})), 0);
    trace.take();
    Names names;
    EXPECT_EQ(get(names), 0);
    std::string expected;
    for (const std::string& name : names.texts()) {
        expected += (expected.empty() ? "" : "\n") + name;
    }
    EXPECT_EQ(sql.text("SELECT [Filename] FROM tPFilename WHERE [IMEI] = '351111' AND [Listname] = 'Rock'"), expected);
    EXPECT_THAT(names.texts(), UnorderedElementsAre("A", "B", "C"));
    EXPECT_THAT(trace.take(), ElementsAre(kEnterGet, "Memory NEW.", "Memory NEW.", "Memory NEW.", kExitGet));
}

TEST_F(PlaylistNames, GetListFilesname_ArrayWithElements_KeepsThemInFront)
{
    EXPECT_EQ(set(Names({"new"})), 0);
    Names names({"old 1", "old 2"});
    DbChar* const first = names.Items[0];
    EXPECT_EQ(get(names), 0);
    EXPECT_THAT(names.texts(), ElementsAre("old 1", "old 2", "new"));
    EXPECT_EQ(names.Items[0], first);
    EXPECT_EQ(get(names), 0);
    EXPECT_THAT(names.texts(), ElementsAre("old 1", "old 2", "new", "new"));
}

TEST_F(PlaylistNames, GetListFilesname_EmptyName_IsAnEmptyTextWithoutMemoryLine)
{
    sql.exec("INSERT INTO tPFilename VALUES ('351111', 'Rock', '')");
    Names names;
    EXPECT_EQ(get(names), 0);
    EXPECT_THAT(names.texts(), ElementsAre(""));
    EXPECT_THAT(trace.take(), ElementsAre(kEnterGet, kExitGet));
}

TEST_F(PlaylistNames, GetListFilesname_NullName_IsAnEmptyText)
{
    sql.exec(
        "DROP TABLE tPFilename; CREATE TABLE tPFilename ([IMEI], [Listname], [Filename]); INSERT INTO tPFilename "
        "VALUES ('351111', 'Rock', NULL)");
    Names names;
    EXPECT_EQ(get(names), 0);
    EXPECT_THAT(names.texts(), ElementsAre(""));
}

TEST_F(PlaylistNames, GetListFilesname_UnknownList_LeavesTheArray)
{
    EXPECT_EQ(set(Names({"A"})), 0);
    trace.take();
    Names names;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("rock"), &names), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W("352222"), W("Rock"), &names), 0);
    EXPECT_EQ(names.Count, 0);
    EXPECT_EQ(names.Items, nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_GetListFilesname(Listname: rock).", kExitGet, kEnterGet, kExitGet));
}

TEST_F(PlaylistNames, GetListFilesname_ThousandNames_AllCome)
{
    sql.exec(
        "INSERT INTO tPFilename WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM some WHERE n < "
        "1000) SELECT '351111', 'Rock', printf('%04d', n) FROM some");
    Names names;
    EXPECT_EQ(get(names), 0);
    ASSERT_EQ(names.Count, 1000);
    EXPECT_EQ(Utf8(names.Items[0]), "0001");
    EXPECT_EQ(Utf8(names.Items[999]), "1000");
}

TEST_F(PlaylistNames, GetListFilesname_QueryFails_TracesPositionThree)
{
    Names names({"old"});
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W("35'1"), W("Rock"), &names), 1);
    EXPECT_THAT(names.texts(), ElementsAre("old"));
    EXPECT_THAT(trace.take(), ElementsAre(kEnterGet, "Error in DB_PLAYERMUSIC_GetListFilesname(), position 3.",
                                          "Exit DB_PLAYERMUSIC_GetListFilesname() with 1."));
}

TEST_F(PlaylistNames, GetListFilesname_ReadingARowFails_KeepsTheRowsBeforeAndSucceeds)
{
    sql.exec(
        "DROP TABLE tPFilename; CREATE TABLE kept ([Filename]); INSERT INTO kept VALUES ('A'), ('B'), ('C');"
        "CREATE VIEW tPFilename AS SELECT '351111' AS [IMEI], 'Rock' AS [Listname], CASE WHEN [Filename] = 'B' "
        "THEN zeroblob(2000000000) ELSE [Filename] END AS [Filename] FROM kept");
    Names names;
    EXPECT_EQ(get(names), 0);
    EXPECT_THAT(names.texts(), ElementsAre("A"));
}

TEST_F(PlaylistNames, GetListFilesname_NegativeCount_IsTakenForNone)
{
    EXPECT_EQ(set(Names({"A", "B"})), 0);
    trace.take();
    Names names;
    names.Count = -1;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("Rock"), &names), 0);
    EXPECT_THAT(names.texts(), ElementsAre("A", "B"));
}

TEST_F(PlaylistNames, GetListFilesname_CountWithoutElements_TakesTheExceptionWay)
{
    EXPECT_EQ(set(Names({"A", "B"})), 0);
    trace.take();
    FileNameArray names = {2, nullptr};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("Rock"), &names), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterGet, "An exception occured in DB_PLAYERMUSIC_GetListFilesname().",
                                          "Exit DB_PLAYERMUSIC_GetListFilesname() with 1."));
    EXPECT_EQ(names.Count, 2);
    EXPECT_EQ(names.Items, nullptr);
}

TEST_F(PlaylistNames, GetListFilesname_NullArray_TakesTheExceptionWay)
{
    EXPECT_EQ(set(Names({"A"})), 0);
    trace.take();
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("Rock"), nullptr), 1);
    const std::vector<std::string> lines = trace.take();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 2], "An exception occured in DB_PLAYERMUSIC_GetListFilesname().");
    EXPECT_EQ(lines.back(), "Exit DB_PLAYERMUSIC_GetListFilesname() with 1.");
}

TEST_F(ClosedDatabase, PlaylistNames_FailWithEntryAndExitLine)
{
    Names names({"old"});
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListFilesname(W(kImei), W("Rock"), &names), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetListFilesname(W(kImei), W("Rock"), &names), 1);
    EXPECT_THAT(names.texts(), ElementsAre("old"));
    EXPECT_THAT(trace.take(), ElementsAre(kEnterSet, "Exit DB_PLAYERMUSIC_SetListFilesname() with 1.", kEnterGet,
                                          "Exit DB_PLAYERMUSIC_GetListFilesname() with 1."));
}

}  // namespace
}  // namespace kesta::test
