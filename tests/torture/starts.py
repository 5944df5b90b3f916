"""What the library can find when it is loaded."""

import os
import sqlite3

# The user's own data, which must be there afterwards, row by row.
KEPT = ("good", "journal")
STARTS = (*KEPT, "missing", "other version", "no folders")


def old_version():
    """A database of another version, as bytes."""
    connection = sqlite3.connect(":memory:")
    connection.executescript("CREATE TABLE tVersion ([Version] INTEGER); INSERT INTO tVersion VALUES (5004);"
                             "CREATE TABLE tOld (a)")
    return connection.serialize()


def prepare(bench, place, start):
    if start == "good":
        place.reset(bench.image)
    elif start == "journal":
        place.reset(*bench.hot)
    elif start == "other version":
        place.reset(old_version())
    elif start == "missing":
        place.reset(b"")
        os.unlink(place.database)
    else:
        place.reset()


# Takes the mutex's place when that cannot be trusted; beside the database when the user's runtime folder cannot be used.
LOCK_FILE = "NORVIK_KESTA_DB_ACCESS_MUTEX.lock"


def expect_tidy(place, failure, start, *more):
    """What an earlier start left half done is gone. A journal may lie there, dead, until the next transaction; a
    database of another version, or one whose making failed, is kept under another name; the user's own never is.
    `more`: other names that may lie there."""
    if not os.path.isdir(place.folder):  # the library was not even loaded
        return
    known = os.path.basename(place.database)
    left = set(os.listdir(place.folder)) - {known, os.path.basename(place.journal), *more}
    if start not in KEPT:
        left = {name for name in left if not name.startswith(f"{known}.replaced-")}
    if left:
        raise failure(f"the folder has more than the database: {sorted(left)}")
