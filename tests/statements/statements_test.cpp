// Every export's statements, to the character and in their order, as SQLite receives them; and where the access lock
// and the entry line stand among them.
#include <algorithm>
#include <ctime>
#include <fstream>
#include <set>
#include <sstream>

#include "statements/call_case.h"
#include "statements/call_recorder.h"
#include "unit/module_under_test.h"

namespace kesta::test {

void PrintTo(const CallCase& tested, std::ostream* out)
{
    *out << tested.name;
}

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::StartsWith;

constexpr int64_t kNow = 1'709'210'096;
constexpr std::string_view kLine = "DB TRACE >> ";

std::string LocalTimeOf(int64_t seconds)
{
    const auto time = static_cast<time_t>(seconds);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&time));
    return text;
}

void Replace(std::string& text, std::string_view part, const std::string& by)
{
    for (size_t place = 0; (place = text.find(part, place)) != std::string::npos; place += by.size()) {
        text.replace(place, part.size(), by);
    }
}

/// The text with everything put in that CallCase only tells of.
std::string Complete(std::string text)
{
    Replace(text, "$", Ansi(W("§")));
    Replace(text, "<now>", LocalTimeOf(kNow));
    return text;
}

std::string ExportOf(const CallCase& tested)
{
    return tested.name.substr(0, tested.name.find('/'));
}

/// The exports that trace their entry before the lock is taken.
bool IsThin(const std::string& name)
{
    static const std::set<std::string> playlists = {
        "DB_PLAYERMUSIC_IsListSelected",     "DB_PLAYERMUSIC_SetListSelected", "DB_PLAYERMUSIC_SetUpdatedPlaylist",
        "DB_PLAYERMUSIC_SetDeletedPlaylist", "DB_PLAYERMUSIC_IsSyncedFile",    "DB_PLAYERMUSIC_GetSyncedFiles",
        "DB_PLAYERMUSIC_SetAddedFile",       "DB_PLAYERMUSIC_SetDeletedFile",  "DB_PLAYERMUSIC_SetUpdatedFile"};
    const auto isOf = [&](const char* family) { return name.starts_with(family); };
    return isOf("DB_MUSIC_") || isOf("DB_IMAGE_") || isOf("DB_VIDEO_") || isOf("DB_DOCUMENT_") || isOf("DB_GALLERY_") ||
           playlists.contains(name);
}

bool TakesNoLock(const std::string& name)
{
    return name == "DB_Close" || name == "DB_LIB_MainFoldersChanged";
}

std::vector<std::string> WithoutLines(std::vector<std::string> events)
{
    std::erase_if(events, [](const std::string& event) { return event.starts_with(kLine); });
    return events;
}

class Statements : public ::testing::Test {
protected:
    Statements()
    {
        statementsStayCompiled = false;
        givenDatabase();
        TheModule().start();
        ReplacedServices::take();
        platform::services.now = []() noexcept { return kNow; };
        sql.exec(Complete("INSERT INTO tPhone ([IMEI], [BookMarkType]) VALUES ('I''$', 5), ('I''§', 5)"));
    }
    ~Statements() override
    {
        TheModule().end();
        statementsStayCompiled = true;
    }

    static std::vector<std::string> recorded(const std::function<int32_t(const Exports&)>& call)
    {
        CallRecorder::start();
        (void)call(DirectExports());
        return CallRecorder::stop();
    }

    DataFolder data;
    ReplacedServices services;
    Sql sql{data.databasePath()};

private:
    /// A fresh database. It is made once: that takes longer than everything else that these tests do.
    void givenDatabase() const
    {
        static const std::string fresh = [this] {
            TheModule().start();
            TheModule().end();
            std::ostringstream bytes;
            bytes << std::ifstream(data.databasePath(), std::ios::binary).rdbuf();
            return bytes.str();
        }();
        std::filesystem::create_directories(data.databaseFolder());
        std::ofstream(data.databasePath(), std::ios::binary) << fresh;
    }
};

class EachStatement : public Statements, public ::testing::WithParamInterface<CallCase> {
protected:
    EachStatement()
    {
        if (!GetParam().given.empty()) {
            sql.exec(Complete(GetParam().given));
        }
    }
};

INSTANTIATE_TEST_SUITE_P(, EachStatement, ::testing::ValuesIn(AllCases()), [](const auto& tested) {
    std::string name = tested.param.name;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
});

TEST_P(EachStatement, Call_UnderTheLock_IsReceivedToTheCharacter)
{
    const std::string name = ExportOf(GetParam());
    std::vector<std::string> expected;
    for (const std::string& statement : GetParam().statements) {
        expected.push_back(Complete(statement));
    }
    if (!TakesNoLock(name)) {
        expected.insert(expected.begin(), "lock");
        expected.emplace_back("unlock");
    }
    const std::vector<std::string> events = recorded(GetParam().call);
    EXPECT_THAT(WithoutLines(events), ElementsAreArray(expected));
    if (TakesNoLock(name)) {
        return;
    }
    ASSERT_GE(events.size(), 2u);
    const size_t entry = IsThin(name) ? 0 : 1;
    EXPECT_EQ(events[entry].substr(0, events[entry].find('(')), std::string(kLine) + "Enter " + name);
    EXPECT_EQ(events[1 - entry], "lock");
    if (!IsThin(name)) {
        EXPECT_EQ(events.back(), "unlock");  // behind the exit line
    }
}

/// Compiled statements with their values bound are those that the texts would be. A parameter of the text itself shows
/// as the caller's value.
TEST_P(EachStatement, Call_StatementsThatStayCompiled_AreTheSame)
{
    if (ExportOf(GetParam()) == "DB_Open") {
        GTEST_SKIP() << "runs no statement of its own";
    }
    statementsStayCompiled = true;
    const std::vector<std::string> received = WithoutLines(recorded(GetParam().call));
    std::vector<std::string> statements;
    for (const std::string& event : received) {
        if (event != "lock" && event != "unlock") {
            statements.push_back(event);
        }
    }
    std::vector<std::string> expected;
    for (const std::string& statement : GetParam().statements) {
        if (statement != "lock" && statement != "unlock") {
            expected.push_back(Complete(statement));
        }
    }
    ASSERT_EQ(statements.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        const size_t value = expected[i].find('?');
        const size_t parameter = statements[i].find(" ?");
        if (value == std::string::npos && parameter != std::string::npos) {
            // It does not compile: nothing was bound.
            EXPECT_THAT(expected[i], StartsWith(statements[i].substr(0, parameter)));
        } else if (value == std::string::npos) {
            EXPECT_EQ(statements[i], expected[i]);
        } else {
            EXPECT_THAT(statements[i],
                        AllOf(StartsWith(expected[i].substr(0, value)), EndsWith(expected[i].substr(value + 1))));
        }
    }
}

/// Truth values included.
TEST_P(EachStatement, Call_WithoutMemoryForTheText_TakesTheExceptionWay)
{
    const std::string name = ExportOf(GetParam());
    if (name == "DB_Open" || TakesNoLock(name)) {
        return;  // these make none
    }
    CallRecorder::withholdBufferAfter(0);
    const int32_t result = GetParam().call(DirectExports());
    CallRecorder::withholdBufferAfter(-1);
    const std::vector<std::string> lines = ReplacedServices::take();
    const auto tellsException = [](const std::string& line) {
        return line.starts_with("DB TRACE >> An exception occured in DB_");
    };
    const int routines = name.starts_with("DB_GALLERY_") ? 2 : 1;  // one for pictures and one for videos
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), tellsException), routines);
    EXPECT_EQ(result, name.starts_with("DB_GALLERY_Set") ? 2 : 1);
    EXPECT_EQ(DB_LIB_SetSDType(Imei(), 1, 1), 0);
}

TEST(Cases, EveryExport_HasOne)
{
    std::set<std::string> listed;
#define KESTA_EXPORT(name, ordinal) listed.insert(#name);
#include "support/export_list.inc"
#undef KESTA_EXPORT
    std::set<std::string> tested;
    for (const CallCase& each : AllCases()) {
        tested.insert(ExportOf(each));
    }
    EXPECT_EQ(tested, listed);
    EXPECT_EQ(listed.size(), 125u);
}

TEST_F(Statements, SameCallAgain_IsReceivedAgain)
{
    const auto call = [](const Exports& lib) { return lib.DB_MUSIC_SetFolderSelected(Imei(), W("P"), 7); };
    const std::vector<std::string> first = WithoutLines(recorded(call));
    EXPECT_EQ(first.size(), 4u);
    EXPECT_EQ(WithoutLines(recorded(call)), first);
}

TEST_F(Statements, AddPlaylist_EachStatement_IsTracedAsItIsReceived)
{
    const std::vector<std::string> events = recorded([](const Exports& lib) {
        const Playlist list("L''§", "D''§");
        return lib.DB_PLAYERMUSIC_AddPlaylist(Imei(), &list);
    });
    int traced = 0;
    for (size_t i = 0; i + 1 < events.size(); ++i) {
        const std::string front = std::string(kLine) + "Information in DB_PLAYERMUSIC_AddPlaylist(), Exec SQL: ";
        if (!events[i].starts_with(front)) {
            continue;
        }
        EXPECT_EQ(events[i], front + events[i + 1] + ".\n");
        ++traced;
    }
    EXPECT_EQ(traced, 4);
}

TEST_F(Statements, ModuleEnd_ConnectionAndBuffer_ClosesBeforeItFrees)
{
    CallRecorder::start();
    TheModule().end();
    std::vector<std::string> events = CallRecorder::stop();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0], "close");
    EXPECT_THAT(events[1], AllOf(StartsWith("DB TRACE >> Memory "), EndsWith(" DELETE.\n")));
}

TEST_F(Statements, ModuleStart_StartedAlready_KeepsBufferAndConnection)
{
    CallRecorder::start();
    TheModule().start();
    EXPECT_THAT(CallRecorder::stop(), ElementsAre("lock", "DB TRACE >> Enter DB_Open().\n",
                                                  "DB TRACE >> Exit DB_Open() with 0.\n", "unlock"));
}

TEST_F(Statements, ModuleStart_NoFile_WritesTheFirstRowsInThisOrder)
{
    TheModule().end();
    std::filesystem::remove(data.databasePath());
    CallRecorder::start();
    TheModule().start();
    std::vector<std::string> events = CallRecorder::stop();
    std::erase_if(events, [](const std::string& event) { return !event.starts_with("INSERT "); });
    EXPECT_THAT(events, ::testing::ElementsAre("INSERT INTO tVersion VALUES (5005)",
                                               "INSERT INTO tLibMainFolder VALUES (1000, 'music', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (1100, 'gallery', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (1400, 'document', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (1500, 'people', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (1600, 'calendar', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (1900, 'web bookmark', 0, 0, '')",
                                               "INSERT INTO tLibMainFolder VALUES (2200, 'Map', 0, 0, '')"));
}

/// Of the first rows only the last one counts.
TEST_F(Statements, ModuleStart_FirstRowsFail_GivesTheCodeOfTheLast)
{
    const auto lastLineWithout = [this](const char* statement) {
        TheModule().end();
        std::filesystem::remove(data.databasePath());
        ReplacedServices::take();
        CallRecorder::refuse(statement, 13);
        TheModule().start();
        CallRecorder::refuse("", 0);
        return ReplacedServices::take().back();
    };
    EXPECT_EQ(lastLineWithout("INSERT INTO tLibMainFolder VALUES (1900, 'web bookmark', 0, 0, '')"),
              "DB TRACE >> Exit DB_Open() with 0.\n");
    EXPECT_EQ(lastLineWithout("INSERT INTO tLibMainFolder VALUES (2200, 'Map', 0, 0, '')"),
              "DB TRACE >> Exit DB_Open() with 13.\n");
}

TEST_F(Statements, ModuleEnd_ThreadInsideACall_LeavesEverythingToIt)
{
    TheModule().enterCall();
    CallRecorder::start();
    TheModule().end();
    EXPECT_THAT(CallRecorder::stop(), ::testing::IsEmpty());
    EXPECT_EQ(DB_LIB_SetSDType(Imei(), 1, 1), 0);
    TheModule().leaveCall();
}

/// The result after an exception is the code of the last attempt, and 1 before the first.
TEST_F(Statements, AddPlaylist_ExceptionInEachStep_GivesTheCodeOfTheStepBefore)
{
    // Each step fails with a code of its own: a constraint, a value too big, a missing column.
    sql.exec(
        "CREATE TRIGGER t1 BEFORE UPDATE OF [Flag] ON tPFolder WHEN NEW.[Flag] = 0 BEGIN SELECT RAISE(ABORT, ''); END;"
        "CREATE TRIGGER t2 BEFORE UPDATE OF [Flag] ON tPFolder WHEN NEW.[Flag] = 1 BEGIN SELECT zeroblob(1 << 40); END;"
        "CREATE TRIGGER t3 BEFORE UPDATE OF [Digest] ON tPFolder WHEN NEW.[Flag] = 3 BEGIN SELECT abs(-1 << 63); END;"
        "INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [IdInPhone], [AddTime]) VALUES (1, 'on', 3, 'P:/', ''), "
        "(1, 'off', 3, NULL, '')");
    const auto add = [](const char* name, int statements) {
        CallRecorder::withholdBufferAfter(statements);
        const Playlist list(name);
        const int32_t result = DB_PLAYERMUSIC_AddPlaylist(Imei(), &list);
        CallRecorder::withholdBufferAfter(-1);
        const std::vector<std::string> lines = ReplacedServices::take();
        const std::string exception = "DB TRACE >> An exception occured in DB_PLAYERMUSIC_AddPlaylist().\n";
        EXPECT_EQ(std::count(lines.begin(), lines.end(), exception), 1) << name << statements;
        EXPECT_EQ(lines.back(), "DB TRACE >> Exit DB_PLAYERMUSIC_AddPlaylist() with " + std::to_string(result) + ".\n");
        return result;
    };
    EXPECT_EQ(add("on", 0), 1);   // not even the phone could be looked up
    EXPECT_EQ(add("on", 1), 1);   // before the first step
    EXPECT_EQ(add("on", 2), 19);  // after the first
    EXPECT_EQ(add("on", 3), 0);   // the second found no such record
    EXPECT_EQ(add("off", 2), 0);
    EXPECT_EQ(add("off", 3), 18);  // after the second
    EXPECT_EQ(add("off", 4), 1);   // after the third
}

}  // namespace
}  // namespace kesta::test
