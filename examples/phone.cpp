// Announces a phone, records a synced folder, lists it, and takes a playlist through its life. In C++.
#include <iostream>
#include <kesta_db/kesta_db.hpp>

namespace {

void ShowPlaylists(kesta_db::Playlists& lists)
{
    const std::vector<kesta_db::Playlist> all = lists.all();
    for (const kesta_db::Playlist& list : all)
        std::cout << "playlist " << list.name << ": state " << static_cast<int>(list.state) << '\n';
    if (all.empty()) std::cout << "no playlists\n";
}

void Run()
{
    using namespace std::chrono_literals;
    const std::string imei = "356938035643809";

    kesta_db::Database db;
    db.phones().announce(imei, "Ann's phone");

    kesta_db::Media music = db.media(imei, kesta_db::Category::kMusic);
    music.addFolder({.path = "/home/ann/Music", .count = 1, .size = 4'000'000});
    music.addFile({"/home/ann/Music/song.mp3", "/home/ann/Music", "Music/song.mp3",
                   std::chrono::local_days(2024y / 2 / 29) + 12h});
    for (const kesta_db::File& file : music.files()) std::cout << file.path << " -> " << file.phonePath << '\n';

    kesta_db::Playlists lists = db.playlists(imei);
    lists.beginConfirming();
    lists.confirm({.name = "Party", .digest = "c0ffee", .count = 1});
    lists.setMembers("Party", {"/home/ann/Music/song.mp3"});
    ShowPlaylists(lists);
    lists.setAdded("Party", "42");
    ShowPlaylists(lists);
    for (const std::string& member : lists.members("Party")) std::cout << "  " << member << '\n';
    lists.forget("Party");
    ShowPlaylists(lists);
    lists.setDeleted("Party");
    ShowPlaylists(lists);
}

}  // namespace

int main()
{
    try {
        Run();
        return 0;
    } catch (const kesta_db::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
