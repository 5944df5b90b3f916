"""Database files as the bench looks at them: rows, integrity, and which rows a call that was cut short may leave."""

import sqlite3
from collections import Counter

MAIN_FOLDERS = 7
VERSION = 5005


class Damaged(Exception):
    """The file is no valid database."""


def _open(source):
    """`source` is a path or the bytes of a file. A journal beside the path is played back, as for any reader."""
    if isinstance(source, bytes):
        connection = sqlite3.connect(":memory:", isolation_level=None)
        connection.deserialize(source)
    else:
        connection = sqlite3.connect(f"file:{source}?mode=rw", uri=True, isolation_level=None, timeout=5,
                                     cached_statements=0)
    connection.text_factory = bytes
    return connection


def read_state(source, like=None):
    """All rows by table, after an integrity check. sqlite_sequence counts as a table. Tables that are as in the state
    `like` are that one's, which saves memory when many are kept."""
    connection = None
    try:
        connection = _open(source)
        answer = connection.execute("PRAGMA integrity_check(5)").fetchall()
        if answer != [(b"ok",)]:
            raise Damaged(f"integrity_check: {answer}")
        tables = connection.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name").fetchall()
        state = {name.decode(): connection.execute(f"SELECT * FROM [{name.decode()}]").fetchall()
                 for (name,) in tables}
        return {name: like[name] if like and like.get(name) == rows else rows for name, rows in state.items()}
    except sqlite3.Error as error:
        raise Damaged(str(error)) from error
    finally:
        if connection:
            connection.close()


def read_columns(source):
    """For each table its columns, and the places of those that make the key; none if the key is a bare number."""
    connection = _open(source)
    tables = [name.decode() for (name,) in
              connection.execute("SELECT name FROM sqlite_master WHERE type = 'table'").fetchall()]
    columns = {}
    for table in tables:
        info = connection.execute(f"PRAGMA table_info([{table}])").fetchall()
        key = [row[0] for row in info if row[5] > 0]
        number = len(key) == 1 and info[key[0]][2].upper() == b"INTEGER"
        columns[table] = (len(info), [] if number else key, key[0] if number else None)
    connection.close()
    return columns


def is_complete(state):
    """Whether a freshly made file has its version and its main folders."""
    return state.get("tVersion") == [(VERSION,)] and len(state.get("tLibMainFolder", [])) == MAIN_FOLDERS


def difference(found, expected):
    """The first thing in which two states differ, or None."""
    for table in sorted(set(found) | set(expected)):
        if table not in found or table not in expected:
            return f"table {table} is {'missing' if table in expected else 'new'}"
        if found[table] != expected[table]:
            gone = list((Counter(expected[table]) - Counter(found[table])).elements())
            more = list((Counter(found[table]) - Counter(expected[table])).elements())
            return f"{table}: missing {gone[:2]}, unexpected {more[:2]}" if gone or more else f"{table}: other order"
    return None


def outside(found, states, columns, aside=()):
    """What in `found` no run of some of the statements explains, or None. `states` are those before the call and after
    each statement of a call without faults. A row that is in all of them must be there; a row that is in none must not,
    though each of its cells may stem from another state (two statements, of which only the later one worked). Rows of
    tables with a running number are compared without it, as whole rows; the tables `aside` not at all."""
    for table in sorted(set().union(*states) | set(found)):
        if table == "sqlite_sequence" or table in aside:
            continue
        variants = [state.get(table, []) for state in states]
        rows = found.get(table)
        if rows is None:
            return f"table {table} is missing"
        _, key, number = columns[table]
        problem = _outside_by_key(rows, variants, key) if key else _outside_by_row(rows, variants, number)
        if problem:
            return f"{table}: {problem}"
    return None


def _outside_by_row(rows, variants, number):
    def bare(row):
        return row if number is None else row[:number] + row[number + 1:]

    counted = [Counter(map(bare, variant)) for variant in variants]
    found = Counter(map(bare, rows))
    always = counted[0]
    ever = counted[0]
    for one in counted[1:]:
        always, ever = always & one, ever | one
    if always - found:
        return f"missing {list(always - found)[:2]}"
    if found - ever:
        return f"unexpected {list(found - ever)[:2]}"
    return None


def _outside_by_key(rows, variants, key):
    def keyed(variant):
        return {tuple(row[i] for i in key): row for row in variant}

    variants = [keyed(variant) for variant in variants]
    found = keyed(rows)
    for value in set().union(*variants):
        if value not in found and all(value in variant for variant in variants):
            return f"missing row {value}"
    for value, row in found.items():
        known = [variant[value] for variant in variants if value in variant]
        if not known:
            return f"unexpected row {row}"
        for i, cell in enumerate(row):
            if all(cell != other[i] for other in known):
                return f"row {value}: unexpected value {cell!r} in column {i}"
    return None
