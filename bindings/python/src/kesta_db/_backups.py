"""Backups."""

from __future__ import annotations

from ctypes import byref
from typing import Any, Callable

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
    require,
    text_at,
    to_date_value,
)
from ._values import Backup


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
        return listed("Listing backups", records, read,
                      lambda: library().DB_BACKUP_GetPhoneBackups(UNKNOWN, byref(records)),
                      lambda row: Backup(text_at(row.Path), text_at(row.PhonePath), row.Size,
                                        from_date_value(row.ModifiedTime), row.bcID))
