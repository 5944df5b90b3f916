"""The schema and the seed rows of a fresh database."""

import re

_FILE = "PhoneID INTEGER|N;Path NVARCHAR(1100)|N;BasePath NVARCHAR(1100)|N;PhonePath NVARCHAR(1100)|N;" \
        "ModifiedTime DATETIME;PK PhoneID,Path"
_FOLDER = "PhoneID INTEGER|N;Path NVARCHAR(1100)|N;Count INTEGER=0;Size INTEGER=0;TotalSize INTEGER=0;" \
          "Selected BOOLEAN=1|N;Deleted BOOLEAN=0|N;Flag INTEGER=0;AddTime DATETIME|N;Sized BOOLEAN=0|N;PK PhoneID,Path"

# Column: name type, "=default", "|N" for NOT NULL; a literal column stands between braces; PK is the table's key.
_TABLES = [
    ("tBFile", "PhoneID INTEGER|N;Title NVARCHAR(1100);Path NVARCHAR(1000)|N;PhoneMID VARCHAR(500);Id INTEGER=0;"
               "Flag INTEGER=0;Type INTEGER=0|N;PK PhoneID,Path,Type"),
    ("tBackup", "{[ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT};PhoneID INTEGER|N;Path NVARCHAR(1100)|N;"
                "PhonePath NVARCHAR(1100);ModifiedTime DATETIME;Size NUMERIC"),
    ("tDFile", _FILE), ("tDFolder", _FOLDER), ("tIFile", _FILE), ("tIFolder", _FOLDER), ("tVFile", _FILE),
    ("tVFolder", _FOLDER),
    ("tLibMainFolder", "{[ID] INTEGER NOT NULL PRIMARY KEY};Name NVARCHAR(500)|N;Number INTEGER;Size NUMERIC;"
                       "Setting NVARCHAR(4096)"),
    ("tSyncContents", "phoneID INTEGER|N;lfID INTEGER|N;Selected BOOLEAN=0|N;OldSelected BOOLEAN=0|N;PK phoneID,lfID"),
    ("tMFile", _FILE), ("tMFolder", _FOLDER), ("tPFile", _FILE),
    ("tPFilename", "IMEI VARCHAR(500)|N;Listname NVARCHAR(1100)|N;Filename NVARCHAR(1100)|N;"
                   "PK IMEI,Listname,Filename"),
    ("tPFolder", "PhoneID INTEGER|N;Path NVARCHAR(1100)|N;Digest VARCHAR(100);IdInPhone NVARCHAR(1100);Type INTEGER;"
                 "Flag INTEGER;Count INTEGER=0;Size INTEGER=0;TotalSize INTEGER=0;Selected BOOLEAN=1|N;"
                 "AddTime DATETIME|N;Sized BOOLEAN=0|N;PK PhoneID,Path"),
    ("tPhone", "{[ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT};IMEI VARCHAR(500)|N;IMEI2 VARCHAR(500);"
               "Name NVARCHAR(500);LastTime DATETIME;PhotoPath NVARCHAR(1100);DocPath NVARCHAR(1100);"
               "WifiMAC VARCHAR(500);AutoSync BOOLEAN=0|N;AutoBackup BOOLEAN=0|N;AllowWifi BOOLEAN=1|N;"
               "ContactPreferSide INTEGER=2;CalendarPreferSide INTEGER=2;ContactPim INTEGER;CalPim INTEGER;"
               "CalPeriod INTEGER;CalStart DATETIME;CalEnd DATETIME;CalPeriodStr VARCHAR(1100);"
               "BookMarkType INTEGER=1;SyncDocFromFolder BOOLEAN=0|N;SyncDocFromPhone BOOLEAN=1|N;"
               "SyncPhotoFromFolder BOOLEAN=0|N;SyncPhotoFromPhone BOOLEAN=1|N;SyncMusicFromFolder BOOLEAN=0|N;"
               "SyncMusicFromPlayer BOOLEAN=0|N;SyncMusicAll BOOLEAN=1|N;ErrCode INTEGER=0|N;NeedMount BOOLEAN=1|N;"
               "SDType INTEGER=0;SDOldType INTEGER=0;ContactFolderId VARCHAR(4000);CalendarFolderId VARCHAR(4000);"
               "ContactProfile NVARCHAR(1100);CalendarProfile NVARCHAR(1100);ContactName NVARCHAR(1100);"
               "CalendarName NVARCHAR(1100)"),
    ("tPhotoDocLog", "{[pdID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL};phoneID INTEGER|N;Path NVARCHAR(1100);"
                     "MD5 VARCHAR(50)|N"),
    ("tPimFolder", "{[pfID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL};parentID INTEGER;"
                   "{[PimID] VARCHAR(1100) UNIQUE NOT NULL};Path NVARCHAR(1100);Type INTEGER|N"),
    ("tPimFolderLink", "pfID INTEGER|N;childID INTEGER|N;PK pfID,childID"),
    ("tPimInfo", "Profile TEXT"),
    ("tPimItem", "{[piID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL};pfID INTEGER|N;"
                 "{[PimID] VARCHAR(1100) UNIQUE NOT NULL};Data BLOB;Type INTEGER"),
    ("tPimLog", "{[plID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL};phoneID INTEGER|N;Type INTEGER|N;"
                "PimProfile TEXT"),
    ("tPimLogItem", "{[ptID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL};plID INTEGER|N;Guid VARCHAR(200)|N;"
                    "Luid VARCHAR(50)|N;PCTime DATETIME;PhoneTime DATETIME"),
    ("tVersion", "Version INTEGER=1000|N"),
]

_INDEXES = ["IDX_TBFILE_PID] ON [tBFile]([PhoneID]", "IDX_TBACKUPS_PATH] ON [tBackup]([Path]",
            "IDX_TPLAYLISTS_TYPE] ON [tPFolder]([Type]", "IDX_TPHONE_IMEI] ON [tPhone]([IMEI]",
            "IDX_TPIMFOLDER_PIMID] ON [tPimFolder]([PimID]  ASC,[parentID]",
            "IDX_TPIMITEM_PIMID] ON [tPimItem]([pfID]  ASC,[PimID]", "IDX_TPIMLOG_PHONEID] ON [tPimLog]([phoneID]",
            "IDX_TPIMLOGITEM_PLID] ON [tPimLogItem]([plID]"]

_VIEWED = ["tBFile", "tDFile", "tDFolder", "tIFile", "tIFolder", "tVFile", "tVFolder", "tMFile", "tMFolder", "tPFile",
           "tPFolder"]

TABLES = [name for name, _ in _TABLES]
MAIN_FOLDERS = [(1000, "music"), (1100, "gallery"), (1400, "document"), (1500, "people"), (1600, "calendar"),
                (1900, "web bookmark"), (2200, "Map")]


def _column(text):
    if text.startswith("{"):
        return text[1:-1]
    if text.startswith("PK "):
        return " PRIMARY KEY (" + ",".join(f"[{name}]" for name in text[3:].split(",")) + ")"
    name, kind, default, required = re.fullmatch(r"(\w+) ([A-Z0-9()]+)(?:=(\d+))?(\|N)?", text).groups()
    middle = f" DEFAULT {default} " if default else "  "
    return f"[{name}] {kind}{middle}{'NOT NULL' if required else 'NULL'}"


def view_sql(name):
    return f"CREATE VIEW [v{name[1:]}] AS SELECT IMEI, {name}.* FROM tPhone, {name} WHERE tPhone.ID = {name}.PhoneID;"


def _schema():
    tables = [f"CREATE TABLE [{name}]({','.join(map(_column, text.split(';')))});" for name, text in _TABLES]
    indexes = [f"CREATE INDEX [{text}  ASC);" for text in _INDEXES]
    return "".join(tables + indexes + [view_sql(name) for name in _VIEWED])


SCHEMA = _schema()
SEED = ["INSERT INTO tVersion VALUES (5005)"] + [
    f"INSERT INTO tLibMainFolder VALUES ({number}, '{name}', 0, 0, '')" for number, name in MAIN_FOLDERS]
if len(SCHEMA) != 8212:
    raise AssertionError(f"the schema text has {len(SCHEMA)} characters")
