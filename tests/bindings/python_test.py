"""The Python package over the built library: layout, functions, and each family once through its life."""

import ctypes
import os
import re
import sys
import unittest
from datetime import datetime
from pathlib import Path

import header_layout

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bindings/python/src"))

import kesta_db  # noqa: E402
from kesta_db import _library, _records  # noqa: E402

HEADER = ROOT / "include/kesta_db/kesta_db.h"
EXPORTS = ROOT / "exports/kesta_db.def"
NOON = datetime(2024, 2, 29, 12, 34, 56)
IMEI = "490154203237518"


def code_of(call, *arguments):
    """The code of the error that the call raises; None if it raises none."""
    try:
        call(*arguments)
    except kesta_db.Error as error:
        return error.code
    return None


class Interface(unittest.TestCase):
    def test_layout_is_the_headers(self):
        lines = []
        for record in _records.RECORDS:
            lines.append(f"{record.__name__} {ctypes.sizeof(record)}")
            lines += [f"{record.__name__}.{name} {getattr(record, name).offset}" for name, *_ in record._fields_]
        compiler = os.environ.get("CC", "cc")
        self.assertEqual(sorted(lines), sorted(header_layout.layout(HEADER, compiler)))

    def test_functions_are_the_headers(self):
        """Their names, and of each argument whether it is a text, a number or a pointer to which record."""
        text = re.sub(r"/\*.*?\*/", "", HEADER.read_text(encoding="utf-8"), flags=re.S)
        declared = {}
        for name, arguments in re.findall(r"KESTA_DB_CALL (DB_\w+)\(([^)]*)\);", text):
            kinds = []
            for argument in [] if arguments.strip() == "void" else arguments.split(","):
                type_name = re.sub(r"\bconst\b|\w+\s*$", "", argument.strip()).replace(" ", "")
                kinds.append(type_name)
            declared[name] = kinds
        kind_of = {_records.Text: "DbChar*", ctypes.c_int32: "int32_t",
                   ctypes.POINTER(_records.Text): "DbChar**", ctypes.POINTER(ctypes.c_int32): "int32_t*"}
        kind_of.update({ctypes.POINTER(record): record.__name__ + "*" for record in _records.RECORDS})
        ours = {name: [kind_of[t] for t in types] for name, types in _library.FUNCTIONS.items()}
        listed = re.findall(r"^\s+DB_\w+\s+@\d+$", EXPORTS.read_text(encoding="ascii"), flags=re.M)
        self.assertEqual(len(ours), len(listed))
        self.assertEqual(ours, declared)

    def test_version_is_the_headers(self):
        version = re.search(r'^#define KESTA_DB_VERSION "(.*)"', HEADER.read_text(encoding="utf-8"), flags=re.M)[1]
        self.assertEqual(kesta_db.__version__, version)

    def test_dates_go_there_and_back(self):
        for when in (NOON, datetime(1899, 12, 30), datetime(1895, 3, 4, 5, 6, 7), datetime(100, 1, 1),
                     datetime(9999, 12, 31, 23, 59, 59)):
            self.assertEqual(_library.from_date_value(_library.to_date_value(when)), when)
        self.assertIsNone(_library.from_date_value(_library.to_date_value(None)))


class Families(unittest.TestCase):
    def setUp(self):
        self.db = kesta_db.Database()
        self.db.phones.announce(IMEI, "Ann's phone ☎")
        self.db.phones.forget_synced_files(IMEI)

    def test_phone(self):
        phone = self.db.phones.find(IMEI)
        self.assertEqual(phone.name, "Ann's phone ☎")
        phone.photo_path, phone.auto_sync, phone.calendar_start = "/home/ann/Photos 🎵", True, NOON
        self.db.phones.update(phone)
        self.assertEqual(self.db.phones.find(IMEI), phone)
        self.assertIn(phone, self.db.phones.all())
        self.assertIsNone(self.db.phones.find("000"))
        self.db.phones.set_last_sync(IMEI, NOON)
        self.assertEqual(self.db.phones.last_sync(IMEI), NOON)
        self.assertEqual(len(self.db.phones.main_folders()), 7)
        self.db.phones.select(IMEI, kesta_db.MainFolder.MUSIC, True)
        self.assertTrue(self.db.phones.is_selected(IMEI, kesta_db.MainFolder.MUSIC))

    def test_media(self):
        music = self.db.media(IMEI, kesta_db.Category.MUSIC)
        music.add_folder(kesta_db.Folder("/m/Rock 'n' Roll", count=2, size=5_000_000_000))
        file = kesta_db.File("/m/Rock 'n' Roll/🎵.mp3", "/m/Rock 'n' Roll", "Music/1.mp3", NOON)
        self.assertTrue(music.add_file(file))
        self.assertFalse(music.add_file(file))
        self.assertEqual(list(music), [file])
        file.modified = None
        music.update_file(file)
        self.assertEqual(music.files(), [file])
        folder, = music.folders()
        self.assertEqual((folder.path, folder.size, folder.selected), ("/m/Rock 'n' Roll", 5_000_000_000, True))
        music.remove_file(file.path)
        self.assertEqual(music.files(), [])
        music.remove_folder("/m/Rock 'n' Roll")
        self.assertEqual(music.folders(), [])
        too_long = kesta_db.Folder("x" * 50_000)
        self.assertEqual(code_of(music.add_folder, too_long), kesta_db.Code.NOT_STORED)

    def test_playlist(self):
        lists = self.db.playlists(IMEI)
        lists.begin_confirming()
        lists.confirm(kesta_db.Playlist("Party", "c0ffee", count=2))
        lists.set_members("Party", ["/m/b.mp3", "/m/ä.mp3", "/m/b.mp3"])
        self.assertEqual(lists.members("Party"), ["/m/b.mp3", "/m/ä.mp3"])
        party, = lists.all()
        self.assertEqual((party.state, party.id_in_phone), (kesta_db.PlaylistState.NEW, None))
        lists.set_added("Party", "42")
        party, = lists.all()
        self.assertEqual((party.state, party.id_in_phone), (kesta_db.PlaylistState.CURRENT, "42"))
        lists.forget("Party")
        lists.set_deleted("Party")
        self.assertEqual(lists.all(), [])

    def test_bookmarks(self):
        bookmarks = self.db.bookmarks(IMEI)
        bookmarks.remove_all()
        bookmark = kesta_db.Bookmark("https://example.org/é", "A 'title'", "m1", 0, 2)
        self.assertTrue(bookmarks.add(bookmark))
        self.assertFalse(bookmarks.add(bookmark))
        self.assertEqual(list(bookmarks), [bookmark])
        bookmarks.remove(bookmark.url)
        self.assertEqual(bookmarks.all(), [])

    def test_backups_have_no_table(self):
        self.assertEqual(code_of(self.db.backups.all), kesta_db.Code.FAILED)
        self.assertEqual(code_of(self.db.backups.add, IMEI, kesta_db.Backup("/b.zip")), kesta_db.Code.FAILED)

    def test_pim(self):
        store, kind = self.db.pim_store, 88
        store.remove_all(kind)
        store.add_folder(kesta_db.PimFolder("py-f", "Friends", kind))
        item = kesta_db.PimItem("py-i", b"BEGIN\0END\xff", kind)
        store.add_item("Friends", item)
        self.assertEqual(store.items("py-f"), [item])
        store.update_item(kesta_db.PimItem("py-i", b"", kind))
        self.assertEqual(store.items("py-f")[0].data, b"")
        self.assertEqual([folder.id for folder in store.folders(kind, recursive=True)], ["py-f"])
        store.remove_all(kind)
        self.assertEqual(store.folders(kind), [])

        log = self.db.pim_log(IMEI, 1500)
        log.clear()
        rows = [kesta_db.PimLogRow("g1", "l1", NOON, None), kesta_db.PimLogRow("g2", "l2", None, NOON)]
        log.append(rows)
        self.assertEqual(list(log), rows)
        log.profile = "by 'hand'"
        self.assertEqual(log.profile, "by 'hand'")
        log.clear()
        self.assertEqual(log.rows(), [])

    def test_texts_that_cannot_be_passed_on_are_refused(self):
        self.assertEqual(code_of(self.db.phones.announce, "x' OR 1 --", ""), kesta_db.Code.INVALID_TEXT)
        self.assertEqual(code_of(self.db.phones.announce, "é", ""), kesta_db.Code.INVALID_TEXT)
        music = self.db.media(IMEI, kesta_db.Category.MUSIC)
        self.assertEqual(code_of(music.remove_file, "a\0b"), kesta_db.Code.INVALID_TEXT)
        self.assertEqual(code_of(music.remove_file, "\ud800"), kesta_db.Code.INVALID_TEXT)


if __name__ == "__main__":
    unittest.main()
