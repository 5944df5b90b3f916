"""Mounts, users and process numbers of a child's own, by the system calls that Python 3.11 does not have."""

import ctypes
import os

_NEW_MOUNTS, _NEW_MEMORY, _NEW_PIDS = 0x00020000, 0x08000000, 0x20000000
_READ_ONLY, _REMOUNT, _BIND, _REC, _PRIVATE = 1, 32, 4096, 16384, 1 << 18
NOBODY = 65534

_libc = ctypes.CDLL(None, use_errno=True)


def _check(result, what):
    if result != 0:
        raise OSError(ctypes.get_errno(), f"{what}: {os.strerror(ctypes.get_errno())}")


def _mount(source, target, kind, flags, data=None):
    _check(_libc.mount(source.encode(), target.encode(), kind.encode() if kind else None, ctypes.c_ulong(flags),
                       data.encode() if data else None), f"mount {target}")


def own_mounts():
    """From now on this process's mounts are its own; they end with it."""
    _check(_libc.unshare(_NEW_MOUNTS), "unshare")
    _mount("none", "/", None, _REC | _PRIVATE)


def own_process_numbers():
    """The next children of this process are numbered from 1."""
    _check(_libc.unshare(_NEW_PIDS), "unshare")


def own_memory():
    """From now on this process shares memory segments with nobody but the children it starts."""
    _check(_libc.unshare(_NEW_MEMORY), "unshare")


def mount_memory(folder, size):
    """A disk of so many bytes."""
    _mount("tmpfs", folder, "tmpfs", 0, f"size={size},mode=777")


def remount_memory(folder, size):
    _mount("tmpfs", folder, "tmpfs", _REMOUNT, f"size={size}")


def mount_read_only(folder):
    _mount(folder, folder, None, _BIND)
    _mount(folder, folder, None, _BIND | _REMOUNT | _READ_ONLY)


def available():
    """Whether this process may do any of this; only root may."""
    return os.geteuid() == 0


def become(user):
    os.setgroups([])
    os.setresgid(user, user, user)
    os.setresuid(user, user, user)
