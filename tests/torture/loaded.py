"""The built library in this process: every call goes through the interposer, armed for just that call."""

import ctypes
import os

import records
from interposer import watch
from native import Native


class NotLoaded(Exception):
    """The system's loader refused, which a fault may well make it do."""


class Loaded(Native):
    """As the model's Native, with a plan for loading and one for every call."""

    def __init__(self, bench, path, plan=None):
        self.interposer = bench.interposer
        self.interposer.plan(plan or watch(0))
        self.handle = self.interposer.load(path)
        self.struck = bool(self.interposer.struck())
        if not self.handle:
            raise NotLoaded()
        self.library = ctypes.CDLL(path, handle=self.handle)
        self.slots, self.kept, self.functions = {}, [], {}
        for name in records.EXPORTS:
            address = ctypes.cast(getattr(self.library, name), ctypes.c_void_p)
            self.functions[name] = self._through_interposer(address)
        self.plan = watch(0)

    def _through_interposer(self, address):
        def call(*args):
            self.interposer.plan(self.plan)
            result = self.interposer.call(address, *args, *[None] * (4 - len(args)))
            self.struck = bool(self.interposer.struck())
            return result
        return call

    def planned(self, plan, name, args):
        """The result of one call under a plan."""
        self.plan = plan
        try:
            return self.call(name, args)
        finally:
            self.plan = watch(0)

    def outputs(self, name, args):
        """What the call left in the caller's records and lists."""
        changed = ("rec", "list", "outdate", "outint", "outlog", "outnames", "buffer", "outslot")
        outputs = []
        for form, arg in zip(records.EXPORTS[name], args):
            head, _, kind = form.partition(":")
            if arg is not None and head in changed:
                outputs.append(self.read_slot(form, arg))
            elif arg is not None and head == "inout":
                outputs.append(self.read_record(kind, self.given))
        return outputs

    def unload(self, plan=None):
        self.functions = {}
        self.interposer.plan(plan or watch(0))
        return self.interposer.unload(self.handle)


def open_files():
    """The open descriptors by number, with what they are of."""
    found = {}
    for number in os.listdir("/proc/self/fd"):
        try:
            found[int(number)] = os.readlink(f"/proc/self/fd/{number}")
        except FileNotFoundError:  # the listing's own
            pass
    return found


def held_locks(path):
    """The POSIX locks that this process has on the file, as the system lists them."""
    inode = f":{os.stat(path).st_ino}"
    with open("/proc/locks", encoding="ascii") as lines:
        return [line for line in lines if "POSIX" in line and line.split()[-4] == str(os.getpid()) and
                line.split()[-3].endswith(inode)]
