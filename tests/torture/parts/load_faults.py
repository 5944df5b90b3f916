"""Every allocation and every file call of loading the library fails: on a good file, with a journal beside it, with no
file, with a file of another version, and with none of the folders.

After each: no crash, no hang, no descriptor or lock left. A good file is the very same file with the same rows. An
open database is complete. Once the fault is over, DB_Open opens it.
"""

import os

import calls
from bench import Part
from children import Failure, in_child
from database import difference, is_complete
from fault_space import FaultSpace, Mixed, plan_of
from interposer import FILES, MEMORY, watch
from loaded import Loaded, NotLoaded, held_locks, open_files
from starts import KEPT, LOCK_FILE, STARTS, expect_tidy, prepare

MOST = 20000  # faults of one start


class LoadFaults(Part):
    name = "load"
    share = 2
    plants = ("delete-database", "leak-file", "hang", "crash", "damage-database")

    def __init__(self, bench):
        super().__init__(bench)
        self.spaces = {}

    def trials(self):
        self.bench.hot  # made here, for the workers to share
        if not self.spaces:
            self.spaces = {start: FaultSpace(self._kinds(start)) for start in STARTS}
        return Mixed(self.bench.seed, self.spaces.items(), MOST)

    def _kinds(self, start):
        place = self.bench.place
        prepare(self.bench, place, start)

        def work():
            place.enter()
            Loaded(self.bench, self.bench.library, watch(FILES | MEMORY))
            return self.bench.interposer.kinds()

        return in_child(work).expect_value()

    def row(self, trial):
        start, what, *_ = trial.split("/")
        return f"{what} fail{'' if what == 'files' else 's'} in loading, {start}"

    def run(self, place, trial):
        start, name = trial.split("/", 1)
        prepare(self.bench, place, start)
        inode = os.stat(place.database).st_ino if start in KEPT else None
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
                self._expect_whole(place, start, "the database is open")
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
        # Neither the mutex's memory nor the runtime folder can be looked at when that fails for good.
        unseen = "-stat/" in name and name.endswith("/sticky")
        expect_tidy(place, Failure, start, *([LOCK_FILE] if unseen else []))
        if start in KEPT:
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
    def _expect_whole(place, start, when):
        state = place.state()
        if start not in KEPT and not is_complete(state):
            raise Failure(f"{when}, but incomplete: {len(state.get('tLibMainFolder', []))} main folders")
