// Killed at random moments and started again. KESTA_KILL_ROUNDS: how often in each test, for a long run.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>

#include "formats/bookmarks.h"
#include "pim_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;

class SyncKillTest : public PimTest {
protected:
    static int rounds(int usual)
    {
        const char* asked = std::getenv("KESTA_KILL_ROUNDS");
        return asked != nullptr ? std::atoi(asked) : usual;
    }
    // The first run, whose length tells when the others are to die.
    void givenFirstRun(const std::vector<std::string>& arguments)
    {
        const auto before = std::chrono::steady_clock::now();
        const Ended run = client(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        longest_ = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - before);
    }
    void killAtRandom(const std::vector<std::string>& arguments)
    {
        ClientProcess process(work(), arguments);
        std::this_thread::sleep_for(std::chrono::microseconds(random_() % static_cast<unsigned>(longest_.count())));
        if (process.hasEnded()) {
            longest_ = longest_ * 2 / 3 + std::chrono::microseconds(1);  // The machine has become faster meanwhile.
        } else {
            ++cutShort_;
        }
        process.kill();
        (void)process.wait();
    }
    void expectKills(int rounds) const
    {
        std::cout << cutShort_ << " of " << rounds << " runs killed before their end\n";
        EXPECT_GT(cutShort_ * 3, rounds) << "the test itself came too late";
    }

    static std::string name(int number) { return "Rock/" + std::to_string(number % 7) + "/f" + std::to_string(number); }
    // Some new, some changed, some gone, some moved: about as much work as the first time.
    void changeMusic(int round)
    {
        const std::string now = std::to_string(round);
        for (int i = 0; i < 20; ++i) {
            givenFile(name(nextFile_++), "new in round " + now);
        }
        for (int i = nextFile_ - 40; i < nextFile_ - 25; ++i) {
            if (fs::exists(Path(pc(name(i))))) {
                changeFile(name(i), "changed in round " + now);
            }
        }
        for (int i = nextFile_ - 80; i < nextFile_ - 60; ++i) {
            (void)fs::remove(Path(pc(name(i))));
        }
        for (int i = nextFile_ - 60; i < nextFile_ - 50; ++i) {
            if (fs::exists(Path(pc(name(i))))) {
                fs::rename(Path(pc(name(i))), Path(pc(name(i) + " moved in round " + now)));
            }
        }
    }
    void givenMusic(int files)
    {
        for (nextFile_ = 0; nextFile_ < files; ++nextFile_) {
            givenFile(name(nextFile_), "contents of " + std::to_string(nextFile_));
        }
    }

    void changePim()
    {
        for (int i = 0; i < 6; ++i, ++nextEntry_) {
            const std::string number = std::to_string(nextEntry_);
            contacts_["c" + number] = "Name " + number;
            events_["e" + number] = "Event " + number;
        }
        contacts_.begin()->second = "Changed " + std::to_string(nextEntry_);
        if (contacts_.size() > 16) {
            contacts_.erase(std::next(contacts_.begin()));
        }
        if (events_.size() > 16) {
            events_.erase(events_.begin());
        }
        givenFile("Friends.vcf", CardsText(contacts_));
        givenFile("cal.ics", CalendarText("Work", events_));
    }
    void expectPimInOrder()
    {
        EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), contacts_);
        EXPECT_EQ(eventsIn("Calendar/Work.ics"), events_);
        expectDatabaseInOrder(contacts_, events_);
    }

    // A list that grows, one that comes and goes, and one that is always another; each with music of its own.
    void changeLists(int round)
    {
        const auto song = [&](int number) {
            const std::string file = "Songs/s" + std::to_string(number) + ".mp3";
            givenFile(file, "song " + std::to_string(number));
            return "../" + file + "\n";
        };
        lists_["Grows"] += song(round);
        lists_["Other"] = song(1000 + round) + song(2000 + round % 3);
        (void)fs::remove(Path(pc("lists/Now and then.m3u8")));
        lists_.erase("Now and then");
        if (round % 2 == 0) {
            lists_["Now and then"] = song(3000 + round % 5) + song(round);
        }
        for (const auto& [list, lines] : lists_) {
            givenFile("lists/" + list + ".m3u8", lines);
        }
    }
    void expectListsInOrder()
    {
        std::set<std::string> places;
        std::string known;
        for (const auto& [list, lines] : lists_) {
            const std::string count = std::to_string(std::count(lines.begin(), lines.end(), '\n'));
            known += (known.empty() ? "" : "\n") + list + "|Playlists/" + list + ".m3u8|" + count;
            EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPFilename WHERE [Listname] = '" + list + "'"), count);
            std::istringstream text(phoneText("Playlists/" + list + ".m3u8"));
            std::string onPhone;
            for (std::string line; std::getline(text, line);) {
                if (line.front() != '#') {
                    const std::string place = "Playlists/" + line;
                    onPhone += "../Songs/" + line.substr(line.rfind('/') + 1) + "\n";
                    ASSERT_TRUE(fs::exists(Path(phone(place)))) << place;
                    EXPECT_EQ("song " + Utf8(Path(line).stem()).substr(1), phoneText(place));
                    places.insert(place);
                }
            }
            EXPECT_EQ(onPhone, lines);
        }
        EXPECT_EQ(database().text("SELECT [Path], [IdInPhone], [Count] FROM tPFolder ORDER BY 1"), known);
        std::string rows;  // Music that two lists share is recorded once.
        for (const std::string& place : places) {
            rows += (rows.empty() ? "" : "\n") + place;
        }
        EXPECT_EQ(database().text("SELECT [PhonePath] FROM tPFile ORDER BY 1"), rows);
        for (const std::string& path : phonePaths()) {
            EXPECT_TRUE(!path.starts_with("Playlists/Media/") || places.contains(path)) << path << " is left over";
        }
    }

    void changeBookmarks(int round)
    {
        bookmarks_.push_back("https://" + std::to_string(round) + ".example/");
        if (bookmarks_.size() > 8) {
            bookmarks_.erase(bookmarks_.begin() + 2);
        }
        std::string text = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n";
        for (const std::string& url : bookmarks_) {
            text += "<DT><A HREF=\"" + url + "\">" + url + " in round " + std::to_string(round / 2) + "</A>\n";
        }
        givenFile("bookmarks.html", text + "</DL><p>\n");
    }
    void expectBookmarksInOrder()
    {
        std::vector<std::string> onPhone;
        for (const formats::Bookmark& one : formats::ParseBookmarks(phoneText("Bookmarks/bookmarks.html")).bookmarks) {
            onPhone.push_back(one.url);
        }
        EXPECT_EQ(onPhone, bookmarks_);
        std::string rows;
        for (const std::string& url : bookmarks_) {
            rows += (rows.empty() ? "" : "\n") + url;
        }
        EXPECT_EQ(database().text("SELECT [Path] FROM tBFile ORDER BY [Id]"), rows);
    }

    static constexpr int kFirstFiles = 60;

private:
    std::mt19937 random_{20260131};
    std::chrono::microseconds longest_{};
    int cutShort_ = 0;
    int nextFile_ = 0, nextEntry_ = 0;
    Entries contacts_, events_;
    std::map<std::string, std::string> lists_;
    std::vector<std::string> bookmarks_;
};

TEST_F(SyncKillTest, Music_EndsInOrder)
{
    const int count = rounds(20);
    const auto arguments = syncArguments({"--music", pc("Rock"), "--force"});
    givenMusic(kFirstFiles);
    givenFirstRun(arguments);
    for (int round = 0; round < count; ++round) {
        changeMusic(round);
        killAtRandom(arguments);
        if (round % 3 != 2) {
            continue;  // Now and then a killed run follows another one.
        }
        const Ended run = client(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectInOrder();
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    expectKills(count);
    EXPECT_EQ(client(arguments).exitCode, 0);
    expectInOrder();
}

TEST_F(SyncKillTest, ContactsAndCalendars_EndInOrder)
{
    const int count = rounds(12);
    const auto arguments = syncArguments({"--contacts", pc("Friends.vcf"), "--calendar", pc("cal.ics")});
    changePim();
    givenFirstRun(arguments);
    for (int round = 0; round < count; ++round) {
        changePim();
        killAtRandom(arguments);
        if (round % 3 == 0) {
            continue;
        }
        const Ended run = client(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        EXPECT_THAT(phonePaths(), ElementsAre("Calendar/Work.ics", "Contacts/Friends.vcf"));
        expectPimInOrder();
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    expectKills(count);
}

TEST_F(SyncKillTest, AllFamilies_EndInOrder)
{
    const int count = rounds(10);
    const auto arguments =
        syncArguments({"--music", pc("Rock"), "--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html"),
                       "--contacts", pc("Friends.vcf"), "--calendar", pc("cal.ics"), "--force"});
    const auto change = [&](int round) {
        changeLists(round);
        changeBookmarks(round);
        changePim();
    };
    givenMusic(kFirstFiles);
    change(0);
    givenFirstRun(arguments);
    for (int round = 1; round <= count; ++round) {
        changeMusic(round);
        change(round);
        killAtRandom(arguments);
        if (round % 3 == 0) {
            continue;
        }
        const Ended run = client(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectInOrder("music", "Music/");
        expectListsInOrder();
        expectBookmarksInOrder();
        expectPimInOrder();
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    expectKills(count);
}

}  // namespace
}  // namespace kesta::test
