"""What reading a list and recording a file have in common."""

from __future__ import annotations

from typing import Any, Callable

from . import _records as r
from ._library import Code, TextArgument, from_date_value, read_counted_list, read_list, require, text_at, to_date_value
from ._values import File, Folder


def listed(call: str, records: Any, read: Callable[[], Any], release: Callable[[], Any],
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


def added(call: str, result: int) -> bool:
    if result == Code.EXISTS:
        return False
    require(call, result)
    return True


class FileArgument:
    def __init__(self, file: File) -> None:
        self._texts = [TextArgument(text) for text in (file.path, file.base_path, file.phone_path)]
        self.record = r.SyncedFileRecord(to_date_value(file.modified), *(text.address for text in self._texts))


def to_file(record: r.SyncedFileRecord) -> File:
    return File(text_at(record.Path), text_at(record.BasePath), text_at(record.PhonePath),
                from_date_value(record.ModifiedTime))


def to_folder(record: r.FolderRecord) -> Folder:
    return Folder(text_at(record.Path), record.Count, record.Size, record.TotalSize, bool(record.Selected),
                  bool(record.Deleted), bool(record.Sized), from_date_value(record.AddTime), record.RowId)
