"""The preloaded interposer, from Python: plan one fault, make one call of the library, ask what happened."""

import ctypes
import errno
import os
import subprocess
import sys

# As enum Kind in interposer/plan.h.
KINDS = ("memory", "open", "read", "write", "sync", "truncate", "unlink", "rename", "stat", "lock", "map", "mkdir",
         "close", "attributes", "name", "socket", "shared")
MEMORY = 1
FILES = (1 << len(KINDS)) - 1 - MEMORY
# Calls after which the disk is another one.
WRITING = sum(1 << KINDS.index(kind) for kind in ("open", "write", "sync", "truncate", "unlink", "rename", "mkdir"))
ACTIONS = ("none", "fail", "short", "kill-before", "kill-middle", "kill-after", "pretend")
PLANTS = ("none", "delete-database", "leak-file", "hang", "crash", "damage-database")

# What each kind can plausibly fail with. ENOENT for what is there would be a lie, not a fault.
ERRORS = {
    "memory": ("ENOMEM",),
    "open": ("EACCES", "EIO", "EMFILE", "ENFILE", "ENOMEM", "ENOSPC", "EROFS", "EINTR", "ENXIO"),
    "read": ("EIO", "EINTR", "ENXIO", "ERANGE", "ENOMEM"),
    "write": ("EIO", "ENOSPC", "EDQUOT", "EFBIG", "EINTR", "ENXIO"),
    "sync": ("EIO", "ENOSPC", "EINTR"),
    "truncate": ("EIO", "EINTR", "EROFS", "EFBIG"),
    "unlink": ("EACCES", "EIO", "EBUSY", "EROFS", "EPERM"),
    "rename": ("EACCES", "EIO", "ENOSPC", "EROFS", "EBUSY"),
    "stat": ("EACCES", "EIO", "ENOMEM", "EOVERFLOW"),
    "lock": ("EAGAIN", "EACCES", "EINTR", "EIO", "ENOLCK"),
    "map": ("ENOMEM", "EACCES", "ENODEV"),
    "mkdir": ("EACCES", "ENOSPC", "EROFS", "EIO"),
    "close": ("EIO", "EINTR"),
    "attributes": ("EPERM", "EIO", "EROFS"),
    "name": ("EACCES", "EIO", "ENOMEM"),
    "socket": ("EMFILE", "EACCES", "ENOMEM"),
    "shared": ("EACCES", "ENOSPC", "ENOMEM", "EINVAL"),
}
# A call that was interrupted comes through in the end; the other faults stay for good when they are not single.
STICKY = 1 << 30
INTERRUPTIONS = 8


class Plan(ctypes.Structure):
    _fields_ = [("kinds", ctypes.c_uint32), ("nth", ctypes.c_int32), ("action", ctypes.c_int32),
                ("error", ctypes.c_int32), ("repeats", ctypes.c_int32), ("plant", ctypes.c_int32)]


def fault(kinds, nth, error, sticky=False, plant="none"):
    """The nth call (from 0) of the kinds fails; `error` is the name of an errno, or "short" for half the bytes."""
    if error == "short":
        return Plan(kinds, nth, ACTIONS.index("short"), 0, 0, PLANTS.index(plant))
    repeats = 0 if not sticky else INTERRUPTIONS if error == "EINTR" else STICKY
    return Plan(kinds, nth, ACTIONS.index("fail"), getattr(errno, error), repeats, PLANTS.index(plant))


def kill(kinds, nth, when):
    return Plan(kinds, nth, ACTIONS.index(f"kill-{when}"), 0, 0, 0)


def watch(kinds):
    """No fault: only count and log."""
    return Plan(kinds, -1, 0, 0, 0, 0)


def preload(interposer):
    """Starts this program again with the interposer in it, unless it is."""
    interposer = os.path.abspath(interposer)
    if os.environ.get("LD_PRELOAD") == interposer:
        return
    os.environ["LD_PRELOAD"] = interposer
    os.execv(sys.executable, [sys.executable, *sys.argv])


class Interposer:
    """What the preloaded object exports. One for the process, made after preload()."""

    def __init__(self):
        own = ctypes.CDLL(None)
        self._plan, self._place = own.torture_plan, own.torture_place
        self._lies, self._forget_mutex = own.torture_lies, own.torture_forget_mutex
        self.log, self.mark = own.torture_log, own.torture_mark
        own.torture_mark.argtypes = [ctypes.c_int64]
        self.call = own.torture_call
        self.call.restype = ctypes.c_int32
        self._load, self._unload = own.torture_load, own.torture_unload
        self._load.restype = ctypes.c_void_p
        self._unload.argtypes = [ctypes.c_void_p]
        self._counted, self._kinds = own.torture_counted, own.torture_kinds
        self._counted.restype = ctypes.c_int64
        self._kinds.restype = ctypes.POINTER(ctypes.c_uint8)
        self.struck = own.torture_struck

    def plan(self, plan):
        self._plan(ctypes.byref(plan))

    def place(self, database, mutex):
        """Where the database lies (for planted faults), and the name of this run's mutex, apart from others'."""
        self._place(os.fsencode(database), mutex.encode())

    def forget_mutex(self, mutex):
        """The next process makes it anew."""
        self._forget_mutex(mutex.encode())

    def lies(self, lose_writes_of="", skip_syncs_of=""):
        """From now on writes to, and syncs of, files whose names end so only seem to happen."""
        self._lies(lose_writes_of.encode(), skip_syncs_of.encode())

    def load(self, path):
        """The handle, or None."""
        return self._load(os.fsencode(path))

    def unload(self, handle):
        return self._unload(handle)

    def kinds(self):
        """The names of the kinds of the calls that the last armed stretch counted, in their order."""
        numbers = self._kinds()
        return [KINDS[numbers[i]] for i in range(self._counted())]


# What the library asks of the C library without going to memory or files.
HARMLESS = set("""
__cxa_atexit __cxa_finalize __errno_location __gmon_start__ __libc_single_threaded __register_atfork
__tls_get_addr _ITM_deregisterTMCloneTable
_ITM_registerTMCloneTable __stack_chk_fail __snprintf_chk __memcpy_chk __memmove_chk __memset_chk __strcpy_chk
__vsnprintf_chk bcmp ceil floor clock_gettime connect free freelocale getenv geteuid getuid getpid getpwuid_r gettimeofday localtime
localtime_r gmtime_r mbrtoc16 memchr memcmp memcpy memmove memset memrchr munmap mremap newlocale poll
pthread_mutex_consistent pthread_mutex_destroy pthread_mutex_init pthread_mutex_lock pthread_mutex_unlock pthread_mutexattr_destroy
pthread_mutexattr_init pthread_mutexattr_setpshared pthread_mutexattr_setrobust pthread_mutexattr_settype rmdir send
setsockopt snprintf strchr strcmp strcspn strerror strftime_l strlen strncmp strrchr strspn shmdt sysconf trunc uselocale
""".split())


def check_covered(library, interposer):
    """Fails when the library calls something of the C library that is neither interposed nor listed as harmless."""
    def symbols(path, which):
        lines = subprocess.run(["nm", "-D", which, path], check=True, capture_output=True, text=True).stdout
        return {line.split()[-1].partition("@")[0] for line in lines.splitlines()}

    foreign = {name for name in symbols(library, "--undefined-only") if not name.startswith(("_Z", "__cxa", "_Unwind",
                                                                                             "__gxx"))}
    missing = foreign - symbols(interposer, "--defined-only") - HARMLESS
    if missing:
        raise AssertionError(f"calls of the library that no fault reaches: {sorted(missing)}")
