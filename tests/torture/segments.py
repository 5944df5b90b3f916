"""System V memory segments, as the library's mutex lies in one: found in the process that has attached it, then made
again with other contents."""

import ctypes
import os
import re

BYTES = 4096
_CREATE, _REMOVE = 0o1000, 0
_libc = ctypes.CDLL(None, use_errno=True)
_libc.shmat.restype = ctypes.c_void_p
_libc.shmdt.argtypes = [ctypes.c_void_p]


def attached():
    """The keys of the segments in this process."""
    with open("/proc/self/maps", encoding="utf-8", errors="replace") as maps:
        return [int(key, 16) for key in re.findall(r"/SYSV([0-9a-f]{8})", maps.read())]


def _get(key, size, flags):
    segment = _libc.shmget(ctypes.c_int32(key & 0xffffffff), ctypes.c_size_t(size), flags)
    if segment < 0:
        raise OSError(ctypes.get_errno(), f"shmget: {os.strerror(ctypes.get_errno())}")
    return segment


def remove(key):
    """Whoever has it attached keeps it; nobody finds it any more."""
    try:
        _libc.shmctl(_get(key, 0, 0), _REMOVE, None)
    except FileNotFoundError:
        pass


def read(key):
    address = _libc.shmat(_get(key, 0, 0), None, 0)
    content = ctypes.string_at(address, BYTES)
    _libc.shmdt(address)
    return content


def make(key, content, mode=0o600):
    """Another segment of that key in the place of the one there is."""
    remove(key)
    address = _libc.shmat(_get(key, len(content), _CREATE | mode), None, 0)
    ctypes.memmove(address, content, len(content))
    _libc.shmdt(address)
