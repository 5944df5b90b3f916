"""The records of a phone-sync suite, from Python: see Database."""

from __future__ import annotations

from ctypes import byref

from . import _records as r
from ._backups import Backups
from ._bookmarks import Bookmarks
from ._calls import listed, to_folder
from ._library import UNKNOWN, Code, Error, identifier, library, require
from ._media import Media
from ._phones import Phones
from ._pim import PimStore, PimSyncLog
from ._playlists import Playlists
from ._values import (
    Backup,
    Bookmark,
    Category,
    File,
    Folder,
    MainFolder,
    MainFolderFigures,
    Phone,
    PimFolder,
    PimItem,
    PimLogRow,
    Playlist,
    PlaylistState,
)
from ._version import VERSION as __version__

__all__ = [
    "Backup",
    "Backups",
    "Bookmark",
    "Bookmarks",
    "Category",
    "Code",
    "Database",
    "Error",
    "File",
    "Folder",
    "MainFolder",
    "MainFolderFigures",
    "Media",
    "Phone",
    "Phones",
    "PimFolder",
    "PimItem",
    "PimLogRow",
    "PimStore",
    "PimSyncLog",
    "Playlist",
    "PlaylistState",
    "Playlists",
    "__version__",
]


class Database:
    """The open database, and the way to its parts."""

    def __init__(self) -> None:
        """Opens the database unless loading the library has done so."""
        require("DB_Open", library().DB_Open())
        self.phones = Phones()
        self.backups = Backups()
        self.pim_store = PimStore()

    def media(self, imei: str, category: Category) -> Media:
        return Media(imei, category)

    def playlists(self, imei: str) -> Playlists:
        return Playlists(imei)

    def bookmarks(self, imei: str) -> Bookmarks:
        return Bookmarks(imei)

    def pim_log(self, imei: str, type: int) -> PimSyncLog:
        return PimSyncLog(imei, type)

    def gallery(self, imei: str) -> list[Folder]:
        """Pictures and videos as one. Some folders may be missing, as the library's documentation says; media() has them
        all."""
        phone, records = identifier(imei), r.FolderList()
        return listed("DB_GALLERY_GetFolders", records,
                      lambda: library().DB_GALLERY_GetFolders(phone, byref(records)),
                      lambda: library().DB_GALLERY_GetFolders(UNKNOWN, byref(records)), to_folder,
                      counted_silently=False)
