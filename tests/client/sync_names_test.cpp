// Names and paths that need care.
#include <algorithm>
#include <set>

#include "client_fixture.h"
#include "os/files.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using SyncNamesTest = ClientTest;

TEST_F(SyncNamesTest, ApostrophesLettersAndEmoji_SurviveEverywhere)
{
    const std::vector<std::string> names{"Rock's/O'Brien's ''.mp3", "Rock's/Größe.mp3",      "Rock's/日本語/曲.mp3",
                                         "Rock's/😀🎵.mp3",           "Rock's/100% %s %d.mp3", "Rock's/[x];--.mp3"};
    for (const std::string& name : names) {
        givenFile(name, name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock's")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), SizeIs(names.size()));
    expectInOrder();
    EXPECT_THAT(sync({"--music", pc("Rock's")}).out, HasSubstr("6 unchanged"));
    for (const std::string& name : names) {
        removeFile(name);
    }
    givenFile("Rock's/last", "one");
    EXPECT_EQ(sync({"--music", pc("Rock's"), "--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock's/last"));
    expectInOrder();
}

TEST_F(SyncNamesTest, FoldersOfOneName_GetPlacesThatStay)
{
    givenFile("x/Rock/a.mp3", "from x");
    givenFile("y/Rock/a.mp3", "from y");
    EXPECT_EQ(sync({"--music", pc("x/Rock"), "--music", pc("y/Rock")}).exitCode, 0);
    const auto places = phonePaths();
    ASSERT_THAT(places, SizeIs(2));
    EXPECT_EQ(places[0], "Music/Rock/a.mp3");
    EXPECT_THAT(places[1], AllOf(StartsWith("Music/Rock~"), EndsWith("/a.mp3")));
    givenFile("y/Rock/b.mp3", "new in y");
    EXPECT_EQ(sync({"--music", pc("y/Rock")}).exitCode, 0);
    EXPECT_EQ(sync({"--music", pc("y/Rock"), "--music", pc("x/Rock")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), SizeIs(3));
    EXPECT_THAT(phonePaths()[2], AllOf(StartsWith("Music/Rock~"), EndsWith("/b.mp3")));
    expectInOrder();
}

TEST_F(SyncNamesTest, VeryLongPath_IsSynced)
{
    // Longer than 260 characters on the PC and on the phone.
    std::string relative, native = pc("Rock");
    fs::create_directories(Path(native));
    const std::string part(100, 'n');
    for (int depth = 0; depth < 4; ++depth) {
        native = os::Join(native, part);
        ASSERT_TRUE(os::MakeDirectory(native).ok());
        relative += part + "/";
    }
    ASSERT_TRUE(os::WriteText(os::Join(native, "a.mp3"), os::Join(native, "new"), "far away").ok());
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    std::string text, place = phone("Music/Rock/" + relative + "a.mp3");
    EXPECT_TRUE(os::ReadText(place, text).ok());
    EXPECT_EQ(text, "far away");
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 unchanged"));
    ASSERT_TRUE(os::RemoveFile(os::Join(native, "a.mp3")).ok());
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force", "--no-trash"}).exitCode, 0);
    EXPECT_THAT(recorded(), IsEmpty());
    // The C++ library of Windows does not find its way down there.
    os::FileInfo info;
    EXPECT_EQ(os::ReadInfo(phone("Music/Rock"), info).failure(), os::Failure::kMissing);
    for (int depth = 0; depth < 4; ++depth, native = os::ParentOf(native)) {
        EXPECT_TRUE(os::RemoveEmptyDirectory(native).ok());
    }
}

#if !defined(_WIN32)

TEST_F(SyncNamesTest, NamesThatThePhoneCannotHold_AreMapped)
{
    const std::vector<std::string> names{"a?b.mp3",    "a:b.mp3",     "a_b.mp3",      "trailing.",
                                         "trailing ",  "CON.mp3",     "lpt1",         "back\\slash",
                                         "\"quoted\"", ".kesta-part", ".kesta-phone", "bell\a.mp3"};
    for (const std::string& name : names) {
        givenFile("Rock/" + name, name);
    }
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(phonePaths(), SizeIs(names.size()));
    for (const std::string& place : phonePaths()) {
        EXPECT_EQ(place.find_first_of("?:\\\"\a<>|*"), std::string::npos) << place;
    }
    expectInOrder();
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("12 unchanged"));
}

TEST_F(SyncNamesTest, NamesThatDifferOnlyInCase_BothSurvive)
{
    givenFile("Rock/song.mp3", "small");
    givenFile("Rock/SONG.mp3", "CAPITAL");
    givenFile("Rock/größe", "small");
    givenFile("Rock/GRÖßE", "capital");
    givenFile("Rock/dir/x", "in a folder");
    givenFile("Rock/DIR", "a file");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    std::set<std::string> keys;
    for (std::string place : phonePaths()) {
        std::transform(place.begin(), place.end(), place.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
        for (size_t at = 0; (at = place.find("\u00D6", at)) != std::string::npos;) {
            place.replace(at, 2, "\u00F6");
        }
        EXPECT_TRUE(keys.insert(place).second) << place;
        EXPECT_FALSE(keys.contains(place.substr(0, place.rfind('/')))) << place;
    }
    EXPECT_EQ(keys.size(), 6u);
    expectInOrder();
}

#if !defined(_WIN32)
TEST_F(SyncNamesTest, NamesThatAreNoText_GoAlongByteForByte)
{
    givenFile("Rock/good.mp3", "good");
    std::ofstream(work() / "pc" / "Rock" / "bad\xFF\xFE.mp3") << "bad";
    fs::create_directories(work() / "pc" / "Rock" / "M\xFCnchen");
    std::ofstream(work() / "pc" / "Rock" / "M\xFCnchen" / "\xEE\xBE\x80.mp3") << "what escapes look like";
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("copied    Music/Rock/bad\\xff\\xfe.mp3"));
    const auto files = phoneFiles();
    EXPECT_THAT(files, SizeIs(3));
    EXPECT_EQ(files.at("Music/Rock/bad\xFF\xFE.mp3"), "bad");
    EXPECT_EQ(files.at("Music/Rock/M\xFCnchen/\xEE\xBE\x80.mp3"), "what escapes look like");
    // In the database they are text.
    EXPECT_THAT(database().text("SELECT [Path] FROM tMFile WHERE [Path] LIKE '%bad%'"),
                testing::EndsWith("/Rock/bad\uEFFF\uEFFE.mp3"));
    EXPECT_THAT(recorded(), SizeIs(3));

    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged"));
    const Ended why = client({"why", pc() + "/Rock/bad\xFF\xFE.mp3", "--json"});
    EXPECT_THAT(why.out, HasSubstr("\"recorded\""));
    fs::remove(work() / "pc" / "Rock" / "bad\xFF\xFE.mp3");
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 1 removed, 2 unchanged"));
    EXPECT_FALSE(phoneFiles().contains("Music/Rock/bad\xFF\xFE.mp3"));
    const Ended restored = client({"restore", "--phone", phone(), "--all"});
    EXPECT_EQ(restored.exitCode, 0) << restored.out;
    EXPECT_EQ(phoneFiles().at("Music/Rock/bad\xFF\xFE.mp3"), "bad");
}
#endif

TEST_F(SyncNamesTest, ControlCharacters_DoNotReachTheTerminal)
{
    givenFile("Rock/\x1b[31mred\nline\u009b5m.mp3", "x");
    for (const Ended& run : {sync({"--music", pc("Rock")}), client({"files", "--imei", kImei, "--category", "music"}),
                             sync({"--music", pc("Rock\x1b[2J")})}) {
        EXPECT_EQ((run.out + run.err).find('\x1b'), std::string::npos);
        EXPECT_EQ((run.out + run.err).find("\u009b"), std::string::npos);
    }
    EXPECT_THAT(sync({"--music", pc("Rock"), "--dry-run"}).out, HasSubstr("1 unchanged"));
}

TEST_F(SyncNamesTest, Links_AreFollowedOnceAndLoopsLeftOut)
{
    givenFile("Rock/real/a.mp3", "first");
    givenFile("elsewhere/b.mp3", "second");
    givenFile("c.mp3", "third");
    fs::create_directory_symlink(pc("elsewhere"), pc("Rock/linked"));
    fs::create_directory_symlink(pc("elsewhere"), pc("Rock/linked again"));
    fs::create_symlink(pc("c.mp3"), pc("Rock/c.mp3"));
    fs::create_directory_symlink("real", pc("Rock/a link that sorts before real"));
    fs::create_directory_symlink("..", pc("Rock/real/up"));
    fs::create_directory_symlink(work(), pc("Rock/everything"));
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/c.mp3", "Music/Rock/linked/b.mp3", "Music/Rock/real/a.mp3"));
    EXPECT_FALSE(fs::is_symlink(Path(phone("Music/Rock/c.mp3"))));
    expectInOrder();
}

TEST_F(SyncNamesTest, LinkThatLeadsNowhere_IsReportedAndKeepsWhatItGave)
{
    givenFile("Rock/a.mp3", "1");
    givenFile("Rock/b.mp3", "2");
    givenFile("Rock/c.mp3", "3");
    givenFile("drive/x.mp3", "4");
    fs::create_directory_symlink(pc("drive"), pc("Rock/drive"));
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    fs::rename(pc("drive"), pc("drive away"));
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("the link leads nowhere"));
    EXPECT_THAT(phonePaths(), SizeIs(4));
    EXPECT_THAT(recorded(), SizeIs(4));
}

TEST_F(SyncNamesTest, PathBeyondTheSystemsLimit_IsReportedAndNothingIsTakenForGone)
{
    givenFile("Rock/a.mp3", "1");
    givenFile("Rock/b.mp3", "2");
    givenFile("Rock/c.mp3", "3");
    (void)sync({"--music", pc("Rock")});
    removeFile("Rock/c.mp3");
    // Deeper than any single path can say; made step by step.
    const fs::path here = fs::current_path();
    fs::current_path(pc("Rock"));
    for (int depth = 0; depth < 25; ++depth) {
        fs::create_directory(std::string(200, 'd'));
        fs::current_path(std::string(200, 'd'));
    }
    fs::current_path(here);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("File name too long"));
    EXPECT_THAT(phonePaths(), SizeIs(3));
    EXPECT_EQ(std::system(("rm -rf '" + pc("Rock") + "'").c_str()), 0);
}

TEST_F(SyncNamesTest, PhoneInsideAChosenFolder_IsNotCopiedToItself)
{
    givenFile("a.txt", "first");
    fs::rename(phone(), pc("phone"));
    const Ended run = client({"sync", "--phone", pc("phone"), "--documents", pc()});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("1 copied"));
    EXPECT_TRUE(fs::exists(Path(pc("phone/Documents/pc/a.txt"))));
    const Ended inside = client({"sync", "--phone", pc("phone"), "--documents", pc("phone/Documents")});
    EXPECT_EQ(inside.exitCode, 1);
    EXPECT_THAT(inside.err, HasSubstr("lies on the phone itself"));
    fs::rename(pc("phone"), phone());
}

#endif

}  // namespace
}  // namespace kesta::test
