"""The values that random calls are made of: small pools, so that calls meet each other's rows, and the odd ones."""

import math

from records import FIELDS
from values import units

_IMEIS = ["351111", "352222", "353333", "354444:554444", "35-é", "35\U0001f600", "", None, "(null)", "O'Brien",
          "x' OR '1'='1", "x'; SELECT 1; --", "35\ud800", ":", "35 ", "%s%d"]
_PATHS = ["C:\\Music", "C:\\Music\\Rock", "C:\\Music\\rock", "C:\\Music\\O'Brien's", "D:\\Фото", "E:\\\U0001f600",
          "", None, "(null)", "'", "''", "C:\\lone\udc00", "C:\\lone\ufffd", "a%sb%n", "C:\\tab\tnew\nline", "C:\\Z",
          "C:\\A", "https://example.org/?q=1&r=2", "x') --"]
_PHONE_PATHS = ["/sdcard/a", "/sdcard/b'c", "/sdcard/ü", "", None, "(null)"]
_NAMES = ["Phone", "Ann's phone", "Téléphone", "", None, "(null)", "\U0001f4f1", "lone\ud83d"]
IMEIS, PATHS, PHONE_PATHS, NAMES = ([units(text) for text in pool] for pool in (_IMEIS, _PATHS, _PHONE_PATHS, _NAMES))
DIGESTS = ["d41d8cd9", "0cc175b9", "", None, "it's", "a', [Flag] = 2 --"]
PHONE_IDS = ["p1", "p2", "(null)", "", None]

DATES = [(45000.5, 0), (45000.25, 0), (45000.123456, 0), (39000.999999999, 0), (0.0, 0), (-0.0, 0), (0.0, 1),
         (0.0, 2), (45000.5, 1), (45000.5, 2), (45000.5, 7), (45000.5, -1), (-1.25, 0), (-0.5, 0), (-0.9999999, 0),
         (-657434.0, 0), (-657434.5, 0), (-657434.9999999, 0), (-657435.0, 0), (2958465.5, 0),
         (2958465.9999999, 0), (2958466.0, 0), (1e300, 0), (-1e300, 0), (math.nan, 0), (math.inf, 0), (-math.inf, 0),
         (math.nan, 2), (1 / 256, 0), (60.0, 0), (36525.0, 0), (45382 + 2.5 / 24, 0),
         (45592 + 2.5 / 24, 0), (1e-9, 0)]
NUMBERS = [0, 1, 2, 3, 4, 7, -1, 5, 12, 2**31 - 1, -2**31]
LARGE = [0, 1, -1, 4096, 123456789012, 2**63 - 1, -2**63]
FLAGS = [0, 1, 0, 1, 2, -1, 4]
FOLDER_IDS = [1000, 1100, 1400, 1500, 1600, 1900, 2200, 5, -1, 0]
TYPES = [1, 1, 1, 2, 0]
PIM_IDS = ["f1", "f2", "f3", "f4", "it's", "", None, "(null)"]
PIM_PATHS = ["/a", "/a/b", "/b'c", "", None, "/\u00e4"]
ITEM_IDS = ["i1", "i2", "i3", "i4", "i's", "", None, "(null)"]
GUIDS = ["g1", "g2", "g's", "", None, units("g\U0001f600")]
DATA = [b"", b"x", b"BEGIN:VCARD\0END", bytes(range(256))]

# A statement of each kind with one free text, to find the length at which it reaches the limit of 40,960 bytes.
LIMITS = {
    "SetFolderSelected": "UPDATE tMFolder SET [Selected] = 1 WHERE [PhoneID] = 1 AND [Path] = '';",
    "SetFolderDeleted": "UPDATE tMFolder SET [Deleted] = 1 WHERE [PhoneID] = 1 AND [PATH] = '';",
    "SetDeletedFolder": "DELETE FROM tMFile WHERE [PhoneID] = 1 AND [BasePath] = '';",
    "SetDeletedFile": "DELETE FROM tMFile WHERE [PhoneID] = 1 AND [Path] = '';",
    "IsFolderSelected": "SELECT [Selected] FROM vMFolder WHERE [IMEI] = '351111' AND [Path] = '';",
    "IsFolderDeleted": "SELECT [Deleted] FROM vMFolder WHERE [IMEI] = '351111' AND [Name] = '';",
    "IsSyncedFile": "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile "
                    "WHERE [IMEI] = '351111' AND [Path] = '';",
    "GetSyncedFiles": "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile "
                      "WHERE [IMEI] = '351111'AND [BasePath] = '';",
    "GetFolder": "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted] FROM tMFolder "
                 "WHERE [PhoneID] = 1 AND [Path] = '';",
    "AddFolder": "INSERT INTO tMFolder ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], "
                 "[Deleted], [Flag], [AddTime]) VALUES (1, '', 1, 1, 1, 1, 1, 0, 1, '2026-01-01 00:00:00');",
    "SetAddedFile": "INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) "
                    "VALUES (1, '', '', '', '2023-03-15 12:00:00');",
    "SetUpdatedFile": "UPDATE tMFile SET [PhonePath] = '', [ModifiedTime] = '2023-03-15 12:00:00' "
                      "WHERE [PhoneID] = 1 AND [Path] = 'C:\\Music';",
    "PhoneDetected": "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('351111', '351111', '');",
    "UpdateMainFolderInfo": "UPDATE tLibMainFolder SET [Setting] = '' WHERE [ID] = 1000;",
    "SetLastSyncTime": "UPDATE tPhone SET [ErrCode] = 1, [NeedMount] = 1 WHERE [IMEI] = '';",
    "GetSDType": "SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = '';",
    "GetLastSyncTime": "SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = '';",
    "IsSyncedMark": "SELECT * FROM vBFile WHERE [IMEI] = '351111' AND [Path] = '' AND [Type] = 1;",
    "SetDeletedMark": "DELETE FROM tBFile WHERE [PhoneID] = 1 AND [Path] = '' AND [Type] = 1;",
    "AddPlaylist": "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], [TotalSize], "
                   "[Sized], [AddTime]) VALUES (1, '', '', 1, 1, 1, 1, 1, 1, '2026-01-01 00:00:00');",
    "DeleteList": "DELETE FROM tPFolder WHERE [PhoneID] = 1 AND [Path] = '';",
    "SetListFilesname": "DELETE FROM tPFilename WHERE [IMEI] = '351111' AND [Listname] = '';",
    "SetPimProfile": "UPDATE tPimLog SET [PimProfile] = '' WHERE [phoneID] = 1 AND [Type] = 1;",
    "FileExist": "SELECT COUNT(*) FROM tBackups WHERE [Path] = '';",
}
LIMIT = 40960


def long_text(random, suffix):
    """A text that brings a statement to its limit or a few bytes to either side of it."""
    room = LIMIT - len(LIMITS.get(suffix, LIMITS["SetFolderSelected"]))
    room += random.choice([-1, 0, 0, 1, 2, -2, -3, 40, -90])
    kind = random.randrange(5)
    if kind == 0:
        return "'" * (room // 2) + "x" * (room % 2)
    if kind == 1:
        return "\u00e9" * (room // 2) + "x" * (room % 2)
    if kind == 2:
        return "\ud83d\ude00" * (room // 4) + "x" * (room % 4)
    if kind == 3:
        return "\udc00" * (room // 3) + "x" * (room % 3)
    return "x" * room


def number(random, pool=NUMBERS):
    return random.randrange(-50, 1000) if random.random() < 0.2 else random.choice(pool)


_POOLS = {"Path": PATHS, "BasePath": PATHS, "PhonePath": PHONE_PATHS, "Setting": NAMES, "IMEI": IMEIS, "Name": NAMES,
          "Digest": DIGESTS, "IdInPhone": PHONE_IDS, "Title": NAMES, "PhoneMID": PHONE_IDS, "Guid": GUIDS,
          "Luid": GUIDS}


def text_of(random, pool, head=3):
    """Mostly one of the first texts of a pool, which are the ordinary ones."""
    return random.choice(pool[:head] if random.random() < 0.7 else pool)


def field_value(random, kind, field, form):
    if form == "text":
        if kind == "PlaylistRecord" and field == "Name":
            return text_of(random, PATHS)
        if kind.startswith("Pim") and field in ("PimID", "Path"):
            return text_of(random, PIM_PATHS if field == "Path" else ITEM_IDS if "Item" in kind else PIM_IDS, 4)
        return text_of(random, _POOLS.get(field, NAMES), 4 if field in ("Path", "BasePath") else 3)
    if form == "date":
        return random.choice(DATES[:3] if random.random() < 0.4 else DATES)
    if form == "i64":
        return number(random, LARGE)
    if field == "ID":
        return random.choice(FOLDER_IDS)
    if field == "BookMarkType" or (field == "Type" and kind.startswith("Pim")):
        return random.choice(TYPES)
    return number(random)


def record(random, kind):
    given = {field: field_value(random, kind, field, form) for field, form in FIELDS[kind] if form != "data"}
    if kind == "PimItemRecord":
        given["Data"] = random.choice(DATA)
        given["DataLength"] = len(given["Data"])
    return given
