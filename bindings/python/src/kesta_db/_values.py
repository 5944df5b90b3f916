"""What the database holds, as its callers see it."""

from __future__ import annotations

from dataclasses import dataclass, field
from datetime import datetime
from enum import IntEnum
from typing import Any, Optional


class Category(IntEnum):
    MUSIC = 0
    IMAGES = 1
    VIDEOS = 2
    DOCUMENTS = 3


class MainFolder(IntEnum):
    MUSIC = 1000
    GALLERY = 1100
    DOCUMENTS = 1400
    CONTACTS = 1500
    CALENDAR = 1600
    BOOKMARKS = 1900
    MAP = 2200


class PlaylistState(IntEnum):
    CURRENT = 0  # on the phone as it is on the PC
    NEW = 1  # to be added to the phone
    UNCONFIRMED = 3  # gone from the PC, or not seen again yet: to be removed from the phone
    DELETED = 4  # removed from the phone; its row is kept


def _text(record: str, default: str = "") -> Any:
    return field(default=default, metadata={"record": record, "kind": str})


def _number(record: str, default: int = 0) -> Any:
    return field(default=default, metadata={"record": record, "kind": int})


def _truth(record: str, default: bool = False) -> Any:
    return field(default=default, metadata={"record": record, "kind": bool})


def _date(record: str) -> Any:
    return field(default=None, metadata={"record": record, "kind": datetime})


@dataclass
class Phone:
    """How a phone is set up. What the library leaves to its callers' own numbers is left so here."""

    imei: str
    name: str = _text("Name")
    photo_path: str = _text("PhotoPath")
    doc_path: str = _text("DocPath")
    wifi_mac: str = _text("WifiMAC")
    auto_sync: bool = _truth("AutoSync")
    auto_backup: bool = _truth("AutoBackup")
    allow_wifi: bool = _truth("AllowWifi", True)
    contact_prefer_side: int = _number("ContactPreferSide", 2)
    calendar_prefer_side: int = _number("CalendarPreferSide", 2)
    contact_program: int = _number("ContactPim")
    calendar_program: int = _number("CalPim")
    calendar_period: int = _number("CalPeriod")
    calendar_period_text: str = _text("CalPeriodStr")
    calendar_start: Optional[datetime] = _date("CalStart")
    calendar_end: Optional[datetime] = _date("CalEnd")
    bookmark_type: int = _number("BookMarkType", 1)
    sync_doc_from_folder: bool = _truth("SyncDocFromFolder")
    sync_doc_from_phone: bool = _truth("SyncDocFromPhone", True)
    sync_photo_from_folder: bool = _truth("SyncPhotoFromFolder")
    sync_photo_from_phone: bool = _truth("SyncPhotoFromPhone", True)
    sync_music_from_folder: bool = _truth("SyncMusicFromFolder")
    sync_music_from_player: bool = _truth("SyncMusicFromPlayer")
    sync_music_all: bool = _truth("SyncMusicAll", True)
    need_mount: bool = _truth("NeedMount", True)  # written by set_last_sync alone
    contact_folder: str = _text("ContactFolderId")
    calendar_folder: str = _text("CalendarFolderId")
    contact_profile: str = _text("ContactProfile")
    calendar_profile: str = _text("CalendarProfile")


@dataclass
class MainFolderFigures:
    """What the database holds of one main folder, whichever the phone."""

    folder: int  # a MainFolder, unless another program has added one
    items: int
    size: int
    setting: str
    changed: bool


@dataclass
class Folder:
    """A folder of the PC that is synced to a phone."""

    path: str
    count: int = 0
    size: int = 0
    total_size: int = 0
    selected: bool = True
    deleted: bool = False
    sized: bool = False
    added: Optional[datetime] = None
    row_id: int = 0


@dataclass
class File:
    """A file that has been synced to a phone."""

    path: str  # on the PC
    base_path: str = ""  # the folder, or the playlist, that it belongs to
    phone_path: str = ""  # on the phone
    modified: Optional[datetime] = None


@dataclass
class Playlist:
    name: str
    digest: str = ""  # the caller's digest of the contents: ASCII without apostrophes
    id_in_phone: Optional[str] = None  # None: not on the phone, or there under an empty name
    type: int = 0
    state: int = PlaylistState.NEW  # a PlaylistState, unless another program stored another number
    count: int = 0
    size: int = 0
    total_size: int = 0
    selected: bool = True
    sized: bool = False


@dataclass
class Bookmark:
    url: str
    title: str = ""
    id_on_phone: str = ""
    id: int = 0  # the caller's own number; Bookmarks.all leaves it 0
    flag: int = 0


@dataclass
class Backup:
    path: str  # on the PC; the key over all phones
    phone_path: str = ""
    size: int = 0
    modified: Optional[datetime] = None
    id: int = -1


@dataclass
class PimFolder:
    """A folder of the store. Its id is ASCII without apostrophes."""

    id: str
    path: str  # what it is called; items are added by it
    type: int = 0  # the kind of data, the caller's own number
    parent_id: str = ""  # empty: a root


@dataclass
class PimItem:
    id: str
    data: bytes = b""
    type: int = 0


@dataclass
class PimLogRow:
    """One synced entry: the PC's and the phone's name for it, and when either last changed it."""

    guid: str
    luid: str
    pc_time: Optional[datetime] = None
    phone_time: Optional[datetime] = None
