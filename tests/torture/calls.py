"""The table of calls: for every export at least one with an effect, or with something to read, on the data set that
seed() makes. A check compares it with exports/kesta_db.def (check_table)."""

import re

from records import CATEGORIES, EXPORTS

IMEI = "351111"
OTHER = "352222:552222"
WHEN = (45000.5, 0)
LATER = (45100.25, 0)

_FOLDERS = {"known": "C:\\Rock", "empty": "C:\\Empty", "new": "C:\\New"}


def _folder(name, count=3):
    return {"Path": _FOLDERS[name], "Count": count, "Size": count * 1000, "TotalSize": count * 1100, "Sized": 1}


def _file(number, path="/sdcard/{}.mp3"):
    return {"Path": f"C:\\Rock\\{number}.mp3", "BasePath": _FOLDERS["known"], "PhonePath": path.format(number),
            "ModifiedTime": WHEN}


def _category():
    return {
        "AddFolder": {"new": (IMEI, _folder("new")), "known": (IMEI, _folder("known", 9))},
        "ClearAll": {"": (IMEI,)}, "GetFolders": {"": (IMEI, 0)}, "GetFolder": {"": (IMEI, _FOLDERS["known"], 0)},
        "IsFolderSelected": {"": (IMEI, _FOLDERS["empty"])}, "SetFolderSelected": {"": (IMEI, _FOLDERS["known"], 0)},
        "IsFolderDeleted": {"": (IMEI, _FOLDERS["known"])},
        "SetFolderDeleted": {"synced": (IMEI, _FOLDERS["known"], 1), "empty": (IMEI, _FOLDERS["empty"], 1)},
        "IsSyncedFile": {"": (IMEI, _file(3)["Path"], 0)},
        "GetSyncedFiles": {"all": (IMEI, None, 0), "folder": (IMEI, _FOLDERS["known"], 0)},
        "SetAddedFile": {"new": (IMEI, _file(99)), "first": (IMEI, {**_file(98), "BasePath": _FOLDERS["empty"]})},
        "SetDeletedFile": {"": (IMEI, _file(2))},
        "SetUpdatedFile": {"": (IMEI, {**_file(1), "PhonePath": "/sdcard/moved.mp3", "ModifiedTime": LATER})},
        "SetDeletedFolder": {"": (IMEI, _FOLDERS["known"])},
    }


def _playlist(name, count=5):
    return {"Name": name, "Digest": f"digest{count}", "IdInPhone": f"id-{name}", "Type": 2, "Count": count,
            "Size": count * 10, "TotalSize": count * 11, "Sized": 1}


def _list_file(number, name="Loud"):
    return {"Path": f"C:\\Lists\\{number}.mp3", "BasePath": name, "PhonePath": f"/sdcard/l{number}.mp3",
            "ModifiedTime": WHEN}


def _bookmark(number):
    return {"Title": f"Título {number}", "Path": f"https://example.org/{number}", "PhoneMID": f"m{number}",
            "Id": number, "Flag": 1, "Type": 1}


def _backup(number):
    return {"bcID": 0, "Path": f"D:\\Backups\\{number}.zip", "PhonePath": "/sdcard", "Size": 5000 + number,
            "ModifiedTime": WHEN}


def _log(*numbers):
    return {"Type": 1, "Items": [{"Guid": f"g{i}", "Luid": f"l{i}", "PCTime": WHEN, "PhoneTime": LATER}
                                 for i in numbers]}


def _item(number, data=b"BEGIN:VCARD\0END"):
    return {"PimID": f"item{number}", "Type": 1, "Data": data, "DataLength": len(data)}


def _pim_folder(number, path=None):
    return {"PimID": f"folder{number}", "Path": path or f"/pim{number}", "Type": 1}


_SETTING = {"IMEI": IMEI, "Name": "Another name", "PhotoPath": "C:\\Photos", "DocPath": "C:\\Docs",
            "WifiMAC": "00:11:22:33:44:55", "AutoSync": 1, "AutoBackup": 1, "AllowWifi": 0, "ContactPreferSide": 1,
            "CalendarPreferSide": 1, "ContactPim": 3, "CalPim": 4, "CalPeriod": 5, "CalPeriodStr": "weekly",
            "CalStart": WHEN, "CalEnd": LATER, "BookMarkType": 1, "SyncMusicAll": 0, "ContactFolderId": "cf",
            "CalendarFolderId": "kf", "ContactProfile": "cp", "CalendarProfile": "kp"}

SAMPLES = {
    "DB_Open": {"": ()}, "DB_Close": {"": ()},
    "DB_LIB_UpdateMainFolderInfo": {"": ({"ID": 1000, "Number": 12, "Size": 3456, "Setting": "by name"},)},
    "DB_LIB_RefreshStatistics": {"": ()}, "DB_LIB_GetAllMainFolders": {"": (0,)},
    "DB_LIB_MainFoldersChanged": {"": (0,)},
    "DB_LIB_PhoneDetected": {"new": (OTHER, "Second"), "known": (IMEI, "First")},
    "DB_LIB_SetPhoneSetting": {"": (_SETTING,)}, "DB_LIB_GetPhoneSetting": {"": (IMEI, 0)},
    "DB_LIB_GetAllPhones": {"": (0,)}, "DB_LIB_IsFolderSelected": {"": (IMEI, 1000)},
    "DB_LIB_SetFolderSelected": {"known": (IMEI, 1000, 1), "new": (IMEI, 77, 1)},
    "DB_LIB_SetLastSyncTime": {"": (IMEI, LATER, 4, 0)}, "DB_LIB_GetLastSyncTime": {"": (IMEI, 0)},
    "DB_LIB_SetSDType": {"": (IMEI, 8, 9)}, "DB_LIB_GetSDType": {"": (IMEI, 0, 1)},
    "DB_LIB_ClearSyncHistory": {"": (IMEI,)},
    **{f"DB_{family}_{suffix}": variants for family in CATEGORIES for suffix, variants in _category().items()},
    "DB_PLAYERMUSIC_AddPlaylist": {"new": (IMEI, _playlist("New")), "known": (IMEI, _playlist("Loud", 9)),
                                   "unconfirmed": (IMEI, _playlist("Gone", 9))},
    "DB_PLAYERMUSIC_ClearAll": {"": (IMEI,)}, "DB_PLAYERMUSIC_GetPlaylists": {"": (IMEI, 0)},
    "DB_PLAYERMUSIC_IsListSelected": {"": (IMEI, "Quiet")}, "DB_PLAYERMUSIC_SetListSelected": {"": (IMEI, "Loud", 0)},
    "DB_PLAYERMUSIC_IsSyncedFile": {"": (IMEI, _list_file(1)["Path"], 0)},
    "DB_PLAYERMUSIC_GetSyncedFiles": {"": (IMEI, "Loud", 0)},
    "DB_PLAYERMUSIC_SetAddedFile": {"": (IMEI, _list_file(99, "Quiet"))},
    "DB_PLAYERMUSIC_SetDeletedFile": {"": (IMEI, _list_file(1))},
    "DB_PLAYERMUSIC_SetUpdatedFile": {"": (IMEI, {**_list_file(2), "ModifiedTime": LATER})},
    "DB_PLAYERMUSIC_SetAddedPlaylist": {"": (IMEI, _playlist("Quiet"))},
    "DB_PLAYERMUSIC_SetDeletedPlaylist": {"current": (IMEI, _playlist("Loud")),
                                          "unconfirmed": (IMEI, _playlist("Gone"))},
    "DB_PLAYERMUSIC_SetUpdatedPlaylist": {"": (IMEI, _playlist("Quiet"))},
    "DB_PLAYERMUSIC_GetListFilesname": {"": (IMEI, "Loud", 0)},
    "DB_PLAYERMUSIC_SetListFilesname": {"": (IMEI, "Loud", ["x.mp3", "ÿ.mp3", "z.mp3"])},
    "DB_PLAYERMUSIC_DeleteList": {"on the phone": (IMEI, "Loud"), "new": (IMEI, "Quiet")},
    "DB_GALLERY_GetFolders": {"": (IMEI, 0)}, "DB_GALLERY_IsFolderSelected": {"": (IMEI, _FOLDERS["empty"])},
    "DB_GALLERY_SetFolderSelected": {"": (IMEI, _FOLDERS["known"], 0)},
    "DB_GALLERY_IsFolderDeleted": {"": (IMEI, _FOLDERS["known"])},
    "DB_GALLERY_SetFolderDeleted": {"": (IMEI, _FOLDERS["empty"], 1)},
    "DB_BACKUP_AddBackup": {"new": (IMEI, _backup(9)), "known": (IMEI, {**_backup(1), "Size": 1})},
    "DB_BACKUP_ClearAll": {"": ()}, "DB_BACKUP_DeleteBackups": {"": (IMEI,)}, "DB_BACKUP_DeleteBackup": {"": (1,)},
    "DB_BACKUP_FileExist": {"": (_backup(1)["Path"],)}, "DB_BACKUP_GetAllBackups": {"": (0,)},
    "DB_BACKUP_GetPhoneBackups": {"": (IMEI, 0)},
    "DB_BOOKMARK_ClearAll": {"": (IMEI,)}, "DB_BOOKMARK_IsSyncedMark": {"": (IMEI, _bookmark(1)["Path"])},
    "DB_BOOKMARK_GetSyncedMarks": {"": (IMEI, 0)},
    "DB_BOOKMARK_GetSyncedMark": {"": (IMEI, _bookmark(2)["Path"], 0)},
    "DB_BOOKMARK_SetAddedMark": {"": (IMEI, _bookmark(9))},
    "DB_BOOKMARK_SetDeletedMark": {"": (IMEI, _bookmark(1)["Path"])},
    "DB_BOOKMARK_SetUpdatedMark": {"": (IMEI, {**_bookmark(2), "Title": "Ändert"})},
    "DB_PIMLOG_GetPimProfile": {"": (IMEI, 0, 1)},
    "DB_PIMLOG_SetPimProfile": {"known": (IMEI, "profil é", 1), "new": (IMEI, "profil é", 2)},
    "DB_PIMLOG_ClearAll": {"": (IMEI, 1)}, "DB_PIMLOG_ReadLog": {"": (IMEI, 0)},
    "DB_PIMLOG_SaveLog": {"known": (IMEI, _log(7, 8, 9)), "new": (IMEI, {**_log(7, 8), "Type": 2})},
    "DB_PIM_GetFolders": {"": (0, None, 1, 1)}, "DB_PIM_AddFolder": {"": (_pim_folder(9), "folder1")},
    "DB_PIM_GetFolder": {"": (0, "folder2")}, "DB_PIM_UpdateFolder": {"": (_pim_folder(2, "/ünders"),)},
    "DB_PIM_DeleteFolder": {"": ("folder2",)}, "DB_PIM_GetItems": {"": (0, "folder1", 1, 1)},
    "DB_PIM_AddItem": {"folder": (_item(9), "/pim1"), "root": (_item(9), None)},
    "DB_PIM_UpdateItem": {"": (_item(1, b"other\0data"),)}, "DB_PIM_DeleteItem": {"": ("item1",)},
    "DB_PIM_GetProfile": {"": (0,)}, "DB_PIM_SetProfile": {"": (["profile ø"],)},
    "DB_PIM_ClearAll": {"all": (1, 0), "items": (1, 1)},
}

# Tables that only other programs make, without which whole families would answer 1 and do nothing.
FOREIGN_TABLES = (
    "CREATE TABLE tBackups ([bcID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, [phoneID] INTEGER, [Path] TEXT, "
    "[PhonePath] TEXT, [Size] NUMERIC, [ModifiedTime] DATETIME);"
    "CREATE TABLE tMusicFiles ([Size] NUMERIC); INSERT INTO tMusicFiles VALUES (10), (20);"
    "CREATE TABLE tMediaFiles ([Size] NUMERIC); INSERT INTO tMediaFiles VALUES (30);"
    "CREATE TABLE tDocuments ([Size] NUMERIC); INSERT INTO tDocuments VALUES (40);"
    "CREATE TABLE tWebBookmarks ([Url] TEXT); INSERT INTO tWebBookmarks VALUES ('u');")


def seed_calls():
    """The calls that make the data set, as (export, args). FOREIGN_TABLES must be there."""
    yield "DB_LIB_PhoneDetected", (IMEI, "First")
    yield "DB_LIB_SetPhoneSetting", ({**_SETTING, "Name": "First", "ContactProfile": "profile é"},)
    yield "DB_LIB_SetSDType", (IMEI, 1, 2)
    yield "DB_LIB_SetLastSyncTime", (IMEI, WHEN, 0, 1)
    for family in CATEGORIES:
        for name in ("known", "empty"):
            yield f"DB_{family}_AddFolder", (IMEI, _folder(name))
        for number in range(40):  # on more pages than one
            yield f"DB_{family}_SetAddedFile", (IMEI, _file(number, "/sdcard/" + "x" * 150 + "é{}.mp3"))
        yield f"DB_{family}_SetFolderSelected", (IMEI, _FOLDERS["empty"], 0)
    for name in ("Loud", "Gone", "Quiet"):
        yield "DB_PLAYERMUSIC_AddPlaylist", (IMEI, _playlist(name))
    yield "DB_PLAYERMUSIC_SetListSelected", (IMEI, "Quiet", 0)
    yield "DB_PLAYERMUSIC_SetAddedPlaylist", (IMEI, _playlist("Gone"))
    yield "DB_PLAYERMUSIC_DeleteList", (IMEI, "Gone")
    yield "DB_PLAYERMUSIC_SetAddedPlaylist", (IMEI, _playlist("Loud"))
    for number in range(3):
        yield "DB_PLAYERMUSIC_SetAddedFile", (IMEI, _list_file(number))
    yield "DB_PLAYERMUSIC_SetListFilesname", (IMEI, "Loud", ["a.mp3", "b.mp3", "ü.mp3"])
    for number in range(1, 4):
        yield "DB_BACKUP_AddBackup", (IMEI, _backup(number))
        yield "DB_BOOKMARK_SetAddedMark", (IMEI, _bookmark(number))
        yield "DB_PIM_AddFolder", (_pim_folder(number), None if number == 1 else "folder1")
        yield "DB_PIM_AddItem", (_item(number), f"/pim{1 if number < 3 else 2}")
    yield "DB_PIMLOG_SetPimProfile", (IMEI, "profil", 1)
    yield "DB_PIMLOG_SaveLog", (IMEI, _log(1, 2))
    yield "DB_PIM_SetProfile", (["store"],)


def sample(name):
    """"DB_MUSIC_AddFolder:new" -> export, arguments."""
    export, _, variant = name.partition(":")
    return export, SAMPLES[export][variant]


def sample_names():
    return [f"{export}:{variant}" if variant else export for export, variants in SAMPLES.items()
            for variant in variants]


def writing_samples():
    """Those that may change the file."""
    quiet = ("_Get", "_Is", "_FileExist", "_MainFoldersChanged", "DB_Open", "DB_Close")
    return [name for name in sample_names() if not any(part in name for part in quiet)]


def check_table(definition):
    """Fails when the table does not have exactly the exports of the .def file, or arguments that do not fit them."""
    with open(definition, encoding="ascii") as file:
        listed = re.findall(r"^\s+(DB_\w+)\s+@\d+$", file.read(), flags=re.M)
    if sorted(listed) != sorted(SAMPLES):
        raise AssertionError(f"the table of calls differs from {definition}: "
                             f"{sorted(set(listed) ^ set(SAMPLES)) or 'a name twice'}")
    for export, variants in SAMPLES.items():
        for variant, args in variants.items():
            if len(args) != len(EXPORTS[export]):
                raise AssertionError(f"{export}:{variant} has {len(args)} arguments, not {len(EXPORTS[export])}")
