"""Web bookmarks."""

from __future__ import annotations

from ctypes import byref
from typing import Iterator

from . import _records as r
from ._calls import added, listed
from ._library import UNKNOWN, TextArgument, identifier, library, require, text_at
from ._values import Bookmark


class Bookmarks:
    """The bookmarks of one phone, which must be known, of its present bookmark type."""

    def __init__(self, imei: str) -> None:
        self._imei = identifier(imei)

    def all(self) -> list[Bookmark]:
        """An empty answer is a true one."""
        records = r.BookmarkList()
        return listed("DB_BOOKMARK_GetSyncedMarks", records,
                      lambda: library().DB_BOOKMARK_GetSyncedMarks(self._imei, byref(records)),
                      lambda: library().DB_BOOKMARK_GetSyncedMarks(UNKNOWN, byref(records)),
                      lambda record: Bookmark(text_at(record.Path), text_at(record.Title), text_at(record.PhoneMID),
                                             record.Id, record.Flag))

    def __iter__(self) -> Iterator[Bookmark]:
        return iter(self.all())

    def add(self, bookmark: Bookmark) -> bool:
        """False when the URL is recorded already; its bookmark is then left as it was."""
        return added("DB_BOOKMARK_SetAddedMark", self._write("DB_BOOKMARK_SetAddedMark", bookmark))

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
