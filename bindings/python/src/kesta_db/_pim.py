"""Contacts and calendars: the store that all phones share, and each phone's log."""

from __future__ import annotations

import ctypes
import threading
from ctypes import byref
from typing import Any, Iterable, Iterator

from . import _records as r
from ._calls import listed
from ._library import (
    UNKNOWN,
    Code,
    Error,
    TextArgument,
    from_date_value,
    identifier,
    library,
    read_counted_list,
    require,
    text_at,
    to_date_value,
)
from ._values import PimFolder, PimItem, PimLogRow


class PimStore:
    """Contacts and calendar entries, which all phones share."""

    def folders(self, type: int, parent_id: str = "", recursive: bool = False) -> list[PimFolder]:
        """The folders of a type right below the parent, or at the root when it is empty; all of them when recursive. At
        most 1,023."""
        parent, records = identifier(parent_id), r.PimFolderList()
        return listed("DB_PIM_GetFolders", records,
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
        return listed("DB_PIM_GetItems", records,
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
