#!/usr/bin/python3
"""A folder mounted through FUSE that refuses what phones refuse.

    phone_mount.py FOLDER MOUNT_POINT [REFUSAL...]

  rename         every rename
  replace        renames onto a file that is there
  times          setting times
  ignored-times  takes times without a word, and keeps its own
  late-times     forgets the time that was set when the file is closed
  read-back      reading what was written less than two seconds ago
  rmdir          removes a folder with all that is in it
  short-writes   takes a few bytes of each write
  lost-end       takes all of a write and keeps half of it
  die=N          the Nth call that changes something finds the program gone

Every call that changes something is written to FOLDER.log.
"""

import errno
import os
import shutil
import sys
import time

try:
    import fusepy as fuse  # Debian's name of it
except ImportError:
    import fuse

SHORT = 700
READ_BACK_SECONDS = 2


class Phone(fuse.Operations):
    def __init__(self, folder, refusals):
        self.folder = folder
        self.refusals = set(refusals)
        deaths = [refusal for refusal in refusals if refusal.startswith("die=")]
        self.left = int(deaths[0][4:]) if deaths else None
        self.written = {}
        self.unset_times = {}
        self.log = open(folder + ".log", "a", buffering=1)

    def at(self, path):
        return os.path.join(self.folder, path.lstrip("/"))

    def change(self, what, path):
        self.log.write(f"{what} {path}\n")
        if self.left is not None:
            self.left -= 1
            if self.left <= 0:
                os._exit(1)

    def refuse(self, refusal, code=errno.EPERM):
        if refusal in self.refusals:
            raise fuse.FuseOSError(code)

    def getattr(self, path, fh=None):
        info = os.lstat(self.at(path))
        keys = ("st_atime", "st_ctime", "st_mtime", "st_gid", "st_uid", "st_mode", "st_nlink", "st_size")
        return {key: getattr(info, key) for key in keys}

    def statfs(self, path):
        info = os.statvfs(self.at(path))
        keys = ("f_bavail", "f_bfree", "f_blocks", "f_bsize", "f_frsize", "f_files", "f_ffree", "f_favail", "f_namemax")
        return {key: getattr(info, key) for key in keys}

    def access(self, path, mode):
        if not os.access(self.at(path), mode):
            raise fuse.FuseOSError(errno.EACCES)

    def readdir(self, path, fh):
        return [".", "..", *os.listdir(self.at(path))]

    def mkdir(self, path, mode):
        self.change("mkdir", path)
        os.mkdir(self.at(path), mode)

    def rmdir(self, path):
        self.change("rmdir", path)
        if "rmdir" in self.refusals:
            shutil.rmtree(self.at(path))
        else:
            os.rmdir(self.at(path))

    def unlink(self, path):
        self.change("unlink", path)
        os.unlink(self.at(path))

    def rename(self, old, new):
        self.change("rename", old)
        self.refuse("rename")
        if os.path.exists(self.at(new)):
            self.refuse("replace", errno.EEXIST)
        os.rename(self.at(old), self.at(new))

    def utimens(self, path, times=None):
        self.change("utimens", path)
        self.refuse("times")
        if "ignored-times" not in self.refusals:
            os.utime(self.at(path), times)

    def chmod(self, path, mode):
        os.chmod(self.at(path), mode)

    def truncate(self, path, length, fh=None):
        self.change("truncate", path)
        os.truncate(self.at(path), length)

    def create(self, path, mode, fi=None):
        self.change("create", path)
        self.written[path] = time.monotonic()
        return os.open(self.at(path), os.O_RDWR | os.O_CREAT, mode)

    def open(self, path, flags):
        if flags & os.O_ACCMODE == os.O_RDONLY and "read-back" in self.refusals:
            if time.monotonic() - self.written.get(path, -READ_BACK_SECONDS) < READ_BACK_SECONDS:
                raise fuse.FuseOSError(errno.EIO)
        return os.open(self.at(path), flags & ~os.O_APPEND)

    def read(self, path, size, offset, fh):
        return os.pread(fh, size, offset)

    def write(self, path, data, offset, fh):
        self.change("write", path)
        self.written[path] = time.monotonic()
        if "lost-end" in self.refusals:
            os.pwrite(fh, data[: len(data) // 2], offset)
            return len(data)
        return os.pwrite(fh, data[:SHORT] if "short-writes" in self.refusals else data, offset)

    def fsync(self, path, datasync, fh):
        self.log.write(f"fsync {path}\n")
        os.fsync(fh)

    # In the middle of close(): the system sends release() at some time after it.
    def flush(self, path, fh):
        if "late-times" in self.refusals and self.written.get(path, 0) > self.unset_times.get(path, 0):
            self.unset_times[path] = time.monotonic()
            os.utime(self.at(path))
        return 0

    def release(self, path, fh):
        os.close(fh)


if __name__ == "__main__":
    phone, mount_point, *asked = sys.argv[1:]
    fuse.FUSE(Phone(phone, asked), mount_point, foreground=True, nothreads=True, direct_io=True)
