"""The records of a phone-sync suite, from Python: see Database."""

from __future__ import annotations

import ctypes
import threading
from ctypes import byref
from dataclasses import dataclass, field, fields
from datetime import datetime
from enum import IntEnum
from typing import Any, Callable, Iterable, Iterator, Optional

from . import _records as r
from ._library import (
    UNKNOWN,
    Code,
    Error,
    TextArgument,
    from_date_value,
    identifier,
    library,
    read_counted_list,
    read_list,
    read_main_folders,
    require,
    text_at,
    to_date_value,
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


def _list(call: str, records: Any, read: Callable[[], Any], release: Callable[[], Any],
          convert: Callable[[Any], Any], counted_silently: bool = True) -> list[Any]:
    """Reads a list, converts it and gives it back."""
    try:
        if counted_silently:
            read_counted_list(call, records, read)
        else:
            read_list(call, read)
        return [convert(records.Items[i]) for i in range(records.Count)]
    finally:
        release()


def _added(call: str, result: int) -> bool:
    if result == Code.EXISTS:
        return False
    require(call, result)
    return True


class _FileArgument:
    def __init__(self, file: File) -> None:
        self._texts = [TextArgument(text) for text in (file.path, file.base_path, file.phone_path)]
        self.record = r.SyncedFileRecord(to_date_value(file.modified), *(text.address for text in self._texts))


def _to_file(record: r.SyncedFileRecord) -> File:
    return File(text_at(record.Path), text_at(record.BasePath), text_at(record.PhonePath),
                from_date_value(record.ModifiedTime))


def _to_folder(record: r.FolderRecord) -> Folder:
    return Folder(text_at(record.Path), record.Count, record.Size, record.TotalSize, bool(record.Selected),
                  bool(record.Deleted), bool(record.Sized), from_date_value(record.AddTime), record.RowId)


class Phones:
    """The phones that this PC has met."""

    _list = r.PhoneList()  # no argument makes the library empty it: one for the whole program
    _lock = threading.Lock()

    def announce(self, imei: str, name: str) -> int:
        """Registers the phone unless it is known, and returns its number. A known one keeps its name."""
        number: int = library().DB_LIB_PhoneDetected(identifier(imei), TextArgument(name))
        if number < 1:
            raise Error("DB_LIB_PhoneDetected", Code.FAILED)
        return number

    def find(self, imei: str) -> Optional[Phone]:
        """None if the phone is not known."""
        phone, release = self._read(imei)
        try:
            if phone is None:
                read_main_folders("DB_LIB_GetPhoneSetting", lambda record: None)
                release()
                phone, release = self._read(imei)
            return None if phone is None else self._to_phone(phone)
        finally:
            release()

    def all(self) -> list[Phone]:
        with self._lock:
            read_counted_list("DB_LIB_GetAllPhones", self._list,
                              lambda: library().DB_LIB_GetAllPhones(byref(self._list)))
            imeis = [text_at(self._list.Items[i].IMEI) for i in range(self._list.Count)]
        # One by one, for the list leaves some fields out. Another program may have stored an IMEI that cannot be asked
        # for.
        phones = []
        for imei in imeis:
            try:
                phone = self.find(imei)
            except Error as error:
                if error.code != Code.INVALID_TEXT:
                    raise
                phone = Phone(imei)
            if phone is not None:
                phones.append(phone)
        return phones

    def update(self, phone: Phone) -> None:
        """Writes what differs from what is stored; the rest keeps its value to the letter. need_mount is not written."""
        record, release = self._read(phone.imei)
        if record is None:
            release()
            raise Error("DB_LIB_GetPhoneSetting", Code.FAILED)
        try:
            before = self._to_phone(record)
            new = r.PhoneSettingRecord()
            ctypes.memmove(byref(new), byref(record), ctypes.sizeof(record))
            texts = []
            for spec in fields(Phone):
                if not spec.metadata:
                    continue
                value, name, kind = getattr(phone, spec.name), spec.metadata["record"], spec.metadata["kind"]
                if kind is str:
                    setattr(new, name, None)  # leaves the column as it is
                    if value != getattr(before, spec.name):
                        texts.append(TextArgument(value))
                        setattr(new, name, texts[-1].address)
                elif kind is datetime:
                    setattr(new, name, to_date_value(value))
                elif value != getattr(before, spec.name):
                    setattr(new, name, int(value))
            require("DB_LIB_SetPhoneSetting", library().DB_LIB_SetPhoneSetting(byref(new)))
        finally:
            release()

    def last_sync(self, imei: str) -> Optional[datetime]:
        """None if the phone has not been synced yet. The phone must be known."""
        time = r.DateValue()
        require("DB_LIB_GetLastSyncTime", library().DB_LIB_GetLastSyncTime(identifier(imei), byref(time)))
        return from_date_value(time)

    def set_last_sync(self, imei: str, time: datetime, error_code: int = 0, need_mount: bool = True) -> None:
        require("DB_LIB_SetLastSyncTime", library().DB_LIB_SetLastSyncTime(
            identifier(imei), byref(to_date_value(time)), error_code, int(need_mount)))

    def is_selected(self, imei: str, folder: MainFolder) -> bool:
        """A folder of which nothing is stored for the phone counts as selected."""
        return bool(library().DB_LIB_IsFolderSelected(identifier(imei), int(folder)))

    def select(self, imei: str, folder: MainFolder, selected: bool) -> None:
        require("DB_LIB_SetFolderSelected",
                library().DB_LIB_SetFolderSelected(identifier(imei), int(folder), int(selected)))

    def forget_synced_files(self, imei: str) -> None:
        """Forgets which files have been synced, of all categories and playlists."""
        require("DB_LIB_ClearSyncHistory", library().DB_LIB_ClearSyncHistory(identifier(imei)))

    def main_folders(self) -> list[MainFolderFigures]:
        return read_main_folders("DB_LIB_GetAllMainFolders", lambda record: MainFolderFigures(
            record.ID, record.Number, record.Size, text_at(record.Setting), bool(record.Changed)))

    @staticmethod
    def _read(imei: str) -> tuple[Optional[r.PhoneSettingRecord], Callable[[], Any]]:
        """The record, and what gives its texts back."""
        record = r.PhoneSettingRecord()
        known = library().DB_LIB_GetPhoneSetting(identifier(imei), byref(record)) == 0
        return (record if known else None), lambda: library().DB_LIB_GetPhoneSetting(UNKNOWN, byref(record))

    @staticmethod
    def _to_phone(record: r.PhoneSettingRecord) -> Phone:
        phone = Phone(text_at(record.IMEI))
        for spec in fields(Phone):
            if not spec.metadata:
                continue
            value, kind = getattr(record, spec.metadata["record"]), spec.metadata["kind"]
            setattr(phone, spec.name,
                    text_at(value) if kind is str else from_date_value(value) if kind is datetime else kind(value))
        return phone


class Media:
    """Folders and files of one category on one phone, which must be known."""

    def __init__(self, imei: str, category: Category) -> None:
        self._imei = identifier(imei)
        self._prefix = "DB_" + ("MUSIC", "IMAGE", "VIDEO", "DOCUMENT")[category] + "_"

    def _call(self, name: str, *arguments: Any) -> int:
        return int(getattr(library(), self._prefix + name)(*arguments))

    def _require(self, name: str, *arguments: Any) -> None:
        require(self._prefix + name, self._call(name, *arguments))

    def folders(self) -> list[Folder]:
        """In the order in which they were added."""
        records = r.FolderList()
        return _list(self._prefix + "GetFolders", records,
                     lambda: self._call("GetFolders", self._imei, byref(records)),
                     lambda: self._call("GetFolders", UNKNOWN, byref(records)), _to_folder, counted_silently=False)

    def add_folder(self, folder: Folder) -> None:
        """path, count, size, total_size and sized are stored; a known folder keeps its selection. Reads the folder back,
        for the library does not tell whether it was stored."""
        path = TextArgument(folder.path)
        record = r.FolderRecord(Path=path.address, Count=folder.count, Size=folder.size, TotalSize=folder.total_size,
                                Sized=int(folder.sized))
        self._require("AddFolder", self._imei, byref(record))
        stored = r.FolderRecord()
        known = self._call("GetFolder", self._imei, path, byref(stored)) == 0
        same = all(getattr(stored, name) == getattr(record, name) for name in ("Count", "Size", "TotalSize", "Sized"))
        self._call("GetFolder", UNKNOWN, path, byref(stored))  # gives the text back
        if not (known and same):
            raise Error(self._prefix + "AddFolder", Code.NOT_STORED)

    def select_folder(self, path: str, selected: bool) -> None:
        self._require("SetFolderSelected", self._imei, TextArgument(path), int(selected))

    def set_folder_deleted(self, path: str, deleted: bool) -> None:
        """Gone from the PC, or back."""
        self._require("SetFolderDeleted", self._imei, TextArgument(path), int(deleted))

    def remove_folder(self, path: str) -> None:
        """With all files recorded under it."""
        self._require("SetDeletedFolder", self._imei, TextArgument(path))

    def files(self) -> list[File]:
        """The files of all folders. An empty answer is a true one."""
        records = r.SyncedFileList()
        return _list(self._prefix + "GetSyncedFiles", records,
                     lambda: self._call("GetSyncedFiles", self._imei, None, byref(records)),
                     lambda: self._call("GetSyncedFiles", UNKNOWN, None, byref(records)), _to_file)

    def __iter__(self) -> Iterator[File]:
        return iter(self.files())

    def add_file(self, file: File) -> bool:
        """False when the file is recorded already; it is then left as it was."""
        argument = _FileArgument(file)
        return _added(self._prefix + "SetAddedFile", self._call("SetAddedFile", self._imei, byref(argument.record)))

    def update_file(self, file: File) -> None:
        """phone_path and modified of the file with that path."""
        argument = _FileArgument(file)
        self._require("SetUpdatedFile", self._imei, byref(argument.record))

    def remove_file(self, path: str) -> None:
        argument = _FileArgument(File(path))
        self._require("SetDeletedFile", self._imei, byref(argument.record))


class Playlists:
    """The playlists of one phone, which must be known. A round: begin_confirming, confirm each list of the PC, all; what is
    NEW then goes to the phone, what is still UNCONFIRMED is removed from it."""

    def __init__(self, imei: str) -> None:
        self._imei = identifier(imei)

    def all(self) -> list[Playlist]:
        """By name."""
        records = r.PlaylistList()
        return _list("DB_PLAYERMUSIC_GetPlaylists", records,
                     lambda: library().DB_PLAYERMUSIC_GetPlaylists(self._imei, byref(records)),
                     lambda: library().DB_PLAYERMUSIC_GetPlaylists(UNKNOWN, byref(records)), self._to_playlist,
                     counted_silently=False)

    def __iter__(self) -> Iterator[Playlist]:
        return iter(self.all())

    def begin_confirming(self) -> None:
        """Every list but those deleted on the phone becomes UNCONFIRMED."""
        require("DB_PLAYERMUSIC_ClearAll", library().DB_PLAYERMUSIC_ClearAll(self._imei))

    def confirm(self, playlist: Playlist) -> None:
        """Confirms a list of the PC, or adds it. The library does not tell whether it was stored; all() does."""
        name, digest = TextArgument(playlist.name), identifier(playlist.digest)
        record = r.PlaylistRecord(Name=name.address, Digest=digest.address, Type=playlist.type, Count=playlist.count,
                                  Size=playlist.size, TotalSize=playlist.total_size, Sized=int(playlist.sized))
        require("DB_PLAYERMUSIC_AddPlaylist", library().DB_PLAYERMUSIC_AddPlaylist(self._imei, byref(record)))

    def select(self, name: str, selected: bool) -> None:
        require("DB_PLAYERMUSIC_SetListSelected",
                library().DB_PLAYERMUSIC_SetListSelected(self._imei, TextArgument(name), int(selected)))

    def set_added(self, name: str, id_in_phone: str) -> None:
        """The phone has taken the list, under its own name for it."""
        self._named("SetAddedPlaylist", name, id_in_phone)

    def set_updated(self, name: str) -> None:
        """The changed list has been written to the phone again."""
        self._named("SetUpdatedPlaylist", name)

    def set_deleted(self, name: str) -> None:
        """The list has been removed from the phone."""
        self._named("SetDeletedPlaylist", name)

    def forget(self, name: str) -> None:
        """The list is gone from the PC."""
        require("DB_PLAYERMUSIC_DeleteList", library().DB_PLAYERMUSIC_DeleteList(self._imei, TextArgument(name)))

    def members(self, name: str) -> list[str]:
        """The file names of a list, in the order of their bytes."""
        names = r.FileNameArray()
        try:
            require("DB_PLAYERMUSIC_GetListFilesname",
                    library().DB_PLAYERMUSIC_GetListFilesname(self._imei, TextArgument(name), byref(names)))
            return [text_at(names.Items[i]) for i in range(names.Count)]
        finally:
            for i in range(names.Count):
                library().free(names.Items[i])
            library().free(ctypes.cast(names.Items, ctypes.c_void_p).value)

    def set_members(self, name: str, members: Iterable[str]) -> None:
        """Replaces them; a name given twice is stored once. Reads them back, for the library does not tell whether all were
        stored."""
        texts = [TextArgument(member) for member in members]
        items = (r.Text * max(1, len(texts)))(*(text.address for text in texts))
        names = r.FileNameArray(len(texts), ctypes.cast(items, ctypes.POINTER(r.Text)))
        require("DB_PLAYERMUSIC_SetListFilesname",
                library().DB_PLAYERMUSIC_SetListFilesname(self._imei, TextArgument(name), byref(names)))
        if set(self.members(name)) != {text_at(text.address) for text in texts}:
            raise Error("DB_PLAYERMUSIC_SetListFilesname", Code.NOT_STORED)

    def files(self) -> list[File]:
        """The files that were copied because of playlists. A file's base_path is the list that it came with."""
        records = r.SyncedFileList()
        return _list("DB_PLAYERMUSIC_GetSyncedFiles", records,
                     lambda: library().DB_PLAYERMUSIC_GetSyncedFiles(self._imei, None, byref(records)),
                     lambda: library().DB_PLAYERMUSIC_GetSyncedFiles(UNKNOWN, None, byref(records)), _to_file)

    def add_file(self, file: File) -> bool:
        """False when the file is recorded already."""
        argument = _FileArgument(file)
        return _added("DB_PLAYERMUSIC_SetAddedFile",
                      library().DB_PLAYERMUSIC_SetAddedFile(self._imei, byref(argument.record)))

    def update_file(self, file: File) -> None:
        argument = _FileArgument(file)
        require("DB_PLAYERMUSIC_SetUpdatedFile",
                library().DB_PLAYERMUSIC_SetUpdatedFile(self._imei, byref(argument.record)))

    def remove_file(self, path: str) -> None:
        argument = _FileArgument(File(path))
        require("DB_PLAYERMUSIC_SetDeletedFile",
                library().DB_PLAYERMUSIC_SetDeletedFile(self._imei, byref(argument.record)))

    def _named(self, call: str, name: str, id_in_phone: Optional[str] = None) -> None:
        texts = [TextArgument(name)] + ([] if id_in_phone is None else [TextArgument(id_in_phone)])
        record = r.PlaylistRecord(Name=texts[0].address)
        if id_in_phone is not None:
            record.IdInPhone = texts[1].address
        call = "DB_PLAYERMUSIC_" + call
        require(call, getattr(library(), call)(self._imei, byref(record)))

    @staticmethod
    def _to_playlist(record: r.PlaylistRecord) -> Playlist:
        # Some programs write the word instead of leaving the column empty; the library takes it for nothing, too.
        on_phone: Optional[str] = text_at(record.IdInPhone)
        if on_phone in ("", "(null)"):
            on_phone = None
        return Playlist(text_at(record.Name), text_at(record.Digest), on_phone, record.Type, record.Flag, record.Count,
                        record.Size, record.TotalSize, bool(record.Selected), bool(record.Sized))


class Bookmarks:
    """The bookmarks of one phone, which must be known, of its present bookmark type."""

    def __init__(self, imei: str) -> None:
        self._imei = identifier(imei)

    def all(self) -> list[Bookmark]:
        """An empty answer is a true one."""
        records = r.BookmarkList()
        return _list("DB_BOOKMARK_GetSyncedMarks", records,
                     lambda: library().DB_BOOKMARK_GetSyncedMarks(self._imei, byref(records)),
                     lambda: library().DB_BOOKMARK_GetSyncedMarks(UNKNOWN, byref(records)),
                     lambda record: Bookmark(text_at(record.Path), text_at(record.Title), text_at(record.PhoneMID),
                                             record.Id, record.Flag))

    def __iter__(self) -> Iterator[Bookmark]:
        return iter(self.all())

    def add(self, bookmark: Bookmark) -> bool:
        """False when the URL is recorded already; its bookmark is then left as it was."""
        return _added("DB_BOOKMARK_SetAddedMark", self._write("DB_BOOKMARK_SetAddedMark", bookmark))

    def update(self, bookmark: Bookmark) -> None:
        """title, id_on_phone and flag of the bookmark with that URL."""
        require("DB_BOOKMARK_SetUpdatedMark", self._write("DB_BOOKMARK_SetUpdatedMark", bookmark))

    def remove(self, url: str) -> None:
        require("DB_BOOKMARK_SetDeletedMark", library().DB_BOOKMARK_SetDeletedMark(self._imei, TextArgument(url)))

    def remove_all(self) -> None:
        """Those of every bookmark type."""
        require("DB_BOOKMARK_ClearAll", library().DB_BOOKMARK_ClearAll(self._imei))

    def _write(self, call: str, bookmark: Bookmark) -> int:
        texts = [TextArgument(text) for text in (bookmark.title, bookmark.url, bookmark.id_on_phone)]
        record = r.BookmarkRecord(*(text.address for text in texts), bookmark.id, bookmark.flag, 0)
        return int(getattr(library(), call)(self._imei, byref(record)))


class Backups:
    """Where the database has no table for backups, every call raises FAILED or that table's SQLite code."""

    def of(self, imei: str) -> list[Backup]:
        """Of one phone, which must be known."""
        phone, records = identifier(imei), r.BackupList()
        return self._read(records, lambda: library().DB_BACKUP_GetPhoneBackups(phone, byref(records)))

    def all(self) -> list[Backup]:
        """Of all phones."""
        records = r.BackupList()
        return self._read(records, lambda: library().DB_BACKUP_GetAllBackups(byref(records)))

    def add(self, imei: str, backup: Backup) -> int:
        """Records the backup, or refreshes the record of that path, and returns its id."""
        refreshed = 183
        path, phone_path = TextArgument(backup.path), TextArgument(backup.phone_path)
        record = r.BackupRecord(-1, backup.size, to_date_value(backup.modified), path.address, phone_path.address)
        result = library().DB_BACKUP_AddBackup(identifier(imei), byref(record))
        if result != refreshed:
            require("DB_BACKUP_AddBackup", result)
        if record.bcID == -1:
            raise Error("DB_BACKUP_AddBackup", Code.NOT_STORED)
        return int(record.bcID)

    def remove(self, backup_id: int) -> None:
        require("DB_BACKUP_DeleteBackup", library().DB_BACKUP_DeleteBackup(backup_id))

    @staticmethod
    def _read(records: r.BackupList, read: Callable[[], Any]) -> list[Backup]:
        return _list("Listing backups", records, read,
                     lambda: library().DB_BACKUP_GetPhoneBackups(UNKNOWN, byref(records)),
                     lambda row: Backup(text_at(row.Path), text_at(row.PhonePath), row.Size,
                                        from_date_value(row.ModifiedTime), row.bcID))


class PimStore:
    """Contacts and calendar entries, which all phones share."""

    def folders(self, type: int, parent_id: str = "", recursive: bool = False) -> list[PimFolder]:
        """The folders of a type right below the parent, or at the root when it is empty; all of them when recursive. At
        most 1,023."""
        parent, records = identifier(parent_id), r.PimFolderList()
        return _list("DB_PIM_GetFolders", records,
                     lambda: library().DB_PIM_GetFolders(byref(records), parent, type, int(recursive)),
                     lambda: library().DB_PIM_GetFolders(byref(records), UNKNOWN, 0, 0), self._to_folder)

    def add_folder(self, folder: PimFolder) -> None:
        folder_id, path = identifier(folder.id), TextArgument(folder.path)
        record = r.PimFolderRecord(folder_id.address, None, path.address, folder.type)
        require("DB_PIM_AddFolder", library().DB_PIM_AddFolder(byref(record), identifier(folder.parent_id)))

    def update_folder(self, folder: PimFolder) -> None:
        """Path and type; the folder stays where it is."""
        folder_id, path = identifier(folder.id), TextArgument(folder.path)
        record = r.PimFolderRecord(folder_id.address, None, path.address, folder.type)
        require("DB_PIM_UpdateFolder", library().DB_PIM_UpdateFolder(byref(record)))

    def remove_folder(self, folder_id: str) -> None:
        """What lies below it stays, and is no longer reached from the root."""
        require("DB_PIM_DeleteFolder", library().DB_PIM_DeleteFolder(identifier(folder_id)))

    def items(self, folder_id: str, type: int = 0, recursive: bool = False) -> list[PimItem]:
        """The items of a folder, which must be known; of the folders of that type below it too when recursive."""
        folder, records = identifier(folder_id), r.PimItemList()
        return _list("DB_PIM_GetItems", records,
                     lambda: library().DB_PIM_GetItems(byref(records), folder, type, int(recursive)),
                     lambda: library().DB_PIM_GetItems(byref(records), UNKNOWN, 0, 0), self._to_item)

    def add_item(self, folder_path: str, item: PimItem) -> None:
        """Into the folder of that path (not id); the root level when it is empty."""
        self._write("DB_PIM_AddItem", item, TextArgument(folder_path))

    def update_item(self, item: PimItem) -> None:
        """The data; type and folder stay."""
        self._write("DB_PIM_UpdateItem", item)

    def remove_item(self, item_id: str) -> None:
        require("DB_PIM_DeleteItem", library().DB_PIM_DeleteItem(identifier(item_id)))

    def remove_all(self, type: int, keep_folders: bool = False) -> None:
        """All items of a type, and its folders too unless they are to be kept."""
        require("DB_PIM_ClearAll", library().DB_PIM_ClearAll(type, int(keep_folders)))

    @staticmethod
    def _write(call: str, item: PimItem, *more: Any) -> None:
        item_id = identifier(item.id)
        data = (ctypes.c_uint8 * max(1, len(item.data))).from_buffer_copy(item.data or b"\0")
        record = r.PimItemRecord(item_id.address, item.type, len(item.data),
                                 ctypes.cast(data, ctypes.POINTER(ctypes.c_uint8)))
        require(call, getattr(library(), call)(byref(record), *more))

    @staticmethod
    def _to_folder(record: r.PimFolderRecord) -> PimFolder:
        if not record.PimID:
            raise Error("DB_PIM_GetFolders", Code.UNREADABLE)
        return PimFolder(text_at(record.PimID), text_at(record.Path), record.Type, text_at(record.ParentPimID))

    @staticmethod
    def _to_item(record: r.PimItemRecord) -> PimItem:
        if not record.PimID:
            raise Error("DB_PIM_GetItems", Code.UNREADABLE)
        data = ctypes.string_at(record.Data, record.DataLength) if record.DataLength > 0 else b""
        return PimItem(text_at(record.PimID), data, record.Type)


class PimSyncLog:
    """The log of one phone, which must be known, and one kind of data."""

    _log = r.PimLog()  # no argument makes the library empty it: one for the whole program
    _lock = threading.Lock()

    def __init__(self, imei: str, type: int) -> None:
        self._imei = identifier(imei)
        self._type = type

    def rows(self) -> list[PimLogRow]:
        """An empty answer is a true one."""
        log = self._log

        def read() -> int:
            log.Type, log.Count = self._type, 0  # a log without items leaves the record as it is
            return int(library().DB_PIMLOG_ReadLog(self._imei, byref(log)))

        with self._lock:
            read_counted_list("DB_PIMLOG_ReadLog", log, read)
            return [PimLogRow(text_at(item.Guid), text_at(item.Luid), from_date_value(item.PCTime),
                              from_date_value(item.PhoneTime)) for item in log.Items[:log.Count]]

    def __iter__(self) -> Iterator[PimLogRow]:
        return iter(self.rows())

    def append(self, rows: Iterable[PimLogRow]) -> None:
        """The library does not tell whether each row was stored: rows() does."""
        rows = list(rows)
        texts = [(identifier(row.guid), identifier(row.luid)) for row in rows]
        items = (r.PimLogItem * max(1, len(rows)))(*(
            r.PimLogItem(guid.address, luid.address, to_date_value(row.pc_time), to_date_value(row.phone_time))
            for row, (guid, luid) in zip(rows, texts)))
        log = r.PimLog(self._type, len(rows), ctypes.cast(items, ctypes.POINTER(r.PimLogItem)))
        require("DB_PIMLOG_SaveLog", library().DB_PIMLOG_SaveLog(self._imei, byref(log)))

    def clear(self) -> None:
        """Rows and profile."""
        require("DB_PIMLOG_ClearAll", library().DB_PIMLOG_ClearAll(self._imei, self._type))

    @property
    def profile(self) -> str:
        """Empty when there is none."""
        # The library writes as much as there is, and no statement with which it was stored can have held more.
        longest_statement = 40960
        buffer = (ctypes.c_uint16 * (longest_statement + 1))()
        require("DB_PIMLOG_GetPimProfile", library().DB_PIMLOG_GetPimProfile(
            self._imei, ctypes.cast(buffer, ctypes.c_void_p), self._type))
        return text_at(ctypes.addressof(buffer))

    @profile.setter
    def profile(self, text: str) -> None:
        require("DB_PIMLOG_SetPimProfile",
                library().DB_PIMLOG_SetPimProfile(self._imei, TextArgument(text), self._type))


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
        return _list("DB_GALLERY_GetFolders", records,
                     lambda: library().DB_GALLERY_GetFolders(phone, byref(records)),
                     lambda: library().DB_GALLERY_GetFolders(UNKNOWN, byref(records)), _to_folder,
                     counted_silently=False)
