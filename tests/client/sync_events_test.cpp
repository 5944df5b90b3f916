// What a sync tells to programs, and what it adds to a log.
#include <regex>
#include <sstream>

#include "client_fixture.h"

namespace kesta::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class SyncEvents : public ClientTest {
protected:
    // Each line is an object of its own.
    static std::vector<json> eventsOf(const Ended& run)
    {
        std::vector<json> events;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);) {
            events.push_back(json::parse(line));
        }
        return events;
    }

    static std::vector<json> eventsOf(const Ended& run, const std::string& name)
    {
        std::vector<json> events = eventsOf(run);
        std::erase_if(events, [&](const json& event) { return event.at("event") != name; });
        return events;
    }
};

TEST_F(SyncEvents, Json_HasALineForEachFileAndASummaryLast)
{
    givenFile("Rock/a.mp3", "12345");
    givenFile("Rock/b.mp3", "1");
    const Ended run = sync({"--music", pc("Rock"), "--json"});
    EXPECT_EQ(run.exitCode, 0);
    const std::vector<json> files = eventsOf(run, "file");
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0], (json{{"event", "file"}, {"action", "copied"}, {"path", "Music/Rock/a.mp3"}, {"size", 5}}));
    EXPECT_EQ(eventsOf(run).front().at("event"), "phone");
    const json summary = eventsOf(run).back();
    EXPECT_EQ(summary.at("event"), "summary");
    EXPECT_EQ(summary.at("exit_code"), 0);
    EXPECT_EQ(summary.at("files").at("added"), 2);
    EXPECT_EQ(summary.at("bytes"), 6);
    EXPECT_EQ(summary.at("stopped"), nullptr);
}

TEST_F(SyncEvents, JsonOfADryRun_TellsWhatWouldBeDone)
{
    givenFile("Rock/a.mp3", "12345");
    const Ended run = sync({"--music", pc("Rock"), "--json", "--dry-run"});
    ASSERT_EQ(eventsOf(run, "file").size(), 1u);
    EXPECT_EQ(eventsOf(run, "file")[0].at("action"), "copy");
    EXPECT_EQ(eventsOf(run).back().at("dry_run"), true);
}

TEST_F(SyncEvents, JsonOfFailures_HasThemAsEvents)
{
    givenFile("Rock/a.mp3", "12345");
    const Ended run = sync({"--music", pc("Rock"), "--music", pc("Missing"), "--json"});
    EXPECT_EQ(run.exitCode, 3);
    ASSERT_EQ(eventsOf(run, "failed").size(), 1u);
    EXPECT_EQ(eventsOf(run, "failed")[0].at("path"), Utf8(Path(pc("Missing"))));
    EXPECT_EQ(eventsOf(run).back().at("failed"), 1);
    EXPECT_EQ(eventsOf(run).back().at("exit_code"), 3);
}

TEST_F(SyncEvents, JsonOfARunThatCannotBegin_IsASummary)
{
    const Ended run = client({"sync", "--phone", phone("nowhere"), "--music", pc(), "--json"});
    EXPECT_NE(run.exitCode, 0);
    const std::vector<json> events = eventsOf(run);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].at("event"), "summary");
    EXPECT_EQ(events[0].at("exit_code"), run.exitCode);
    EXPECT_THAT(events[0].at("stopped").get<std::string>(), HasSubstr("nowhere"));
}

TEST_F(SyncEvents, Log_IsAddedToByEveryRun)
{
    givenFile("Rock/a.mp3", "12345");
    givenFile("log.txt", "mine\n");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--log", pc("log.txt"), "--quiet"}).exitCode, 0);
    givenFile("Rock/b.mp3", "12345");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--log", pc("log.txt"), "--json"}).exitCode, 0);
    std::ifstream file(Path(pc("log.txt")));
    std::ostringstream read;
    read << file.rdbuf();
    const std::string log = read.str();
    EXPECT_THAT(log, testing::StartsWith("mine\n"));
    const std::regex copied(R"(\n20\d\d-\d\d-\d\d \d\d:\d\d:\d\d  copied    Music/Rock/a\.mp3\n)");
    EXPECT_TRUE(std::regex_search(log, copied)) << log;
    EXPECT_THAT(log, HasSubstr("  copied    Music/Rock/b.mp3"));
    EXPECT_THAT(log, HasSubstr("  Summary: 1 copied, 0 updated, 0 removed, 1 unchanged"));
}

TEST_F(SyncEvents, LogThatCannotBeOpened_StopsBeforeAnythingIsDone)
{
    givenFile("Rock/a.mp3", "12345");
    const Ended run = sync({"--music", pc("Rock"), "--log", pc("no/such/log")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("log"));
    EXPECT_FALSE(fs::exists(Path(phone("Music"))));
}

}  // namespace
}  // namespace kesta::test
