"""The model of all exports: what each call answers, writes to the trace and does to the database."""

import engine
import records
import schema
from core import ListSlot, Slot
from pim import Pim


class Model(Pim):
    """Keeps a database file of its own and the caller's records as the library must leave them."""

    def open(self):
        self.db = engine.Engine(self.path)

    def create(self):
        """Opens a fresh file with schema and seed rows."""
        self.open()
        self.db.connection.executescript(schema.SCHEMA)
        for statement in schema.SEED:
            self.db.connection.execute(statement)

    @staticmethod
    def create_bare(path):
        """A file of the right version without any other table."""
        connection = engine.open_file(path)
        connection.execute("CREATE TABLE [tVersion]([Version] INTEGER DEFAULT 1000 NOT NULL)")
        connection.execute(schema.SEED[0])
        connection.close()

    def startup(self):
        """The lines of loading the library."""
        self.trace.entries = []
        self.escape_buffer = self.trace.new()
        self.DB_Open()
        return self.trace.entries

    def shutdown(self):
        self.trace.entries = []
        self.trace.delete(self.escape_buffer)
        return self.trace.entries

    # ---- the caller's records

    def slot(self, form, index):
        key = (form, index)
        if key not in self.slots:
            head, _, kind = form.partition(":")
            if head == "list":
                self.slots[key] = ListSlot(kind)
            elif head == "rec":
                self.slots[key] = Slot(kind)
            elif head == "outlog":
                self.slots[key] = ListSlot("PimLogItem")
                self.slots[key].type = 0
            else:
                start = {"outdate": (0.0, 0), "outint": 0, "outnames": [], "buffer": "", "outslot": None}[head]
                self.slots[key] = {"value": start}
        return self.slots[key]

    def read_slot(self, form, index):
        slot = self.slot(form, index)
        head = form.partition(":")[0]
        if head in ("list", "outlog"):
            items = None if slot.items is None else [dict(item) for item in slot.items[:slot.count]]
            return (slot.count, items) if head == "list" else (slot.type, slot.count, items)
        return dict(slot) if head == "rec" else slot["value"]

    def prime(self, form, index, fields):
        slot = self.slot(form, index)
        if form.startswith("list:"):
            slot.count = fields["Count"] if slot.items is None else 0
        elif form == "outlog":
            slot.type = fields["Type"]
        else:
            slot.update(fields)

    def argument(self, form, value):
        head, _, kind = form.partition(":")
        if value is None or head in ("text", "i32", "date", "names", "log", "slot"):
            return value
        if head in ("in", "inout"):
            return {**records.zero_record(kind), **value}
        return self.slot(form, value)
