"""Runs statement texts on the model's own database file and reads columns the way SQLite's C interface does."""

import math
import re
import sqlite3

OK, ERROR, TOO_BIG, CONSTRAINT, ROW, DONE = 0, 1, 18, 19, 100, 101
STATEMENT_BYTES = 40960
_INTEGER = re.compile(rb"[ \t\n\v\f\r]*([+-]?\d+)")
_TOKEN = re.compile(r"'(?:[^']|'')*(?:'|$)|\"[^\"]*(?:\"|$)|`[^`]*(?:`|$)|\[[^]]*(?:\]|$)|--[^\n]*|/\*.*?(?:\*/|$)|;",
                    re.S)


def open_file(path):
    connection = sqlite3.connect(path, isolation_level=None, timeout=20, cached_statements=0)
    connection.text_factory = bytes
    return connection


def error_code(error):
    """The plain result code; sqlite3 reports extended ones."""
    return error.sqlite_errorcode & 0xFF


class Rows:
    """The rows of one query and the code that ended them."""

    def __init__(self, rows, code):
        self.rows = rows
        self.code = code

    def first(self):
        return self.rows[0] if self.rows else None

    def first_code(self):
        """The code of the first step."""
        return ROW if self.rows else self.code

    def filled(self, count):
        """The rows that fit into count elements, and the code of the last step taken."""
        return self.rows[:count], ROW if len(self.rows) > count else self.code


class Engine:
    def __init__(self, path):
        self.connection = open_file(path)
        # Reading the converted text of a number takes a connection of its own, so as not to disturb the counters.
        self.scratch = open_file(":memory:")

    def close(self):
        self.connection.close()
        self.scratch.close()

    def exec(self, text):
        """As sqlite3_exec: the code of the first statement that fails, or 0."""
        if len(text.encode()) > STATEMENT_BYTES:
            return TOO_BIG
        try:
            self.connection.executescript(text)
        except sqlite3.Error as error:
            return error_code(error)
        return OK

    def query(self, text, *bound):
        """The rows of the first statement in the text, or None if it cannot be prepared."""
        if len(text.encode()) > STATEMENT_BYTES:
            return None
        text = _first_statement(text)
        rows = []
        try:
            for row in self.connection.execute(text, bound):
                rows.append(row)
        except sqlite3.Error as error:
            if not rows and not self._prepares(text, bound):
                return None
            return Rows(self._rows_before_error(text, bound, len(rows) + 1), error_code(error))
        return Rows(rows, DONE)

    def _rows_before_error(self, text, bound, count):
        """The sqlite3 module steps ahead: with the error it swallows the row before it."""
        try:
            return self.connection.execute(f"{text.rstrip(';')} LIMIT {count}", bound).fetchall()
        except sqlite3.Error:
            return []

    def _prepares(self, text, bound):
        try:
            self.connection.execute("EXPLAIN " + text, bound).close()
        except sqlite3.Error:
            return False
        return True

    def last_row_id(self):
        return self.connection.execute("SELECT last_insert_rowid()").fetchone()[0]

    def total_changes(self):
        return self.connection.total_changes

    def text(self, value):
        """As sqlite3_column_text16, up to the terminator: a Python text, or None for NULL."""
        if value is None:
            return None
        if isinstance(value, float):
            value = self.scratch.execute("SELECT CAST(? AS TEXT)", (value,)).fetchone()[0]
        raw = value if isinstance(value, bytes) else str(value).encode()
        return raw.split(b"\0")[0].decode("utf-8", "replace")


def int64(value):
    """As sqlite3_column_int64."""
    low, high = -2**63, 2**63 - 1
    if value is None:
        return 0
    if isinstance(value, float):
        return low if value <= low else high if value >= high else math.trunc(value)
    if isinstance(value, bytes):
        match = _INTEGER.match(value)
        value = int(match.group(1)) if match else 0
    return min(max(value, low), high)


def int32(value):
    """As sqlite3_column_int: the low half of the 64-bit value."""
    return (int64(value) + 2**31) % 2**32 - 2**31


def _first_statement(text):
    """Preparing a text looks at its first statement only; the sqlite3 module would refuse to do that."""
    for match in _TOKEN.finditer(text):
        if match.group() == ";":
            return text[:match.end()]
    return text
