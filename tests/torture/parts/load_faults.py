"""Every allocation and every file call of loading the library fails: on a good file, with a journal beside it, with no
file, with a file of another version, and with none of the folders.

After each: no crash, no hang, no descriptor or lock left. A good file is the very same file with the same rows. An
open database is complete. Once the fault is over, DB_Open opens it.
"""

import os
import sqlite3

import calls
from bench import Part
from children import Failure, in_child
from database import difference, is_complete
from fault_space import FaultSpace, Mixed, plan_of
from interposer import FILES, MEMORY, watch
from loaded import Loaded, NotLoaded, held_locks, open_files

KEPT = ("good", "journal")
SETTINGS = (*KEPT, "missing", "other version", "no folders")
MOST = 20000  # faults of one setting


def old_version():
    """A database of another version, as bytes."""
    connection = sqlite3.connect(":memory:")
    connection.executescript("CREATE TABLE tVersion ([Version] INTEGER); INSERT INTO tVersion VALUES (5004);"
                             "CREATE TABLE tOld (a)")
    return connection.serialize()


class LoadFaults(Part):
    name = "load"
    share = 2
    plants = ("delete-database", "leak-file", "hang", "crash", "damage-database")

    def __init__(self, bench):
        super().__init__(bench)
        self.spaces = {}

    def prepare(self, place, setting):
        if setting == "good":
            place.reset(self.bench.image)
        elif setting == "journal":
            place.reset(*self.bench.hot)
        elif setting == "other version":
            place.reset(old_version())
        elif setting == "missing":
            place.reset(b"")
            os.unlink(place.database)
        else:
            place.reset()

    def trials(self):
        self.bench.hot  # made here, for the workers to share
        if not self.spaces:
            self.spaces = {setting: FaultSpace(self._kinds(setting)) for setting in SETTINGS}
        return Mixed(self.bench.seed, self.spaces.items(), MOST)

    def _kinds(self, setting):
        place = self.bench.place
        self.prepare(place, setting)

        def work():
            place.enter(self.bench.interposer)
            Loaded(self.bench, self.bench.library, watch(FILES | MEMORY))
            return self.bench.interposer.kinds()

        return in_child(work).expect_value()

    def row(self, trial):
        setting, what, *_ = trial.split("/")
        return f"{what} fail{'' if what == 'files' else 's'} in loading, {setting}"

    def run(self, place, trial):
        setting, name = trial.split("/", 1)
        self.prepare(place, setting)
        inode = os.stat(place.database).st_ino if setting in KEPT else None
        plan = plan_of(name, self.bench.plant or "none")

        def work():
            before = open_files()
            try:
                library = Loaded(self.bench, self.bench.library, plan)
            except NotLoaded:
                return
            if not library.struck:
                raise Failure("the fault was not reached: loading took another way than in its profile")
            self._expect_same_file(place, inode, "loading under the fault")
            if library.call("DB_LIB_MainFoldersChanged", (0,)) == 0:
                self._expect_whole(place, setting, "the database is open")
            answer = library.call("DB_Open", ())
            if answer != 0:
                raise Failure(f"DB_Open answers {answer} after the fault is over")
            self._expect_same_file(place, inode, "DB_Open after it")
            if library.call("DB_LIB_PhoneDetected", (calls.IMEI, "again")) != 1:
                raise Failure("the next call does not work")
            if held_locks(place.database):
                raise Failure("a lock stays on the file")
            library.unload()
            if open_files() != before:
                raise Failure(f"descriptors stay: {sorted(set(open_files().items()) ^ set(before.items()))}")

        in_child(work).expect_value()
        if setting in KEPT:
            self._expect_same_file(place, inode, "all")
            problem = difference(place.state(), self.bench.before)
            if problem:
                raise Failure(f"the rows are other ones: {problem}")

    @staticmethod
    def _expect_same_file(place, inode, after):
        if inode is None:
            return
        if not os.path.exists(place.database):
            raise Failure(f"after {after} the user's database is deleted")
        if os.stat(place.database).st_ino != inode:
            raise Failure(f"after {after} the user's database is replaced by another file")

    @staticmethod
    def _expect_whole(place, setting, when):
        state = place.state()
        if setting not in KEPT and not is_complete(state):
            raise Failure(f"{when}, but incomplete: {len(state.get('tLibMainFolder', []))} main folders")
