// The C++ interface, from the outside: linked like a caller's program, over a database that its tests share. Each test
// has a phone of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kesta_db/kesta_db.hpp>

namespace kesta_db {
namespace {

using std::chrono::local_days;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A phone that no other test announces; what an earlier run left of it is gone.
class CppInterface : public ::testing::Test {
protected:
    CppInterface()
    {
        const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        imei = std::to_string(std::hash<std::string>()(test) % 1'000'000'000'000'000);
        db.phones().announce(imei, "Ann's phone \xE2\x98\x8E");
        db.phones().forgetSyncedFiles(imei);
    }

    /// The code of the error that the call throws; std::nullopt if it throws none.
    template <class Call>
    static std::optional<Code> codeOf(Call&& call)
    {
        try {
            call();
        } catch (const Error& error) {
            return error.code();
        }
        return std::nullopt;
    }

    Database db;
    std::string imei;
    const LocalTime noon = local_days(2024y / 2 / 29) + 12h + 34min + 56s;
};

TEST_F(CppInterface, Phone_AnnouncedAndChanged_ReadsBack)
{
    const std::optional<Phone> before = db.phones().find(imei);
    ASSERT_TRUE(before);
    EXPECT_EQ(before->name, "Ann's phone \xE2\x98\x8E");
    Phone phone = *before;
    phone.photoPath = "/home/ann/Photos";
    phone.autoSync = !before->autoSync;
    phone.calendarStart = noon;
    phone.calendarPeriod = before->calendarPeriod + 1;
    db.phones().update(phone);
    EXPECT_EQ(db.phones().find(imei), phone);
    std::vector<Phone> all = db.phones().all();
    EXPECT_THAT(all, ::testing::Contains(phone));
}

TEST_F(CppInterface, Phone_Unknown_IsNone)
{
    EXPECT_EQ(db.phones().find("000"), std::nullopt);
    EXPECT_EQ(codeOf([&] { (void)db.phones().lastSync("000"); }), Code::kFailed);
}

TEST_F(CppInterface, LastSync_SetBeforeAndAfterDayZero_ReadsBackToTheSecond)
{
    const LocalTime early = local_days(1895y / 3 / 4) + 5h + 6min + 7s;
    for (const LocalTime time : {noon, early}) {
        db.phones().setLastSync(imei, time);
        EXPECT_EQ(db.phones().lastSync(imei), time);
    }
}

TEST_F(CppInterface, Files_AddedUpdatedRemoved_AreListed)
{
    Media music = db.media(imei, Category::kMusic);
    music.addFolder({.path = "/m/Rock 'n' Roll", .count = 2, .size = 5'000'000'000});
    const File file{"/m/Rock 'n' Roll/\xF0\x9F\x8E\xB5.mp3", "/m/Rock 'n' Roll", "Music/1.mp3", noon};
    EXPECT_TRUE(music.addFile(file));
    EXPECT_FALSE(music.addFile(file));
    EXPECT_THAT(music.files(), ElementsAre(file));
    File changed = file;
    changed.modified = noon + 1s;
    music.updateFile(changed);
    EXPECT_THAT(music.files(), ElementsAre(changed));
    ASSERT_EQ(music.folders().size(), 1u);
    EXPECT_EQ(music.folders()[0].path, "/m/Rock 'n' Roll");
    EXPECT_EQ(music.folders()[0].size, 5'000'000'000);
    EXPECT_TRUE(music.folders()[0].selected);
    music.selectFolder("/m/Rock 'n' Roll", false);
    EXPECT_FALSE(music.folders()[0].selected);
    EXPECT_THAT(db.media(imei, Category::kVideos).files(), IsEmpty());
    music.removeFolder("/m/Rock 'n' Roll");
    EXPECT_THAT(music.files(), IsEmpty());
    EXPECT_TRUE(music.folders().empty());
}

TEST_F(CppInterface, Files_DateThatIsNone_IsNone)
{
    Media documents = db.media(imei, Category::kDocuments);
    documents.addFile({"/d/a.txt", "/d", "a.txt", std::nullopt});
    EXPECT_THAT(documents.files(), ElementsAre(File{"/d/a.txt", "/d", "a.txt", std::nullopt}));
}

TEST_F(CppInterface, AddFolder_TooLongForAStatement_IsToldAlthoughTheLibraryDoesNot)
{
    EXPECT_EQ(codeOf([&] { db.media(imei, Category::kImages).addFolder({.path = std::string(50'000, 'x')}); }),
              Code::kNotStored);
}

TEST_F(CppInterface, Texts_NotUtf8OrUnquotedWithApostrophe_AreRefusedBeforeTheCall)
{
    Media music = db.media(imei, Category::kMusic);
    for (const char* text : {"\xFF", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xC3"}) {
        EXPECT_EQ(codeOf([&] { music.addFile({text, "", "", {}}); }), Code::kInvalidText) << text;
    }
    EXPECT_EQ(codeOf([&] { music.addFile({std::string("a\0b", 3), "", "", {}}); }), Code::kInvalidText);
    EXPECT_EQ(codeOf([&] { db.phones().announce("x' OR 1 --", ""); }), Code::kInvalidText);
    EXPECT_EQ(codeOf([&] { db.phones().announce("\xC3\xA9", ""); }), Code::kInvalidText);
    EXPECT_EQ(codeOf([&] { db.pimStore().removeItem("a'b"); }), Code::kInvalidText);
    EXPECT_THAT(music.files(), IsEmpty());
}

// Another program may have announced it where texts do not pass a code page.
TEST_F(CppInterface, Phone_NotAscii_IsLookedUpOnLinux)
{
    std::optional<Phone> found;
    const std::optional<Code> code = codeOf([&] { found = db.phones().find("\xC3\xA9"); });
    EXPECT_FALSE(found);
#if defined(_WIN32)
    EXPECT_EQ(code, Code::kInvalidText);
#else
    EXPECT_EQ(code, std::nullopt);
#endif
    EXPECT_EQ(codeOf([&] { (void)db.phones().find("a'b"); }), Code::kInvalidText);
}

TEST_F(CppInterface, Error_NamesTheCall)
{
    try {
        db.media("nobody", Category::kVideos).addFile({"a", "b", "c", {}});
        FAIL() << "an unknown phone has no files";
    } catch (const Error& error) {
        EXPECT_EQ(error.call(), "DB_VIDEO_SetAddedFile");
        EXPECT_TRUE(std::string_view(error.what()).starts_with("DB_VIDEO_SetAddedFile failed: ")) << error.what();
    }
}

TEST_F(CppInterface, Playlist_ThroughItsLife_ChangesState)
{
    Playlists lists = db.playlists(imei);
    for (const Playlist& old : lists.all()) {
        lists.forget(old.name);
    }
    lists.beginConfirming();
    Playlist party;
    party.name = "Party";
    party.digest = "c0ffee";
    party.count = 2;
    lists.confirm(party);
    lists.setMembers("Party", {"/m/b.mp3", "/m/a.mp3", "/m/b.mp3"});
    EXPECT_THAT(lists.members("Party"), ElementsAre("/m/a.mp3", "/m/b.mp3"));
    ASSERT_EQ(lists.all().size(), 1u);
    EXPECT_EQ(lists.all()[0].state, PlaylistState::kNew);
    EXPECT_EQ(lists.all()[0].idInPhone, std::nullopt);
    lists.setAdded("Party", "42");
    EXPECT_EQ(lists.all()[0].state, PlaylistState::kCurrent);
    EXPECT_EQ(lists.all()[0].idInPhone, "42");
    lists.forget("Party");
    EXPECT_EQ(lists.all()[0].state, PlaylistState::kUnconfirmed);
    lists.setDeleted("Party");
    EXPECT_TRUE(lists.all().empty());
}

TEST_F(CppInterface, Bookmarks_AddedAndRemoved_AreListed)
{
    Bookmarks bookmarks = db.bookmarks(imei);
    bookmarks.removeAll();
    EXPECT_TRUE(bookmarks.add({"A 'title'", "https://example.org/\xC3\xA9", "m1", 1, 2}));
    EXPECT_FALSE(bookmarks.add({"other", "https://example.org/\xC3\xA9", "", 0, 0}));
    bookmarks.update({"Another", "https://example.org/\xC3\xA9", "m2", 1, 3});
    const std::vector<Bookmark> all = bookmarks.all();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].title, "Another");
    EXPECT_EQ(all[0].idOnPhone, "m2");
    EXPECT_EQ(all[0].flag, 3);
    bookmarks.remove("https://example.org/\xC3\xA9");
    EXPECT_TRUE(bookmarks.all().empty());
}

TEST_F(CppInterface, Backups_WithoutATable_SayThatTheyFail)
{
    EXPECT_EQ(codeOf([&] { (void)db.backups().all(); }), Code::kFailed);
    EXPECT_EQ(codeOf([&] { db.backups().add(imei, {.path = "/b.zip"}); }), Code::kFailed);
}

TEST_F(CppInterface, PimStore_FolderWithItems_ReadsBack)
{
    constexpr int32_t kType = 77;
    PimStore store = db.pimStore();
    store.removeAll(kType);
    store.addFolder({"f-" + imei, "", "Friends", kType});
    store.addFolder({"g-" + imei, "f-" + imei, "Close friends", kType});
    EXPECT_EQ(store.folders(kType).size(), 1u);
    const std::vector<PimFolder> folders = store.folders(kType, {}, true);
    ASSERT_EQ(folders.size(), 2u);
    EXPECT_EQ(folders[1].parentId, "f-" + imei);
    const std::string data("BEGIN\0END\xFF", 10);
    store.addItem("Friends", {"i-" + imei, kType, data});
    ASSERT_EQ(store.items("f-" + imei).size(), 1u);
    EXPECT_EQ(store.items("f-" + imei)[0].data, data);
    store.updateItem({"i-" + imei, kType, ""});
    EXPECT_EQ(store.items("f-" + imei)[0].data, "");
    store.removeAll(kType);
    EXPECT_TRUE(store.folders(kType).empty());
}

TEST_F(CppInterface, PimLog_AppendedAndCleared_IsListed)
{
    PimSyncLog log = db.pimLog(imei, 1500);
    log.clear();
    EXPECT_THAT(log.rows(), IsEmpty());
    const PimLogRow row{"guid-1", "luid-1", noon, std::nullopt};
    log.append({row});
    EXPECT_THAT(log.rows(), ElementsAre(row));
    log.setProfile("by 'hand'");
    EXPECT_EQ(log.profile(), "by 'hand'");
    log.clear();
    EXPECT_THAT(log.rows(), IsEmpty());
    EXPECT_EQ(log.profile(), "");
}

TEST_F(CppInterface, MainFolders_AreSeven)
{
    EXPECT_EQ(db.phones().mainFolders().size(), 7u);
    db.phones().select(imei, MainFolder::kMusic, true);
    EXPECT_TRUE(db.phones().isSelected(imei, MainFolder::kMusic));
    db.phones().select(imei, MainFolder::kMusic, false);
    EXPECT_FALSE(db.phones().isSelected(imei, MainFolder::kMusic));
}

/// Answers as the library does when it cannot count.
TEST(CppList, EmptyOnceThenFilled_IsReadAgain)
{
    Database db;
    int calls = 0;
    MainFolderList list{};
    detail::ReadCountedList("call", list, [&] {
        if (++calls == 2) {
            list.Count = 3;
        }
        return 0;
    });
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(list.Count, 3);
}

TEST(CppList, EmptyTwiceWhileOthersCanBeRead_IsBelieved)
{
    Database db;
    int calls = 0;
    const MainFolderList list{};
    detail::ReadCountedList("call", list, [&] { return ++calls, 0; });
    EXPECT_EQ(calls, 2);
}

TEST(CppList, OneRowMoreThanCounted_IsReadAgain)
{
    int calls = 0;
    detail::ReadList("call", [&] { return ++calls < 3 ? 100 : 0; });
    EXPECT_EQ(calls, 3);
    EXPECT_THROW(detail::ReadList("call", [] { return 100; }), Error);
}

}  // namespace
}  // namespace kesta_db
