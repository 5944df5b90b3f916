// Adding a playlist while another connection keeps the database from being written: ten attempts a statement, with
// pauses that grow. The pauses are noted here, not waited for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "core/connection.h"
#include "core/module.h"
#include "kesta_db/kesta_db.h"
#include "platform/services.h"
#include "support/data_folder.h"
#include "support/text.h"

namespace kesta {
namespace {

using test::W;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

// What the replaced services note; functions without a state of their own can reach nothing else.
std::vector<uint32_t> pauses;
std::vector<std::string> lines;
std::function<void()> duringPause;

void NotePause(uint32_t milliseconds) noexcept
{
    pauses.push_back(milliseconds);
    if (duringPause) {
        duringPause();
    }
}

void NoteLine(const DbChar* line, size_t /*length*/) noexcept
{
    lines.push_back(test::Utf8(line));
}

const std::vector<uint32_t> kPausesOfAStep = {567, 690, 813, 936, 1059, 1182, 1305, 1428, 1551, 1674};

class PlaylistsBusy : public ::testing::Test {
protected:
    PlaylistsBusy()
    {
        pauses.clear();
        lines.clear();
        duringPause = nullptr;
        TheModule().start();
        EXPECT_EQ(DB_LIB_PhoneDetected(W("351111"), W("phone")), 1);
        platform::services.sleep = &NotePause;
        platform::services.traceIsRead = []() noexcept { return true; };
        platform::services.memoryIsRead = []() noexcept { return true; };
        platform::services.writeTraceLine = &NoteLine;
        const std::u8string path = data_.databasePath().u8string();
        EXPECT_EQ(sqlite3_open(reinterpret_cast<const char*>(path.c_str()), &other_), SQLITE_OK);
    }
    ~PlaylistsBusy() override
    {
        sqlite3_close(other_);
        platform::services = original_;
        TheModule().end();
    }

    void run(const char* statement) const
    {
        EXPECT_EQ(sqlite3_exec(other_, statement, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(other_);
    }
    /// Reading goes on, nobody else can write.
    void givenWriteLock() const { run("BEGIN IMMEDIATE"); }
    void endWriteLock() const { run("ROLLBACK"); }
    /// The connection anew, without BusyRetry.
    void withoutBusyRetry() const
    {
        TheModule().DbConnection.close();
        const std::u8string path = data_.databasePath().u8string();
        ASSERT_EQ(TheModule().DbConnection.open(reinterpret_cast<const char*>(path.c_str())), SqliteCode::kOk);
    }

    int32_t addPlaylist()
    {
        test::Text name = W("Rock");
        test::Text digest = W("d1");
        PlaylistRecord playlist = {};
        playlist.Name = name.get();
        playlist.Digest = digest.get();
        return DB_PLAYERMUSIC_AddPlaylist(W("351111"), &playlist);
    }

    /// The lines with that part, and how often each came, in order: "part of the line x 3".
    static std::vector<std::string> tally()
    {
        constexpr std::string_view kFront = "DB TRACE >> ";
        std::vector<std::string> tally;
        std::string last;
        int times = 0;
        const auto flush = [&] {
            if (times > 0) {
                tally.push_back(last + " x " + std::to_string(times));
            }
        };
        for (const std::string& line : lines) {
            std::string text = line.substr(kFront.size(), line.size() - kFront.size() - 1);
            if (const size_t sql = text.find("Exec SQL:"); sql != std::string::npos) {
                text.resize(sql + 8);
            }
            if (text == last) {
                ++times;
                continue;
            }
            flush();
            last = text;
            times = 1;
        }
        flush();
        return tally;
    }

private:
    const platform::Services original_ = platform::services;
    test::DataFolder data_;
    sqlite3* other_ = nullptr;
};

std::string Line(const std::string& kind, const std::string& text, int times = 1)
{
    return kind + " in DB_PLAYERMUSIC_AddPlaylist(), " + text + " x " + std::to_string(times);
}

TEST_F(PlaylistsBusy, AddPlaylist_BusyAllTheTime_TriesEveryStatementTenTimesAndSucceeds)
{
    withoutBusyRetry();
    givenWriteLock();
    EXPECT_EQ(addPlaylist(), 0);
    std::vector<uint32_t> expected;
    for (int step = 0; step < 4; ++step) {
        expected.insert(expected.end(), kPausesOfAStep.begin(), kPausesOfAStep.end());
    }
    EXPECT_THAT(pauses, ElementsAreArray(expected));
    EXPECT_EQ(std::accumulate(kPausesOfAStep.begin(), kPausesOfAStep.end(), 0u), 11205u);
    EXPECT_THAT(
        tally(),
        ElementsAre(
            "Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: Rock, Type: 0). x 1", Line("Information", "Exec SQL"),
            Line("Information", "Busy when update synced record.", 10), Line("Error", "Update synced record failed."),
            Line("Information", "Exec SQL"), Line("Information", "Busy when update unsynced record.", 10),
            Line("Error", "Update unsynced record failed."), Line("Information", "Exec SQL"),
            Line("Information", "Busy when update information.", 10), Line("Error", "Update information failed."),
            Line("Information", "Exec SQL"), Line("Information", "Busy when insert new playlist.", 10),
            Line("Error", "Insert new playlist failed."), "Exit DB_PLAYERMUSIC_AddPlaylist() with 0. x 1"));
}

TEST_F(PlaylistsBusy, AddPlaylist_FreeAfterTheThirdAttempt_GoesOnAtOnce)
{
    withoutBusyRetry();
    givenWriteLock();
    duringPause = [this] {
        EXPECT_THAT(lines.back(), HasSubstr("Busy when update synced record."));  // the line comes first
        if (pauses.size() == 3) {
            endWriteLock();
        }
    };
    EXPECT_EQ(addPlaylist(), 0);
    EXPECT_THAT(pauses, ElementsAre(567, 690, 813));
    EXPECT_THAT(
        tally(),
        ElementsAre("Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: Rock, Type: 0). x 1",
                    Line("Information", "Exec SQL"), Line("Information", "Busy when update synced record.", 3),
                    Line("Information", "Updated synced record."), Line("Information", "Exec SQL"),
                    Line("Information", "Updated unsynced record."), Line("Information", "Exec SQL"),
                    Line("Information", "Updated information."), Line("Information", "Exec SQL"),
                    Line("Information", "New playlist inserted."), "Exit DB_PLAYERMUSIC_AddPlaylist() with 0. x 1"));
}

TEST_F(PlaylistsBusy, AddPlaylist_FreeDuringTheLastPause_HasGivenUpTheStepAndDoesTheRest)
{
    withoutBusyRetry();
    givenWriteLock();
    duringPause = [this] {
        if (pauses.size() == 10) {
            endWriteLock();
        }
    };
    EXPECT_EQ(addPlaylist(), 0);
    EXPECT_THAT(pauses, ElementsAreArray(kPausesOfAStep));
    EXPECT_THAT(
        tally(),
        ElementsAre("Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: Rock, Type: 0). x 1",
                    Line("Information", "Exec SQL"), Line("Information", "Busy when update synced record.", 10),
                    Line("Error", "Update synced record failed."), Line("Information", "Exec SQL"),
                    Line("Information", "Updated unsynced record."), Line("Information", "Exec SQL"),
                    Line("Information", "Updated information."), Line("Information", "Exec SQL"),
                    Line("Information", "New playlist inserted."), "Exit DB_PLAYERMUSIC_AddPlaylist() with 0. x 1"));
}

TEST_F(PlaylistsBusy, AddPlaylist_OtherErrorAfterABusyAttempt_GivesUpTheStepAtOnce)
{
    withoutBusyRetry();
    givenWriteLock();
    duringPause = [this] {
        endWriteLock();
        run("DROP VIEW vPFolder; ALTER TABLE tPFolder RENAME TO elsewhere");
    };
    EXPECT_EQ(addPlaylist(), 0);
    EXPECT_THAT(pauses, ElementsAre(567));
    EXPECT_THAT(
        tally(),
        ElementsAre("Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: Rock, Type: 0). x 1",
                    Line("Information", "Exec SQL"), Line("Information", "Busy when update synced record."),
                    Line("Information", "Not synced record or error."), Line("Error", "Update synced record failed."),
                    Line("Information", "Exec SQL"), Line("Information", "Not unsynced record or error."),
                    Line("Error", "Update unsynced record failed."), Line("Information", "Exec SQL"),
                    Line("Information", "Update information error."), Line("Error", "Update information failed."),
                    Line("Information", "Exec SQL"), Line("Information", "Not new playlist or error."),
                    Line("Error", "Insert new playlist failed."), "Exit DB_PLAYERMUSIC_AddPlaylist() with 0. x 1"));
}

/// The connection's own patience comes first: 101 rounds of 100 ms within every attempt.
TEST_F(PlaylistsBusy, AddPlaylist_WithTheConnectionsOwnRetry_WaitsOnTopOfIt)
{
    givenWriteLock();
    EXPECT_EQ(addPlaylist(), 0);
    std::vector<uint32_t> expected;
    for (int step = 0; step < 4; ++step) {
        for (const uint32_t pause : kPausesOfAStep) {
            expected.insert(expected.end(), 101, 100);
            expected.push_back(pause);
        }
    }
    EXPECT_EQ(pauses, expected);
    EXPECT_THAT(
        std::vector<std::string>(lines.begin() + 1, lines.begin() + 3),
        ElementsAre(::testing::HasSubstr("Exec SQL: UPDATE tPFolder"), "DB TRACE >> Database busy, try again.\n"));
    EXPECT_EQ(lines[103], "DB TRACE >> Database busy, failed.\n");
    EXPECT_EQ(lines[104], "DB TRACE >> Information in DB_PLAYERMUSIC_AddPlaylist(), Busy when update synced record.\n");
}

}  // namespace
}  // namespace kesta
