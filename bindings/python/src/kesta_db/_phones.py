"""Phones, their settings and their main folders."""

from __future__ import annotations

import ctypes
import threading
from ctypes import byref
from dataclasses import fields
from datetime import datetime
from typing import Any, Callable, Optional

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
    read_main_folders,
    require,
    text_at,
    to_date_value,
)
from ._values import MainFolder, MainFolderFigures, Phone


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
