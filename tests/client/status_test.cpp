// What the client tells about the database, and how it takes its arguments.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

using StatusTest = ClientTest;

TEST_F(StatusTest, EmptyDatabase_SaysSoKindly)
{
    const Ended run = client({"status"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("No phone has been synced yet."));
    EXPECT_EQ(nlohmann::json::parse(client({"status", "--json"}).out).at("phones").size(), 0u);
}

TEST_F(StatusTest, UnknownImei_IsAnError)
{
    for (const auto& arguments : {std::vector<std::string>{"status", "--imei", "999"},
                                  {"status", "--imei", "999", "--json"},
                                  {"files", "--imei", "999", "--category", "music"},
                                  {"files", "--imei", "999", "--category", "log", "--json"}}) {
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.err, HasSubstr("no phone with the IMEI 999 is known"));
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(StatusTest, Table_ShowsPhonesFoldersAndStates)
{
    givenFile("Rock/a.mp3", "12345");
    givenFile("Jazz/b.mp3", "12345");
    (void)sync({"--name", "Ann's phone", "--music", pc("Rock"), "--documents", pc("Jazz")});
    const Ended run = client({"status"});
    EXPECT_EQ(run.exitCode, 0);
    for (const char* text : {"Ann's phone (IMEI 351111)", "without errors", "Music", "Documents", "synced"}) {
        EXPECT_THAT(run.out, HasSubstr(text));
    }
    EXPECT_THAT(run.out, HasSubstr(pc("Rock")));
}

TEST_F(StatusTest, Json_HasTheDocumentedKeys)
{
    givenFile("Rock/\u00e4\U0001F600.mp3", "12345");
    (void)sync({"--music", pc("Rock"), "--images", pc("missing")});
    const auto phone = status();
    EXPECT_EQ(phone.at("imei"), kImei);
    EXPECT_TRUE(phone.at("last_sync").is_string());
    EXPECT_EQ(phone.at("last_error").at("code"), 3);
    EXPECT_EQ(phone.at("last_error").at("reason"), "1 item failed");
    EXPECT_EQ(phone.at("settings").at("allow_wifi"), true);
    ASSERT_THAT(phone.at("categories"), SizeIs(4));
    const auto& music = phone.at("categories").at(0);
    EXPECT_EQ(music.at("category"), "music");
    EXPECT_EQ(music.at("files_on_phone"), 1);
    const auto& folder = music.at("folders").at(0);
    EXPECT_EQ(folder.at("path"), pc("Rock"));
    EXPECT_EQ(folder.at("files"), 1);
    EXPECT_EQ(folder.at("size"), 5);
    EXPECT_EQ(folder.at("state"), "synced");
    const auto file = recorded().at(0);
    EXPECT_EQ(file.at("path"), pc("Rock/\u00e4\U0001F600.mp3"));
    EXPECT_EQ(file.at("folder"), pc("Rock"));
    EXPECT_EQ(file.at("phone_path"), "Music/Rock/\u00e4\U0001F600.mp3");
    EXPECT_EQ(file.at("modified"), database().text("SELECT [ModifiedTime] FROM tMFile"));
}

TEST_F(StatusTest, States_AreSaidInWords)
{
    const auto state = [&] { return status().at("categories").at(0).at("folders").at(0).at("state"); };
    fs::create_directories(Path(pc("Rock")));
    (void)sync({"--music", pc("Rock")});
    EXPECT_EQ(state(), "empty");
    database().exec("UPDATE tMFolder SET [Count] = 2");
    EXPECT_EQ(state(), "not synced yet");
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    EXPECT_EQ(state(), "synced");
    database().exec("UPDATE tMFolder SET [Count] = 2");
    EXPECT_EQ(state(), "partly synced");
    database().exec("UPDATE tMFolder SET [Selected] = 0");
    EXPECT_EQ(state(), "not selected");
    database().exec("UPDATE tMFolder SET [Deleted] = 1");
    EXPECT_EQ(state(), "gone from the PC");
}

TEST_F(StatusTest, ErrorOfARunByAnotherProgram_IsUnknown)
{
    (void)meet();
    EXPECT_EQ(status().at("last_error").at("code"), 0);
    database().exec("UPDATE tPhone SET [LastTime] = '2020-02-02 02:02:02', [ErrCode] = 77");
    EXPECT_EQ(status().at("last_sync"), "2020-02-02 02:02:02");
    EXPECT_TRUE(status().at("last_error").is_null());
}

TEST_F(StatusTest, DamagedNoteOfTheLastRun_MeansThatItsErrorIsUnknown)
{
    (void)meet();
    const std::string start = R"({"imei": "351111", "time": ")" + status().at("last_sync").get<std::string>() + '"';
    for (const std::string& text :
         {std::string(R"({"imei": 351111})"), start + '}', start + R"(, "code": "0", "reason": ""})",
          start + R"(, "code": 0, "reason": 7})", std::string("[]"), start}) {
        std::ofstream(note("351111.json"), std::ios::binary) << text;
        EXPECT_TRUE(status().at("last_error").is_null()) << text;
    }
    std::ofstream(note("351111.json"), std::ios::binary) << start + R"(, "code": 5, "reason": "why"})";
    EXPECT_EQ(status().at("last_error").at("code"), 5);
}

TEST_F(StatusTest, Files_CanBeLimitedToAFolder)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Jazz/b.mp3", "second");
    (void)sync({"--music", pc("Rock"), "--music", pc("Jazz")});
    const Ended run =
        client({"files", "--imei", kImei, "--category", "music", "--folder", pc("Rock/../Jazz"), "--json"});
    const auto files = nlohmann::json::parse(run.out).at("files");
    ASSERT_THAT(files, SizeIs(1));
    EXPECT_EQ(files.at(0).at("phone_path"), "Music/Jazz/b.mp3");
    const Ended table = client({"files", "--imei", kImei, "--category", "music"});
    EXPECT_THAT(table.out, HasSubstr("Music/Rock/a.mp3"));
    EXPECT_THAT(table.out, HasSubstr("2 files"));
    EXPECT_THAT(client({"files", "--imei", kImei, "--category", "videos"}).out, HasSubstr("Nothing is recorded here."));
}

TEST_F(StatusTest, Help_HasExamplesAndExitCodes)
{
    EXPECT_EQ(client({"--help"}).exitCode, 0);
    for (const char* command : {"sync", "status", "files", "why", "settings", "trace"}) {
        const Ended run = client({command, "--help"});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_THAT(run.out, HasSubstr("Examples:\n  kesta " + std::string(command)));
        EXPECT_THAT(run.out, HasSubstr("130  interrupted"));
    }
}

TEST_F(StatusTest, MistakesOnTheCommandLine_AreUsageErrors)
{
    for (const auto& arguments : {std::vector<std::string>{},
                                  {"dance"},
                                  {"sync", "--phone", phone(), "stray"},
                                  {"files", "--imei", "1", "--category", "songs"},
                                  {"files", "--category", "music"},
                                  {"settings", "auto_sync=yes"},
                                  {"settings", "--imei", "1", "--select"},
                                  {"why"}}) {
        const Ended run = client(arguments);
        EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(run.err, HasSubstr("Try kesta --help"));
    }
}

#if defined(_WIN32)
TEST_F(StatusTest, Trace_NamesTheWayOnWindows)
{
    const Ended run = client({"trace"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("debug output viewer"));
}
#endif

}  // namespace
}  // namespace kesta::test
