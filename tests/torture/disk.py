"""A disk that loses power: plays the interposer's log back and tells what could be on the disk at every point of it.

Bytes are durable once their file has been synced, names once their folder has. Until then a write may be there, not
there, or there in some of its sectors; creations, deletions and renamings get to the disk in their order, but as far as
the disk had come.
"""

import os
import struct

SECTOR = 512
_HEADER = struct.Struct("=iiqQ")
OPEN, WRITE, TRUNCATE, SYNC, UNLINK, RENAME, LINK, MAKE_FOLDER, CLOSE, MARK = range(1, 11)
NAMES = ("", "open", "write", "truncate", "sync", "unlink", "rename", "link", "mkdir", "close", "mark")


def read_log(data):
    """The operations: (kind, descriptor, offset, bytes)."""
    at, operations = 0, []
    while at + _HEADER.size <= len(data):
        kind, descriptor, offset, length = _HEADER.unpack_from(data, at)
        at += _HEADER.size
        operations.append((kind, descriptor, offset, data[at:at + length]))
        at += length
    return operations


class File:
    def __init__(self, content=b""):
        self.durable = bytes(content)
        self.current = bytearray(content)
        self.pending = []  # (offset, bytes), or (size, None) for a truncation

    def write(self, offset, data):
        self._write(self.current, offset, data)
        self.pending.append((offset, data))

    def truncate(self, size):
        self._truncate(self.current, size)
        self.pending.append((size, None))

    def sync(self):
        self.durable, self.pending = bytes(self.current), []

    @staticmethod
    def _write(content, offset, data):
        if len(content) < offset:
            content.extend(bytes(offset - len(content)))
        content[offset:offset + len(data)] = data

    @staticmethod
    def _truncate(content, size):
        if len(content) > size:
            del content[size:]
        else:
            content.extend(bytes(size - len(content)))

    def torn(self, random):
        """Each write since the last sync by chance: whole, not at all, or some of its sectors."""
        content = bytearray(self.durable)
        for offset, data in self.pending:
            fate = random.randrange(4)
            if fate == 0:
                continue
            if data is None:
                self._truncate(content, offset)
            elif fate == 1:
                for start in range(0, len(data), SECTOR):
                    if random.random() < 0.5:
                        self._write(content, offset + start, data[start:start + SECTOR])
            else:
                self._write(content, offset, data)
        return bytes(content)


class Disk:
    """What is below one folder, by full path. `files` is there from the start and durable."""

    def __init__(self, root, files):
        self.root = root
        self.names = {path: File(content) for path, content in files.items()}
        self.durable = dict(self.names)
        self.made = set()  # folders made while logging; in the names they are None
        self.pending = []  # changes of names since the last sync of their folder: (folder, change)
        self.open = {}     # descriptor -> (path, File or None for a folder)

    def apply(self, operation):
        kind, descriptor, offset, data = operation
        if kind == OPEN:
            self._opened(descriptor, offset, os.fsdecode(data))
        elif kind == CLOSE:
            self.open.pop(descriptor, None)
        elif kind in (WRITE, TRUNCATE, SYNC):
            if descriptor in self.open:
                self._changed(kind, *self.open[descriptor], offset, data)
        elif kind == MAKE_FOLDER:
            self._made_folder(os.fsdecode(data))
        elif kind in (UNLINK, RENAME, LINK):
            self._renamed(kind, [os.fsdecode(path) for path in data.split(b"\0")])

    def _opened(self, descriptor, flags, path):
        if not path.startswith(self.root):
            self.open.pop(descriptor, None)
            return
        if flags & os.O_DIRECTORY or path == self.root or path in self.made or \
                any(name.startswith(path + "/") for name in self.names):
            self.open[descriptor] = (path, None)
            return
        if path not in self.names:
            file = File()
            self._name(path, lambda names: names.__setitem__(path, file))
        self.open[descriptor] = (path, self.names[path])
        if flags & os.O_TRUNC:
            self.names[path].truncate(0)

    def _made_folder(self, path):
        if path.startswith(self.root + "/"):
            self.made.add(path)
            self._name(path, lambda names: names.__setitem__(path, None))

    def _changed(self, kind, path, file, offset, data):
        if kind == SYNC and file is None:
            for folder, change in self.pending:
                if folder == path:
                    change(self.durable)
            self.pending = [(folder, change) for folder, change in self.pending if folder != path]
        elif kind == SYNC:
            file.sync()
        elif kind == WRITE:
            file.write(offset, data)
        else:
            file.truncate(offset)

    def _renamed(self, kind, paths):
        if not paths[0].startswith(self.root):
            return
        if kind == UNLINK:
            self._name(paths[0], lambda names: names.pop(paths[0], None))
        elif kind == RENAME:
            file = self.names[paths[0]]

            def rename(names):
                names.pop(paths[0], None)
                names[paths[1]] = file
            self._name(paths[1], rename)
        else:
            file = self.names[paths[0]]
            self._name(paths[1], lambda names: names.__setitem__(paths[1], file))

    def _name(self, path, change):
        change(self.names)
        self.pending.append((os.path.dirname(path), change))

    def content(self):
        """What a process sees now."""
        return {path: bytes(file.current) for path, file in self.names.items() if file}

    def after_power_loss(self, variant, random):
        """Path -> bytes. Variants: kept, dropped, names (names kept, bytes dropped), bytes (the reverse), torn."""
        names = self.names if variant in ("kept", "names") else self.durable
        if variant.startswith("torn"):
            names = dict(self.durable)
            for _, change in self.pending[:random.randrange(len(self.pending) + 1)]:
                change(names)
        lost = tuple(folder + "/" for folder in self.made if folder not in names)
        files = {path: file for path, file in names.items() if file and not path.startswith(lost)}
        if variant in ("kept", "bytes"):
            return {path: bytes(file.current) for path, file in files.items()}
        if variant.startswith("torn"):
            return {path: file.torn(random) for path, file in files.items()}
        return {path: file.durable for path, file in files.items()}


# What has not been synced is all there, all gone, there in name or in bytes only, or there in parts.
VARIANTS = ("kept", "dropped", "names", "bytes", "torn1", "torn2", "torn3")
