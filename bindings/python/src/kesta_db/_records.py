"""The records of kesta_db.h, field for field. A test compares sizes and offsets with those of the header."""

from __future__ import annotations

import ctypes
from ctypes import POINTER, Structure, c_double, c_int32, c_int64, c_uint8, c_void_p

# A text: the address of zero-terminated UTF-16. Not a pointer type, so that reading a field copies nothing.
Text = c_void_p


class DateValue(Structure):
    # 12 bytes everywhere: the one packed record.
    _pack_ = 4
    _fields_ = [("Days", c_double), ("Status", c_int32)]


class MainFolderRecord(Structure):
    _fields_ = [("ID", c_int32), ("Number", c_int32), ("Size", c_int64), ("Setting", Text), ("Changed", c_int32)]


class PhoneSettingRecord(Structure):
    _fields_ = [
        ("IMEI", Text),
        ("Name", Text),
        ("PhotoPath", Text),
        ("DocPath", Text),
        ("WifiMAC", Text),
        ("AutoSync", c_int32),
        ("AutoBackup", c_int32),
        ("AllowWifi", c_int32),
        ("ContactPreferSide", c_int32),
        ("CalendarPreferSide", c_int32),
        ("ContactPim", c_int32),
        ("CalPim", c_int32),
        ("CalPeriod", c_int32),
        ("CalPeriodStr", Text),
        ("CalStart", DateValue),
        ("CalEnd", DateValue),
        ("BookMarkType", c_int32),
        ("SyncDocFromFolder", c_int32),
        ("SyncDocFromPhone", c_int32),
        ("SyncPhotoFromFolder", c_int32),
        ("SyncPhotoFromPhone", c_int32),
        ("SyncMusicFromFolder", c_int32),
        ("SyncMusicFromPlayer", c_int32),
        ("SyncMusicAll", c_int32),
        ("NeedMount", c_int32),
        ("ContactFolderId", Text),
        ("CalendarFolderId", Text),
        ("ContactProfile", Text),
        ("CalendarProfile", Text),
    ]


class FolderRecord(Structure):
    _fields_ = [
        ("RowId", c_int64),
        ("Path", Text),
        ("Count", c_int32),
        ("Size", c_int64),
        ("TotalSize", c_int64),
        ("Selected", c_int32),
        ("Deleted", c_int32),
        ("Reserved", c_int32),
        ("AddTime", DateValue),
        ("Sized", c_int32),
    ]


class SyncedFileRecord(Structure):
    _fields_ = [("ModifiedTime", DateValue), ("Path", Text), ("BasePath", Text), ("PhonePath", Text)]


class PlaylistRecord(Structure):
    _fields_ = [
        ("RowId", c_int64),
        ("Name", Text),
        ("Digest", Text),
        ("IdInPhone", Text),
        ("Type", c_int32),
        ("Flag", c_int32),
        ("Count", c_int32),
        ("Size", c_int64),
        ("TotalSize", c_int64),
        ("Selected", c_int32),
        ("Sized", c_int32),
    ]


class FileNameArray(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(Text))]


class BookmarkRecord(Structure):
    _fields_ = [
        ("Title", Text),
        ("Path", Text),
        ("PhoneMID", Text),
        ("Id", c_int32),
        ("Flag", c_int32),
        ("Type", c_int32),
    ]


class BackupRecord(Structure):
    _fields_ = [
        ("bcID", c_int32),
        ("Size", c_int64),
        ("ModifiedTime", DateValue),
        ("Path", Text),
        ("PhonePath", Text),
    ]


class PimLogItem(Structure):
    _fields_ = [("Guid", Text), ("Luid", Text), ("PCTime", DateValue), ("PhoneTime", DateValue)]


class PimLog(Structure):
    _fields_ = [("Type", c_int32), ("Count", c_int32), ("Items", POINTER(PimLogItem))]


class PimFolderRecord(Structure):
    _fields_ = [("PimID", Text), ("ParentPimID", Text), ("Path", Text), ("Type", c_int32)]


class PimItemRecord(Structure):
    _fields_ = [("PimID", Text), ("Type", c_int32), ("DataLength", c_int32), ("Data", POINTER(c_uint8))]


class MainFolderList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(MainFolderRecord))]


class PhoneList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(PhoneSettingRecord))]


class FolderList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(FolderRecord))]


class SyncedFileList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(SyncedFileRecord))]


class PlaylistList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(PlaylistRecord))]


class BookmarkList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(BookmarkRecord))]


class BackupList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(BackupRecord))]


class PimFolderList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(PimFolderRecord))]


class PimItemList(Structure):
    _fields_ = [("Count", c_int32), ("Items", POINTER(PimItemRecord))]


RECORDS: list[type[ctypes.Structure]] = [
    DateValue,
    MainFolderRecord,
    PhoneSettingRecord,
    FolderRecord,
    SyncedFileRecord,
    PlaylistRecord,
    FileNameArray,
    BookmarkRecord,
    BackupRecord,
    PimLogItem,
    PimLog,
    PimFolderRecord,
    PimItemRecord,
    MainFolderList,
    PhoneList,
    FolderList,
    SyncedFileList,
    PlaylistList,
    BookmarkList,
    BackupList,
    PimFolderList,
    PimItemList,
]
