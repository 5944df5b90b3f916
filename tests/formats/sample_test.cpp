// Files that other people wrote: what Debian's packages carry, named by package. fetch_samples.sh gets them.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "formats/bookmarks.h"
#include "formats/icalendar.h"
#include "formats/playlist.h"
#include "formats/vcard.h"
#include "fuzz/properties.h"

namespace kesta::formats {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string Contents(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    std::ostringstream contents;
    contents << in.rdbuf();
    return contents.str();
}

fs::path Package(const std::string& name)
{
    return fs::path(KESTA_FORMAT_SAMPLES) / name;
}

std::vector<fs::path> FilesOf(const std::string& package, const std::string& extension)
{
    std::vector<fs::path> files;
    for (const auto& file : fs::recursive_directory_iterator(Package(package))) {
        if (file.is_regular_file() && file.path().extension() == extension) {
            files.push_back(file.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

fs::path FileOf(const std::string& package, const std::string& name)
{
    for (const auto& file : fs::recursive_directory_iterator(Package(package))) {
        if (file.path().filename() == name) {
            return file.path();
        }
    }
    ADD_FAILURE() << package << " has no " << name;
    return {};
}

#define NEED_PACKAGE(name) \
    if (!fs::exists(Package(name))) GTEST_SKIP() << "the package " << (name) << " could not be fetched"

TEST(Samples, Rolo_Contacts)
{
    NEED_PACKAGE("rolo");
    const Cards cards = ParseCards(Contents(FileOf("rolo", "contacts.vcf")));
    EXPECT_THAT(cards.problems, IsEmpty());
    ASSERT_FALSE(cards.cards.empty());
    EXPECT_EQ(cards.cards[0].name, "Mr. John Q. Public, Esq.");
    EXPECT_EQ(cards.cards[0].uid, "19950401-080045-40000F192713-0052");
    EXPECT_THAT(cards.cards[0].categories, ElementsAre("TRAVEL AGENT"));
    EXPECT_EQ(cards.cards[0].version, "3.0");
    EXPECT_EQ(cards.cards[0].revised, 879552000);
}

TEST(Samples, RdfVcard_SmallLetters)
{
    NEED_PACKAGE("librdf-vcard-perl");
    const Cards cards = ParseCards(Contents(FileOf("librdf-vcard-perl", "example.vcard")));
    EXPECT_THAT(cards.problems, IsEmpty());
    ASSERT_THAT(cards.cards, SizeIs(2));
    EXPECT_EQ(cards.cards[0].name, "Toby Inkster");
    EXPECT_EQ(cards.cards[1].name, "Test 2");
}

TEST(Samples, SabreVobject_FoldedPhoto)
{
    NEED_PACKAGE("php-sabre-vobject");
    const auto files = FilesOf("php-sabre-vobject", ".vcf");
    ASSERT_THAT(files, SizeIs(1));
    const std::string file = Contents(files[0]);
    const Cards cards = ParseCards(file);
    EXPECT_THAT(cards.problems, IsEmpty());
    ASSERT_THAT(cards.cards, SizeIs(1));
    EXPECT_EQ(cards.cards[0].name, "Test Benutzer");
    EXPECT_EQ(cards.cards[0].bytes, file);
}

TEST(Samples, EvolutionDataServer_CardsAndBareEntries)
{
    NEED_PACKAGE("evolution-data-server-tests");
    const auto cards = FilesOf("evolution-data-server-tests", ".vcf");
    ASSERT_GE(cards.size(), 30U);
    for (const fs::path& file : cards) {
        const Cards result = ParseCards(Contents(file));
        EXPECT_THAT(result.problems, IsEmpty()) << file;
        EXPECT_THAT(result.cards, SizeIs(1)) << file;
    }
    const auto events = FilesOf("evolution-data-server-tests", ".ics");
    ASSERT_GE(events.size(), 20U);
    for (const fs::path& file : events) {
        const Calendars result = ParseCalendars(Contents(file));
        EXPECT_THAT(result.problems, IsEmpty()) << file;
        EXPECT_THAT(result.entries, SizeIs(1)) << file;
    }
}

TEST(Samples, PythonIcalendar_EmptyLinesInFolds)
{
    NEED_PACKAGE("python3-icalendar");
    const Calendars result = ParseCalendars(Contents(FileOf("python3-icalendar", "multiple.ics")));
    EXPECT_THAT(result.problems, IsEmpty());
    ASSERT_FALSE(result.entries.empty());
    EXPECT_EQ(result.entries[0].uid, "956630271");
    EXPECT_EQ(result.entries[0].summary, "Christmas Day");
}

TEST(Samples, Totem_Playlists)
{
    NEED_PACKAGE("totem-pl-parser");
    const auto read = [](const char* name) {
        return ParsePlaylist(Contents(FileOf("totem-pl-parser", name)), PlaylistEncoding::kByValidity);
    };
    const Playlist relative = read("relative.m3u");
    ASSERT_THAT(relative.entries, SizeIs(1));
    EXPECT_TRUE((relative.entries[0].location == Location{LocationKind::kRelative, "3gpp-file.mp4"}));
    const Playlist song = read("O_G_Money_Snoop_Dogg.m3u");
    ASSERT_THAT(song.entries, SizeIs(1));
    EXPECT_EQ(song.entries[0].title, "O G Money - Girl Gotta girlfriend Feat. O G Money, Snoop Dogg");
    EXPECT_EQ(song.entries[0].location.kind, LocationKind::kUrl);
    EXPECT_EQ(read("live-streaming.m3u").entries.at(0).seconds, 5220);
}

TEST(Samples, Shaarli_ExportTemplate)
{
    NEED_PACKAGE("shaarli");
    const Bookmarks result = ParseBookmarks(Contents(FileOf("shaarli", "export.bookmarks.html")));
    EXPECT_THAT(result.problems, IsEmpty());
    ASSERT_THAT(result.bookmarks, SizeIs(1));
    EXPECT_EQ(result.bookmarks[0].url, "{$value.url}");
    EXPECT_EQ(result.bookmarks[0].kind, LinkKind::kOther);
}

TEST(Samples, NetscapeBookmarkParser_ExportsOfManyPrograms)
{
    NEED_PACKAGE("php-netscape-bookmark-parser");
    size_t read = 0;
    for (const char* extension : {".htm", ".html"}) {
        for (const fs::path& file : FilesOf("php-netscape-bookmark-parser", extension)) {
            SCOPED_TRACE(file.string());
            const std::string contents = Contents(file);
            test::FormatNamed("bookmarks").check(contents);
            if (!ParseBookmarks(contents).bookmarks.empty()) {
                ++read;
            }
        }
    }
    EXPECT_GE(read, 5U);
}

TEST(Samples, EveryFile_KeepsTheProperties)
{
    size_t files = 0;
    if (!fs::exists(KESTA_FORMAT_SAMPLES)) {
        GTEST_SKIP() << "no package could be fetched";
    }
    for (const auto& file : fs::recursive_directory_iterator(KESTA_FORMAT_SAMPLES)) {
        // Time zones by the hundred, all alike.
        if (!file.is_regular_file() || file.path().generic_string().find("/zoneinfo/") != std::string::npos) {
            continue;
        }
        const std::string extension = file.path().extension().string();
        SCOPED_TRACE(file.path().string());
        const bool isCard = extension == ".vcf" || extension == ".vcard";
        if (isCard) {
            test::FormatNamed("cards").check(Contents(file.path()));
        }
        if (extension == ".ics") {
            test::FormatNamed("calendars").check(Contents(file.path()));
        }
        if (IsPlaylistName(file.path().string())) {
            test::FormatNamed("playlist").check(Contents(file.path()));
        }
        if (isCard || extension == ".ics") {
            ++files;
        }
    }
    if (files == 0) {
        GTEST_SKIP() << "no package could be fetched";
    }
}

}  // namespace
}  // namespace kesta::formats
