"""Playlists, their members and the files copied for them."""

from __future__ import annotations

import ctypes
from ctypes import byref
from typing import Iterable, Iterator, Optional

from . import _records as r
from ._calls import FileArgument, added, listed, to_file
from ._library import UNKNOWN, Code, Error, TextArgument, identifier, library, require, text_at
from ._values import File, Playlist


class Playlists:
    """The playlists of one phone, which must be known. A round: begin_confirming, confirm each list of the PC, all; what is
    NEW then goes to the phone, what is still UNCONFIRMED is removed from it."""

    def __init__(self, imei: str) -> None:
        self._imei = identifier(imei)

    def all(self) -> list[Playlist]:
        """By name."""
        records = r.PlaylistList()
        return listed("DB_PLAYERMUSIC_GetPlaylists", records,
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
        return listed("DB_PLAYERMUSIC_GetSyncedFiles", records,
                      lambda: library().DB_PLAYERMUSIC_GetSyncedFiles(self._imei, None, byref(records)),
                      lambda: library().DB_PLAYERMUSIC_GetSyncedFiles(UNKNOWN, None, byref(records)), to_file)

    def add_file(self, file: File) -> bool:
        """False when the file is recorded already."""
        argument = FileArgument(file)
        return added("DB_PLAYERMUSIC_SetAddedFile",
                     library().DB_PLAYERMUSIC_SetAddedFile(self._imei, byref(argument.record)))

    def update_file(self, file: File) -> None:
        argument = FileArgument(file)
        require("DB_PLAYERMUSIC_SetUpdatedFile",
                library().DB_PLAYERMUSIC_SetUpdatedFile(self._imei, byref(argument.record)))

    def remove_file(self, path: str) -> None:
        argument = FileArgument(File(path))
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
