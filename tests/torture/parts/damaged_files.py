"""Damaged and hostile database files, and damaged or foreign journals beside them.

Flipped bits, pages that are zeroed, swapped, random or there twice, files cut to every length that matters, schemas
that other programs have bent, journals that belong to nobody. The library is loaded on each, every export is called,
and it is loaded once more. No crash, no hang, no result that the contract does not know, no lock left.

A file that SQLite reads and whose version is this one is never thrown away, and a valid one keeps its rows; of a file
that is thrown away the very bytes lie beside the new one.
"""

import os
import random
import re
import shutil
import sqlite3

import calls
from bench import Part
from children import Failure, in_child
from results import check_result, checked_call
from database import VERSION, Damaged, difference, is_complete, read_state
from interposer import FILES, PLANTS, Plan, watch
from loaded import Loaded, held_locks
from parts.damage_by_sql import SCHEMAS, damaged_by

PAGE = 4096
SECTOR = 512
LIMIT = 60           # seconds for one file; a busy wait of the library's takes ten
RANDOM_TRIALS = 20000
REPLACED = re.compile(r"KESTA_DB\.s3db\.replaced-\d{8}-\d{6}(-\d+)?$")


def flip_bits(data, generator):
    data = bytearray(data)
    for _ in range(generator.randrange(1, 9)):
        # Half of them in the first two pages, where the header and the schema are.
        at = generator.randrange(min(len(data), 2 * PAGE) if generator.random() < 0.5 else len(data))
        data[at] ^= 1 << generator.randrange(8)
    return bytes(data)


def change_pages(data, generator):
    pages = [data[at:at + PAGE] for at in range(0, len(data), PAGE)]
    for _ in range(generator.choice((1, 1, 2, 5))):
        one, other = generator.randrange(len(pages)), generator.randrange(len(pages))
        how = generator.randrange(5)
        if how == 0:
            pages[one] = bytes(PAGE)
        elif how == 1:
            pages[one], pages[other] = pages[other], pages[one]
        elif how == 2:
            pages[one] = generator.randbytes(PAGE)
        elif how == 3:
            pages[one] = pages[other]
        else:  # the head of the page only: its kind, its cells, where they are
            pages[one] = generator.randbytes(12) + pages[one][12:]
    return b"".join(pages)


def lengths(size):
    """At, before and after everything that a reader may look for."""
    found = {0, 1, 15, 16, 18, 20, 24, 28, 32, 44, 56, 60, 92, 96, 99, 100, 101, 108, 511, 512, 1024}
    for at in range(PAGE, size, PAGE):
        found.update((at - 1, at, at + 1))
    return sorted(length for length in found if length < size)


def put(data, at, value):
    return data[:at] + value + data[at + len(value):]


def headers(data):
    """Every field of the file's header with what it must not hold."""
    changes = {}
    for at, width in ((16, 2), (18, 1), (19, 1), (20, 1), (21, 1), (22, 1), (23, 1), (24, 4), (28, 4), (32, 4), (36, 4),
                      (40, 4), (44, 4), (48, 4), (52, 4), (56, 4), (60, 4), (64, 4), (68, 4), (92, 4), (96, 4)):
        for name, value in (("zero", 0), ("one", 1), ("two", 2), ("top", 1 << (8 * width - 1)),
                            ("all", (1 << (8 * width)) - 1)):
            changes[f"{at}/{name}"] = put(data, at, value.to_bytes(width, "big"))
    for size in (512, 1024, 8192, 32768, 1000):
        changes[f"16/{size}"] = put(data, 16, size.to_bytes(2, "big"))
    return changes


def journals(image, hot):
    """Name -> the files: database, journal, WAL, shared memory of the WAL."""
    database, journal = hot
    found = {
        "hot": (database, journal),
        "hot beside the finished file": (image, journal),
        "empty": (image, b""),
        "zeroes": (image, bytes(SECTOR)),
        "text": (image, b"this is no journal\n" * 100),
        "header alone": (database, journal[:SECTOR]),
        "other page size": (database, put(journal, 24, (1024).to_bytes(4, "big"))),
        "other sector size": (database, put(journal, 20, (32).to_bytes(4, "big"))),
        "more records than there are": (database, put(journal, 8, b"\x7f\xff\xff\xff")),
        "records not counted": (database, put(journal, 8, b"\xff\xff\xff\xff")),
        "no records": (database, put(journal, 8, bytes(4))),
        "database was empty": (database, put(journal, 16, bytes(4))),
        "database was one page": (database, put(journal, 16, (1).to_bytes(4, "big"))),
        "database was huge": (database, put(journal, 16, b"\x00\x10\x00\x00")),
        "page number zero": (database, put(journal, SECTOR, bytes(4))),
        "page number of the locks": (database, put(journal, SECTOR, (0x40000000 // PAGE + 1).to_bytes(4, "big"))),
        "alone": (None, journal),
        "beside an empty file": (b"", journal),
        "with a second name": (database, journal + b"/nonexistent/KESTA_DB-mj00000000" + (32).to_bytes(4, "big")
                               + bytes(4) + b"\xd9\xd5\x05\xf9\x20\xa1\x63\xd7"),
    }
    for length in range(SECTOR // 2, len(journal), SECTOR // 2):
        found[f"cut to {length}"] = (database, journal[:length])
    wal = write_ahead(image)
    found |= {"write-ahead": wal, "write-ahead, log alone": (wal[0], None, wal[2]),
              "write-ahead, no log": (wal[0],), "write-ahead, empty log": (wal[0], None, b""),
              "write-ahead, memory of nonsense": (wal[0], None, wal[2], b"\xff" * 32768),
              "write-ahead, both journals": (wal[0], journal, wal[2]),
              "write-ahead, foreign log": (image, None, wal[2], wal[3]),
              "write-ahead, log of another": (wal[0], None, put(wal[2], 16, b"saltsalt")),
              "write-ahead of a later version": (put(wal[0], 18, b"\x03\x03"),)}
    for length in (1, 31, 32, 33, 56, 57, 32 + 24 + PAGE - 1, len(wal[2]) - 1):
        found[f"write-ahead, log cut to {length}"] = (wal[0], None, wal[2][:length])
    return found


def is_write_ahead(path):
    """In that mode every open connection holds a lock that keeps nobody out."""
    with open(path, "rb") as file:
        return file.read(20)[19:] == b"\x02"


def write_ahead(image):
    """(database, None, log, its memory) of a file that another program has put into write-ahead mode and is using."""
    folder = os.path.join("/dev/shm" if os.path.isdir("/dev/shm") else "/tmp", f"kesta-wal-{os.getpid()}")
    os.makedirs(folder)
    try:
        path = os.path.join(folder, "db")
        with open(path, "wb") as file:
            file.write(image)
        connection = sqlite3.connect(path, isolation_level=None)
        connection.execute("PRAGMA journal_mode = WAL")
        connection.execute("PRAGMA wal_autocheckpoint = 0")
        connection.execute("UPDATE tPhone SET [WifiMAC] = 'in the log'")
        files = [open(path + suffix, "rb").read() for suffix in ("", "-wal", "-shm")]
        connection.close()
        return files[0], None, files[1], files[2]
    finally:
        shutil.rmtree(folder)


class DamagedFiles(Part):
    name = "damage"
    share = 2
    plants = ("crash", "hang", "delete-database")

    def trials(self):
        self._headers = headers(self.bench.image)
        self._journals = journals(self.bench.image, self.bench.hot)
        fixed = ([f"schema/{name}" for name in SCHEMAS] + [f"journal/{name}" for name in self._journals]
                 + [f"header/{name}" for name in self._headers]
                 + [f"cut/{length}" for length in lengths(len(self.bench.image))])
        random.Random(self.bench.seed).shuffle(fixed)
        first = self.bench.seed * RANDOM_TRIALS
        by_chance = [f"{kind}/{number}" for number in range(first, first + RANDOM_TRIALS)
                     for kind in ("bits", "pages", "journal bits")]
        # Both in turns: what the short form runs of each is then the same share.
        mixed = [trial for pair in zip(fixed, by_chance) for trial in pair]
        return mixed + by_chance[len(fixed):]

    def row(self, trial):
        return {"bits": "flipped bits", "pages": "changed pages", "cut": "cut files", "header": "other headers",
                "schema": "bent schemas", "journal": "odd journals",
                "journal bits": "flipped bits in a journal"}[trial.partition("/")[0]]

    def files(self, trial):
        """Database, journal, log and its memory; None for what is not there."""
        kind, _, what = trial.partition("/")
        if kind == "schema":
            return (damaged_by(self.bench.image, SCHEMAS[what]),)
        if kind == "journal":
            return self._journals[what]
        if kind == "header":
            return (self._headers[what],)
        if kind == "cut":
            return (self.bench.image[:int(what)],)
        generator = random.Random(trial)
        if kind == "bits":
            return (flip_bits(self.bench.image, generator),)
        if kind == "pages":
            return (change_pages(self.bench.image, generator),)
        database, journal = self.bench.hot
        return database, flip_bits(journal, generator)

    def run(self, place, trial):
        files = self.files(trial)
        self.lay_out(place, files)
        kept = self.must_be_kept(place, files)
        before = os.stat(place.database) if os.path.exists(place.database) else None
        plan = watch(0)
        if self.bench.plant:
            plan = Plan(FILES, 5, 0, 0, 0, PLANTS.index(self.bench.plant))

        def work():
            library = Loaded(self.bench, self.bench.library, plan)
            answer = library.call("DB_Open", ())
            check_result("DB_Open", answer)
            if before is not None:
                self.judge_file(place, files, kept, before, answer)
            order = calls.sample_names()
            random.Random(trial).shuffle(order)
            for sample in order:
                checked_call(library, *calls.sample(sample))
            if held_locks(place.database) and not is_write_ahead(place.database):
                raise Failure("a lock stays on the file")
            library.unload()
            library = Loaded(self.bench, self.bench.library)
            check_result("DB_Open", library.call("DB_Open", ()))
            library.unload()

        in_child(work, LIMIT if not self.bench.plant else 5).expect_value()

    @staticmethod
    def lay_out(place, files):
        place.reset_files({place.database + suffix: data
                           for suffix, data in zip(("", "-journal", "-wal", "-shm"), files) if data is not None})

    def must_be_kept(self, place, files):
        """The rows of a valid file; True for a damaged one that can be read and has this version; False for others.
        Asked of SQLite, on a copy."""
        if files[0] is None:
            return False
        copy = os.path.join(place.root, "copy")
        shutil.rmtree(copy, ignore_errors=True)
        shutil.copytree(place.folder, copy)
        path = os.path.join(copy, os.path.basename(place.database))
        connection = sqlite3.connect(path, isolation_level=None)
        try:
            row = connection.execute("SELECT CAST([Version] AS INTEGER) FROM tVersion").fetchone()
            version = row[0] if row else None
        except (sqlite3.Error, OverflowError, UnicodeDecodeError):  # a message with a name that is no text
            version = None
        finally:
            connection.close()
        if version != VERSION:
            return False
        try:
            return read_state(path)
        except (Damaged, UnicodeDecodeError):  # a name that is no text
            return True

    def judge_file(self, place, files, kept, before, answer):
        now = os.stat(place.database) if os.path.exists(place.database) else None
        if now is not None and (now.st_dev, now.st_ino) == (before.st_dev, before.st_ino):
            if isinstance(kept, dict) and answer == 0:
                problem = difference(place.state(), kept)
                if problem:
                    raise Failure(f"the rows are other ones: {problem}")
            return
        if kept:
            raise Failure("the file can be read and is of this version, and was thrown away")
        second = [os.path.join(place.folder, name) for name in os.listdir(place.folder) if REPLACED.match(name)]
        if not second:
            raise Failure("the file was thrown away, and nothing of it is left")
        with open(second[0], "rb") as file:
            data = file.read()
        # A journal may have been played back into it before.
        if os.stat(second[0]).st_ino != before.st_ino and data != files[0] and len(files) == 1:
            raise Failure("the file that was thrown away lies beside the new one with other bytes")
        if answer == 0 and not is_complete(place.state()):
            raise Failure("the new database is incomplete")
