"""The records and exports of the interface, as data: the model and the ctypes side are both built from these tables."""

import ctypes
import os
import re

EXPORT_LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../exports/kesta_db.def")


class DateValue(ctypes.Structure):
    _pack_ = 4
    _fields_ = [("Days", ctypes.c_double), ("Status", ctypes.c_int32)]


# Kinds of field: i32, i64, text, date, data (bytes whose length is the field DataLength).
FIELDS = {
    "FolderRecord": "RowId:i64 Path:text Count:i32 Size:i64 TotalSize:i64 Selected:i32 Deleted:i32 Reserved:i32 "
                    "AddTime:date Sized:i32",
    "SyncedFileRecord": "ModifiedTime:date Path:text BasePath:text PhonePath:text",
    "MainFolderRecord": "ID:i32 Number:i32 Size:i64 Setting:text Changed:i32",
    "PhoneSettingRecord": "IMEI:text Name:text PhotoPath:text DocPath:text WifiMAC:text AutoSync:i32 AutoBackup:i32 "
                          "AllowWifi:i32 ContactPreferSide:i32 CalendarPreferSide:i32 ContactPim:i32 CalPim:i32 "
                          "CalPeriod:i32 CalPeriodStr:text CalStart:date CalEnd:date BookMarkType:i32 "
                          "SyncDocFromFolder:i32 SyncDocFromPhone:i32 SyncPhotoFromFolder:i32 "
                          "SyncPhotoFromPhone:i32 SyncMusicFromFolder:i32 SyncMusicFromPlayer:i32 SyncMusicAll:i32 "
                          "NeedMount:i32 ContactFolderId:text CalendarFolderId:text ContactProfile:text "
                          "CalendarProfile:text",
    "PlaylistRecord": "RowId:i64 Name:text Digest:text IdInPhone:text Type:i32 Flag:i32 Count:i32 Size:i64 "
                      "TotalSize:i64 Selected:i32 Sized:i32",
    "BookmarkRecord": "Title:text Path:text PhoneMID:text Id:i32 Flag:i32 Type:i32",
    "BackupRecord": "bcID:i32 Size:i64 ModifiedTime:date Path:text PhonePath:text",
    "PimLogItem": "Guid:text Luid:text PCTime:date PhoneTime:date",
    "PimFolderRecord": "PimID:text ParentPimID:text Path:text Type:i32",
    "PimItemRecord": "PimID:text Type:i32 DataLength:i32 Data:data",
}
FIELDS = {name: [tuple(field.split(":")) for field in text.split()] for name, text in FIELDS.items()}

SIZES = {"FolderRecord": 72, "SyncedFileRecord": 40, "MainFolderRecord": 32, "PhoneSettingRecord": 176,
         "PlaylistRecord": 72, "BookmarkRecord": 40, "BackupRecord": 48, "PimLogItem": 40, "PimFolderRecord": 32,
         "PimItemRecord": 24, "PimLog": 16, "FileNameArray": 16, "List": 16}

# Order in which a reset announces the texts it frees, for the one record where it is fixed.
PHONE_TEXTS = ("IMEI", "Name", "PhotoPath", "DocPath", "WifiMAC", "CalPeriodStr", "ContactFolderId",
               "CalendarFolderId", "ContactProfile", "CalendarProfile")

C_TYPES = {"i32": ctypes.c_int32, "i64": ctypes.c_int64, "text": ctypes.c_void_p, "date": DateValue,
           "data": ctypes.c_void_p}


def zero_of(kind):
    """The value a zeroed field of this kind reads as."""
    return {"text": None, "data": None, "date": (0.0, 0)}.get(kind, 0)


def zero_record(name):
    return {field: zero_of(kind) for field, kind in FIELDS[name]}


def _structure(name, fields):
    return type(name, (ctypes.Structure,), {"_fields_": fields})


STRUCTURES = {name: _structure(name, [(field, C_TYPES[kind]) for field, kind in fields])
              for name, fields in FIELDS.items()}
List = _structure("List", [("Count", ctypes.c_int32), ("Items", ctypes.c_void_p)])
PimLog = _structure("PimLog", [("Type", ctypes.c_int32), ("Count", ctypes.c_int32), ("Items", ctypes.c_void_p)])
STRUCTURES.update(PimLog=PimLog, FileNameArray=List, List=List)

# Parameters: text, i32, in:R (read), inout:R (given and changed), rec:R (kept from call to call), list:R, date,
# outdate, outint, names (file names), outnames, log, outlog, buffer (of wide characters), slot (pointer to a text),
# outslot.
_CATEGORY = {
    "AddFolder": "text in:FolderRecord", "ClearAll": "text", "GetFolders": "text list:FolderRecord",
    "GetFolder": "text text rec:FolderRecord", "IsFolderSelected": "text text",
    "SetFolderSelected": "text text i32", "IsFolderDeleted": "text text", "SetFolderDeleted": "text text i32",
    "IsSyncedFile": "text text rec:SyncedFileRecord", "GetSyncedFiles": "text text list:SyncedFileRecord",
    "SetAddedFile": "text in:SyncedFileRecord", "SetDeletedFile": "text in:SyncedFileRecord",
    "SetUpdatedFile": "text in:SyncedFileRecord", "SetDeletedFolder": "text text",
}
CATEGORIES = {"MUSIC": "M", "IMAGE": "I", "VIDEO": "V", "DOCUMENT": "D"}

_PARAMETERS = {
    "DB_Open": "", "DB_Close": "",
    "DB_LIB_UpdateMainFolderInfo": "in:MainFolderRecord", "DB_LIB_RefreshStatistics": "",
    "DB_LIB_GetAllMainFolders": "list:MainFolderRecord", "DB_LIB_MainFoldersChanged": "list:MainFolderRecord",
    "DB_LIB_PhoneDetected": "text text", "DB_LIB_SetPhoneSetting": "in:PhoneSettingRecord",
    "DB_LIB_GetPhoneSetting": "text rec:PhoneSettingRecord", "DB_LIB_GetAllPhones": "list:PhoneSettingRecord",
    "DB_LIB_IsFolderSelected": "text i32", "DB_LIB_SetFolderSelected": "text i32 i32",
    "DB_LIB_SetLastSyncTime": "text date i32 i32", "DB_LIB_GetLastSyncTime": "text outdate",
    "DB_LIB_SetSDType": "text i32 i32", "DB_LIB_GetSDType": "text outint outint", "DB_LIB_ClearSyncHistory": "text",
    **{f"DB_{family}_{suffix}": text for family in CATEGORIES for suffix, text in _CATEGORY.items()},
    "DB_PLAYERMUSIC_AddPlaylist": "text in:PlaylistRecord", "DB_PLAYERMUSIC_ClearAll": "text",
    "DB_PLAYERMUSIC_GetPlaylists": "text list:PlaylistRecord", "DB_PLAYERMUSIC_IsListSelected": "text text",
    "DB_PLAYERMUSIC_SetListSelected": "text text i32",
    "DB_PLAYERMUSIC_IsSyncedFile": "text text rec:SyncedFileRecord",
    "DB_PLAYERMUSIC_GetSyncedFiles": "text text list:SyncedFileRecord",
    "DB_PLAYERMUSIC_SetAddedFile": "text in:SyncedFileRecord",
    "DB_PLAYERMUSIC_SetDeletedFile": "text in:SyncedFileRecord",
    "DB_PLAYERMUSIC_SetUpdatedFile": "text in:SyncedFileRecord",
    "DB_PLAYERMUSIC_SetAddedPlaylist": "text in:PlaylistRecord",
    "DB_PLAYERMUSIC_SetDeletedPlaylist": "text in:PlaylistRecord",
    "DB_PLAYERMUSIC_SetUpdatedPlaylist": "text in:PlaylistRecord",
    "DB_PLAYERMUSIC_GetListFilesname": "text text outnames", "DB_PLAYERMUSIC_SetListFilesname": "text text names",
    "DB_PLAYERMUSIC_DeleteList": "text text",
    "DB_GALLERY_GetFolders": "text list:FolderRecord", "DB_GALLERY_IsFolderSelected": "text text",
    "DB_GALLERY_SetFolderSelected": "text text i32", "DB_GALLERY_IsFolderDeleted": "text text",
    "DB_GALLERY_SetFolderDeleted": "text text i32",
    "DB_BACKUP_AddBackup": "text inout:BackupRecord", "DB_BACKUP_ClearAll": "", "DB_BACKUP_DeleteBackups": "text",
    "DB_BACKUP_DeleteBackup": "i32", "DB_BACKUP_FileExist": "text", "DB_BACKUP_GetAllBackups": "list:BackupRecord",
    "DB_BACKUP_GetPhoneBackups": "text list:BackupRecord",
    "DB_BOOKMARK_ClearAll": "text", "DB_BOOKMARK_IsSyncedMark": "text text",
    "DB_BOOKMARK_GetSyncedMarks": "text list:BookmarkRecord",
    "DB_BOOKMARK_GetSyncedMark": "text text rec:BookmarkRecord", "DB_BOOKMARK_SetAddedMark": "text in:BookmarkRecord",
    "DB_BOOKMARK_SetDeletedMark": "text text", "DB_BOOKMARK_SetUpdatedMark": "text in:BookmarkRecord",
    "DB_PIMLOG_GetPimProfile": "text buffer i32", "DB_PIMLOG_SetPimProfile": "text text i32",
    "DB_PIMLOG_ClearAll": "text i32", "DB_PIMLOG_ReadLog": "text outlog", "DB_PIMLOG_SaveLog": "text log",
    "DB_PIM_GetFolders": "list:PimFolderRecord text i32 i32", "DB_PIM_AddFolder": "in:PimFolderRecord text",
    "DB_PIM_GetFolder": "rec:PimFolderRecord text", "DB_PIM_UpdateFolder": "in:PimFolderRecord",
    "DB_PIM_DeleteFolder": "text", "DB_PIM_GetItems": "list:PimItemRecord text i32 i32",
    "DB_PIM_AddItem": "in:PimItemRecord text", "DB_PIM_UpdateItem": "in:PimItemRecord", "DB_PIM_DeleteItem": "text",
    "DB_PIM_GetProfile": "outslot", "DB_PIM_SetProfile": "slot", "DB_PIM_ClearAll": "i32 i32",
}


def listed_exports():
    """The names in the list of exports, in its order."""
    with open(EXPORT_LIST, encoding="ascii") as file:
        return re.findall(r"^\s+(DB_\w+)\s+@\d+$", file.read(), flags=re.M)


def _with_parameters(names):
    differing = set(names) ^ set(_PARAMETERS)
    if differing or len(names) != len(_PARAMETERS):
        raise AssertionError(f"the list of exports and the model's parameters differ: {sorted(differing)}")
    return {name: _PARAMETERS[name].split() for name in names}


EXPORTS = _with_parameters(listed_exports())


def check_layout():
    """Fails when a record has another size than callers are linked against."""
    for name, size in SIZES.items():
        if ctypes.sizeof(STRUCTURES[name]) != size:
            raise AssertionError(f"{name} has {ctypes.sizeof(STRUCTURES[name])} bytes instead of {size}")
    if ctypes.sizeof(DateValue) != 12 or ctypes.alignment(DateValue) != 4:
        raise AssertionError("DateValue must have 12 bytes and alignment 4")
