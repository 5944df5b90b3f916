"""The library's side: calls by ctypes, records as Python values, and the trace viewer's socket."""

import ctypes
import os
import socket
import threading

import records
from records import FIELDS, STRUCTURES, DateValue, List, PimLog

BUFFER_UNITS = 65536
_libc = ctypes.CDLL(None)
_libc.malloc.restype = ctypes.c_void_p
_libc.malloc.argtypes = [ctypes.c_size_t]
_libc.free.argtypes = [ctypes.c_void_p]
_libc.dlclose.argtypes = [ctypes.c_void_p]


class Viewer:
    """Receives the trace lines on a thread of its own, so that none is dropped."""

    _SYNC = b"\0sync"

    def __init__(self, runtime_dir):
        self.path = os.path.join(runtime_dir, "kesta_db.trace")
        self.lines = []
        self.synced = threading.Semaphore(0)
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 8 << 20)
        self.socket.bind(self.path)
        self.own = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.own.connect(self.path)
        threading.Thread(target=self._receive, daemon=True).start()

    def _receive(self):
        space = bytearray(1 << 18)
        while True:
            size = self.socket.recv_into(space)
            line = bytes(memoryview(space)[:size])
            if line == self._SYNC:
                self.synced.release()
            else:
                self.lines.append(line)

    def take(self):
        """All lines sent so far. The socket keeps the order, so the own datagram comes last."""
        self.own.send(self._SYNC)
        self.synced.acquire()
        lines, self.lines = self.lines, []
        return lines


def c_text(text):
    if text is None:
        return None
    return (ctypes.c_uint16 * (len(text) + 1))(*map(ord, text))


def py_text(address):
    if not address:
        return None
    unit = ctypes.cast(address, ctypes.POINTER(ctypes.c_uint16))
    size = 0
    while unit[size]:
        size += 1
    return "".join(map(chr, unit[:size]))


class Native:
    """Calls the exports and keeps the caller's records between calls."""

    def __init__(self, path):
        self.library = ctypes.CDLL(path)
        self.slots = {}
        self.kept = []
        self.functions = {}
        for name in records.EXPORTS:
            function = getattr(self.library, name, None)
            if function is not None:
                function.restype = ctypes.c_int32
                self.functions[name] = function

    def unload(self):
        self.functions = {}
        return _libc.dlclose(self.library._handle)

    # ---- records

    def _pointer(self, text):
        data = c_text(text)
        self.kept.append(data)
        return ctypes.cast(data, ctypes.c_void_p) if data is not None else None

    def _record(self, kind, given):
        record = STRUCTURES[kind]()
        for field, form in FIELDS[kind]:
            value = given.get(field, records.zero_of(form))
            if form == "text":
                setattr(record, field, self._pointer(value))
            elif form == "date":
                setattr(record, field, DateValue(*value))
            elif form == "data":
                if value is not None:
                    data = ctypes.create_string_buffer(value, max(len(value), 1))
                    self.kept.append(data)
                    setattr(record, field, ctypes.addressof(data))
            else:
                setattr(record, field, value)
        return record

    @staticmethod
    def read_record(kind, record):
        out = {}
        for field, form in FIELDS[kind]:
            value = getattr(record, field)
            if form == "text":
                value = py_text(value)
            elif form == "date":
                value = (value.Days, value.Status)
            elif form == "data":
                value = ctypes.string_at(value, record.DataLength) if value else None
            out[field] = value
        return out

    def read_list(self, kind, target):
        """(count, None or the elements)."""
        if not target.Items:
            return target.Count, None
        size = ctypes.sizeof(STRUCTURES[kind])
        return target.Count, [self.read_record(kind, STRUCTURES[kind].from_address(target.Items + i * size))
                              for i in range(target.Count)]

    def read_names(self, target):
        texts = ctypes.cast(target.Items, ctypes.POINTER(ctypes.c_void_p))
        return [py_text(texts[i]) for i in range(target.Count)]

    def _slot(self, form, index):
        key = (form, index)
        if key not in self.slots:
            head, _, kind = form.partition(":")
            self.slots[key] = {"list": List, "outdate": DateValue, "outint": ctypes.c_int32, "outlog": PimLog,
                               "outnames": List, "buffer": ctypes.c_uint16 * BUFFER_UNITS,
                               "outslot": ctypes.c_void_p}.get(head, STRUCTURES.get(kind))()
        return self.slots[key]

    def read_slot(self, form, index):
        slot = self._slot(form, index)
        head, _, kind = form.partition(":")
        if head == "list":
            return self.read_list(kind, slot)
        if head == "rec":
            return self.read_record(kind, slot)
        if head == "outdate":
            return slot.Days, slot.Status
        if head == "outint":
            return slot.value
        if head == "outlog":
            return slot.Type, *self.read_list("PimLogItem", slot)
        if head == "outnames":
            return self.read_names(slot)
        return py_text(ctypes.addressof(slot)) if head == "buffer" else py_text(slot.value)

    def prime(self, form, index, fields):
        """Gives the numbers of a kept record other values, as a caller may."""
        slot = self._slot(form, index)
        for field, value in fields.items():
            if field == "Count" and form.startswith("list:"):
                slot.Count = 0 if slot.Items else value  # A caller that has lost the count.
            elif field == "value":
                self.slots[(form, index)] = DateValue(*value) if form == "outdate" else ctypes.c_int32(value)
            else:
                setattr(slot, field, DateValue(*value) if isinstance(value, tuple) else value)

    # ---- calls

    def _argument(self, form, value):
        if form == "i32":
            return ctypes.c_int32(value)
        if form == "text":
            return self._pointer(value)
        if value is None:
            return None
        head, _, kind = form.partition(":")
        if head in ("in", "inout"):
            self.given = record = self._record(kind, value)
        elif head == "date":
            record = DateValue(*value)
        elif head == "names":
            pointers = [self._pointer(text) for text in value]
            items = (ctypes.c_void_p * max(len(pointers), 1))(*pointers)
            self.kept.append(items)
            record = List(len(pointers), ctypes.addressof(items))
        elif head == "log":
            items = (STRUCTURES["PimLogItem"] * max(len(value["Items"]), 1))(
                *[self._record("PimLogItem", item) for item in value["Items"]])
            self.kept.append(items)
            record = PimLog(value["Type"], len(value["Items"]), ctypes.addressof(items))
        elif head == "slot":
            pointer = self._pointer(value[0])
            record = pointer if pointer is not None else ctypes.c_void_p()
        elif head == "buffer":
            return self._slot(form, value)
        else:
            record = self._slot(form, value)
        self.kept.append(record)
        return ctypes.byref(record)

    def call(self, name, args):
        """The export's result; the record of an inout parameter is in self.given afterwards."""
        self.kept = []
        converted = [self._argument(form, value) for form, value in zip(records.EXPORTS[name], args)]
        return self.functions[name](*converted)

    def release_names(self, index):
        """The file names of an array are the caller's to free."""
        slot = self._slot("outnames", index)
        texts = ctypes.cast(slot.Items, ctypes.POINTER(ctypes.c_void_p))
        for i in range(slot.Count):
            _libc.free(texts[i])
        _libc.free(slot.Items)
        slot.Count, slot.Items = 0, None
