"""What happens when the library is loaded on a file that is not a valid one of its own version, once each."""

import os
import shutil
import sqlite3
import subprocess
import sys

from compare import match_trace
from model import Model
from native import Native, Viewer
from side_by_side import Difference, SideBySide, enter_folder, open_beside

SEEDED = [(("text", b"music"),), (("text", b"gallery"),), (("text", b"document"),), (("text", b"people"),),
          (("text", b"calendar"),), (("text", b"web bookmark"),), (("text", b"Map"),)]
# Holds the file locked until its input ends.
HOLDER = """
import sqlite3, sys
connection = sqlite3.connect(sys.argv[1], isolation_level=None)
connection.execute("BEGIN EXCLUSIVE")
print(flush=True)
sys.stdin.read()
connection.execute("COMMIT")
"""


class Loading:
    """Loads the library on a prepared file and looks at its lines."""

    def __init__(self, folder, library, prepare):
        self.file, runtime = enter_folder(folder)
        os.makedirs(os.path.dirname(self.file))
        self.held = prepare(self.file)
        self.viewer = Viewer(runtime)
        self.native = Native(library)
        self.model = Model(os.path.join(folder, "model.s3db"))
        self.memory = None

    def expect_lines(self, *messages):
        """The lines so far, the memory line of loading left out."""
        lines = [line for line in self.viewer.take() if b" Memory " not in line]
        expected = [("line", f"DB TRACE >> {message}\n") for message in messages]
        error = match_trace(expected, lines, self.memory)
        if error:
            raise Difference(error)

    def expect(self, what, found, expected):
        if found != expected:
            raise Difference(f"{what}: library {found!r}, model {expected!r}")

    def expect_fresh(self):
        connection = open_beside(self.file)
        self.expect("version", connection.execute("SELECT * FROM tVersion").fetchall(), [(5005,)])
        self.expect("main folders", connection.execute("SELECT [Name] FROM tLibMainFolder").fetchall(), SEEDED)
        tables = connection.execute("SELECT COUNT(*) FROM sqlite_master WHERE name = 'tOld'").fetchone()
        self.expect("old tables", tables, (0,))
        connection.close()

    def expect_closed(self):
        """The presets of calls on a closed connection."""
        self.expect("DB_LIB_PhoneDetected", self.native.call("DB_LIB_PhoneDetected", ("351", "n")), -1)
        self.expect("DB_LIB_IsFolderSelected", self.native.call("DB_LIB_IsFolderSelected", ("351", 1000)), 1)
        self.expect("DB_LIB_ClearSyncHistory", self.native.call("DB_LIB_ClearSyncHistory", ("351",)), 0)
        self.expect("DB_MUSIC_IsSyncedFile", self.native.call("DB_MUSIC_IsSyncedFile", ("351", "p", 0)), 0)
        self.expect("DB_LIB_GetSDType", self.native.call("DB_LIB_GetSDType", ("351", 0, 1)), 1)
        self.expect("DB_LIB_MainFoldersChanged", self.native.call("DB_LIB_MainFoldersChanged", (0,)), 1)
        self.expect("DB_Close", self.native.call("DB_Close", ()), 0)
        self.expect_lines("Enter DB_LIB_PhoneDetected(IMEI: 351, Name: n).",
                          "Exit DB_LIB_PhoneDetected() with PhoneID = -1.",
                          "Enter DB_LIB_IsFolderSelected(IMEI: 351, FolderID: 1000).",
                          "Exit DB_LIB_IsFolderSelected() with bSelected = 1.",
                          "Enter DB_LIB_ClearSyncHistory(IMEI: 351).",
                          "Enter DB_MUSIC_IsSyncedFile(IMEI: 351, Path: p).",
                          "Enter DB_LIB_GetSDType(IMEI: 351).", "Exit DB_LIB_GetSDType() with 1.")


def _database(version):
    def prepare(path):
        connection = sqlite3.connect(path)
        connection.execute("CREATE TABLE tOld (a)")
        if version is not None:
            connection.execute("CREATE TABLE tVersion ([Version] INTEGER)")
            connection.executemany("INSERT INTO tVersion VALUES (?)", [(row,) for row in version])
        connection.commit()
        connection.close()
    return prepare


def _bytes(content):
    def prepare(path):
        with open(path, "wb") as file:
            file.write(content)
    return prepare


def _recreated(prepare):
    def scenario(folder, library):
        loading = Loading(folder, library, prepare)
        loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 0.")
        loading.expect_fresh()
    return scenario


def _kept(folder, library):
    loading = Loading(folder, library, _database([5005]))
    loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 0.")
    tables = open_beside(loading.file).execute("SELECT COUNT(*) FROM sqlite_master").fetchone()
    loading.expect("tables", tables, (2,))


def _read_only(version):
    def prepare(path):
        _database([version])(path)
        os.chmod(path, 0o444)

    def scenario(folder, library):
        loading = Loading(folder, library, prepare)
        refused = ("Enter DB_Open().", "Error in DB_Open(), position 1.", "Exit DB_Open() with 19.")
        loading.expect_lines(*refused)
        loading.expect("DB_Open", loading.native.call("DB_Open", ()), 19)
        loading.expect_lines(*refused)
        loading.expect_closed()
        tables = open_beside(loading.file).execute("SELECT COUNT(*) FROM sqlite_master").fetchone()
        loading.expect("tables", tables, (2,))
        os.chmod(loading.file, 0o644)
        loading.expect("DB_Open", loading.native.call("DB_Open", ()), 0)
        loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 0.")
    return scenario


def _locked(folder, library):
    def prepare(path):
        # Locks of one process never stand in each other's way, so another one holds it.
        _database([5005])(path)
        holder = subprocess.Popen([sys.executable, "-c", HOLDER, path], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        holder.stdout.readline()
        return holder

    loading = Loading(folder, library, prepare)
    loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 8398.")
    loading.expect_closed()
    loading.held.communicate()
    loading.expect("DB_Open", loading.native.call("DB_Open", ()), 0)
    loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 0.")
    tables = open_beside(loading.file).execute("SELECT COUNT(*) FROM sqlite_master").fetchone()
    loading.expect("tables", tables, (2,))


def _not_deletable(folder, library):
    # A folder in the file's place exists, can be written to, is no database and cannot be deleted as a file.
    loading = Loading(folder, library, os.mkdir)
    loading.expect_lines("Enter DB_Open().", "Exit DB_Open() with 8398.")
    loading.expect_closed()


def _reopened(folder, library):
    sides = SideBySide(folder, library)
    for _ in range(2):
        sides.step(("call", "DB_Close", ()))
        sides.step(("call", "DB_Open", ()))
        sides.step(("call", "DB_LIB_PhoneDetected", ("351111", "Phone")))
    sides.finish()
    # Loaded again, the library finds its rows and counts its changes from the start.
    sides.native = Native(library)
    sides.model.changed = dict.fromkeys(sides.model.changed, 0)
    sides.check_trace(sides.model.startup())
    sides.step(("call", "DB_LIB_PhoneDetected", ("351111", "Other")))
    sides.step(("call", "DB_LIB_MainFoldersChanged", (0,)))
    sides.finish()


SCENARIOS = {
    "file of another version": _recreated(_database([5004])),
    "file with a higher version": _recreated(_database([5006])),
    "file without a version row": _recreated(_database([])),
    "file without a version table": _recreated(_database(None)),
    "file whose first version differs": _recreated(_database([1, 5005])),
    "version as text": _recreated(_database(["500"])), "no database": _recreated(_bytes(b"not a database\n" * 500)),
    "short file": _recreated(_bytes(b"x")), "empty file": _recreated(_bytes(b"")), "file of this version": _kept,
    "read-only file": _read_only(5005), "read-only file of another version": _read_only(1), "locked file": _locked,
    "a folder in the file's place": _not_deletable, "closed, opened and loaded again": _reopened,
}


def run_all(library, in_child, private_folder):
    """(name, error) of each scenario that fails."""
    for name, scenario in SCENARIOS.items():
        folder = private_folder()

        def work():
            try:
                scenario(folder, library)
            except Difference as difference:
                return "difference", str(difference)
            return None

        try:
            answer = in_child(work)
        finally:
            shutil.rmtree(folder)
        if answer:
            yield name, f"{answer[0]}: {answer[1]}"
