"""Database files that other programs have bent by SQL, or by writing the schema's own table."""

import sqlite3

# Every table, view and index with its sort, as the library makes them.
_TABLES = ("tBFile tBackup tDFile tDFolder tIFile tIFolder tVFile tVFolder tLibMainFolder tSyncContents tMFile "
           "tMFolder tPFile tPFilename tPFolder tPhone tPimFolder tPimInfo tPimItem tPimLog tPimLogItem").split()
_VIEWS = "vBFile vDFile vDFolder vIFile vIFolder vVFile vVFolder vMFile vMFolder vPFile vPFolder".split()
_INDEXES = ("IDX_TBFILE_PID IDX_TBACKUPS_PATH IDX_TPLAYLISTS_TYPE IDX_TPHONE_IMEI IDX_TPIMFOLDER_PIMID "
            "IDX_TPIMITEM_PIMID IDX_TPIMLOG_PHONEID IDX_TPIMLOGITEM_PLID").split()
_COLUMNS = {"tPhone": "IMEI Name AutoSync BookMarkType LastTime", "tMFile": "Path BasePath PhonePath ModifiedTime",
            "tMFolder": "Path Count Flag AddTime", "tPFolder": "Path Flag IdInPhone", "tBFile": "Title Path Type",
            "tLibMainFolder": "Number Setting", "tPimFolder": "PimID Path Type", "tPimItem": "PimID Data Type",
            "tPimLog": "Type PimProfile", "tPimLogItem": "Guid PCTime", "tPimInfo": "Profile", "tVersion": "Version"}
_VALUES = {"null": "NULL", "zero": "0", "least": "-9223372036854775808", "most": "9223372036854775807",
           "infinity": "9e999", "text": "'text'", "empty": "''", "bytes": "x'00ff00'",
           "no UTF-8": "CAST(x'c3f5' AS TEXT)", "zero byte": "CAST(x'610062' AS TEXT)",
           "long": "hex(zeroblob(30000))", "large": "zeroblob(200000)"}

_AGAIN = "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300) "


def _schemas():
    yield from _missing()
    yield from _versions()
    yield from _views()
    yield from _values()
    yield from _tables()
    yield from _written_by_hand()


def _missing():
    for name in _TABLES:
        yield f"no table {name}", f"DROP TABLE {name}"
    for name in _VIEWS:
        yield f"no view {name}", f"DROP VIEW {name}"
        table = "t" + name[1:]
        yield f"view {name} without rows", (f"DROP VIEW {name}; CREATE VIEW {name} AS SELECT IMEI, {table}.* FROM "
                                            f"tPhone, {table} WHERE 0")
    for name in _INDEXES:
        yield f"no index {name}", f"DROP INDEX {name}"
    for table, columns in _COLUMNS.items():
        for column in columns.split():
            yield f"no column {table}.{column}", f"ALTER TABLE {table} RENAME COLUMN [{column}] TO [gone]"
    yield "no tables", "".join(f"DROP TABLE {name};" for name in _TABLES)
    yield "empty tables", "".join(f"DELETE FROM {name};" for name in _TABLES)


def _versions():
    for name, value in {**_VALUES, "text of it": "'5005'", "real": "5005.9", "far above": "4294972301",
                        "other": "5004", "later": "5006"}.items():
        yield f"version {name}", ("DROP TABLE tVersion; CREATE TABLE tVersion ([Version]); INSERT INTO tVersion "
                                  f"VALUES ({value})")
    yield "version twice", "INSERT INTO tVersion VALUES (5004)"
    yield "version second", "UPDATE tVersion SET Version = 5004; INSERT INTO tVersion VALUES (5005)"
    yield "versions in thousands", f"INSERT INTO tVersion {_AGAIN} SELECT 5005 FROM n, n AS m"
    yield "no version", "DELETE FROM tVersion"
    yield "no table tVersion", "DROP TABLE tVersion"
    yield "version by a view", "DROP TABLE tVersion; CREATE VIEW tVersion AS SELECT 5005 AS [Version]"
    yield "version by a failing view", ("DROP TABLE tVersion; CREATE VIEW tVersion AS SELECT "
                                        "abs(-9223372036854775808) AS [Version]")
    yield "version by a broken view", "DROP TABLE tVersion; CREATE VIEW tVersion AS SELECT [Version] FROM tNowhere"
    yield "version generated", ("DROP TABLE tVersion; CREATE TABLE tVersion (a, [Version] AS (5000 + a));"
                                "INSERT INTO tVersion (a) VALUES (5)")
    yield "version without rowid", ("DROP TABLE tVersion; CREATE TABLE tVersion ([Version] PRIMARY KEY) WITHOUT ROWID;"
                                    "INSERT INTO tVersion VALUES (5005)")


def _view(name, select):
    return f"DROP VIEW {name}; CREATE VIEW {name} AS {select}"


def _views():
    for name in ("vMFile", "vMFolder", "vPFolder", "vBFile"):
        table = "t" + name[1:]
        columns = f"SELECT IMEI, {table}.* FROM tPhone, {table}"
        yield f"{name} fails on a row", _view(name, f"{columns} WHERE abs(CASE WHEN {table}.rowid > 1 THEN "
                                                    "-9223372036854775808 ELSE 1 END)")
        yield f"{name} is itself", f"DROP VIEW {name}; CREATE VIEW {name} AS SELECT * FROM {name}"
        yield f"{name} has many rows", _view(name, f"{_AGAIN}SELECT IMEI, {table}.* FROM tPhone, {table}, n")
        yield f"{name} grows", _view(name, f"{columns} WHERE random() % 2")
        yield f"{name} is of other types", _view(name, f"SELECT x'ff' AS IMEI, {table}.* FROM {table}")
        yield f"{name} with triggers", (f"CREATE TRIGGER odd INSTEAD OF DELETE ON {name} "
                                        f"BEGIN DELETE FROM {table}; END;"
                                        f"CREATE TRIGGER odd2 BEFORE DELETE ON {table} BEGIN SELECT RAISE(IGNORE); END")
        yield f"{name} for a table", f"DROP VIEW {name}; CREATE TABLE {name} AS {columns}"
        yield f"{table} by a view", f"ALTER TABLE {table} RENAME TO tKept; CREATE VIEW {table} AS SELECT * FROM tKept"
    yield "a view over itself by two", ("DROP VIEW vMFile; DROP VIEW vIFile;"
                                        "CREATE VIEW vMFile AS SELECT * FROM vIFile;"
                                        "CREATE VIEW vIFile AS SELECT * FROM vMFile")
    deep = "".join(f"CREATE VIEW deep{i} AS SELECT * FROM deep{i - 1};" for i in range(1, 200))
    yield "a view through two hundred", (f"CREATE VIEW deep0 AS SELECT * FROM tMFile;{deep}DROP VIEW vMFile;"
                                         "CREATE VIEW vMFile AS SELECT '351111' AS IMEI, * FROM deep199")
    wide = " UNION ALL ".join(["SELECT * FROM tMFile"] * 400)
    yield "a view of four hundred selects", _view("vMFile", f"SELECT '351111' AS IMEI, * FROM ({wide})")


def _values():
    for table, columns in _COLUMNS.items():
        for column in columns.split():
            if table == "tVersion":
                continue
            for name, value in _VALUES.items():
                # In a table without constraints, which would refuse most of them.
                yield f"{table}.{column} {name}", (f"CREATE TABLE free AS SELECT * FROM {table};"
                                                   f"UPDATE free SET [{column}] = {value};"
                                                   f"PRAGMA legacy_alter_table = ON; DROP TABLE {table};"
                                                   f"ALTER TABLE free RENAME TO {table}")


def _tables():
    for event in ("INSERT", "UPDATE", "DELETE"):
        for how in ("ABORT", "FAIL", "ROLLBACK", "IGNORE"):
            reason = "" if how == "IGNORE" else ", 'stopped'"
            yield f"{event} ends in {how}", "".join(
                f"CREATE TRIGGER stop{table} BEFORE {event} ON {table} BEGIN SELECT RAISE({how}{reason}); END;"
                for table in _TABLES)
    yield "triggers in a circle", ("CREATE TRIGGER a AFTER UPDATE ON tMFolder "
                                   "BEGIN UPDATE tPhone SET AutoSync = 1; END;"
                                   "CREATE TRIGGER b AFTER UPDATE ON tPhone BEGIN UPDATE tMFolder SET Flag = 1; END;"
                                   "PRAGMA recursive_triggers = ON")
    yield "a generated column", "ALTER TABLE tMFile ADD COLUMN made AS (length(Path) / 0)"
    yield "a failing index", "CREATE INDEX odd ON tMFile (abs(length(Path) - 9223372036854775807 - length(Path)))"
    yield "a check", "ALTER TABLE tPhone ADD COLUMN odd CHECK (IMEI <> '351111') DEFAULT NULL"
    yield "a foreign key", "PRAGMA foreign_keys = ON; ALTER TABLE tMFile ADD COLUMN odd REFERENCES tNowhere"
    yield "unique names", "UPDATE tMFolder SET Count = rowid; CREATE UNIQUE INDEX odd ON tMFolder (Count)"
    yield "loops among folders", "UPDATE tPimFolder SET parentID = pfID"
    yield "folders in a circle", "UPDATE tPimFolder SET parentID = 4 - pfID"
    yield "folders in a chain", (f"{_AGAIN}INSERT INTO tPimFolder (pfID, parentID, PimID, Path, Type) "
                                 "SELECT i + 10, i + 9, 'chain' || i, '', 1 FROM n; UPDATE tPimFolder SET parentID = 1 "
                                 "WHERE pfID = 11")
    yield "two thousand folders", (f"{_AGAIN}INSERT INTO tPimFolder (parentID, PimID, Path, Type) "
                                   "SELECT 1, i || ' ' || j, '', 1 FROM n, (SELECT i AS j FROM n WHERE i < 8)")
    yield "phones out of range", "UPDATE tPhone SET ID = 4294967297"
    yield "the last phone", "INSERT INTO tPhone (ID, IMEI) VALUES (9223372036854775807, 'last')"
    yield "no room for a row number", "UPDATE sqlite_sequence SET seq = 9223372036854775807"
    yield "row numbers of text", "UPDATE sqlite_sequence SET seq = 'x'"
    yield "the same phone thrice", "INSERT INTO tPhone (IMEI) VALUES ('351111'), ('351111')"
    yield "UTF-16", None
    yield "application's own number", "PRAGMA application_id = 7; PRAGMA user_version = 5005"
    yield "auto-vacuum", "PRAGMA auto_vacuum = FULL; VACUUM"
    yield "small pages", "PRAGMA page_size = 512; VACUUM"
    yield "large pages", "PRAGMA page_size = 65536; VACUUM"
    yield "free pages", "CREATE TABLE big AS SELECT zeroblob(3000000); DROP TABLE big"


_TEXTS = {
    "nonsense": "'no SQL'", "null": "NULL", "number": "12", "bytes": "x'00'", "drop": "'DROP TABLE tPhone'",
    "another name": "'CREATE TABLE other (a)'", "long": "'CREATE TABLE tMFile (' || hex(zeroblob(400000)) || ')'",
    "virtual": "'CREATE VIRTUAL TABLE tMFile USING nothing(a)'",
    "hard to nest": "'CREATE TABLE tMFile (a DEFAULT (' || replace(hex(zeroblob(900)), '0', '(') || '))'",
}
_PAGES = {"zero": "0", "one": "1", "negative": "-1", "far": "99999999", "text": "'x'", "null": "NULL"}


def _written_by_hand():
    """Rows of the schema's own table; the file is no longer valid."""
    for name, text in _TEXTS.items():
        yield f"tMFile's text {name}", (f"PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = {text} "
                                        "WHERE name = 'tMFile'")
    for name, page in _PAGES.items():
        for table in ("tMFile", "tVersion", "IDX_TPHONE_IMEI"):
            yield f"{table} on page {name}", ("PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = "
                                              f"{page} WHERE name = '{table}'")
    yield "two tables on one page", ("PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = (SELECT "
                                     "rootpage FROM sqlite_master WHERE name = 'tPhone') WHERE name = 'tMFile'")
    yield "a table on an index", ("PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = (SELECT rootpage "
                                  "FROM sqlite_master WHERE name = 'IDX_TPHONE_IMEI') WHERE name = 'tVersion'")
    yield "the schema twice", "PRAGMA writable_schema = ON; INSERT INTO sqlite_master SELECT * FROM sqlite_master"
    yield "no schema", "PRAGMA writable_schema = ON; DELETE FROM sqlite_master"


SCHEMAS = dict(_schemas())


def damaged_by(image, statements):
    """The file after the statements of another program; those that it refuses are left out."""
    connection = sqlite3.connect(":memory:", isolation_level=None)
    if statements is None:
        return _in_utf16(image)
    connection.deserialize(image)
    for statement in _single(statements):
        connection.execute(statement)
    data = connection.serialize()
    connection.close()
    return data


def _single(statements):
    """One by one: a script would begin a transaction, in which some of them are not allowed."""
    text = ""
    for piece in statements.split(";"):
        text += piece
        if sqlite3.complete_statement(text + ";"):
            yield text
            text = ""
        else:
            text += ";"


def _in_utf16(image):
    source, target = sqlite3.connect(":memory:"), sqlite3.connect(":memory:", isolation_level=None)
    source.deserialize(image)
    target.execute("PRAGMA encoding = 'UTF-16le'")
    for line in source.iterdump():
        target.execute(line) if line not in ("BEGIN TRANSACTION;", "COMMIT;") else None
    return target.serialize()
