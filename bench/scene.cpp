#include "scene.h"

#include <utf8cpp/utf8.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "bare.h"
#include "library.h"

namespace kesta::bench {
namespace {

using Words = std::array<const char*, 8>;

constexpr Words kArtists = {"The Evening Standards", "Marlowe and the Lamplighters",
                            "Ana Ribeiro",           "Copper Street Orchestra",
                            "North Harbour",         "Delia Whitcombe",
                            "Paper Lanterns",        "Quintet of the Old Mill"};
constexpr Words kAlbums = {"Letters from the Coast", "Live at the Granary", "Eleven Winters",
                           "A Map of Small Things",  "Signal and Distance", "Hours of Daylight",
                           "The Long Way Home",      "Studio Sessions"};
constexpr Words kTitles = {"Overture for a Rainy Day", "Don't Look Down", "Seventeen Bridges", "Halfway to Morning",
                           "Rosemary and Salt",        "The Clockmaker",  "Second Hand Coat",  "Under the Viaduct"};

constexpr Words kAnyArtists = {"Sigríður Þórðardóttir", "Zoë Müller-Brühl", "Анна Соколова", "José Ángel Muñoz",
                               "Ночные огни",           "東京の夜",         "Łukasz Wójcik", "Ελένη Παπαδάκη"};
constexpr Words kAnyAlbums = {"Vögguvísur", "Träume über Köln", "Письма с побережья", "Canción del otoño",
                              "Белые ночи", "雨の日の歌",       "Zażółć gęślą jaźń",  "Θάλασσα"};
constexpr Words kAnyTitles = {
    "Ljósið í norðri", "Für Elise, später 🎵", "Дорога домой", "Mañana será otro día", "Дождь", "桜",
    "Źdźbło trawy",    "Το τραγούδι"};

std::u16string Wide(const std::string& text)
{
    return utf8::utf8to16(text);
}

struct Album {
    std::string artist;
    std::string title;
};

Album AlbumOf(size_t folder, Letters letters)
{
    const bool ascii = letters == Letters::kAscii;
    char year[32];
    std::snprintf(year, sizeof year, " (%zu)", 1960 + folder / 64);
    return {(ascii ? kArtists : kAnyArtists)[folder % 8],
            (ascii ? kAlbums : kAnyAlbums)[folder / 8 % 8] + std::string(year)};
}

/// The `number`-th track, between 1 and 99,999, of a folder.
File MakeTrack(size_t folder, size_t number, Letters letters)
{
    const Album album = AlbumOf(folder, letters);
    const bool ascii = letters == Letters::kAscii;
    char track[32];
    std::snprintf(track, sizeof track, "%02zu ", number);
    const std::string base = (ascii ? "/home/anna/Music/" : "/home/zoë/Música/") + album.artist + "/" + album.title;
    const std::string name = track + std::string((ascii ? kTitles : kAnyTitles)[(folder + number) % 8]) + ".mp3";
    const std::string phone = "/storage/0123-4567/Music/" + album.artist + "/" + album.title + "/" + name;
    const size_t minute = (folder * 31 + number) % 1440;
    char date[80];
    std::snprintf(date, sizeof date, "2026-03-%02zu %02zu:%02zu:00", folder % 28 + 1, minute / 60, minute % 60);
    constexpr double kFirstOfMarch = 46082.0;
    return {Wide(base + "/" + name), Wide(base), Wide(phone),
            kFirstOfMarch + static_cast<double>(folder % 28) + static_cast<double>(minute) / 1440.0, date};
}

}  // namespace

std::string Utf8(const std::u16string& text)
{
    return utf8::utf16to8(text);
}

File MakeFile(size_t n, Letters letters)
{
    return MakeTrack(n / kFilesPerFolder, n % kFilesPerFolder + 1, letters);
}

File MakeNewFile(size_t n, size_t files, Letters letters)
{
    // A sync goes through folder after folder.
    const size_t folders = (files + kFilesPerFolder - 1) / kFilesPerFolder;
    return MakeTrack(n / kFilesPerFolder % folders, 100 + n, letters);
}

PrivateFolder::PrivateFolder(const std::filesystem::path& place)
{
    std::string name = (place / "kesta-bench-XXXXXX").string();
    Require(mkdtemp(name.data()) != nullptr, "a private folder");
    path_ = name;
}

PrivateFolder::~PrivateFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void Require(bool condition, const char* what)
{
    if (condition) return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::exit(1);
}

std::filesystem::path Scene::database() const
{
    return dataHome() / "NORVIK/NORVIK Sync/Database/KESTA_DB.s3db";
}

Scene::Scene(const std::filesystem::path& place, size_t files, Letters letters)
    : folder_(place), files_(files), letters_(letters)
{
    std::filesystem::create_directory(dataHome());
    {
        const Library library(*this);  // makes the database and closes it
        Require(library.PhoneDetected(kImei, u"Anna's phone") == 1, "announcing the phone");
    }
    Bare db(database());
    db.exec("BEGIN");
    for (size_t n = 0; n < files; ++n) {
        const File file = MakeFile(n, letters);
        if (n % kFilesPerFolder == 0) {
            db.exec(("INSERT INTO tMFolder ([PhoneID],[Path],[AddTime]) VALUES (1,'" + Quoted(file.basePath) +
                     "','2026-03-01 10:00:00')")
                        .c_str());
        }
        db.exec(InsertText(file).c_str());
    }
    db.exec("COMMIT");
    db.close();
    std::filesystem::copy_file(database(), bareDatabase());
}

}  // namespace kesta::bench
