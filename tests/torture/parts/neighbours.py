"""Neighbours: threads in processes, processes that fork, signals, loading and unloading beside others, and many loads
at once.

Each process keeps a ledger of the rows that were acknowledged, and replaces and reads a list that all share. Nobody
crashes, hangs or is refused; all acknowledged rows are there; and the shared list is always one caller's whole one,
which shows that no two calls were ever inside at once.
"""

import functools
import os
import random
import signal
import sqlite3
import threading
import time

import calls
import namespaces
from bench import Part
from children import Failure
from crowd import Neighbour, missing, run_threads, together
from database import is_complete
from loaded import open_files
from native import Native

LIMIT = 120       # seconds, against hanging only
LOADS_AT_ONCE = 200
LOADS = 10000     # of one process, beside others that call; in the short form fewer
LOADS_SHORT = 300
LONG, SHORT = 30, 8   # rounds of each thread
def _storm(process, number):
    """Signals as fast as they go, until the process is gone."""
    try:
        while True:
            os.kill(process, number)
            time.sleep(0.0001)
    except ProcessLookupError:
        pass


class Neighbours(Part):
    name = "neighbours"
    share = 3
    plants = ("no common lock", "a lost row", "a crash", "a hang")

    def trials(self):
        self.bench.hot  # made here, for the workers to share
        self.bench.image
        fixed = ["loads at once/missing", "loads at once/good", "loads at once/journal"]
        fixed += [f"signals/{name}" for name in ("alarm", "alarm, restarting", "child", "child, restarting")]
        fixed += ["loading and unloading/beside callers"]
        first = self.bench.seed * 1000
        by_chance = [f"{kind}/{number}" for number in range(first, first + 1000) for kind in ("crowd", "fork")]
        return by_chance[:2] + fixed + by_chance[2:]

    def row(self, trial):
        return {"crowd": "threads in processes", "fork": "processes that fork", "signals": "signals",
                "loads at once": f"{LOADS_AT_ONCE} loads at once",
                "loading and unloading": "loading and unloading"}[trial.partition("/")[0]]

    def work(self, place, trial):
        """The acknowledged rows of a trial."""
        kind, _, what = trial.partition("/")
        return getattr(self, "_" + kind.replace(" ", "_"))(place, what)

    def run(self, place, trial):
        self.place = place
        if namespaces.available():
            namespaces.own_memory()  # of which nothing is left that an earlier trial did to it
        place.reset(self.bench.image)
        for name in os.listdir(place.runtime):
            os.unlink(os.path.join(place.runtime, name))
        acknowledged = self.work(place, trial)
        state = place.state()
        lost = missing(state, acknowledged)
        if lost:
            raise Failure(f"{len(lost)} of {len(acknowledged)} acknowledged rows are gone, the first is {lost[0]}")
        if not is_complete(state):
            raise Failure("the database is not complete")

    # ---- what processes do

    @property
    def rounds(self):
        return SHORT if self.bench.short or self.bench.plant else LONG

    def process(self, number, threads, rounds=None, each_round=None):
        """The work of one process that loads the library and calls it from its threads."""
        def work():
            self._plant_here(number)
            Native(self.bench.library)  # loaded once, by the first thread
            ledger = run_threads(self.bench.library, f"p{number}", threads, rounds or self.rounds, each_round)
            if self.bench.plant == "a lost row" and number == 1:
                self._lose(ledger[-1])
            return ledger
        return work

    def _lose(self, path):
        connection = sqlite3.connect(self.place.database, isolation_level=None, timeout=30)
        connection.execute("DELETE FROM tMFile WHERE [Path] = ?", (path,))
        connection.close()

    def _plant_here(self, number):
        plant = self.bench.plant
        if plant == "no common lock":
            namespaces.own_memory()
        elif plant == "a crash" and number == 1:
            os.kill(os.getpid(), signal.SIGSEGV)
        elif plant == "a hang" and number == 1:
            signal.pause()

    def collect(self, works, limit=LIMIT, started=None):
        """All ledgers in one; any process that did not come through is a failure."""
        endings = together(works, 15 if self.bench.plant else limit, started)
        return [path for ending in endings for path in ending.expect_value() or []]

    # ---- trials

    def _crowd(self, place, what):
        return self.collect([self.process(number, 8) for number in range(4)])

    def _fork(self, place, what):
        """A process forks while its threads call; child and grandchild call as well, as it goes on."""
        generator = random.Random(what)
        pauses = [generator.random() * 0.02 for _ in range(4)]
        quiet = generator.random() < 0.25  # nobody calls while it forks

        def descendant(tag):
            Neighbour(self.bench.library, "before").look()
            grandchild = functools.partial(run_threads, self.bench.library, tag + "'", 1, 3)
            return run_threads(self.bench.library, tag, 2, 3) + self.collect([grandchild], LIMIT / 4)

        def parent():
            self._plant_here(1)
            neighbour = Neighbour(self.bench.library, "first")
            neighbour.round(0)
            ledger, failures = [], []

            def threads():
                try:
                    ledger.extend(run_threads(self.bench.library, "parent", 4, self.rounds))
                except BaseException as failure:
                    failures.append(failure)

            calling = threading.Thread(target=threads)
            if not quiet:
                calling.start()
            for number, pause in enumerate(pauses):
                time.sleep(pause)
                ledger.extend(self.collect([functools.partial(descendant, f"child{number}")], LIMIT / 2))
                neighbour.round(number + 1)
            if quiet:
                calling.start()
            calling.join()
            if failures:
                raise failures[0]
            return ledger + neighbour.acknowledged

        return self.collect([parent, self.process(2, 1)])

    def _signals(self, place, what):
        """Every call of the system is interrupted, with and without being taken up again by itself."""
        kind, _, restarting = what.partition(", ")
        number = signal.SIGALRM if kind == "alarm" else signal.SIGCHLD

        def stormed(name, work):
            def run():
                signal.signal(number, lambda *_: None)
                signal.siginterrupt(number, not restarting)
                if kind == "alarm":
                    signal.setitimer(signal.ITIMER_REAL, 0.0003, 0.0003)
                    return work()
                target = os.getpid()
                sender = os.fork()
                if sender == 0:
                    _storm(target, number)
                    os._exit(0)
                try:
                    return work()
                finally:
                    os.kill(sender, signal.SIGKILL)
            return run

        return self.collect([stormed(str(at), self.process(at, 2)) for at in range(3)])

    def _loading_and_unloading(self, place, what):
        times = LOADS_SHORT if self.bench.short or self.bench.plant else LOADS
        reading, writing = os.pipe()

        def loading():
            os.close(reading)
            before = open_files()
            for _ in range(times):
                library = Native(self.bench.library)
                if library.call("DB_Open", ()) != 0:
                    raise Failure("the library is loaded beside callers, and its database is not open")
                library.unload()
            if "KESTA_DB" in open("/proc/self/maps", encoding="utf-8").read():
                raise Failure("the library is still there after its unloading")
            if open_files() != before:
                raise Failure(f"descriptors stay: {sorted(set(open_files().items()) ^ set(before.items()))}")

        def calling(number):
            def work():
                os.close(writing)
                self._plant_here(number)
                neighbour, at = Neighbour(self.bench.library, f"beside{number}"), 0
                os.set_blocking(reading, False)
                while True:  # until the loading process is done
                    neighbour.round(at)
                    at += 1
                    try:
                        if os.read(reading, 1) == b"":
                            return neighbour.acknowledged
                    except BlockingIOError:
                        pass
            return work

        works = [loading, calling(1), calling(2)]
        try:
            return self.collect(works, LIMIT * 5, lambda: os.close(writing))
        finally:
            os.close(reading)

    def _loads_at_once(self, place, what):
        if what == "missing":
            place.reset()
        elif what == "journal":
            place.reset(*self.bench.hot)
        reading, writing = os.pipe()

        def load(number):
            def work():
                os.close(writing)
                os.read(reading, 1)  # until all are there
                self._plant_here(number)
                library = Native(self.bench.library)
                answer = library.call("DB_Open", ())
                if answer != 0:
                    raise Failure(f"DB_Open answers {answer}")
                if library.call("DB_LIB_PhoneDetected", (f"phone{number}", "Phone")) < 1:
                    raise Failure("a phone could not be registered")
            return work

        try:
            self.collect([load(number) for number in range(LOADS_AT_ONCE)], LIMIT, lambda: os.close(writing))
        finally:
            os.close(reading)
        phones = {row[1] for row in place.state()["tPhone"]}
        gone = [number for number in range(LOADS_AT_ONCE) if f"phone{number}".encode() not in phones]
        if gone:
            raise Failure(f"{len(gone)} registered phones are gone")
        if what != "missing" and calls.IMEI.encode() not in phones:
            raise Failure("the phone of before is gone")
        return []
