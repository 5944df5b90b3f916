"""Texts and dates at the boundary.

A wide text is kept as a str of UTF-16 code units (each character below 0x10000, surrogates on their own), because the
limits count units and a text may hold a surrogate without its partner. None is the null pointer.
"""

import datetime
import math
import re

NULL_TEXT = "(null)"
ESCAPE_LIMIT = 40958
VALID, INVALID, NULL = 0, 1, 2
_LONE = re.compile("[\ud800-\udfff]")
_EPOCH = datetime.date(1899, 12, 30).toordinal()
_FIRST, _LAST = -657434, 2958465  # 0100-01-01 and 9999-12-31, in days of a DateValue


def units(text):
    """A Python text as code units."""
    if text is None or text.isascii():
        return text
    raw = text.encode("utf-16-le", "surrogatepass")
    return "".join(chr(raw[i] | raw[i + 1] << 8) for i in range(0, len(raw), 2))


def joined(text):
    """Code units as a Python text; a surrogate without its partner becomes U+FFFD."""
    if text.isascii():
        return text
    return _LONE.sub("\ufffd", text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "surrogatepass"))


def escaped(text):
    """Apostrophes doubled, then cut at the limit; the null pointer is the empty text."""
    return "" if text is None else text.replace("'", "''")[:ESCAPE_LIMIT]


def plain(text):
    """A text that stands in a statement or a trace line as it is."""
    return NULL_TEXT if text is None else text


def split_date(date):
    """(date, seconds of the day) of a DateValue, or None if it has no calendar fields."""
    days = date[0]
    if not math.isfinite(days) or days <= _FIRST - 1 or days >= _LAST + 1:
        return None
    whole = math.trunc(days)
    seconds = math.floor(abs(days - whole) * 86400 + 0.5)
    if seconds == 86400:
        whole, seconds = whole + 1, 0
    if not _FIRST <= whole <= _LAST:
        return None
    return datetime.date.fromordinal(_EPOCH + whole), seconds


def format_date(date):
    """The text a date is written as into the database."""
    return _format(date, lambda day, clock: f"{day.year:04}-{day.month:02}-{day.day:02} {clock}")


def format_for_user(date):
    """The date as the C locale shows it, for the one trace line that holds a date."""
    return _format(date, lambda day, clock: f"{day.month:02}/{day.day:02}/{day.year % 100:02} {clock}")


def _format(date, layout):
    if date[1] == NULL:
        return ""
    fields = None if date[1] == INVALID else split_date(date)
    if fields is None:
        return "Invalid DateTime"
    day, seconds = fields
    return layout(day, f"{seconds // 3600:02}:{seconds // 60 % 60:02}:{seconds % 60:02}")


_DATE = r"(\d{4})-(\d\d)-(\d\d)"
_TIME = r"(\d\d):(\d\d):(\d\d)"
_SHAPES = [re.compile(f"{_DATE} {_TIME}", re.ASCII), re.compile(_DATE, re.ASCII), re.compile(_TIME, re.ASCII)]
MISMATCH = (0.0, INVALID)


def parse_date(text):
    """The DateValue of a text; None is taken as the empty text."""
    text = text or ""
    both, day, clock = (shape.fullmatch(text) for shape in _SHAPES)
    date_part = [int(part) for part in (both or day).groups()[:3]] if both or day else [1899, 12, 30]
    time_part = [int(part) for part in (both or clock).groups()[-3:]] if both or clock else [0, 0, 0]
    if not (both or day or clock):
        return MISMATCH
    hour, minute, second = time_part
    if hour > 23 or minute > 59 or second > 59:
        return MISMATCH
    try:
        whole = datetime.date(*date_part).toordinal() - _EPOCH
    except ValueError:
        return MISMATCH
    if whole < _FIRST:
        return MISMATCH
    fraction = (hour * 3600 + minute * 60 + second) / 86400
    return (whole - fraction if whole < 0 else whole + fraction), VALID


def now_text():
    return datetime.datetime.now().strftime("%Y-%m-%d %H:%M:%S")


def int32(value):
    return (value + 2**31) % 2**32 - 2**31
