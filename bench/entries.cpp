#include "entries.h"

#include <utf8cpp/utf8.h>

#include <array>

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

/// The number with at least so many digits.
std::string Digits(size_t number, size_t atLeast)
{
    const std::string digits = std::to_string(number);
    return digits.size() < atLeast ? std::string(atLeast - digits.size(), '0') + digits : digits;
}

Time InMarch(size_t day, size_t minute)
{
    day %= 28;
    minute %= 1440;
    constexpr double kFirstOfMarch = 46082.0;
    return {kFirstOfMarch + static_cast<double>(day) + static_cast<double>(minute) / 1440.0,
            "2026-03-" + Digits(day + 1, 2) + " " + Digits(minute / 60, 2) + ":" + Digits(minute % 60, 2) + ":00"};
}

struct Album {
    std::string artist;
    std::string title;
};

Album AlbumOf(size_t folder, Letters letters)
{
    const bool ascii = letters == Letters::kAscii;
    return {(ascii ? kArtists : kAnyArtists)[folder % 8],
            std::string((ascii ? kAlbums : kAnyAlbums)[folder / 8 % 8]) + " (" + Digits(1960 + folder / 64, 4) + ")"};
}

/// The `number`-th track, between 1 and 99,999, of a folder.
File MakeTrack(size_t folder, size_t number, Letters letters)
{
    const Album album = AlbumOf(folder, letters);
    const bool ascii = letters == Letters::kAscii;
    const std::string base = (ascii ? "/home/anna/Music/" : "/home/zoë/Música/") + album.artist + "/" + album.title;
    const std::string name = Digits(number, 2) + " " + (ascii ? kTitles : kAnyTitles)[(folder + number) % 8] + ".mp3";
    const std::string phone = "/storage/0123-4567/Music/" + album.artist + "/" + album.title + "/" + name;
    return {Wide(base + "/" + name), Wide(base), Wide(phone), InMarch(folder, folder * 31 + number)};
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

Playlist MakePlaylist(size_t n, size_t revision, Letters letters)
{
    const bool ascii = letters == Letters::kAscii;
    const std::string file = (ascii ? kTitles : kAnyTitles)[n % 8] + (" " + Digits(n, 4)) + ".m3u8";
    const size_t files = 10 + n % 40 + revision;
    return {Wide((ascii ? "/home/anna/Music/Playlists/" : "/home/zoë/Música/Playlists/") + file),
            n % 2 == 0 ? Wide("/storage/0123-4567/Playlists/" + file) : std::u16string(),
            Wide(Digits(revision, 8) + Digits(n * 2654435761 % 100'000'000, 24)), static_cast<int>(files),
            static_cast<int64_t>(files) * 5'123'456};
}

BookmarkTexts MakeBookmark(size_t n, Letters letters)
{
    const bool ascii = letters == Letters::kAscii;
    const std::string title = (ascii ? kTitles : kAnyTitles)[n % 8];
    const std::string artist = (ascii ? kArtists : kAnyArtists)[n / 8 % 8];
    return {Wide(title + " by " + artist + " - music and lyrics"),
            Wide("https://www.example.org/music/" + (ascii ? std::string("album") : artist) + "/" + Digits(n, 6) +
                 "?source=bookmarks"),
            Wide("item-" + Digits(n, 6))};
}

Contact MakeContact(size_t n, Letters letters)
{
    const std::string name = letters == Letters::kAscii ? "card" : kAnyArtists[n % 8];
    Contact contact = {Wide(name + "-7d1f04a2-93c6-4e58-b0a7-" + Digits(n, 12)), {}};
    contact.data.resize(kContactBytes);
    for (size_t i = 0; i < kContactBytes; ++i) {
        contact.data[i] = static_cast<uint8_t>(n + i * 31);
    }
    return contact;
}

LogEntry MakeLogEntry(size_t n, Letters letters)
{
    return {MakeContact(n, letters).id, Wide(Digits(n, 8)), InMarch(n, n * 17), InMarch(n, n * 17 + 5)};
}

}  // namespace kesta::bench
