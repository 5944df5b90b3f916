"""Comparing the library's trace lines, records and tables with the model's."""

import math
import re

_MEMORY = re.compile(rb"DB TRACE >> Memory ([0-9a-f]+) (NEW|DELETE)\.\n")
DAY_TOLERANCE = 0.4 / 86400


class Memory:
    """Which address of the library stands for which allocation of the model."""

    def __init__(self):
        self.live = {}
        self.pools = []

    def new(self, address, number):
        if address in self.live:
            return f"{address.decode()} is announced NEW while it is live"
        self.live[address] = number
        return None

    def delete(self, address):
        """(allocation number or pool, error)."""
        if address not in self.live:
            return None, f"{address.decode()} is announced DELETE but is not live"
        return self.live.pop(address), None

    def forget(self, numbers):
        """Allocations that the caller has freed without a line."""
        self.live = {address: number for address, number in self.live.items()
                     if isinstance(number, set) or number not in numbers}

    def pool(self, addresses, numbers):
        """Allocations of which only the number is known, not which is which."""
        if len(addresses) != len(numbers):
            return f"{len(addresses)} new allocations stay alive instead of {len(numbers)}"
        if addresses:
            self.pools.append(set(numbers))
            for address in addresses:
                self.live[address] = self.pools[-1]
        return None


def _same(found, number):
    if isinstance(found, set):
        if number not in found:
            return False
        found.discard(number)
        return True
    return found == number


def match_trace(entries, lines, memory):
    """None, or what differs. Elements of one array may go in any order, so their lines are compared as a group."""
    position = 0
    for entry in entries:
        expected = 1 if entry[0] != "group" else sum(map(len, entry[1]))
        chunk = lines[position:position + expected]
        if len(chunk) < expected:
            return f"line {position + len(chunk) + 1}: nothing instead of {show_entry(entry)}"
        error = _match_entry(entry, chunk, memory)
        if error:
            return f"line {position + 1}: {error}"
        position += expected
    if position < len(lines):
        return f"line {position + 1}: unexpected {short(lines[position])}"
    return None


def _match_entry(entry, chunk, memory):
    if entry[0] == "line":
        return None if chunk[0] == entry[1].encode() else f"{short(chunk[0])} instead of {show_entry(entry)}"
    found = []
    for line in chunk:
        match = _MEMORY.fullmatch(line)
        if not match or match.group(2) != (b"NEW" if entry[0] == "new" else b"DELETE"):
            return f"{short(line)} instead of {show_entry(entry)}"
        if entry[0] == "new":
            return memory.new(match.group(1), entry[1])
        number, error = memory.delete(match.group(1))
        if error:
            return error
        found.append(number)
    if entry[0] == "delete":
        return None if _same(found[0], entry[1]) else f"DELETE of another allocation than {show_entry(entry)}"
    return _match_group(found, entry[1], entry[2])


def _match_group(found, elements, ordered):
    wanted = {number for element in elements for number in element}
    pooled = [number for number in found if isinstance(number, set)]
    exact = [number for number in found if not isinstance(number, set)]
    if not set(exact) <= wanted or len(set(exact)) != len(exact):
        return f"DELETE of {exact}, which is not the group {elements}"
    for number in wanted - set(exact):
        if not any(_same(pool, number) for pool in pooled):
            return f"DELETE of another allocation than M{number}"
    if ordered and not pooled:
        place = {number: i for i, number in enumerate(exact)}
        for element in elements:
            if [place[number] for number in element] != sorted(place[number] for number in element):
                return f"DELETE of the texts of a record in another order than {element}: {exact}"
    return None


def match_loose(entries, lines, memory):
    """As match_trace where only the lines that are not about memory are fixed, and what is alive afterwards."""
    created = []
    rest = []
    for line in lines:
        match = _MEMORY.fullmatch(line)
        if not match:
            rest.append(line)
        elif match.group(2) == b"NEW":
            if match.group(1) in memory.live or match.group(1) in created:
                return f"{short(line)} while it is live"
            created.append(match.group(1))
        elif match.group(1) in created:
            created.remove(match.group(1))
        else:
            number, error = memory.delete(match.group(1))
            if error:
                return error
            if isinstance(number, set):
                number.pop()
    numbers = set()
    for entry in entries:
        if entry[0] == "new":
            numbers.add(entry[1])
        elif entry[0] == "delete":
            numbers.discard(entry[1])
        elif entry[0] == "group":
            numbers -= {number for element in entry[1] for number in element}
    return match_trace([entry for entry in entries if entry[0] == "line"], rest, memory) or memory.pool(created,
                                                                                                         numbers)


def same_value(left, right):
    """Equal, with dates apart by less than half a second taken as equal."""
    if isinstance(left, tuple) and isinstance(right, tuple):
        return len(left) == len(right) and all(map(same_value, left, right))
    if isinstance(left, list) and isinstance(right, list):
        return len(left) == len(right) and all(map(same_value, left, right))
    if isinstance(left, dict) and isinstance(right, dict):
        return left.keys() == right.keys() and all(same_value(left[key], right[key]) for key in left)
    if isinstance(left, float) and isinstance(right, float):
        return left == right or (math.isnan(left) and math.isnan(right)) or abs(left - right) < DAY_TOLERANCE
    return left == right


def first_difference(left, right, where=""):
    """Where two nested values part, for a report that fits the screen."""
    if isinstance(left, dict) and isinstance(right, dict):
        for key in left:
            if not same_value(left[key], right.get(key)):
                return first_difference(left[key], right.get(key), f"{where}.{key}")
    if isinstance(left, (list, tuple)) and isinstance(right, (list, tuple)) and len(left) == len(right):
        for i, (one, other) in enumerate(zip(left, right)):
            if not same_value(one, other):
                return first_difference(one, other, f"{where}[{i}]")
    return f"{where or 'value'}: library {short(left)}, model {short(right)}"


def show_entry(entry):
    if entry[0] == "line":
        return short(entry[1].encode())
    return f"{entry[0].upper()} {entry[1]}"


def short(value, limit=400):
    text = repr(value)
    return text if len(text) <= limit else f"{text[:limit // 2]}...{text[-limit // 2:]} ({len(text)} characters)"
