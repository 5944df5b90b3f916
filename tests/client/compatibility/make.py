#!/usr/bin/env python3
"""Lets a client sync a made-up PC with a phone and keeps what both have then as text: usage make.py KESTA.

The paths are part of what is recorded, so PC and phone lie in one fixed folder. Run it with the client whose database,
phone and state files a later one has to go on with, and commit what it writes here.
"""
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys

ROOT = pathlib.Path("/tmp/kesta-compatibility")
HERE = pathlib.Path(__file__).resolve().parent
FIRST_TIME = 1_700_000_000

FILES = {
    "Rock/a.mp3": "a song",
    "Rock/Live/b.mp3": "another song",
    "Rock/Zürich.mp3": "a name beyond ASCII",
    "More/Rock/a.mp3": "the song of a second folder of that name",
    "Pictures/sea.jpg": "a picture",
    "Loose/x.mp3": "a song that only a playlist names",
    "Lists/Mix.m3u8": "#EXTM3U\n#EXTINF:10,A\n../Rock/a.mp3\n../Loose/x.mp3\nhttp://radio.example/stream\n",
    "Lists/Old.m3u": "../More/Rock/a.mp3\n",
    "friends.vcf": "".join(
        f"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:{uid}\r\nFN:{name}\r\nEND:VCARD\r\n"
        for uid, name in (("1", "Ann Example"), ("2", "Bob Example"), ("3", "Cy Example"))
    ),
    "home.ics": "".join(
        f"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nX-WR-CALNAME:{name}\r\nBEGIN:VEVENT\r\nUID:{uid}\r\n"
        f"DTSTAMP:20260101T000000Z\r\nDTSTART:20260201T100000Z\r\nSUMMARY:{what}\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"
        for name, uid, what in (("Home", "1", "Dentist"), ("Work", "2", "Meeting"))
    ),
}

ARGUMENTS = ["--music", "Rock", "--music", "More/Rock", "--images", "Pictures", "--playlists", "Lists", "--bookmarks",
             "bookmarks.html", "--contacts", "friends.vcf", "--calendar", "home.ics"]


def bookmarks(numbers):
    entries = "".join(f'<DT><A HREF="http://site{n}.example/">Site {n}</A>\n' for n in numbers)
    return f"<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><H3>News</H3>\n<DL><p>\n{entries}</DL><p>\n</DL><p>\n"


def write(name, text):
    path = ROOT / "pc" / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(text.encode())
    os.utime(path, (FIRST_TIME, FIRST_TIME))


def sync(kesta, expected):
    arguments = [a if a.startswith("--") else str(ROOT / "pc" / a) for a in ARGUMENTS]
    environment = {"XDG_DATA_HOME": str(ROOT / "data"), "XDG_RUNTIME_DIR": str(ROOT), "TZ": "UTC", "HOME": str(ROOT)}
    run = subprocess.run([kesta, "sync", "--phone", str(ROOT / "phone"), "--imei", "351111", "--name", "Ann's phone"]
                         + arguments, env=environment, capture_output=True, text=True, check=False)
    if run.returncode != expected:
        sys.exit(f"exit code {run.returncode} instead of {expected}\n{run.stdout}{run.stderr}")


def main():
    kesta = os.path.abspath(sys.argv[1])
    shutil.rmtree(ROOT, ignore_errors=True)
    (ROOT / "phone").mkdir(parents=True)
    for name, text in FILES.items():
        write(name, text)
    write("bookmarks.html", bookmarks(range(1, 5)))
    sync(kesta, 0)
    write("bookmarks.html", bookmarks(range(1, 2)))
    sync(kesta, 4)  # three of four are gone: deferred

    data = ROOT / "data" / "NORVIK" / "NORVIK Sync"
    for name, source in (("pc", ROOT / "pc"), ("phone", ROOT / "phone"), ("client", data / "Client")):
        shutil.rmtree(HERE / name, ignore_errors=True)
        shutil.copytree(source, HERE / name)
    with sqlite3.connect(data / "Database" / "KESTA_DB.s3db") as database:
        (HERE / "database.sql").write_text("\n".join(database.iterdump()) + "\n", encoding="utf-8")
    times = sorted((str(p.relative_to(ROOT)), int(p.stat().st_mtime)) for top in ("pc", "phone")
                   for p in (ROOT / top).rglob("*") if p.is_file())
    (HERE / "times.txt").write_text("".join(f"{time} {path}\n" for path, time in times), encoding="utf-8")
    shutil.rmtree(ROOT)


main()
