"""What every family of the model stands on: trace, memory, list rule, statement texts, call frame and look-ups."""

import engine as sql
import records
import values
from values import escaped, joined, plain

PREFIX = "DB TRACE >> "
FAILURE = 1


class NullPointer(Exception):
    """A record, list or out pointer is null: the call takes its exception way."""


class Slot(dict):
    """A caller's record. `owned` names the text fields the library allocated, with their allocations."""

    def __init__(self, kind):
        super().__init__(records.zero_record(kind))
        self.kind = kind
        self.owned = {}


class ListSlot:
    """A caller's list record; items is None or the array with its true number of elements."""

    def __init__(self, kind):
        self.kind = kind
        self.count = 0
        self.items = None
        self.allocation = None


class Trace:
    """The lines of one call. Memory lines name allocations by number."""

    def __init__(self):
        self.entries = []
        self.next_allocation = 1
        self.live = set()

    def line(self, text):
        self.entries.append(("line", PREFIX + joined(text) + "\n"))

    def new(self):
        number = self.next_allocation
        self.next_allocation += 1
        self.live.add(number)
        self.entries.append(("new", number))
        return number

    def delete(self, number):
        self.live.remove(number)
        self.entries.append(("delete", number))

    def delete_group(self, elements, ordered):
        """The texts of several elements: elements go in any order, the texts of one in order if it is fixed."""
        elements = [list(element) for element in elements if element]
        for element in elements:
            for number in element:
                self.live.remove(number)
        if elements:
            self.entries.append(("group", elements, ordered))


class Core:
    def __init__(self, path):
        self.path = path
        self.db = None
        self.trace = Trace()
        self.slots = {}
        self.changed = {1000: 0, 1100: 0, 1400: 0, 1900: 0}
        self.loose_memory = False
        self.clock = None

    def now(self):
        return self.clock or values.now_text()

    def call(self, name, args):
        """Runs one export; args hold texts, numbers, dates, dicts and slots as EXPORTS describes them."""
        self.trace.entries = []
        self.loose_memory = False
        method = getattr(self, name, None)
        if method is None:  # The four categories and the like share one method.
            _, family, suffix = name.split("_")
            return getattr(self, f"{family}_any" if hasattr(self, f"{family}_any") else "category")(
                name, family, suffix, args)
        return method(*args)

    # ---- trace and frame

    def error(self, name, position):
        self.trace.line(f"Error in {name}(), position {position}.")

    def exception(self, name):
        self.trace.line(f"An exception occured in {name}().")

    def frame(self, name, enter, preset, body, exit_text="", with_exit=True):
        """Enter line, work, Exit line. `enter` may be a function, for lines that show a field of a record."""
        result = preset
        try:
            self.trace.line(f"Enter {name}({enter() if callable(enter) else enter}).")
            result = body()
        except NullPointer:
            self.exception(name)
            result = FAILURE
        if with_exit:
            self.trace.line(f"Exit {name}() with {exit_text}{result}.")
        return result

    def thin(self, name, body):
        """A shell around an engine routine: no Exit line."""
        try:
            return body()
        except NullPointer:
            self.exception(name)
            return FAILURE

    # ---- statements

    @staticmethod
    def statement(pattern, *args):
        return joined(pattern.replace("%I64d", "%d") % args)

    def exec(self, pattern, *args):
        return self.db.exec(self.statement(pattern, *args))

    def query(self, pattern, *args):
        return self.db.query(self.statement(pattern, *args))

    def run(self, name, position, pattern, *args):
        """A statement whose failure writes its position and gives 1."""
        if self.exec(pattern, *args) == sql.OK:
            return 0
        self.error(name, position)
        return FAILURE

    # ---- look-ups

    def first_int(self, missing, pattern, *args):
        rows = self.query(pattern, *args) if self.db else None
        row = rows.first() if rows else None
        return missing if row is None else sql.int32(row[0])

    def phone_id(self, imei):
        return self.first_int(-1, "SELECT [ID] FROM tPhone WHERE  [IMEI] = '%s';", plain(imei))

    def bookmark_type(self, imei):
        return self.first_int(0, "SELECT [BookMarkType] FROM tPhone WHERE  [IMEI] = '%s';", plain(imei))

    def path_flag(self, phone, table, path):
        return self.first_int(0, "SELECT [Flag] FROM %s WHERE  [PhoneID] = %d AND [Path] = '%s';", table, phone,
                              escaped(path))

    # ---- texts and records

    def read_text(self, record, field, value):
        """A text column into a record: NULL and the empty text are the null pointer."""
        text = values.units(self.db.text(value))
        record[field] = text or None
        if text:
            record.owned[field] = self.trace.new()

    def duplicate(self, record, field, text):
        record[field] = text
        if text is not None:
            record.owned[field] = self.trace.new()

    def read_date(self, record, field, value):
        record[field] = values.parse_date(self.db.text(value))

    @staticmethod
    def owned_texts(record):
        order = records.PHONE_TEXTS if record.kind == "PhoneSettingRecord" else [name for name, _ in
                                                                                 records.FIELDS[record.kind]]
        return [record.owned[name] for name in order if name in record.owned]

    def free_texts(self, record):
        self.trace.delete_group([self.owned_texts(record)], record.kind == "PhoneSettingRecord")
        record.owned = {}

    def reset_texts(self, record, fields):
        """Frees the texts of a caller's record and sets them null."""
        self.free_texts(record)
        for field in fields:
            record[field] = None

    # ---- lists

    def allocate(self, target, count):
        target.items = [Slot(target.kind) for _ in range(count)]
        target.count = 0
        target.allocation = self.trace.new()

    def empty(self, target):
        if target is None:
            raise NullPointer
        if target.items is not None:
            self.trace.delete(target.allocation)
            self.trace.delete_group([self.owned_texts(item) for item in target.items],
                                    target.kind == "PhoneSettingRecord")
        target.count, target.items = 0, None

    def fill(self, target, rows, read):
        """Fills the array row by row; gives the result of a list export."""
        taken, code = rows.filled(len(target.items))
        for item, row in zip(target.items, taken):
            read(item, row)
        target.count = len(taken)
        return 0 if code == sql.DONE else code

    def fill_list(self, name, target, count_query, row_query, read):
        """The list rule from its count query on; the queries are (pattern, arguments...)."""
        if not self.db:
            return FAILURE
        rows = self.query(*count_query)
        if rows is None:
            self.error(name, 1)
            return FAILURE
        if rows.first() is None:
            return 0
        count = sql.int32(rows.first()[0])
        if count == 0:
            return 0
        if count < 0:
            self.error(name, 2)
            return FAILURE
        self.allocate(target, count)
        rows = self.query(*row_query)
        if rows is None:
            self.error(name, 3)
            return FAILURE
        return self.fill(target, rows, read)


def need(*pointers):
    if any(pointer is None for pointer in pointers):
        raise NullPointer

