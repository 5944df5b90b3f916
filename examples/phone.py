"""Announces a phone, records a synced folder, lists it, and takes a playlist through its life. In Python."""

from datetime import datetime

import kesta_db

IMEI = "356938035643809"


def show_playlists(lists):
    for playlist in lists:
        print(f"playlist {playlist.name}: state {playlist.state}")
    if not lists.all():
        print("no playlists")


db = kesta_db.Database()
db.phones.announce(IMEI, "Ann's phone")

music = db.media(IMEI, kesta_db.Category.MUSIC)
music.add_folder(kesta_db.Folder("/home/ann/Music", count=1, size=4_000_000))
music.add_file(kesta_db.File("/home/ann/Music/song.mp3", "/home/ann/Music", "Music/song.mp3", datetime(2024, 2, 29, 12)))
for file in music:
    print(f"{file.path} -> {file.phone_path}")

lists = db.playlists(IMEI)
lists.begin_confirming()
lists.confirm(kesta_db.Playlist("Party", "c0ffee", count=1))
lists.set_members("Party", ["/home/ann/Music/song.mp3"])
show_playlists(lists)
lists.set_added("Party", "42")
show_playlists(lists)
for member in lists.members("Party"):
    print(f"  {member}")
lists.forget("Party")
show_playlists(lists)
lists.set_deleted("Party")
show_playlists(lists)
