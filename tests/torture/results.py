"""What every call has to keep to, whatever it was made to work on: results that the header knows, lists in order."""

import ctypes
import fnmatch
import os
import re

from children import Failure
from records import EXPORTS, STRUCTURES

_PLACE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "results.inc")
with open(_PLACE, encoding="ascii") as _lines:
    _CONTRACTS = re.findall(r'^KESTA_RESULTS\("(.*)", (k\w+)\)$', _lines.read(), flags=re.M)
_SQLITE = {*range(29), 100, 101}
_KNOWN = {"kZeroOrOne": {0, 1}, "kZero": {0}, "kOne": {1}, "kOpen": {19, 8398, *_SQLITE}, "kSqlite": _SQLITE,
          "kBackup": {0, 1, 183}, "kFailures": {0, 1, 2}}


def _results_of(export):
    return next((results for name, results in _CONTRACTS if fnmatch.fnmatchcase(export, name)), "kZeroOrOne")


def check_result(export, result):
    results = _results_of(export)
    if results == "kStored":
        return
    known = result == -1 or result > 0 if results == "kPhone" else result in _KNOWN[results]
    if not known:
        raise Failure(f"{export}() answers {result}")


def check_list(library, form, index):
    """Count and array fit each other; the first and the last element can be read."""
    head, _, kind = form.partition(":")
    slot = library._slot(form, index)
    if slot.Count < 0 or (not slot.Items and slot.Count != 0):
        raise Failure(f"a list of {slot.Count} elements at {slot.Items}")
    structure = STRUCTURES["PimLogItem" if head == "outlog" else kind]
    for at in {0, slot.Count - 1} if slot.Count else ():
        address = slot.Items + at * ctypes.sizeof(structure)
        library.read_record(structure.__name__, structure.from_address(address))


def checked_call(library, export, args):
    """The result of a call, after a look at it and at what it left in the caller's lists."""
    result = library.call(export, args)
    check_result(export, result)
    for form, arg in zip(EXPORTS[export], args):
        if form.startswith("list:") or form == "outlog":
            check_list(library, form, arg)
    return result
