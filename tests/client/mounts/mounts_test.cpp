// Syncs over mounts that refuse what disks allow, as phones do.
#include <csignal>
#include <memory>
#include <sstream>

#include "client_fixture.h"
#include "fault_environment.h"
#include "mounts/phone_mount.h"
#include "pim_samples.h"

namespace kesta::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class MountsTest : public ClientTest {
protected:
    /// False where that cannot be done here.
    [[nodiscard]] bool mountPhone(const std::vector<std::string>& refusals)
    {
        mount_.reset();
        mount_ = std::make_unique<PhoneMount>(work(), refusals);
        return mount_->isThere();
    }
    void unmountPhone() { mount_->unmount(); }
    [[nodiscard]] const PhoneMount& mount() const { return *mount_; }

    [[nodiscard]] std::vector<std::string> everything() const
    {
        return {"--music",     pc("Rock"),   "--playlists", pc("Lists"),
                "--bookmarks", pc("b.html"), "--contacts",  pc("friends.vcf")};
    }
    void givenEverything()
    {
        for (const char* name : {"a.mp3", "b.mp3", "c.mp3", "Live/d.mp3", "e.mp3", "f.mp3"}) {
            givenFile(std::string("Rock/") + name, std::string("the song ") + name);
        }
        givenFile("Rock/long.mp3", std::string(300'000, 'l'));
        givenFile("Lists/Mix.m3u8", "../Rock/a.mp3\n../Rock/b.mp3\n");
        givenFile("b.html",
                  "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><A HREF=\"https://a.example/\">A</A>\n"
                  "</DL><p>\n");
        givenFile("friends.vcf", CardText("1", "Ann") + CardText("2", "Bob"));
    }
    [[nodiscard]] Ended syncEverything(const Environment& environment = {}) { return sync(everything(), environment); }
    /// Of the media, by their phone paths.
    void expectMediaAsOnPc()
    {
        const auto onPhone = phoneFiles();
        size_t count = 0;
        for (const auto& row : recorded()) {
            const auto path = row.at("phone_path").get<std::string>();
            ASSERT_TRUE(onPhone.contains(path)) << path;
            std::ifstream source(Path(row.at("path").get<std::string>()), std::ios::binary);
            std::ostringstream read;
            read << source.rdbuf();
            EXPECT_EQ(onPhone.at(path), read.str()) << path;
            ++count;
        }
        const auto of = fs::recursive_directory_iterator(Path(pc("Rock")));
        const auto files = std::count_if(begin(of), end(of), [](const auto& entry) { return entry.is_regular_file(); });
        EXPECT_EQ(count, static_cast<size_t>(files));
        EXPECT_THAT(ownFiles(), IsEmpty());
    }

private:
    std::unique_ptr<PhoneMount> mount_;
};

class RefusingMountTest : public MountsTest, public testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(RefusingMountTest, AllFamilies_AreSyncedAndNothingIsLost)
{
    if (!mountPhone(GetParam())) {
        GTEST_SKIP() << mount().problem();
    }
    givenEverything();
    const Ended first = syncEverything();
    EXPECT_EQ(first.exitCode, 0) << first.out << first.err;
    unmountPhone();
    expectMediaAsOnPc();
    EXPECT_THAT(phoneFiles(), Contains(testing::Key("Playlists/Mix.m3u8")));
    EXPECT_THAT(phoneFiles(), Contains(testing::Key("Bookmarks/bookmarks.html")));
    EXPECT_THAT(phoneFiles(), Contains(testing::Key("Contacts/friends.vcf")));

    std::ofstream(Path(phone("Music/Rock/Live/mine.txt"))) << "the user's own";
    std::ofstream(Path(phone("Music/Rock/c.mp3"))) << "changed on the phone, and longer";
    changeFile("Rock/a.mp3", "another song a");
    givenFile("Rock/new.mp3", "a new song");
    removeFile("Rock/b.mp3");
    removeFile("Rock/Live/d.mp3");
    givenFile("Lists/Mix.m3u8", "../Rock/a.mp3\n../Rock/new.mp3\n");
    givenFile("friends.vcf", CardText("1", "Anne") + CardText("2", "Bob"));
    ASSERT_TRUE(mountPhone(GetParam()));
    const Ended second = syncEverything();
    EXPECT_EQ(second.exitCode, 0) << second.out << second.err;
    EXPECT_THAT(second.out, HasSubstr("1 copied, 2 updated, 2 removed, 3 unchanged"));
    unmountPhone();
    const auto files = phoneFiles();
    EXPECT_THAT(files, Contains(Pair("Music/Rock/Live/mine.txt", "the user's own")));
    EXPECT_THAT(files, Contains(Pair("Music/Rock/c (changed on the phone).mp3", "changed on the phone, and longer")));
    EXPECT_THAT(files, Contains(Pair("Music/Rock/a.mp3", "another song a")));
    EXPECT_THAT(files.at("Contacts/friends.vcf"), HasSubstr("Anne"));
    EXPECT_FALSE(files.contains("Music/Rock/b.mp3"));
    const auto trashed = trash();
    EXPECT_THAT(trashed, Contains(Pair("Music/Rock/a.mp3", "the song a.mp3")));
    EXPECT_THAT(trashed, Contains(Pair("Music/Rock/b.mp3", "the song b.mp3")));
    EXPECT_THAT(trashed, Contains(Pair("Music/Rock/Live/d.mp3", "the song Live/d.mp3")));
    expectMediaAsOnPc();

    ASSERT_TRUE(mountPhone(GetParam()));
    const Ended third = syncEverything();
    EXPECT_EQ(third.exitCode, 0) << third.out << third.err;
    EXPECT_THAT(third.out, HasSubstr("0 copied, 0 updated, 0 removed, 6 unchanged"));
    const Ended restored = client({"restore", "--phone", phone(), "Music/Rock/b.mp3"});
    EXPECT_EQ(restored.exitCode, 0) << restored.out << restored.err;
    unmountPhone();
    EXPECT_THAT(phoneFiles(), Contains(Pair("Music/Rock/b.mp3", "the song b.mp3")));
    EXPECT_THAT(ownFiles(), IsEmpty());
}

std::string NameOfRefusals(const testing::TestParamInfo<std::vector<std::string>>& info)
{
    std::string name = info.param.size() > 1 ? "All" : info.param.front();
    std::erase(name, '-');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Each, RefusingMountTest,
                         testing::Values(std::vector<std::string>{"rename"}, std::vector<std::string>{"replace"},
                                         std::vector<std::string>{"times"}, std::vector<std::string>{"ignored-times"},
                                         std::vector<std::string>{"late-times"}, std::vector<std::string>{"read-back"},
                                         std::vector<std::string>{"rmdir"}, std::vector<std::string>{"short-writes"},
                                         std::vector<std::string>{"rename", "replace", "times", "read-back", "rmdir",
                                                                  "short-writes"}),
                         NameOfRefusals);

TEST_F(MountsTest, TimesThatTheDriverForgets_AreSetAgain)
{
    if (!mountPhone({"late-times"})) {
        GTEST_SKIP() << mount().problem();
    }
    givenEverything();
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, testing::Not(HasSubstr("did not take the modification time")));
    unmountPhone();
    expectInOrder();
}

TEST_F(MountsTest, TimesThatAreTakenAndNotKept_AreNoticed)
{
    if (!mountPhone({"ignored-times"})) {
        GTEST_SKIP() << mount().problem();
    }
    givenFile("Rock/a", "a");
    fs::last_write_time(Path(pc("Rock/a")), fs::file_time_type::clock::now() - std::chrono::hours(1000));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("did not take the modification time of 1 file"));
}

TEST_F(MountsTest, WhatTheMountLetsBeDone_IsTriedOutOnceAndKept)
{
    if (!mountPhone({"rename", "times"})) {
        GTEST_SKIP() << mount().problem();
    }
    givenFile("Rock/a", "a");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("this phone does not let files be renamed"));
    const int tries = mount().countCalls("create /.kesta-probe");
    EXPECT_GT(tries, 0);
    const int renames = mount().countCalls("rename");
    std::ifstream state(note("mount of 351111.json"));
    const auto kept = nlohmann::json::parse(state, nullptr, false);
    EXPECT_EQ(kept["renames"], false);
    EXPECT_EQ(kept["replaces"], false);
    EXPECT_EQ(kept["keeps_times"], false);
    EXPECT_EQ(kept["reads_back"], true);
    givenFile("Rock/b", "b");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(mount().countCalls("create /.kesta-probe"), tries);
    EXPECT_EQ(mount().countCalls("rename"), renames) << "it was known not to rename";
}

TEST_F(MountsTest, MountThatNoLongerRenames_IsWrittenInPlace)
{
    givenFile("Rock/a", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    if (!mountPhone({"rename"})) {
        GTEST_SKIP() << mount().problem();
    }
    // As if this mount had been tried out before.
    givenFile("Rock/b", "b");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    std::ifstream before(note("mount of 351111.json"));
    auto state = nlohmann::json::parse(before, nullptr, false);
    state["renames"] = state["replaces"] = true;
    std::ofstream(note("mount of 351111.json")) << state;
    givenFile("Rock/c", "c");
    changeFile("Rock/a", "another a");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("1 copied, 1 updated, 0 removed, 1 unchanged, 0 failed"));
    std::ifstream after(note("mount of 351111.json"));
    EXPECT_EQ(nlohmann::json::parse(after, nullptr, false)["renames"], false);
    unmountPhone();
    expectInOrder();
}

TEST_F(MountsTest, EndThatIsLost_IsAFailureAndLeavesWhatWasThere)
{
    givenFile("Rock/a", "the song a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const auto before = phoneFiles();
    changeFile("Rock/a", "another song a");
    givenFile("Rock/b", "the song b");
    if (!mountPhone({"lost-end"})) {
        GTEST_SKIP() << mount().problem();
    }
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("the phone has kept"));
    unmountPhone();
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

TEST_F(MountsTest, MountThatDies_EndsTheRunAtTheFirstFile)
{
    for (int i = 0; i < 20; ++i) {
        givenFile("Rock/" + std::to_string(i), "song " + std::to_string(i));
    }
    for (const std::vector<std::string>& refusals : {std::vector<std::string>{}, {"rename"}}) {
        for (const int call : {1, 12, 25, 38, 51}) {
            SCOPED_TRACE(std::to_string(refusals.size()) + " refusals, dies at call " + std::to_string(call));
            fs::remove_all(phone());
            fs::create_directories(phone());
            fs::remove_all(data().applicationData() / "NORVIK");
            auto dying = refusals;
            dying.push_back("die=" + std::to_string(call));
            if (!mountPhone(dying)) {
                GTEST_SKIP() << mount().problem();
            }
            const Ended run = sync({"--music", pc("Rock")});
            EXPECT_EQ(run.exitCode, 9) << run.out << run.err;
            const std::string failed = run.out.substr(std::min(run.out.size(), run.out.find("Failed:")));
            EXPECT_LE(std::count(failed.begin(), failed.end(), '\n'), 5) << "one failure and the end: " << failed;
            ASSERT_TRUE(mountPhone(refusals));
            const Ended next = sync({"--music", pc("Rock")});
            EXPECT_EQ(next.exitCode, 0) << next.out << next.err;
            unmountPhone();
            expectMediaAsOnPc();
            ASSERT_FALSE(HasFailure()) << run.out << run.err << next.out;
        }
    }
}

TEST_F(MountsTest, KilledWhileFilesAreWrittenInPlace_TheNextRunEndsInOrder)
{
    if (!mountPhone({"rename"})) {
        GTEST_SKIP() << mount().problem();
    }
    const auto name = [](int number) { return "Rock/" + std::to_string(number % 3) + "/" + std::to_string(number); };
    int next = 0;
    for (; next < 12; ++next) {
        givenFile(name(next), "song " + std::to_string(next));
    }
    ASSERT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    int cutShort = 0;
    for (int call = 1; call < 260; call += 3) {
        SCOPED_TRACE("killed at call " + std::to_string(call));
        givenFile(name(next), "song " + std::to_string(next));
        givenFile(name(next + 1), std::string(5000, 'n'));
        changeFile(name(next - 3), "changed at " + std::to_string(call));
        removeFile(name(next - 6));
        next += 2;
        if (call % 2 == 0) {
            removeFile(name(next - 7));
        }
        const Ended killed =
            sync({"--music", pc("Rock"), "--force"}, Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}));
        cutShort += killed.exitCode == -SIGKILL ? 1 : 0;
        const Ended run = sync({"--music", pc("Rock"), "--force"});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectInOrder();
        ASSERT_FALSE(HasFailure()) << killed.out << run.out;
    }
    EXPECT_GT(cutShort, 30);
}

}  // namespace
}  // namespace kesta::test
