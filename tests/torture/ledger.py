"""What calls have acknowledged, kept apart from the database, and held against it after processes were killed.

A ledger line is written before a call and another when it has answered. Between the two the call may have done all,
nothing or, where it consists of several statements, some of it.
"""

import json

import calls
from children import Failure
from database import MAIN_FOLDERS


class Writer:
    """Makes calls by chance, each on something of its own kind and name: nobody else touches it."""

    def __init__(self, random, name):
        self.random, self.name, self.number, self.alive = random, name, 0, []

    def next(self):
        """(line, export, args, the answer of success; None for a phone, whose number is the answer)"""
        number = self.number = self.number + 1
        key = f"{self.name}-{number}"
        kind = self.random.choice(("file", "file", "bookmark", "item", "phone", "change", "remove"))
        if kind in ("change", "remove") and self.alive:
            index = self.random.randrange(len(self.alive))
            of, key = self.alive[index]
            if kind == "remove":
                self.alive.pop(index)
            return self._again(of, key, number if kind == "change" else None)
        kind = "file" if kind in ("change", "remove") else kind
        if kind != "phone":
            self.alive.append((kind, key))
        return self._first(kind, key)

    @staticmethod
    def _first(kind, key):
        if kind == "file":
            return ("file", key, "new"), "DB_MUSIC_SetAddedFile", (calls.IMEI, _file(key, "new")), 0
        if kind == "bookmark":
            return ("bookmark", key, "new"), "DB_BOOKMARK_SetAddedMark", (calls.IMEI, _bookmark(key, "new")), 0
        if kind == "item":
            return ("item", key, "new"), "DB_PIM_AddItem", (_item(key, "new"), None), 0
        return ("phone", key, "new"), "DB_LIB_PhoneDetected", (key, "new"), None

    @staticmethod
    def _again(kind, key, value):
        text = None if value is None else f"changed {value}"
        line = (kind, key, text)
        if kind == "file":
            export = "DB_MUSIC_SetDeletedFile" if text is None else "DB_MUSIC_SetUpdatedFile"
            return line, export, (calls.IMEI, _file(key, text or "")), 0
        if kind == "bookmark":
            if text is None:
                return line, "DB_BOOKMARK_SetDeletedMark", (calls.IMEI, key), 0
            return line, "DB_BOOKMARK_SetUpdatedMark", (calls.IMEI, _bookmark(key, text)), 0
        if text is None:
            return line, "DB_PIM_DeleteItem", (key,), 0
        return line, "DB_PIM_UpdateItem", (_item(key, text),), 0


def _file(key, value):
    return {"Path": key, "BasePath": "C:\\Rock", "PhonePath": value, "ModifiedTime": calls.WHEN}


def _bookmark(key, value):
    return {"Title": value, "Path": key, "PhoneMID": "m", "Id": 1, "Flag": 1}


def _item(key, value):
    return {"PimID": key, "Type": 1, "Data": value.encode(), "DataLength": len(value.encode())}


class Ledger:
    """`allowed`: for each (kind, key) the values that the database may have, None for none."""

    def __init__(self):
        self.allowed, self.acknowledged, self.killed_inside = {}, 0, 0

    def take(self, text):
        """The lines of one process, which may have ended in the middle of one."""
        begun = None
        for line in text.split("\n")[:-1]:
            entry = json.loads(line)
            if "begin" in entry:
                begun = tuple(entry["begin"][:2]), entry["begin"][2]
                self.allowed.setdefault(begun[0], {None}).add(begun[1])
            else:
                if not entry["done"]:
                    raise Failure(f"the call on {begun} did not answer success: {line}")
                self.allowed[begun[0]] = {begun[1]}
                self.acknowledged += 1
                begun = None
        self.killed_inside += begun is not None

    def compare(self, state):
        """The rows must be as acknowledged."""
        found = {("file", row[1].decode()): row[3].decode() for row in state["tMFile"]}
        found |= {("bookmark", row[2].decode()): row[1].decode() for row in state["tBFile"]}
        found |= {("item", row[2].decode()): row[3].decode("utf-8", "replace") for row in state["tPimItem"]}
        phones = {row[1].decode(): (row[0], row[3].decode()) for row in state["tPhone"]}
        found |= {("phone", imei): name for imei, (_, name) in phones.items()}
        if len(phones) != len(state["tPhone"]):
            raise Failure("a phone is there twice")
        for key, values in self.allowed.items():
            if found.get(key) not in values:
                raise Failure(f"{key}: {found.get(key)!r} in the database, acknowledged {values}")
            if key[0] == "phone" and values == {"new"}:
                chosen = sum(1 for row in state["tSyncContents"] if row[0] == phones[key[1]][0])
                if chosen != MAIN_FOLDERS:
                    raise Failure(f"{key}: {chosen} main folders to choose instead of {MAIN_FOLDERS}")
        if len(state["tLibMainFolder"]) != MAIN_FOLDERS:
            raise Failure(f"{len(state['tLibMainFolder'])} main folders instead of {MAIN_FOLDERS}")
