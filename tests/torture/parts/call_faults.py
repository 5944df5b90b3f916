"""Every allocation and every file call of every export fails once, for good, or half, on a good file and with the
journal of a killed process beside it.

After each: no crash, no hang, no descriptor or lock left, the next call works, the library unloads, the file is there
and valid, and its rows are those before the call, those after it, or what some of its statements leave. A call that
answers as without the fault must have done what it does without the fault, except for what contract.py lists.
"""

import os

import calls
from bench import Part
from children import Failure, in_child
from contract import judge
from fault_space import Mixed, plan_of
from loaded import held_locks, open_files
from profiles import SETTINGS, Profiles

MOST = 5000  # faults of one call in one setting


class CallFaults(Part):
    name = "faults"
    share = 5
    plants = ("lose-writes", "leak-file", "hang", "crash", "delete-database", "damage-database")

    def __init__(self, bench):
        super().__init__(bench)
        self.profiles = Profiles(bench)

    def trials(self):
        """sample/setting/files or memory/number/error/once or sticky, so mixed that every export has its turn early."""
        self.bench.hot  # made here, for the workers to share
        spaces = [(f"{sample}/{setting}", self.profiles.of(sample, setting).faults)
                  for sample, setting in self.profiles.pairs(calls.sample_names(), SETTINGS)]
        return Mixed(self.bench.seed, spaces, MOST)

    def row(self, trial):
        _, setting, what, *_ = trial.split("/")
        beside = " beside a journal" if setting == "journal" else ""
        return f"{what} fail in calls{beside}" if what == "files" else f"{what} fails in calls{beside}"

    def run(self, place, trial):
        sample, setting, name = trial.split("/", 2)
        export, args = calls.sample(sample)
        profile = self.profiles.of(sample, setting)
        planted = self.bench.plant or "none"
        plan = plan_of(name, planted if planted != "lose-writes" else "none")
        place.reset(self.bench.image)

        def work():
            outside_library = open_files()
            library = self.profiles.prepared(place, setting)
            before = open_files()
            if planted == "lose-writes":
                self.bench.interposer.lies(lose_writes_of=".s3db")
            result = library.planned(plan, export, args)
            struck = library.struck
            self.bench.interposer.lies()
            outputs = library.outputs(export, args)
            if open_files() != before:
                raise Failure(f"answers {result} and leaves other descriptors: {_new(open_files(), before)}")
            if not os.path.exists(place.database):
                raise Failure(f"answers {result}, and the database is gone")
            again = library.call("DB_LIB_PhoneDetected", (calls.IMEI, "again"))
            if again != 1:
                raise Failure(f"answers {result}, and the next call {again} instead of the phone's number")
            if held_locks(place.database):
                raise Failure(f"answers {result}, and a lock stays on the file")
            library.unload()
            if open_files() != outside_library:
                raise Failure(f"unloading leaves descriptors: {_new(open_files(), outside_library)}")
            return result, outputs, struck

        result, outputs, struck = in_child(work).expect_value()
        if not struck:
            raise Failure("the fault was not reached: the call took another way than in its profile")
        return judge(export, profile, result, outputs, place.state(), self.bench.columns)


def _new(found, before):
    return sorted(set(found.items()) ^ set(before.items()))

