#!/usr/bin/env python3
"""A look-up and a recording by Python's sqlite3, whose statements are bound and cached, on a database of the library's.

    bench/peer.py DATA-FOLDER    a folder over which the library has been loaded
"""

import pathlib
import sqlite3
import sys
import time

COUNT = 1000


def main():
    database = next(pathlib.Path(sys.argv[1]).rglob("KESTA_DB.s3db"))
    db = sqlite3.connect(database, isolation_level=None)
    db.execute("INSERT INTO tPhone ([IMEI]) VALUES ('1')")
    paths = [f"C:\\Music\\Artist {i // 20}\\Album\\Track {i}.mp3" for i in range(COUNT)]
    start = time.perf_counter()
    for path in paths:
        (phone,) = db.execute("SELECT [ID] FROM tPhone WHERE  [IMEI] = ?", ("1",)).fetchone()
        db.execute("INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (?, ?, ?, ?, ?)",
                   (phone, path, path[:20], path, "2024-01-01 00:00:00"))
        db.execute("UPDATE tMFolder SET [Flag] = ? WHERE [PhoneID] = ? AND [PATH] = ?", (0, phone, path[:20]))
    recorded = time.perf_counter()
    for path in paths:
        row = db.execute("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile "
                         "WHERE [IMEI] = ? AND [Path] = ?", ("1", path)).fetchone()
        if row[0] != path:
            sys.exit("the file was not recorded")
    done = time.perf_counter()
    for name, taken in (("look-up by Python's sqlite3", done - recorded),
                        ("recording by Python's sqlite3, where the folder lies", recorded - start)):
        print(f"{name:<52} {taken / COUNT * 1e6:10.2f} us")


if __name__ == "__main__":
    main()
