// Bookmarks: one file on the phone, a record for each bookmark.
#include "client_fixture.h"
#include "formats/bookmarks.h"
#include "stages/bookmarks/bookmark_file.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kPlace = "Bookmarks/bookmarks.html";

class SyncBookmarksTest : public ClientTest {
protected:
    void givenBookmarks(const std::string& items)
    {
        givenFile("bookmarks.html",
                  "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<TITLE>Bookmarks</TITLE>\n<DL><p>\n" + items + "</DL><p>\n");
    }
    static std::string bookmark(const std::string& title, const std::string& url)
    {
        return "<DT><A HREF=\"" + url + "\">" + title + "</A>\n";
    }
    Ended syncBookmarks(std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"--bookmarks", pc("bookmarks.html")});
        return sync(more);
    }
    [[nodiscard]] std::string rows() const
    {
        return database().text(
            "SELECT [Title], [Path], [PhoneMID], [Id], [Flag], [Type] FROM tBFile ORDER BY [Type], [Id]");
    }
    [[nodiscard]] std::vector<std::string> urlsOnPhone(const std::string& place = kPlace) const
    {
        std::vector<std::string> urls;
        for (const formats::Bookmark& bookmark : formats::ParseBookmarks(phoneFiles().at(place)).bookmarks) {
            urls.push_back(bookmark.url);
        }
        return urls;
    }
};

TEST(BookmarkFileTest, Contents_AreReadBackAsTheyWere)
{
    const std::vector<FileBookmark> bookmarks{
        {"<b>\"x\"</b> & 'y'", "https://a.example/?q=1&amp;z=\"<>", {"A & B", "C"}, 17, "b1"},
        {"", "https://b.example/", {"A & B"}, {}, ""},
        {"\u65e5\u672c", "https://c.example/", {}, {}, "b2"},
        {"again", "https://d.example/", {"A & B", "D"}, 18, "b3"}};
    const std::string text = BookmarkFileText(bookmarks);
    const formats::Bookmarks read = formats::ParseBookmarks(text);
    EXPECT_THAT(read.problems, IsEmpty());
    ASSERT_EQ(read.bookmarks.size(), bookmarks.size());
    for (size_t i = 0; i < bookmarks.size(); ++i) {
        EXPECT_EQ(read.bookmarks[i].title, bookmarks[i].title.empty() ? bookmarks[i].url : bookmarks[i].title);
        EXPECT_EQ(read.bookmarks[i].url, bookmarks[i].url);
        EXPECT_EQ(read.bookmarks[i].folders, bookmarks[i].folders);
        EXPECT_EQ(read.bookmarks[i].added, bookmarks[i].added);
    }
    EXPECT_THAT(text, HasSubstr(" ID=\"b1\""));
}

TEST_F(SyncBookmarksTest, NewBookmarks_GoToThePhoneInTheirFolders)
{
    givenBookmarks("<DT><H3>News &amp; more</H3><DL><p>" + bookmark("A&#39;s", "https://a.example/") + "</DL><p>" +
                   bookmark("B", "https://b.example/"));
    const Ended run = syncBookmarks();
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 2 added, 0 updated, 0 removed, 0 unchanged"));
    EXPECT_EQ(rows(),
              "A's|https://a.example/|Bookmarks/bookmarks.html#b1|1|0|1\n"
              "B|https://b.example/|Bookmarks/bookmarks.html#b2|2|0|1");
    const auto onPhone = formats::ParseBookmarks(phoneFiles().at(kPlace)).bookmarks;
    ASSERT_EQ(onPhone.size(), 2u);
    EXPECT_THAT(onPhone[0].folders, ElementsAre("News & more"));
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(SyncBookmarksTest, ChromiumsJson_IsReadAsWell)
{
    givenFile("bookmarks.html", R"({"roots": {"bookmark_bar": {"type": "folder", "name": "Bar", "children": [
        {"type": "url", "name": "A", "url": "https://a.example/"}]}}, "version": 1})");
    EXPECT_EQ(syncBookmarks().exitCode, 0);
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/"));
}

TEST_F(SyncBookmarksTest, SecondRun_WritesNothing)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    const auto time = fs::last_write_time(Path(phone(kPlace)));
    const Ended run = syncBookmarks();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 0 added, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_EQ(fs::last_write_time(Path(phone(kPlace))), time);
}

TEST_F(SyncBookmarksTest, NewChangedAndGone_AreToldApart)
{
    givenBookmarks(bookmark("A", "https://a.example/") + bookmark("B", "https://b.example/") +
                   bookmark("C", "https://c.example/"));
    (void)syncBookmarks();
    givenBookmarks(bookmark("D", "https://d.example/") + bookmark("C", "https://c.example/") +
                   bookmark("New B", "https://b.example/"));
    const Ended run = syncBookmarks();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 1 added, 1 updated, 1 removed, 1 unchanged"));
    EXPECT_EQ(rows(),
              "New B|https://b.example/|Bookmarks/bookmarks.html#b2|2|0|1\n"
              "C|https://c.example/|Bookmarks/bookmarks.html#b3|3|0|1\n"
              "D|https://d.example/|Bookmarks/bookmarks.html#b4|4|0|1");
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://d.example/", "https://c.example/", "https://b.example/"));
}

TEST_F(SyncBookmarksTest, UrlGivenTwice_HasOneRecord)
{
    givenBookmarks(bookmark("A", "https://a.example/") + bookmark("Also A", "https://a.example/"));
    EXPECT_EQ(syncBookmarks().exitCode, 0);
    EXPECT_EQ(rows(), "A|https://a.example/|Bookmarks/bookmarks.html#b1|1|0|1");
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/", "https://a.example/"));
    EXPECT_THAT(syncBookmarks().out, HasSubstr("0 updated, 0 removed, 1 unchanged"));
}

TEST_F(SyncBookmarksTest, FileThatIsMissing_RemovesNothing)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    const std::string before = rows();
    removeFile("bookmarks.html");
    const Ended run = syncBookmarks({"--force"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("it cannot be read"));
    EXPECT_EQ(rows(), before);
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/"));
}

TEST_F(SyncBookmarksTest, FileThatIsNotUnderstood_RemovesNothing)
{
    givenBookmarks("<DT><H3>F</H3><DL><p>" + bookmark("A", "https://a.example/") + "</DL><p>");
    (void)syncBookmarks();
    const std::string before = rows();
    givenFile("bookmarks.html", "{\"roots\": {\"bookmark_bar\": {\"type\": \"folder\", ");
    const Ended run = syncBookmarks({"--force"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("no bookmark is removed"));
    EXPECT_EQ(rows(), before);
    const auto onPhone = formats::ParseBookmarks(phoneFiles().at(kPlace)).bookmarks;
    ASSERT_EQ(onPhone.size(), 1u);
    EXPECT_THAT(onPhone[0].folders, ElementsAre("F")) << "where it stood";
}

TEST_F(SyncBookmarksTest, MoreThanHalfGone_IsDeferredUntilForced)
{
    givenBookmarks(bookmark("A", "https://a.example/") + bookmark("B", "https://b.example/") +
                   bookmark("C", "https://c.example/"));
    (void)syncBookmarks();
    givenBookmarks(bookmark("A", "https://a.example/"));
    const Ended held = syncBookmarks();
    EXPECT_EQ(held.exitCode, 4);
    EXPECT_THAT(held.out, HasSubstr("Deferred: 2 bookmarks to be removed"));
    EXPECT_THAT(urlsOnPhone(),
                testing::UnorderedElementsAre("https://a.example/", "https://b.example/", "https://c.example/"));
    EXPECT_EQ(syncBookmarks({"--force"}).exitCode, 0);
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/"));
    givenBookmarks("");
    EXPECT_EQ(syncBookmarks({"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), IsEmpty());
    EXPECT_EQ(rows(), "");
}

TEST_F(SyncBookmarksTest, EachBookmarkType_HasBookmarksAndAFileOfItsOwn)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    database().exec("UPDATE tPhone SET [BookMarkType] = 2");
    givenBookmarks(bookmark("B", "https://b.example/"));
    const Ended run = syncBookmarks();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 1 added, 0 updated, 0 removed"));
    EXPECT_EQ(rows(),
              "A|https://a.example/|Bookmarks/bookmarks.html#b1|1|0|1\n"
              "B|https://b.example/|Bookmarks/bookmarks-2.html#b1|1|0|2");
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/"));
    EXPECT_THAT(urlsOnPhone("Bookmarks/bookmarks-2.html"), ElementsAre("https://b.example/"));
}

TEST_F(SyncBookmarksTest, FileOfTheUserOnThePhone_IsNeverTouched)
{
    fs::create_directories(Path(phone("Bookmarks")));
    std::ofstream(Path(phone(kPlace))) << "mine";
    givenBookmarks(bookmark("A", "https://a.example/"));
    EXPECT_EQ(syncBookmarks().exitCode, 0);
    EXPECT_EQ(phoneFiles().at(kPlace), "mine");
    EXPECT_THAT(phonePaths(), testing::SizeIs(2));
    EXPECT_THAT(syncBookmarks().out, HasSubstr("0 added, 0 updated, 0 removed, 1 unchanged"));
    givenBookmarks("");
    EXPECT_EQ(syncBookmarks({"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre(kPlace));
}

TEST_F(SyncBookmarksTest, LostDatabase_IsFilledFromWhatIsThere)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    const auto time = fs::last_write_time(Path(phone(kPlace)));
    database().exec("DELETE FROM tBFile");
    EXPECT_THAT(syncBookmarks().out, HasSubstr("Bookmarks: 1 added"));
    EXPECT_THAT(phonePaths(), ElementsAre(kPlace));
    EXPECT_EQ(fs::last_write_time(Path(phone(kPlace))), time);
}

TEST_F(SyncBookmarksTest, FileChangedOnThePhone_IsWrittenAgain)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    std::ofstream(Path(phone(kPlace))) << "scribble";
    EXPECT_EQ(syncBookmarks().exitCode, 0);
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/"));
}

TEST_F(SyncBookmarksTest, RecordsFromElsewhere_AreNotFollowed)
{
    givenBookmarks(bookmark("A", "https://a.example/"));
    (void)syncBookmarks();
    givenFile("precious", "keep me");
    database().exec("UPDATE tBFile SET [PhoneMID] = '../pc/precious#b1'");
    EXPECT_EQ(syncBookmarks().exitCode, 0);
    EXPECT_EQ(rows(), "A|https://a.example/|Bookmarks/bookmarks.html#b1|1|0|1");
    givenBookmarks("");
    EXPECT_EQ(syncBookmarks({"--force"}).exitCode, 0);
    EXPECT_TRUE(fs::exists(Path(pc("precious"))));
}

TEST_F(SyncBookmarksTest, WhatIsNoUseOrTooLong_IsLeftOutAndSaid)
{
    const std::string longUrl = "https://a.example/" + std::string(45'000, 'x');
    givenBookmarks(bookmark("J", "javascript:alert(1)") + bookmark("L", longUrl) + bookmark("B", "https://b.example/"));
    const Ended run = syncBookmarks();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, AllOf(HasSubstr("Left out of Bookmarks: 1 with addresses outside the web"),
                               HasSubstr("too long for the database")));
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://b.example/"));
}

TEST_F(SyncBookmarksTest, DryRun_PreviewsAndChangesNothing)
{
    givenBookmarks(bookmark("A", "https://a.example/") + bookmark("B", "https://b.example/"));
    EXPECT_THAT(syncBookmarks({"--dry-run"}).out, HasSubstr("Bookmarks: 2 added"));
    EXPECT_THAT(phonePaths(), IsEmpty());
    (void)syncBookmarks();
    const std::string before = rows();
    givenBookmarks(bookmark("New A", "https://a.example/") + bookmark("C", "https://c.example/"));
    const Ended dry = syncBookmarks({"--dry-run"});
    EXPECT_THAT(dry.out, AllOf(HasSubstr("add       https://c.example/"), HasSubstr("update    https://a.example/"),
                               HasSubstr("remove    https://b.example/"), HasSubstr("1 added, 1 updated, 1 removed")));
    EXPECT_EQ(rows(), before);
    EXPECT_THAT(urlsOnPhone(), ElementsAre("https://a.example/", "https://b.example/"));
}

TEST_F(SyncBookmarksTest, FirefoxJson_IsRead)
{
    givenFile(
        "firefox.json",
        R"({"type":"text/x-moz-place-container","root":"placesRoot","children":[{"type":"text/x-moz-place-container",)"
        R"("title":"toolbar","children":[{"type":"text/x-moz-place","title":"A","uri":"http://a.example/"}]}]})");
    const Ended run = sync({"--bookmarks", pc("firefox.json")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 1 added"));
    EXPECT_THAT(phoneFiles().at("Bookmarks/bookmarks.html"), HasSubstr("http://a.example/"));
}

}  // namespace
}  // namespace kesta::test
