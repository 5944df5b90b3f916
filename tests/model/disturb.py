"""What other programs may do to the file: odd rows, changed states, missing tables, failing statements."""

import schema

FOLDERS = ["tMFolder", "tIFolder", "tVFolder", "tDFolder"]
FILES = ["tMFile", "tIFile", "tVFile", "tDFile", "tPFile"]
VIEWS = [name.replace("t", "v", 1) for name in FOLDERS + FILES] + ["vPFolder", "vBFile"]
STATISTICS = ["tMusicFiles", "tMediaFiles", "tDocuments", "tWebBookmarks"]
HIDDEN = [name for name in schema.TABLES if name not in ("tVersion", "tPhotoDocLog", "tPimFolderLink")]
ODD = ["'abc'", "'12abc'", "' 7'", "1.5", "-2.75", "x'3132'", "NULL", "4294967297", "-9223372036854775808", "'1e3'",
       "9223372036854775807", "1e300", "'99999999999999999999'"]
ODD_TEXT = ["NULL", "''", "5", "1.5", "x'c3a9'", "'ab' || char(0) || 'c'", "'\u00fc'", "char(128512)"]
# No day that its month does not have: SQLite's date function changed its mind about those between versions.
ODD_DATE = ["''", "12345.678", "2451545", "'12:34:56'", "'0050-01-01'",
            "'9999-12-31 23:59:59'", "'now or never'", "'2024-02-29 23:59:59.999'", "'2024-01-01T10:00:00Z'",
            "x'32303234'", "'2024-01-01 10:00:00+02:00'", "-1", "'-4713-11-24 12:00:00'", "'0100-01-01'",
            "'0099-12-31 23:59:59'"]
ODD_DATA = ["NULL", "5", "'text'", "zeroblob(3)", "x''"]
ODD_IDS = ["NULL", "'(null)'", "'p9'"]
# The log's times are read without that function.
UNREAD_DATE = ["'2026-02-30 01:02:03'", "'2026-02-28 24:00:00'", "'2026-02-28 23:59:60'", "'2024-02-29 '",
               "'2024-2-9 01:02:03'", "'2024-02-29 01:02:03'", "'23:59:59'", "'2024-02-29'"]
# The schema makes no table of this name, but another program may.
CREATE_BACKUPS = ("CREATE TABLE IF NOT EXISTS tBackups ([bcID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, "
                  "[phoneID] INTEGER, [Path] NVARCHAR(1100), [PhonePath] NVARCHAR(1100), [Size] NUMERIC, "
                  "[ModifiedTime] DATETIME)")
FAILING = "abs(-9223372036854775807 - (length([Path]) > 0))"


def choose(random):
    """(statements, None or the statements that put it right again)."""
    return random.choice(_ALL)(random)


def _rows(random):
    return f"rowid % 3 = {random.randrange(3)}"


def _flags(random):
    table = random.choice(FOLDERS + ["tPFolder", "tPFolder"])
    return [f"UPDATE {table} SET [Flag] = {random.choice(['0', '1', '2', '3', '3', '4', '7', 'NULL'])} "
            f"WHERE {_rows(random)}"], None


def _deleted(random):
    return [f"UPDATE {table} SET [Deleted] = {random.choice(['3', '4', '0', '1'])} WHERE {_rows(random)}"
            for table in FOLDERS], None


def _order(random):
    """Notes each change of some tables, which makes the order of statements visible."""
    create = ["CREATE TABLE IF NOT EXISTS tOrder (what, who)"]
    drop = []
    for table in random.sample(HIDDEN, 8) + FILES:
        for event, row in (("INSERT", "NEW"), ("UPDATE", "NEW"), ("DELETE", "OLD")):
            create.append(f"CREATE TRIGGER IF NOT EXISTS note_{table}_{event} AFTER {event} ON {table} BEGIN "
                          f"INSERT INTO tOrder VALUES ('{table} {event}', {row}.rowid); END")
            drop.append(f"DROP TRIGGER IF EXISTS note_{table}_{event}")
    return create, drop


def _times(random):
    table = random.choice(FOLDERS + ["tPFolder"])
    return [f"UPDATE {table} SET [AddTime] = datetime('2024-01-01', (rowid * {random.randrange(1, 9000)} % 97) || "
            f"'{random.choice([' seconds', ' hours'])}')"], None


def _odd_numbers(random):
    table = random.choice(FOLDERS)
    column = random.choice(["Count", "Size", "TotalSize", "Flag"])
    return [f"UPDATE {table} SET [{column}] = {random.choice(ODD)} WHERE {_rows(random)}",
            f"UPDATE OR IGNORE {table} SET [{random.choice(['Deleted', 'Selected', 'Sized'])}] = "
            f"{random.choice(ODD + ['4', '4'])} WHERE {_rows(random)}"], None


def _odd_texts(random):
    table = random.choice(FILES)
    column = random.choice(["Path", "BasePath", "PhonePath"])
    return [f"UPDATE OR IGNORE {table} SET [{column}] = {random.choice(ODD_TEXT)} WHERE {_rows(random)}"], None


def _odd_dates(random):
    table, column = random.choice([(name, "ModifiedTime") for name in FILES] + [(name, "AddTime") for name in FOLDERS])
    return [f"UPDATE OR IGNORE {table} SET [{column}] = {random.choice(ODD_DATE + ['NULL'])} WHERE {_rows(random)}",
            f"UPDATE tPhone SET [{random.choice(['LastTime', 'CalStart', 'CalEnd'])}] = "
            f"{random.choice(ODD_DATE + ['NULL'])} WHERE {_rows(random)}"], None


def _phones(random):
    return [random.choice([
        "INSERT INTO tPhone ([IMEI], [Name]) VALUES ('351111', 'again')",
        "INSERT INTO tPhone ([IMEI]) VALUES ('O''Brien')",
        "INSERT INTO tPhone ([IMEI], [Name]) VALUES (x'333532323232', x'c3a9')",
        "INSERT INTO tPhone ([ID], [IMEI]) VALUES (-1, '356666')",
        "INSERT INTO tPhone ([ID], [IMEI]) VALUES (4294967299, '(null)')",
        f"DELETE FROM tPhone WHERE {_rows(random)}",
        "DELETE FROM tPhone WHERE [ID] > 2",
        f"UPDATE tPhone SET [SDType] = {random.choice(ODD)}, [BookMarkType] = {random.choice(ODD)}",
        f"UPDATE tPhone SET [Name] = {random.choice(ODD_TEXT)}, [WifiMAC] = {random.choice(ODD_TEXT)}, "
        f"[CalPeriodStr] = {random.choice(ODD_TEXT)} WHERE {_rows(random)}",
        f"UPDATE tPhone SET [AutoSync] = {random.choice(ODD[:6])}, [NeedMount] = {random.choice(ODD[:6])}",
    ])], None


def _main_folders(random):
    return [random.choice([
        "INSERT OR IGNORE INTO tLibMainFolder VALUES (7, 'extra', 3, 4, 'set')",
        "INSERT OR IGNORE INTO tLibMainFolder VALUES (-9, 'extra', NULL, NULL, NULL)",
        "DELETE FROM tLibMainFolder WHERE [ID] IN (7, -9, 1500)",
        "DELETE FROM tLibMainFolder",
        f"UPDATE tLibMainFolder SET [Number] = {random.choice(ODD)}, [Size] = {random.choice(ODD)}",
        f"UPDATE tLibMainFolder SET [Setting] = {random.choice(ODD_TEXT)}",
        "UPDATE tSyncContents SET [Selected] = 7 WHERE rowid % 2 = 0",
        f"UPDATE tSyncContents SET [Selected] = {random.choice(ODD[:6])} WHERE rowid % 2 = 0",
        f"DELETE FROM tSyncContents WHERE {_rows(random)}",
        "INSERT OR IGNORE INTO tSyncContents ([phoneID], [lfID]) VALUES "
        "((SELECT IFNULL(MAX(seq), 0) + 1 FROM sqlite_sequence WHERE name = 'tPhone'), 1400)",
    ])], None


def _statistics(random):
    table = random.choice(STATISTICS)
    values = random.choice(["(1)", "(10), (20), (NULL)", "(1.5), (2)", "('x')", "(-5)",
                            "(9223372036854775807), (1)", "(9223372036854775807)"])
    create = f"CREATE TABLE IF NOT EXISTS {table} ([Size])"
    # Real numbers and an overflow are never summed together: SQLite changed its mind about that between versions.
    fill = [create, f"DELETE FROM {table}", f"INSERT INTO {table} VALUES {values}"]
    return random.choice([([create], None), (fill, None), (fill, [f"DROP TABLE {table}"]),
                          ([name.join(["CREATE TABLE IF NOT EXISTS ", " ([Size])"]) for name in STATISTICS], None)])


def _backups(random):
    return random.choice([([CREATE_BACKUPS], None), ([CREATE_BACKUPS], ["DROP TABLE tBackups"]),
                          (["INSERT INTO tBackups VALUES (-1, 1, 'C:\\A', 'x', 1, NULL)"], None),
                          (["INSERT INTO tBackups VALUES (9999999999, 1, 'C:\\Z', NULL, 1.5, 'x')"], None)])


def _hide_table(random):
    """Gone without a trace in the views, and back later with its rows."""
    table = random.choice(HIDDEN + ["tLibMainFolder", "tSyncContents"] + FILES + FOLDERS)
    return [f"ALTER TABLE {table} RENAME TO hidden_{table}"], [f"ALTER TABLE hidden_{table} RENAME TO {table}"]


def _hide_column(random):
    """The count still works, the row query does not."""
    table, column = random.choice([("tLibMainFolder", "Setting"), ("tPhone", "WifiMAC"), ("tPhone", "SDType"),
                                   ("tPhone", "LastTime"), ("tPhone", "BookMarkType"), ("tBackups", "Size"),
                                   ("tPFolder", "Digest"), ("tPimLogItem", "PCTime"), ("tBFile", "PhoneMID"),
                                   ("tPimLog", "PimProfile"), ("tPimItem", "Data"), ("tPimFolder", "Path"),
                                   ("tSyncContents", "Selected")]
                                  + [(name, "PhonePath") for name in FILES] + [(name, "Size") for name in FOLDERS])
    return [f"ALTER TABLE {table} RENAME COLUMN [{column}] TO [gone]"], [
        f"ALTER TABLE {table} RENAME COLUMN [gone] TO [{column}]"]


def _drop_view(random):
    view = random.choice(VIEWS)
    return [f"DROP VIEW {view}"], [f"DROP VIEW IF EXISTS {view}", schema.view_sql("t" + view[1:])]


def _failing_view(random):
    """Rows that can be counted, of which some cannot be read."""
    view = random.choice([name.replace("t", "v", 1) for name in FILES])
    table = "t" + view[1:]
    return [f"DROP VIEW IF EXISTS {view}",
            f"CREATE VIEW [{view}] AS SELECT IMEI, {table}.[PhoneID], [Path], [BasePath], [PhonePath], CASE "
            f"WHEN [Path] LIKE '%Rock' THEN {FAILING} ELSE [ModifiedTime] END AS [ModifiedTime] FROM tPhone, {table} "
            f"WHERE tPhone.ID = {table}.PhoneID"], [
                f"DROP VIEW IF EXISTS {view}", schema.view_sql(table)]


def _trigger(random):
    """Statements of one kind fail on one table, all or from the second row on."""
    table = random.choice(HIDDEN)
    event = random.choice(["INSERT", "UPDATE", "DELETE", "DELETE"])
    row = "OLD" if event == "DELETE" else "NEW"
    when = random.choice(["", f"WHEN {row}.rowid > 1 "])
    return [f"CREATE TRIGGER IF NOT EXISTS stop BEFORE {event} ON {table} {when}BEGIN SELECT "
            f"RAISE({random.choice(['ABORT', 'FAIL'])}, 'stopped'); END"], ["DROP TRIGGER IF EXISTS stop"]


def _pim(random):
    return [random.choice([
        "UPDATE tPimFolder SET [parentID] = NULL WHERE [parentID] < 0",
        "DELETE FROM tPimFolder WHERE rowid % 4 = 1",
        f"UPDATE tPimItem SET [Data] = {random.choice(ODD_DATA)}",
        f"UPDATE tPimFolder SET [Path] = {random.choice(ODD_TEXT)} WHERE {_rows(random)}",
        "UPDATE tPimFolder SET [Type] = 2 WHERE rowid % 3 = 0",
        "INSERT INTO tPimInfo VALUES ('second')", "INSERT INTO tPimInfo VALUES (NULL)", "DELETE FROM tPimInfo",
        f"UPDATE tPimLog SET [PimProfile] = {random.choice(ODD_TEXT)}",
        f"UPDATE tPimLogItem SET [PCTime] = {random.choice(ODD_DATE + UNREAD_DATE)} WHERE {_rows(random)}",
        "DELETE FROM tPimLog WHERE rowid % 2 = 1",
        "UPDATE tPimItem SET [pfID] = -2 WHERE rowid % 3 = 0",
    ])], None


def _playlists(random):
    return [random.choice([
        f"UPDATE tPFolder SET [IdInPhone] = {random.choice(ODD_TEXT + ODD_IDS)} WHERE {_rows(random)}",
        f"UPDATE tPFolder SET [Digest] = {random.choice(ODD_TEXT)} WHERE {_rows(random)}",
        f"UPDATE tPFolder SET [Type] = {random.choice(ODD)}, [Size] = {random.choice(ODD)} WHERE {_rows(random)}",
        f"UPDATE OR IGNORE tPFilename SET [Filename] = {random.choice(ODD_TEXT[1:])} WHERE {_rows(random)}",
        f"UPDATE tBFile SET [Title] = {random.choice(ODD_TEXT)}, [Flag] = {random.choice(ODD)} WHERE {_rows(random)}",
    ])], None


# Twice what matters most.
_ALL = [_flags, _flags, _deleted, _order, _times, _times, _odd_numbers, _odd_texts, _odd_dates, _phones, _main_folders,
        _statistics, _backups, _hide_table, _hide_column, _drop_view, _failing_view, _failing_view, _trigger, _pim,
        _playlists]
