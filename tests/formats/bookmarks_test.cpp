#include <gmock/gmock.h>

#include "formats/bookmarks.h"
#include "formats/html_attributes.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::string_view kType = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n";

Bookmarks Html(std::string_view body)
{
    return ParseBookmarks(std::string(kType).append(body));
}

TEST(BookmarksHtml, FoldersNestAndEnd)
{
    const Bookmarks result = Html(
        "<H1>Menu</H1><DL><p><DT><H3 ADD_DATE=\"1\">Bar &amp; more</H3>\n<DL><p>\n"
        "<DT><A HREF=\"https://one.example/?a=1&amp;b=2\" ADD_DATE=\"1600000001\">One\n  &lt;only&gt;</A>\n"
        "<DD>About it\n<DT><H3>Inner</H3><DL><p><DT><A HREF=http://two.example>Zw&ouml;i</A></DL><p></DL><p>"
        "<DT><A HREF=\"http://three.example/\">Three</A></DL>");
    EXPECT_THAT(result.problems, IsEmpty());
    EXPECT_THAT(
        result.bookmarks,
        ElementsAre(Bookmark{"One <only>", "https://one.example/?a=1&b=2", LinkKind::kWeb, {"Bar & more"}, 1600000001},
                    Bookmark{"Zwöi", "http://two.example", LinkKind::kWeb, {"Bar & more", "Inner"}, {}},
                    Bookmark{"Three", "http://three.example/", LinkKind::kWeb, {}, {}}));
}

TEST(BookmarksHtml, UnclosedTags)
{
    const Bookmarks result = Html("<DL><DT><H3>F</H3><DL><DT><A HREF=http://a/>A<DT><A HREF=http://b/>B");
    ASSERT_THAT(result.bookmarks, SizeIs(2));
    EXPECT_EQ(result.bookmarks[0].title, "A");
    EXPECT_THAT(result.bookmarks[1].folders, ElementsAre("F"));
}

TEST(BookmarksHtml, CutShort_IsReported)
{
    const std::string whole = "<DL><p><DT><A HREF=\"http://a/\">A</A><!-- <DL> --></DL><p>";
    EXPECT_THAT(Html(whole).problems, IsEmpty());
    for (const char* end : {"</DL", "<!-- <DL>", "HREF=", "A</A>"}) {
        const Bookmarks result = Html(whole.substr(0, whole.find(end) + 4));
        EXPECT_THAT(result.problems, ElementsAre(Problem{0, "it ends before its lists do"})) << end;
    }
}

TEST(BookmarksHtml, MillionsOfTagsThatNeverEnd_AreReadInOnePass)
{
    EXPECT_THAT(Html("<DL><DT><A HREF=http://a/>A</A></DL>" + std::string(8'000'000, '<') + ">").problems, IsEmpty());
}

TEST(BookmarksHtml, TagWithEightyThousandAttributes_KeepsItsAddressAndDate)
{
    std::string many;
    for (int i = 0; i < 80'000; ++i) {
        many += " a" + std::to_string(i) + "='>'";
    }
    const Bookmarks result =
        Html("<DL><DT><A" + many + " HREF=http://a/ ADD_DATE=1600000001 HREF=http://no/>A</A>" + "</DL" + many + ">");
    EXPECT_THAT(result.problems, IsEmpty());
    EXPECT_THAT(result.bookmarks, ElementsAre(Bookmark{"A", "http://a/", LinkKind::kWeb, {}, 1600000001}));
}

TEST(HtmlAttributes, UpToTheLimit_StayToTheByte)
{
    const std::string few = "<p\ta=1 b = '2'\n/c=\"3\"d =e>text < <!-- <a \" --> <A HREF=x/>";
    EXPECT_EQ(WithFewAttributes(few), few);
    std::string attributes;
    for (size_t i = 0; i < kMostAttributes; ++i) {
        attributes += " x" + std::to_string(i);
    }
    const std::string most = few + "<a" + attributes + ">";
    EXPECT_EQ(WithFewAttributes(most), most);
    EXPECT_EQ(WithFewAttributes(most + "<a" + attributes + " y>"), most + "<a" + attributes + " >");
}

// Where the next tag begins: quotes count in tags only, and tags count in no comment and no script.
TEST(HtmlAttributes, BeyondTheLimit_AreCutFromTagsOnly)
{
    std::string attributes;
    for (size_t i = 0; i < kMostAttributes; ++i) {
        attributes += " x";
    }
    const std::string full = "<a" + attributes;
    const std::pair<std::string, std::string> cases[] = {
        {full + " y=\"<p>\" z='>' w = v =u>", full + "    >"},
        {full + " HREF=a href=b Add_Date='1'>", full + " HREF=a  Add_Date='1'>"},
        {"</a" + attributes + " y>", "</a" + attributes + " >"},
        {"<!-- <a \" -->" + full + " y>", "<!-- <a \" -->" + full + " >"},
        {"<!-->" + full + " y>", "<!-->" + full + " >"},
        {"<!a \">" + full + " y>", "<!a \">" + full + " >"},
        {"</ \">" + full + " y>", "</ \">" + full + " >"},
        {"<script>" + full + " y></scripts></SCRIPT >" + full + " y>",
         "<script>" + full + " y></scripts></SCRIPT >" + full + " >"},
        {"<title>\"</title/>" + full + " y>", "<title>\"</title/>" + full + " >"},
        {full + " y", full + " "},
        {full + " y=", full + " "},
        {full + " y='", full + " "},
    };
    for (const auto& [html, expected] : cases) {
        EXPECT_EQ(WithFewAttributes(html), expected);
    }
    for (const std::string html :
         {"", "<", "<a", "</", "<!", "<!--", "<a ", "<a b", "<a b=", "<a b='", "<style>", "</a"}) {
        EXPECT_EQ(WithFewAttributes(html), html);
    }
}

TEST(BookmarksHtml, EmptyFolder_GivesItsNameToNoOtherList)
{
    const Bookmarks result =
        Html("<DL><DT><H3>Empty</H3><DT><A HREF=http://a/>A</A><DL><DT><A HREF=http://b/>B</A></DL></DL>");
    ASSERT_THAT(result.bookmarks, SizeIs(2));
    EXPECT_THAT(result.bookmarks[1].folders, IsEmpty());
}

TEST(BookmarksHtml, Dates)
{
    const std::pair<const char*, std::optional<int64_t>> cases[] = {{"1600000000", 1600000000},
                                                                    {"1600000000123", 1600000000},
                                                                    {"1600000000123456", 1600000000},
                                                                    {" 5 ", 5},
                                                                    {"0", {}},
                                                                    {"soon", {}},
                                                                    {"-3", {}},
                                                                    {"99999999999999999999", {}}};
    for (const auto& [text, date] : cases) {
        const Bookmarks result = Html("<DL><A HREF=x:y ADD_DATE=\"" + std::string(text) + "\">T</A></DL>");
        ASSERT_THAT(result.bookmarks, SizeIs(1));
        EXPECT_EQ(result.bookmarks[0].added, date) << text;
    }
}

TEST(BookmarksHtml, EncodingsAndAddresses)
{
    EXPECT_EQ(Html("<DL><A HREF=\" http://a/\n b \">\xC4</A></DL>").bookmarks,
              (std::vector<Bookmark>{{"Ä", "http://a/ b", LinkKind::kWeb, {}, {}}}));
    EXPECT_THAT(Html("<DL><A NAME=x>no address</A><A HREF=\"\">none either</A></DL>").bookmarks, IsEmpty());
}

TEST(BookmarksHtml, OtherDocuments_AreNoBookmarkFiles)
{
    for (const char* text : {"", "<html><a href=http://x/>x</a></html>", "plain text"}) {
        const Bookmarks result = ParseBookmarks(text);
        EXPECT_THAT(result.bookmarks, IsEmpty()) << text;
        EXPECT_THAT(result.problems, ElementsAre(Problem{0, "not a bookmark file"})) << text;
    }
    EXPECT_THAT(Html("").problems, IsEmpty());
}

TEST(BookmarksHtml, TooDeep_IsReportedAndNotParsed)
{
    std::string deep;
    for (int i = 0; i < 200'000; ++i) {
        deep += "<DL><DT>";
    }
    EXPECT_THAT(Html(deep).problems, SizeIs(1));
    std::string heavy = "<p>";
    for (int i = 0; i < 500; ++i) {
        heavy += "<b id=" + std::to_string(i) + ">";
    }
    for (int i = 0; i < 50'000; ++i) {
        heavy += "<p>x";
    }
    EXPECT_THAT(Html(heavy).problems, SizeIs(1));
}

TEST(Bookmarks, KindOfLink)
{
    const std::pair<const char*, LinkKind> cases[] = {
        {"http://x/", LinkKind::kWeb},      {"HTTPS://x/", LinkKind::kWeb},
        {"ftp://x/", LinkKind::kWeb},       {"JavaScript:alert(1)", LinkKind::kScript},
        {"place:sort=8", LinkKind::kPlace}, {"data:text/html,x", LinkKind::kData},
        {"file:///x", LinkKind::kOther},    {"mailto:a@b", LinkKind::kOther},
        {"httpd", LinkKind::kOther}};
    for (const auto& [url, kind] : cases) {
        EXPECT_EQ(KindOfLink(url), kind) << url;
    }
}

TEST(BookmarksJson, RootsFoldersAndDates)
{
    const Bookmarks result = ParseBookmarks(
        R"( {"checksum":"0","roots":{"bookmark_bar":{"children":[
        {"date_added":"13244473600000000","name":"One","type":"url","url":"https://one.example/"},
        {"children":[{"date_added":"0","name":"S\u00e4\u0000x","type":"url","url":"javascript:x"}],"name":"In","type":"folder"}],
        "name":"Bar","type":"folder"},"other":{"children":[],"name":"Other","type":"folder"},
        "sync_transaction_version":"1","trash":{"children":[{"name":"T","type":"url","url":"http://t/"}],"name":"Trash","type":"folder"}},"version":1})");
    EXPECT_THAT(result.problems, IsEmpty());
    EXPECT_THAT(result.bookmarks,
                ElementsAre(Bookmark{"One", "https://one.example/", LinkKind::kWeb, {"Bar"}, 1600000000},
                            Bookmark{"Sä x", "javascript:x", LinkKind::kScript, {"Bar", "In"}, {}}));
}

TEST(BookmarksJson, DamagedEntries_AreReportedAndTheRestIsRead)
{
    const Bookmarks result = ParseBookmarks(
        R"({"roots":{"bar":{"type":"folder","name":"B","children":[1,{"type":"odd"},{"type":"url","name":"N"},
        {"type":"folder","name":"F"},{"type":"url","url":"http://a/","name":7,"date_added":3}]}}})");
    EXPECT_THAT(result.problems, SizeIs(4));
    EXPECT_THAT(result.bookmarks, ElementsAre(Bookmark{"", "http://a/", LinkKind::kWeb, {"B"}, {}}));
}

TEST(BookmarksJson, NoBookmarkFile)
{
    EXPECT_THAT(ParseBookmarks("{").problems, ElementsAre(Problem{0, "not valid JSON"}));
    EXPECT_THAT(ParseBookmarks("{}").problems, ElementsAre(Problem{0, "not a bookmark file"}));
    EXPECT_THAT(ParseBookmarks(R"({"roots":3})").problems, ElementsAre(Problem{0, "not a bookmark file"}));
    std::string deep = R"({"roots":{"b":)";
    for (int i = 0; i < 100'000; ++i) {
        deep += R"({"type":"folder","children":[)";
    }
    for (int i = 0; i < 100'000; ++i) {
        deep += "]}";
    }
    EXPECT_THAT(ParseBookmarks(deep + "}}").problems, ElementsAre(Problem{0, "folders are nested too deeply"}));
}

TEST(BookmarksJson, FirefoxTree_IsReadWithoutItsTags)
{
    const Bookmarks read = ParseBookmarks(
        R"({"type":"text/x-moz-place-container","root":"placesRoot","title":"","children":[)"
        R"({"type":"text/x-moz-place-container","title":"menu","children":[)"
        R"({"type":"text/x-moz-place","title":"A  page","uri":"https://a.example/","dateAdded":1500000001000000},)"
        R"({"type":"text/x-moz-place-separator","title":""},)"
        R"({"type":"text/x-moz-place-container","title":"Empty"},)"
        R"({"type":"text/x-moz-place","title":"Query","uri":"place:sort=8"}]},)"
        R"({"type":"text/x-moz-place-container","title":"tags","root":"tagsFolder","children":[)"
        R"({"type":"text/x-moz-place","title":"A page","uri":"https://a.example/"}]}]})");
    EXPECT_THAT(read.problems, testing::IsEmpty());
    ASSERT_EQ(read.bookmarks.size(), 2u);
    EXPECT_EQ(read.bookmarks[0], (Bookmark{"A page", "https://a.example/", LinkKind::kWeb, {"menu"}, 1'500'000'001}));
    EXPECT_EQ(read.bookmarks[1].kind, LinkKind::kPlace);
    EXPECT_EQ(ParseBookmarks("mozLz40\x01").problems.size(), 1u);
}

}  // namespace
}  // namespace kesta::formats
