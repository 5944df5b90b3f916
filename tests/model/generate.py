"""Random sequences of steps. A sequence depends on its seed and the exports at hand alone, so it can be shrunk."""

import random as random_module

import bursts
import disturb
import pools
from pools import IMEIS, LIMITS, PATHS
from records import EXPORTS, FIELDS

SLOTS = 2
NULL_POINTER = 0.01
LONG_TEXT = 0.006

# Exports that prepare the ground for the others are called more often.
WEIGHTS = {"AddFolder": 5, "SetAddedFile": 5, "PhoneDetected": 6, "SetDeletedFolder": 0.5, "ClearAll": 0.8,
           "ClearSyncHistory": 0.3, "GetSyncedFiles": 2, "GetFolders": 2, "AddPlaylist": 4, "SetAddedMark": 3,
           "AddBackup": 4, "AddItem": 4, "SaveLog": 2, "Open": 0.3, "Close": 0.3, "SetPhoneSetting": 3,
           "DeleteFolder": 0.5}


def weight(name):
    family, suffix = name.split("_", 2)[1], name.rsplit("_", 1)[1]
    base = WEIGHTS.get(suffix, 1)
    if name == "DB_PIM_AddFolder":
        return 5
    return base * {"LIB": 1.6, "DOCUMENT": 0.7, "VIDEO": 0.7, "GALLERY": 2, "PLAYERMUSIC": 1.5}.get(family, 1)


class Generator:
    def __init__(self, seed, exports):
        self.random = random_module.Random(seed)
        self.exports = sorted(name for name in EXPORTS if name in exports)
        self.weights = [weight(name) for name in self.exports]
        # A run keeps to few phones and paths, and some runs leave whole families alone.
        if self.random.random() < 0.5:
            families = sorted({name.split("_")[1] for name in self.exports})
            kept = set(self.random.sample(families, max(2, len(families) // 3))) | {"LIB"}
            self.weights = [value if name.split("_")[1] in kept else 0
                            for name, value in zip(self.exports, self.weights)]
        self.disturbing = self.random.choice([0.0, 0.05, 0.05, 0.15])

    def steps(self, count):
        steps = [("call", "DB_LIB_PhoneDetected", (imei, "Phone")) for imei in IMEIS[:3]]
        repairs = []
        if self.random.random() < 0.6:
            steps.append(("sql", [disturb.CREATE_BACKUPS]))
        while len(steps) < count:
            due = [repair for left, repair in repairs if left <= 0]
            repairs = [(left - 1, repair) for left, repair in repairs if left > 0]
            for repair in due:
                steps.append(("sql", repair))
            if self.random.random() < self.disturbing:
                statements, repair = disturb.choose(self.random)
                steps.append(("sql", statements))
                if repair:
                    repairs.append((self.random.randrange(3, 40), repair))
            elif self.random.random() < 0.02:
                steps.append(("check",))
            elif self.random.random() < 0.02:
                steps += bursts.burst(self.random, self.exports)
            elif self.random.random() < 0.02:
                steps.append(self.prime())
            else:
                steps.append(self.call())
        return steps + [("sql", repair) for _, repair in repairs]

    def prime(self):
        kind = self.random.choice(["FolderRecord", "SyncedFileRecord", "BookmarkRecord"])
        fields = {field: self.value(f"rec:{kind}", field, form) for field, form in FIELDS[kind]
                  if form in ("i32", "i64", "date")}
        choices = [(f"rec:{kind}", fields), ("outint", {"value": pools.number(self.random)}),
                   ("outdate", {"value": self.random.choice(pools.DATES)}),
                   ("outlog", {"Type": self.random.choice(pools.TYPES)}), ("outnames", {})]
        lists = sorted({form for name in self.exports for form in EXPORTS[name] if form.startswith("list:")})
        if lists:
            choices += [(self.random.choice(lists), {"Count": 7})] * 2
        form, values = self.random.choice(choices)
        if form == "outnames":
            return "release", self.random.randrange(SLOTS)
        return "prime", form, self.random.randrange(SLOTS), values

    def value(self, form, field, kind):
        return pools.field_value(self.random, form.partition(":")[2], field, kind)

    def call(self):
        name = self.random.choices(self.exports, self.weights)[0]
        suffix = name.rsplit("_", 1)[1]
        args = [self.argument(name, i, form) for i, form in enumerate(EXPORTS[name])]
        if self.random.random() < LONG_TEXT and args:
            self.lengthen(args, name, suffix)
        if name == "DB_LIB_GetSDType" and args[1] is not None:
            args[2] = 1 - args[1]  # Two places of their own.
        return "call", name, tuple(args)

    def lengthen(self, args, name, suffix):
        """Makes one text so long that the statement is about as long as it may be."""
        places = [i for i, form in enumerate(EXPORTS[name]) if form == "text" and i > 0 or form.startswith("in")]
        if suffix in ("GetSDType", "GetLastSyncTime", "SetLastSyncTime") or not places:
            places = [i for i, form in enumerate(EXPORTS[name]) if form == "text"]
        if not places:
            return
        i = self.random.choice(places)
        text = pools.long_text(self.random, suffix if suffix in LIMITS else "SetFolderSelected")
        if isinstance(args[i], dict):
            fields = [field for field, value in args[i].items() if isinstance(value, str)]
            if fields:
                args[i][self.random.choice(fields)] = text
        elif EXPORTS[name][i] == "text":
            args[i] = text
        if args[0] is not None and EXPORTS[name][0] == "text" and i != 0:
            args[0] = "351111"

    def argument(self, name, i, form):
        random = self.random
        head, _, kind = form.partition(":")
        if form not in ("text", "i32") and random.random() < NULL_POINTER:
            return None
        if form == "text":
            return self.text(name, i)
        if form == "i32":
            return self.number(name, i)
        if head in ("in", "inout"):
            return pools.record(random, kind)
        if form == "date":
            return random.choice(pools.DATES)
        if form == "names":
            return [pools.text_of(random, PATHS) for _ in range(random.randrange(5))]
        if form == "log":
            return {"Type": random.choice(pools.TYPES),
                    "Items": [pools.record(random, "PimLogItem") for _ in range(random.randrange(4))]}
        if form == "slot":
            return [pools.text_of(random, pools.NAMES)]
        return random.randrange(SLOTS)

    def text(self, name, i):
        random = self.random
        if name.startswith("DB_PIM_"):
            pool = pools.ITEM_IDS if name == "DB_PIM_DeleteItem" else pools.PIM_PATHS if name == "DB_PIM_AddItem" else \
                pools.PIM_IDS
            if name != "DB_PIM_GetFolder" and random.random() < 0.5:
                return random.choice(["", None])
            return pools.text_of(random, pool, 4)
        if i == 0 and name != "DB_BACKUP_FileExist":
            return pools.text_of(random, IMEIS)
        if name in ("DB_LIB_PhoneDetected", "DB_PIMLOG_SetPimProfile"):
            return pools.text_of(random, pools.NAMES)
        return pools.text_of(random, PATHS, 4)

    def number(self, name, i):
        random = self.random
        if name.startswith("DB_PIM"):
            return random.choice(pools.TYPES if i != 3 and (name, i) != ("DB_PIM_ClearAll", 1) else [0, 1])
        if name.startswith("DB_LIB_") and "Selected" in name and i == 1:
            return random.choice(pools.FOLDER_IDS)
        if "Selected" in name or "Deleted" in name:
            return random.choice(pools.FLAGS)
        return pools.number(random)
