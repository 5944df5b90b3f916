"""kill -9 before, after and in the middle of every writing call, of every export and of loading.

The next process loads the library, gets the lock that the dead one held, and finds the rows as after one of the call's
transactions, or a complete fresh file where the dead process was making one.
"""

import random

import calls
from bench import Part
from children import Failure, in_child
from database import difference, outside
from interposer import FILES, KINDS, WRITING, kill, watch
from loaded import Loaded
from profiles import Profiles
from starts import KEPT, STARTS, expect_tidy, prepare

SETTINGS = ("fresh", "journal")
LOADING = "loading"


class Kills(Part):
    name = "kill"
    share = 2
    plants = ("lose-writes-of-journal",)

    def __init__(self, bench):
        super().__init__(bench)
        self.profiles = Profiles(bench)
        self.loading = {}

    def trials(self):
        """sample/setting/number-kind/when, and loading/start/number-kind/when."""
        self.bench.hot, self.bench.fresh  # made here, for the workers to share
        points = []
        for sample, setting in self.profiles.pairs(calls.writing_samples(), SETTINGS):
            points += self._points(f"{sample}/{setting}", self.profiles.of(sample, setting).kinds)
        for start in STARTS:
            if start not in self.loading:
                self.loading[start] = self._kinds_of_loading(start)
            points += self._points(f"{LOADING}/{start}", self.loading[start])
        random.Random(self.bench.seed).shuffle(points)
        return points

    @staticmethod
    def _points(head, kinds):
        writing = [kind for kind in kinds if WRITING >> KINDS.index(kind) & 1]
        for number, kind in enumerate(writing):
            for when in ("before", "middle", "after") if kind == "write" else ("before", "after"):
                yield f"{head}/{number}-{kind}/{when}"

    def _kinds_of_loading(self, start):
        place = self.bench.place
        prepare(self.bench, place, start)

        def work():
            place.enter()
            Loaded(self.bench, self.bench.library, watch(FILES))
            return self.bench.interposer.kinds()

        return in_child(work).expect_value()

    def row(self, trial):
        head, setting, *_ = trial.split("/")
        if head == LOADING:
            return f"kill -9 in loading, {setting}"
        return f"kill -9 in calls{' beside a journal' if setting == 'journal' else ''}"

    def run(self, place, trial):
        head, setting, number, when = trial.split("/")
        plan = kill(WRITING, int(number.partition("-")[0]), when)
        if head == LOADING:
            prepare(self.bench, place, setting)
            self._kill(lambda: Loaded(self.bench, self.bench.library, plan))
            self._expect_start(place, setting, setting in KEPT)
            self._expect_loaded(place, setting)
            return
        place.reset(self.bench.image)

        def work():
            library = self.profiles.prepared(place, setting)
            if self.bench.plant:
                self.bench.interposer.lies(lose_writes_of="-journal")
            library.planned(plan, *calls.sample(head))

        self._kill(work)
        self._expect_start(place, "good", known=True)
        states = self.profiles.of(head, setting).states
        state = place.state()
        if state not in states:
            raise Failure(f"the rows are of none of the call's transactions: {difference(state, states[0])}; " +
                          f"{outside(state, states, self.bench.columns)}")

    @staticmethod
    def _kill(work):
        ending = in_child(work)
        if not ending.killed:
            ending.expect_value()
            raise Failure("the process was not killed: the call took another way than in its profile")

    def _expect_start(self, place, start, known):
        def work():
            library = Loaded(self.bench, self.bench.library)
            answer = library.call("DB_Open", ())
            if answer != 0:
                raise Failure(f"the next start answers {answer}")
            if known and library.call("DB_LIB_PhoneDetected", (calls.IMEI, "again")) != 1:
                raise Failure("the next process does not know the phone any more")
            library.unload()

        in_child(work).expect_value()
        expect_tidy(place, Failure, start)

    def _expect_loaded(self, place, start):
        state = place.state()
        wanted = self.bench.before if start in KEPT else self.bench.fresh
        if state != wanted:
            raise Failure(f"after the next start: {difference(state, wanted)}")
