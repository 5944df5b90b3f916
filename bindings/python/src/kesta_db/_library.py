"""The library itself: where it is found, its functions with their types, its errors and its texts and dates."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import sys
import threading
from ctypes import POINTER, c_int32
from datetime import datetime, timedelta
from enum import IntEnum
from pathlib import Path
from typing import Any, Callable, Optional

from . import _records as r


class Code(IntEnum):
    """A result code of the library, or why the library was not asked at all."""

    UNREADABLE = -3  # what was found is not all that there is: reading it broke off
    NOT_STORED = -2  # the library answered success, but the row is not as it was given
    INVALID_TEXT = -1  # a text with a zero character, or one that must not stand in a statement
    FAILED = 1  # unknown phone, closed database, or a statement that failed
    BUSY = 5
    NO_MEMORY = 7
    READ_ONLY = 8
    IO_ERROR = 10
    DAMAGED = 11
    DISK_FULL = 13
    TOO_LONG = 18
    EXISTS = 19
    REFUSED = 23
    MORE_ROWS = 100
    FILE_IN_THE_WAY = 8398


class Error(Exception):
    """Every failure of this package. `code` is a Code where it has a name there, else the number."""

    def __init__(self, call: str, code: int) -> None:
        try:
            self.code: int = Code(code)
        except ValueError:
            self.code = code
        words = self.code.name.lower().replace("_", " ") if isinstance(self.code, Code) else f"result {code}"
        super().__init__(f"{call} failed: {words}")


_T = r.Text  # a text
_I = c_int32


def _p(record: type[ctypes.Structure]) -> Any:
    return POINTER(record)


_CATEGORY = {
    "AddFolder": (_T, _p(r.FolderRecord)),
    "ClearAll": (_T,),
    "GetFolders": (_T, _p(r.FolderList)),
    "GetFolder": (_T, _T, _p(r.FolderRecord)),
    "IsFolderSelected": (_T, _T),
    "SetFolderSelected": (_T, _T, _I),
    "IsFolderDeleted": (_T, _T),
    "SetFolderDeleted": (_T, _T, _I),
    "IsSyncedFile": (_T, _T, _p(r.SyncedFileRecord)),
    "GetSyncedFiles": (_T, _T, _p(r.SyncedFileList)),
    "SetAddedFile": (_T, _p(r.SyncedFileRecord)),
    "SetDeletedFile": (_T, _p(r.SyncedFileRecord)),
    "SetUpdatedFile": (_T, _p(r.SyncedFileRecord)),
    "SetDeletedFolder": (_T, _T),
}

# Every function of the library and what it takes. Each returns an int32.
FUNCTIONS: dict[str, tuple[Any, ...]] = {
    "DB_Open": (),
    "DB_Close": (),
    "DB_LIB_UpdateMainFolderInfo": (_p(r.MainFolderRecord),),
    "DB_LIB_RefreshStatistics": (),
    "DB_LIB_GetAllMainFolders": (_p(r.MainFolderList),),
    "DB_LIB_MainFoldersChanged": (_p(r.MainFolderList),),
    "DB_LIB_PhoneDetected": (_T, _T),
    "DB_LIB_SetPhoneSetting": (_p(r.PhoneSettingRecord),),
    "DB_LIB_GetPhoneSetting": (_T, _p(r.PhoneSettingRecord)),
    "DB_LIB_GetAllPhones": (_p(r.PhoneList),),
    "DB_LIB_IsFolderSelected": (_T, _I),
    "DB_LIB_SetFolderSelected": (_T, _I, _I),
    "DB_LIB_SetLastSyncTime": (_T, _p(r.DateValue), _I, _I),
    "DB_LIB_GetLastSyncTime": (_T, _p(r.DateValue)),
    "DB_LIB_SetSDType": (_T, _I, _I),
    "DB_LIB_GetSDType": (_T, POINTER(_I), POINTER(_I)),
    "DB_LIB_ClearSyncHistory": (_T,),
    **{
        f"DB_{family}_{name}": types
        for family in ("MUSIC", "IMAGE", "VIDEO", "DOCUMENT")
        for name, types in _CATEGORY.items()
    },
    "DB_PLAYERMUSIC_AddPlaylist": (_T, _p(r.PlaylistRecord)),
    "DB_PLAYERMUSIC_ClearAll": (_T,),
    "DB_PLAYERMUSIC_GetPlaylists": (_T, _p(r.PlaylistList)),
    "DB_PLAYERMUSIC_IsListSelected": (_T, _T),
    "DB_PLAYERMUSIC_SetListSelected": (_T, _T, _I),
    "DB_PLAYERMUSIC_IsSyncedFile": (_T, _T, _p(r.SyncedFileRecord)),
    "DB_PLAYERMUSIC_GetSyncedFiles": (_T, _T, _p(r.SyncedFileList)),
    "DB_PLAYERMUSIC_SetAddedFile": (_T, _p(r.SyncedFileRecord)),
    "DB_PLAYERMUSIC_SetDeletedFile": (_T, _p(r.SyncedFileRecord)),
    "DB_PLAYERMUSIC_SetUpdatedFile": (_T, _p(r.SyncedFileRecord)),
    "DB_PLAYERMUSIC_SetAddedPlaylist": (_T, _p(r.PlaylistRecord)),
    "DB_PLAYERMUSIC_SetDeletedPlaylist": (_T, _p(r.PlaylistRecord)),
    "DB_PLAYERMUSIC_SetUpdatedPlaylist": (_T, _p(r.PlaylistRecord)),
    "DB_PLAYERMUSIC_GetListFilesname": (_T, _T, _p(r.FileNameArray)),
    "DB_PLAYERMUSIC_SetListFilesname": (_T, _T, _p(r.FileNameArray)),
    "DB_PLAYERMUSIC_DeleteList": (_T, _T),
    "DB_GALLERY_GetFolders": (_T, _p(r.FolderList)),
    "DB_GALLERY_IsFolderSelected": (_T, _T),
    "DB_GALLERY_SetFolderSelected": (_T, _T, _I),
    "DB_GALLERY_IsFolderDeleted": (_T, _T),
    "DB_GALLERY_SetFolderDeleted": (_T, _T, _I),
    "DB_BACKUP_AddBackup": (_T, _p(r.BackupRecord)),
    "DB_BACKUP_ClearAll": (),
    "DB_BACKUP_DeleteBackups": (_T,),
    "DB_BACKUP_DeleteBackup": (_I,),
    "DB_BACKUP_FileExist": (_T,),
    "DB_BACKUP_GetAllBackups": (_p(r.BackupList),),
    "DB_BACKUP_GetPhoneBackups": (_T, _p(r.BackupList)),
    "DB_BOOKMARK_ClearAll": (_T,),
    "DB_BOOKMARK_IsSyncedMark": (_T, _T),
    "DB_BOOKMARK_GetSyncedMarks": (_T, _p(r.BookmarkList)),
    "DB_BOOKMARK_GetSyncedMark": (_T, _T, _p(r.BookmarkRecord)),
    "DB_BOOKMARK_SetAddedMark": (_T, _p(r.BookmarkRecord)),
    "DB_BOOKMARK_SetDeletedMark": (_T, _T),
    "DB_BOOKMARK_SetUpdatedMark": (_T, _p(r.BookmarkRecord)),
    "DB_PIMLOG_GetPimProfile": (_T, _T, _I),
    "DB_PIMLOG_SetPimProfile": (_T, _T, _I),
    "DB_PIMLOG_ClearAll": (_T, _I),
    "DB_PIMLOG_ReadLog": (_T, _p(r.PimLog)),
    "DB_PIMLOG_SaveLog": (_T, _p(r.PimLog)),
    "DB_PIM_GetFolders": (_p(r.PimFolderList), _T, _I, _I),
    "DB_PIM_AddFolder": (_p(r.PimFolderRecord), _T),
    "DB_PIM_GetFolder": (_p(r.PimFolderRecord), _T),
    "DB_PIM_UpdateFolder": (_p(r.PimFolderRecord),),
    "DB_PIM_DeleteFolder": (_T,),
    "DB_PIM_GetItems": (_p(r.PimItemList), _T, _I, _I),
    "DB_PIM_AddItem": (_p(r.PimItemRecord), _T),
    "DB_PIM_UpdateItem": (_p(r.PimItemRecord),),
    "DB_PIM_DeleteItem": (_T,),
    "DB_PIM_GetProfile": (POINTER(_T),),
    "DB_PIM_SetProfile": (POINTER(_T),),
    "DB_PIM_ClearAll": (_I, _I),
}


def _find() -> str:
    if named := os.environ.get("KESTA_DB_LIBRARY"):
        return named
    name = "KESTA_DB.dll" if sys.platform == "win32" else "libKESTA_DB.so.1"
    beside = Path(__file__).with_name(name)
    return str(beside) if beside.exists() else name


class Library:
    """The functions, by their names."""

    def __init__(self) -> None:
        self._library = ctypes.CDLL(_find())
        for name, types in FUNCTIONS.items():
            function = getattr(self._library, name)
            function.argtypes = types
            function.restype = c_int32
        if sys.platform == "win32":
            self._free = ctypes.windll.ole32.CoTaskMemFree
        else:
            self._free = ctypes.CDLL(None).free
        self._free.argtypes = (ctypes.c_void_p,)
        self._free.restype = None

    def __getattr__(self, name: str) -> Any:
        return getattr(self._library, name)

    def free(self, address: Optional[int]) -> None:
        """Frees memory that the library and its callers share."""
        self._free(address)


_library: Optional[Library] = None
_loading = threading.Lock()


def library() -> Library:
    """The library, loaded at the first call."""
    global _library
    with _loading:
        if _library is None:
            _library = Library()
        return _library


# ---- Texts


class TextArgument:
    """A text for the library. `address` is valid as long as this object lives."""

    def __init__(self, text: str) -> None:
        if "\0" in text:
            raise Error("A call with a text that holds a zero character", Code.INVALID_TEXT)
        try:
            encoded = text.encode("utf-16-le")
        except UnicodeEncodeError:
            raise Error("A call with a text that holds half a character", Code.INVALID_TEXT) from None
        self._buffer = ctypes.create_string_buffer(encoded + b"\0\0", len(encoded) + 2)
        self.address = ctypes.addressof(self._buffer)

    @property
    def _as_parameter_(self) -> ctypes.c_void_p:
        return ctypes.c_void_p(self.address)


def identifier(text: str) -> TextArgument:
    """A text that goes into statements without quotes: printable ASCII without an apostrophe."""
    if any(not " " <= c <= "~" or c == "'" for c in text):
        raise Error("A call with an identifier that is not ASCII without apostrophes", Code.INVALID_TEXT)
    return TextArgument(text)


def text_at(address: Optional[int]) -> str:
    """The text there; null is the empty text, half a surrogate pair becomes U+FFFD."""
    if not address:
        return ""
    units = ctypes.cast(address, POINTER(ctypes.c_uint16))
    length = 0
    while units[length]:
        length += 1
    return ctypes.string_at(address, length * 2).decode("utf-16-le", "replace")


# ---- Dates

_DAY_ZERO = datetime(1899, 12, 30)
_VALID, _INVALID, _NULL = 0, 1, 2


def to_date_value(when: Optional[datetime]) -> r.DateValue:
    """Local time, to the second; None is the null date."""
    if when is None:
        return r.DateValue(0.0, _NULL)
    if when.tzinfo is not None:
        when = when.astimezone().replace(tzinfo=None)
    past = when - _DAY_ZERO
    fraction = past.seconds / 86400
    # The fraction runs forward in the day also where the day number is negative.
    return r.DateValue(past.days - fraction if past.days < 0 else past.days + fraction, _VALID)


def from_date_value(date: r.DateValue) -> Optional[datetime]:
    """None for a date that is not valid."""
    if date.Status != _VALID or not abs(date.Days) < 3e6:
        return None
    days = int(date.Days)
    seconds = round(abs(date.Days - days) * 86400)
    return _DAY_ZERO + timedelta(days=days, seconds=seconds)


# ---- Lists

# Names no phone and no folder: asking for something of it makes the library take back what a list holds.
UNKNOWN = TextArgument("no such")

_main_folders = r.MainFolderList()
_main_folders_lock = threading.Lock()


def require(call: str, result: int) -> None:
    if result != 0:
        raise Error(call, result)


def read_list(call: str, read: Callable[[], Any]) -> None:
    """Another process may add a row between the library's count and its query; the list is then asked for again."""
    result = read()
    for _ in range(10):
        if result != Code.MORE_ROWS:
            break
        result = read()
    require(call, result)


def read_main_folders(call: str, convert: Callable[[r.MainFolderRecord], Any]) -> list[Any]:
    with _main_folders_lock:
        read_list(call, lambda: int(library().DB_LIB_GetAllMainFolders(ctypes.byref(_main_folders))))
        if _main_folders.Count == 0:  # every database has some
            raise Error(call, Code.UNREADABLE)
        return [convert(_main_folders.Items[i]) for i in range(_main_folders.Count)]


def read_counted_list(call: str, records: Any, read: Callable[[], Any]) -> None:
    """Reads a list whose count may break off without a word: an empty one is believed only when it is empty once more
    after other rows could be read."""
    read_list(call, read)
    if records.Count == 0:
        read_main_folders(call, lambda record: None)
        read_list(call, read)
