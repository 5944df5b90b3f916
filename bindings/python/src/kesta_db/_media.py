"""Folders and files of the four media categories."""

from __future__ import annotations

from ctypes import byref
from typing import Any, Iterator

from . import _records as r
from ._calls import FileArgument, added, listed, to_file, to_folder
from ._library import UNKNOWN, Code, Error, TextArgument, identifier, library, require
from ._values import Category, File, Folder


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
        return listed(self._prefix + "GetFolders", records,
                      lambda: self._call("GetFolders", self._imei, byref(records)),
                      lambda: self._call("GetFolders", UNKNOWN, byref(records)), to_folder, counted_silently=False)

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
        return listed(self._prefix + "GetSyncedFiles", records,
                      lambda: self._call("GetSyncedFiles", self._imei, None, byref(records)),
                      lambda: self._call("GetSyncedFiles", UNKNOWN, None, byref(records)), to_file)

    def __iter__(self) -> Iterator[File]:
        return iter(self.files())

    def add_file(self, file: File) -> bool:
        """False when the file is recorded already; it is then left as it was."""
        argument = FileArgument(file)
        return added(self._prefix + "SetAddedFile", self._call("SetAddedFile", self._imei, byref(argument.record)))

    def update_file(self, file: File) -> None:
        """phone_path and modified of the file with that path."""
        argument = FileArgument(file)
        self._require("SetUpdatedFile", self._imei, byref(argument.record))

    def remove_file(self, path: str) -> None:
        argument = FileArgument(File(path))
        self._require("SetDeletedFile", self._imei, byref(argument.record))
