"""One run: the library in a private data folder beside the model, step by step."""

import datetime
import os
import re
import sqlite3
import time

import records
from compare import (Memory, first_difference, match_loose, match_trace, same_value, short)
from model import Model
from native import Native, Viewer

DATABASE = os.path.join("NORVIK", "NORVIK Sync", "Database", "KESTA_DB.s3db")
KEPT = ("rec", "list", "outdate", "outint", "outnames", "outlog", "buffer", "outslot")
# Exports that store the time of the call, with their tables.
ADD_TIME = {"DB_MUSIC_AddFolder": "tMFolder", "DB_IMAGE_AddFolder": "tIFolder", "DB_VIDEO_AddFolder": "tVFolder",
            "DB_DOCUMENT_AddFolder": "tDFolder", "DB_PLAYERMUSIC_AddPlaylist": "tPFolder"}
# Half an hour off and with a summer time, so that a conversion too many or too few shows.
ZONE = "TST-5:30TSU,M3.5.0,M10.5.0/3"
CLOCK_TOLERANCE = 5  # seconds
_INSERT_TIME = re.compile(rb", '([^']*)'\);\.\n\Z")


class Difference(Exception):
    """The library and the model part."""


def enter_folder(folder):
    """Makes this process use private folders below the given one. Must come before the library is loaded."""
    data, runtime = os.path.join(folder, "data"), os.path.join(folder, "run")
    for path in (data, runtime):
        os.makedirs(path, 0o700)
    os.environ.update(XDG_DATA_HOME=data, XDG_RUNTIME_DIR=runtime, LC_ALL="C", TZ=ZONE)
    time.tzset()
    return os.path.join(data, DATABASE), runtime


def open_beside(path):
    """A connection of another program; texts and blobs stay apart, and renaming a table leaves the views alone."""
    connection = sqlite3.connect(path, isolation_level=None, timeout=20)
    connection.text_factory = lambda raw: ("text", raw)
    connection.execute("PRAGMA legacy_alter_table=ON")
    connection.execute("PRAGMA synchronous=OFF")
    return connection


class SideBySide:
    def __init__(self, folder, library, closed=False):
        """With closed, the database stays closed until the step "open", and has no tables then either."""
        self.file, runtime = enter_folder(folder)
        self.viewer = Viewer(runtime)
        self.model = Model(os.path.join(folder, "model.s3db"))
        if closed:
            os.makedirs(os.path.dirname(self.file))
            for path in (self.file, self.model.path):
                Model.create_bare(path)
            os.chmod(self.file, 0o444)
        else:
            self.model.create()
        self.native = Native(library)
        self.memory = Memory()
        self.check_trace(self.model.startup())
        self.beside = [open_beside(self.file), open_beside(self.model.path)]
        self.check_tables()

    def open(self):
        """What kept the database closed is gone."""
        if self.model.db is None:
            os.chmod(self.file, 0o644)
            self.model.open()
            self.call("DB_Open", ())

    def finish(self):
        """Unloading closes the database and frees what the library holds for itself."""
        self.check_tables()
        if self.native.unload() != 0:
            raise Difference("the library cannot be unloaded")
        self.check_trace(self.model.shutdown())

    def check_trace(self, entries):
        self.match(entries, self.viewer.take())

    def match(self, entries, lines):
        match = match_loose if self.model.loose_memory else match_trace
        error = match(entries, lines, self.memory)
        if error:
            raise Difference(f"trace: {error}")
        if len(self.memory.live) != len(self.model.trace.live):
            raise Difference(f"{len(self.memory.live)} allocations live, model {len(self.model.trace.live)}")

    # ---- steps

    def step(self, step):
        kind, *rest = step
        {"call": self.call, "sql": self.sql, "prime": self.prime, "check": self.check_tables,
         "release": self.release, "open": self.open}[kind](*rest)

    def call(self, name, args):
        forms = records.EXPORTS[name]
        result = self.native.call(name, args)
        lines = self.viewer.take()
        # The clock moves between the two sides: the library's time counts, if it is close.
        self.model.clock = self.clock_of(name, lines) if name in ADD_TIME else None
        given = [self.model.argument(form, value) for form, value in zip(forms, args)]
        expected = self.model.call(name, given)
        if result != expected:
            shown = b"".join(lines).decode()
            raise Difference(f"result: library {result}, model {expected}; trace of the library:\n{short(shown, 2000)}"
                             f"\ntrace of the model: {short(self.model.trace.entries, 2000)}")
        self.match(self.model.trace.entries, lines)
        for form, value, object_given in zip(forms, args, given):
            head, _, record_kind = form.partition(":")
            if head == "inout" and value is not None:
                self.same(f"record {form}", self.native.read_record(record_kind, self.native.given), object_given)
            if head in KEPT and value is not None:
                self.same(f"{form} {value}", self.native.read_slot(form, value), self.model.read_slot(form, value))

    def same(self, what, found, expected):
        if not same_value(found, expected):
            raise Difference(f"{what}{first_difference(found, expected)}")

    def prime(self, form, index, fields):
        self.native.prime(form, index, fields)
        self.model.prime(form, index, fields)

    def release(self, index):
        """The caller frees the file names it was handed; their addresses may come again."""
        self.native.release_names(index)
        slot = self.model.slot("outnames", index)
        freed = set(slot.pop("allocations", ()))
        slot["value"] = []
        self.model.trace.live -= freed
        self.memory.forget(freed)

    def sql(self, statements):
        """Another program changes both files alike; what fails must fail in both."""
        for statement in statements:
            outcomes = []
            for connection in self.beside:
                try:
                    connection.execute(statement).fetchall()
                    outcomes.append(None)
                except sqlite3.Error as error:
                    outcomes.append(str(error))
            if outcomes[0] != outcomes[1]:
                raise Difference(f"{statement}: library's file {outcomes[0]}, model's file {outcomes[1]}")
        # A connection learns of another schema when it runs a statement: until then it would prepare what is gone.
        self.call("DB_LIB_IsFolderSelected", ("nobody", 0))

    # ---- tables

    def clock_of(self, name, lines):
        """The time the library took for now, if it is close to this side's clock; else None."""
        if name == "DB_PLAYERMUSIC_AddPlaylist":
            times = [match.group(1).decode() for match in map(_INSERT_TIME.search, lines) if match]
        else:
            try:
                row = self.beside[0].execute(f"SELECT [AddTime] FROM {ADD_TIME[name]} ORDER BY rowid DESC").fetchone()
            except sqlite3.Error:
                return None
            times = [row[0][1].decode("utf-8", "replace")] if row and isinstance(row[0], tuple) else []
        try:
            taken = datetime.datetime.fromisoformat(times[-1])
        except (IndexError, ValueError):
            return None
        close = abs((datetime.datetime.now() - taken.replace(tzinfo=None)).total_seconds()) <= CLOCK_TOLERANCE
        return times[-1] if close else None

    def check_tables(self):
        """Schema texts and all rows of both files, numbers of rows included."""
        contents = []
        for connection in self.beside:
            schema = connection.execute("SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY name, type")
            content = {"schema": schema.fetchall()}
            for kind, name, *_ in content["schema"]:
                if kind == ("text", b"table"):
                    table = name[1].decode()
                    content[table] = connection.execute(f"SELECT rowid, * FROM [{table}] ORDER BY rowid").fetchall()
            contents.append(content)
        if contents[0] != contents[1]:
            raise Difference("file" + _first_row(*contents))


def _first_row(ours, others):
    for table in sorted(ours.keys() | others.keys()):
        left, right = ours.get(table), others.get(table)
        if left == right:
            continue
        if left is None or right is None:
            return f": table {table} only in the {'model' if left is None else 'library'}'s file"
        for one, other in zip(left, right):
            if one != other:
                return f" {table}: library {short(one, 1500)}, model {short(other, 1500)}"
        return f" {table}: library {len(left)} rows, model {len(right)} rows; " + short(left[len(right):] or
                                                                                       right[len(left):])
    return ""
