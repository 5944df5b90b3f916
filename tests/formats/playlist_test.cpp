#include <gmock/gmock.h>

#include "formats/playlist.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = LocationKind;

struct LocationCase {
    std::string_view line;
    std::optional<Location> expected;
};

TEST(PlaylistLocation, Rules)
{
    using namespace std::string_view_literals;
    const LocationCase cases[] = {
        {"a.mp3", Location{Kind::kRelative, "a.mp3"}},
        {"Rock/a.mp3", Location{Kind::kRelative, "Rock/a.mp3"}},
        {"Rock\\Live\\a.mp3", Location{Kind::kRelative, "Rock/Live/a.mp3"}},
        {"..\\a.mp3", Location{Kind::kRelative, "../a.mp3"}},
        {"./a.mp3", Location{Kind::kRelative, "a.mp3"}},
        {".//./a.mp3", Location{Kind::kRelative, "a.mp3"}},
        {"Music/AC\\DC.mp3", Location{Kind::kRelative, "Music/AC\\DC.mp3"}},
        {" leading blank.mp3", Location{Kind::kRelative, " leading blank.mp3"}},
        {"100% %41.mp3", Location{Kind::kRelative, "100% %41.mp3"}},
        {"What: a song.mp3", Location{Kind::kRelative, "What: a song.mp3"}},
        {"/home/me/a.mp3", Location{Kind::kAbsolute, "/home/me/a.mp3"}},
        {"\\Music\\a.mp3", Location{Kind::kAbsolute, "/Music/a.mp3"}},
        {"C:\\Music\\a.mp3", Location{Kind::kDrive, "C:/Music/a.mp3"}},
        {"d:/Music\\a.mp3", Location{Kind::kDrive, "d:/Music/a.mp3"}},
        {"\\\\box\\share\\a.mp3", Location{Kind::kServer, "//box/share/a.mp3"}},
        {"//box/share/a.mp3", Location{Kind::kServer, "//box/share/a.mp3"}},
        {"http://radio.example/live?x=1", Location{Kind::kUrl, "http://radio.example/live?x=1"}},
        {"  RTSP://radio.example/ ", Location{Kind::kUrl, "RTSP://radio.example/"}},
        {"file:///home/me/%C3%84%20b.mp3", Location{Kind::kAbsolute, "/home/me/Ä b.mp3"}},
        {"file:///home/me/%C4.mp3", Location{Kind::kAbsolute, "/home/me/Ä.mp3"}},
        {"FILE://localhost/home/a%.mp3", Location{Kind::kAbsolute, "/home/a%.mp3"}},
        {"file:/home/a#1.mp3", Location{Kind::kAbsolute, "/home/a#1.mp3"}},
        {"file:///C:/Music/a.mp3", Location{Kind::kDrive, "C:/Music/a.mp3"}},
        {"file:///c|/Music/a.mp3", Location{Kind::kDrive, "c:/Music/a.mp3"}},
        {"file://C:/Music/a.mp3", Location{Kind::kDrive, "C:/Music/a.mp3"}},
        {"file:///C:\\Music\\a.mp3", Location{Kind::kDrive, "C:/Music/a.mp3"}},
        {"file://box/share/a.mp3", Location{Kind::kServer, "//box/share/a.mp3"}},
        {"file://///box/share/a.mp3", Location{Kind::kServer, "///box/share/a.mp3"}},
        {"file:///home/%00.mp3", std::nullopt},
        {"file:///", std::nullopt},
        {"file:////", std::nullopt},
        {"file://", std::nullopt},
        {"file://\\", std::nullopt},
        {"file://localhost/", std::nullopt},
        {"a\0b"sv, std::nullopt},
        {"./", std::nullopt},
        {"\\\\", std::nullopt},
        {" \t", std::nullopt},
    };
    for (const LocationCase& c : cases) {
        EXPECT_TRUE(ParseLocation(c.line) == c.expected) << c.line;
    }
}

TEST(PlaylistLocation, PathOf_JoinsRelativeOnesOnly)
{
    EXPECT_EQ(PathOf({Kind::kRelative, "../a.mp3"}, "/home/me/Lists"), "/home/me/Lists/../a.mp3");
    EXPECT_EQ(PathOf({Kind::kRelative, "a.mp3"}, "/"), "/a.mp3");
    EXPECT_EQ(PathOf({Kind::kDrive, "C:/a.mp3"}, "/home"), "C:/a.mp3");
    EXPECT_EQ(PathOf({Kind::kUrl, "http://x/"}, "/home"), std::nullopt);
}

std::vector<std::string> Texts(const Playlist& playlist)
{
    std::vector<std::string> texts;
    for (const PlaylistEntry& entry : playlist.entries) {
        texts.push_back(entry.location.text);
    }
    return texts;
}

TEST(Playlist, LineBreaksOfAnyKind_BlankLinesAndComments)
{
    const Playlist playlist = ParsePlaylist("#EXTM3U\ra\r\n\n# note\nb\n   \nc", PlaylistEncoding::kByValidity);
    EXPECT_THAT(Texts(playlist), ElementsAre("a", "b", "c"));
    EXPECT_EQ(playlist.entries[1].line, 5U);
    EXPECT_THAT(playlist.problems, IsEmpty());
}

TEST(Playlist, Duplicates_StayInOrder)
{
    EXPECT_THAT(Texts(ParsePlaylist("b\na\nb\n", PlaylistEncoding::kUtf8)), ElementsAre("b", "a", "b"));
}

TEST(Playlist, Info_BelongsToTheNextEntryOnly)
{
    const Playlist playlist = ParsePlaylist(
        "#EXTM3U\n#PLAYLIST: Mix \n#EXTINF:215,Ann - Song, live\n\na\nb\n#extinf:-1 tvg-name=\"x,y\",Radio\nhttp://r/\n"
        "#EXTINF:9.5,\nc\n\t#EXTINF:7,Indented\nd\n",
        PlaylistEncoding::kUtf8);
    EXPECT_EQ(playlist.title, "Mix");
    ASSERT_THAT(playlist.entries, SizeIs(5));
    EXPECT_EQ(playlist.entries[0].title, "Ann - Song, live");
    EXPECT_EQ(playlist.entries[0].seconds, 215);
    EXPECT_EQ(playlist.entries[1].title, "");
    EXPECT_EQ(playlist.entries[1].seconds, std::nullopt);
    EXPECT_EQ(playlist.entries[2].title, "Radio");
    EXPECT_EQ(playlist.entries[2].seconds, std::nullopt);
    EXPECT_EQ(playlist.entries[3].seconds, 9);
    EXPECT_EQ(playlist.entries[4].title, "Indented");
}

TEST(Playlist, Encodings)
{
    using namespace std::string_view_literals;
    EXPECT_THAT(Texts(ParsePlaylist("\xEF\xBB\xBF\xC3\x84.mp3", PlaylistEncoding::kByValidity)), ElementsAre("Ä.mp3"));
    EXPECT_THAT(Texts(ParsePlaylist("\xC4 \x80.mp3", PlaylistEncoding::kByValidity)), ElementsAre("Ä €.mp3"));
    EXPECT_THAT(Texts(ParsePlaylist("\xFF\xFE\x61\0\x3D\xD8\x00\xDE"sv, PlaylistEncoding::kUtf8)), ElementsAre("a😀"));
    EXPECT_THAT(Texts(ParsePlaylist("\xFE\xFF\0\x61\xD8\x3D"sv, PlaylistEncoding::kUtf8)), ElementsAre("a\uFFFD"));
    const Playlist wrong = ParsePlaylist("\xC4.mp3", PlaylistEncoding::kUtf8);
    EXPECT_THAT(Texts(wrong), ElementsAre("Ä.mp3"));
    EXPECT_THAT(wrong.problems, SizeIs(1));
    EXPECT_EQ(EncodingOf("Mix.M3U8"), PlaylistEncoding::kUtf8);
    EXPECT_EQ(EncodingOf("Mix.m3u"), PlaylistEncoding::kByValidity);
    EXPECT_TRUE(IsPlaylistName("a.m3u") && IsPlaylistName("a.M3U8"));
    EXPECT_FALSE(IsPlaylistName("a.mp3"));
}

TEST(Playlist, ImpossibleEntry_IsReportedWithItsLine)
{
    const Playlist playlist = ParsePlaylist("a\nfile:///%00\nb", PlaylistEncoding::kUtf8);
    EXPECT_THAT(Texts(playlist), ElementsAre("a", "b"));
    EXPECT_THAT(playlist.problems, ElementsAre(Problem{2, "not the name of a file"}));
}

TEST(WritePlaylist, WritesWhatIsReadBack)
{
    const std::vector<PlaylistEntry> entries = {{{Kind::kRelative, "Rock/a.mp3"}, "Song\nlive", 12, 0},
                                                {{Kind::kRelative, "#1.mp3"}, "", {}, 0},
                                                {{Kind::kRelative, "AC\\DC.mp3"}, "T", {}, 0},
                                                {{Kind::kRelative, "C:/x.mp3"}, "", {}, 0},
                                                {{Kind::kRelative, " "}, "", {}, 0}};
    const auto text = WritePlaylist("My mix", entries);
    EXPECT_EQ(text,
              "#EXTM3U\n#PLAYLIST:My mix\n#EXTINF:12,Song live\nRock/a.mp3\n./#1.mp3\n#EXTINF:-1,T\n./AC\\DC.mp3\n"
              "./C:/x.mp3\n./ \n");
    EXPECT_THAT(Texts(ParsePlaylist(*text, PlaylistEncoding::kUtf8)),
                ElementsAre("Rock/a.mp3", "#1.mp3", "AC\\DC.mp3", "C:/x.mp3", " "));
}

TEST(WritePlaylist, UnwritableNames_GiveNothing)
{
    for (const char* name : {"a\nb", "a\rb", "\xC4", ""}) {
        EXPECT_EQ(WritePlaylist("", std::vector<PlaylistEntry>{{{Kind::kRelative, name}, "", {}, 0}}), std::nullopt);
    }
}

}  // namespace
}  // namespace kesta::formats
