// Playlists in other formats than .m3u.
#include <gmock/gmock.h>

#include "formats/markup.h"
#include "formats/playlist.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> LocationsOf(const Playlist& playlist)
{
    std::vector<std::string> locations;
    for (const PlaylistEntry& entry : playlist.entries) {
        locations.push_back(entry.location.text);
    }
    return locations;
}

TEST(PlaylistFormats, NamesTellTheFormat)
{
    for (const char* name : {"a.m3u", "a.M3U8", "a.pls", "A.XSPF", "a.Asx"}) {
        EXPECT_TRUE(IsPlaylistName(name)) << name;
        EXPECT_FALSE(IsOtherPlaylistName(name)) << name;
    }
    EXPECT_FALSE(IsPlaylistName("a.wpl"));
    EXPECT_TRUE(IsOtherPlaylistName("a.WPL"));
    EXPECT_FALSE(IsOtherPlaylistName("a.mp3"));
    EXPECT_THAT(ParsePlaylistFile("a.wpl", "").problems, SizeIs(1));
}

TEST(PlaylistFormats, Pls_IsReadByItsNumbers)
{
    const Playlist list =
        ParsePlaylistFile("a.pls",
                          "[Playlist]\r\nFile2 = b.mp3\r\nTitle2=Two\r\nLength2=-1\r\nfile1=..\\a.mp3\r\n"
                          "Length1=61\r\nFile10=http://radio.example/\r\nTitle3=Nothing\r\n"
                          "NumberOfEntries=3\r\n");
    EXPECT_THAT(LocationsOf(list), ElementsAre("../a.mp3", "b.mp3", "http://radio.example/"));
    EXPECT_EQ(list.entries[0].seconds, 61);
    EXPECT_EQ(list.entries[1].title, "Two");
    EXPECT_EQ(list.entries[1].seconds, std::nullopt);
    EXPECT_THAT(list.problems, IsEmpty());
}

TEST(PlaylistFormats, Pls_WithoutSense_IsAProblem)
{
    EXPECT_THAT(ParsePlaylistFile("a.pls", "hello").problems, SizeIs(1));
    EXPECT_THAT(ParsePlaylistFile("a.pls", "[playlist]\nFile1=a\nFile1=b\nFile2=\n").problems, SizeIs(2));
    EXPECT_THAT(ParsePlaylistFile("a.pls", "[playlist]\n").problems, IsEmpty());
}

TEST(PlaylistFormats, Xspf_IsReadByItsTracks)
{
    const Playlist list = ParsePlaylistFile(
        "a.xspf",
        "<?xml version=\"1.0\"?><playlist version=\"1\"><title>Evening &amp; night</title><trackList>"
        "<track><location>file:///home/me/A%20song.mp3</location><creator>Ann</creator><title>Song</title>"
        "<duration>61500</duration></track>"
        "<x:track><x:location>Rock/B%20&amp;%20C.mp3</x:location><image>c.jpg</image></x:track>"
        "<track><location><![CDATA[http://radio.example/?a=1&b=2]]></location></track>"
        "<track><title>Nowhere</title></track></trackList></playlist>");
    EXPECT_EQ(list.title, "Evening & night");
    EXPECT_THAT(LocationsOf(list),
                ElementsAre("/home/me/A song.mp3", "Rock/B & C.mp3", "http://radio.example/?a=1&b=2"));
    EXPECT_EQ(list.entries[0].title, "Ann - Song");
    EXPECT_EQ(list.entries[0].seconds, 61);
    EXPECT_THAT(list.problems, SizeIs(1));
}

TEST(PlaylistFormats, Xspf_CutShort_IsAProblem)
{
    const Playlist list = ParsePlaylistFile("a.xspf", "<playlist><trackList><track><location>a.mp3</location>");
    EXPECT_THAT(list.entries, IsEmpty());
    EXPECT_THAT(list.problems, SizeIs(1));
    EXPECT_THAT(ParsePlaylistFile("a.xspf", "no list").problems, SizeIs(1));
}

TEST(PlaylistFormats, Asx_IsReadAsPlayersDo)
{
    const Playlist list =
        ParsePlaylistFile("a.asx",
                          "<ASX version = \"3.0\"><Title>Morning</Title>"
                          "<ENTRY><title>Bread & Butter</title><Ref HREF = '..\\Bread & Butter.mp3' />"
                          "<ref href=\"http://mirror.example/\"/><duration value=\"1:02:03.5\"/></ENTRY>"
                          "<entry><ref href=b.mp3><entry><ref href=\"c.mp3\"></entry></ASX>");
    EXPECT_EQ(list.title, "Morning");
    EXPECT_THAT(LocationsOf(list), ElementsAre("../Bread & Butter.mp3", "b.mp3", "c.mp3"));
    EXPECT_EQ(list.entries[0].title, "Bread & Butter");
    EXPECT_EQ(list.entries[0].seconds, 3723);
    EXPECT_THAT(list.problems, IsEmpty());
    EXPECT_THAT(ParsePlaylistFile("a.asx", "<asx><entryref href=\"b.asx\"/></asx>").problems, SizeIs(1));
    EXPECT_THAT(ParsePlaylistFile("a.asx", "<html></html>").problems, SizeIs(1));
}

TEST(MarkupTextTest, DeclarationTellsTheEncoding)
{
    EXPECT_EQ(MarkupText("<?xml version=\"1.0\" encoding='ISO-8859-1'?>\xE4"),
              "<?xml version=\"1.0\" encoding='ISO-8859-1'?>\u00e4");
    EXPECT_EQ(WithoutReferences("&lt;&#65;&#x42;&nothing;&#0;&#xD800;& &amp"), "<AB&nothing;&#0;&#xD800;& &amp");
}

}  // namespace
}  // namespace kesta::formats
