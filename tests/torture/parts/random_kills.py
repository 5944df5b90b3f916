"""Several processes write, and are killed at random moments and replaced, beginning with the first start of all.

In the end every acknowledged row is there, none twice, and the library works. The moments are of the clock: a trial
that is run again has the same calls, but is killed elsewhere.
"""

import json
import os
import random
import signal
import time

import calls
from bench import Part
from children import Failure, in_child
from ledger import Ledger, Writer
from loaded import Loaded
from starts import STARTS, expect_tidy, prepare

WRITERS = 3
KILLS = 12
LONGEST = 0.03  # seconds between two kills
TRIALS = 100000
TRIES = 1000


class RandomKills(Part):
    name = "ledger"
    share = 2
    plants = ("acknowledge-early", "lose-writes-of-journal")

    def trials(self):
        self.bench.hot  # made here, for the workers to share
        return [f"{STARTS[number % len(STARTS)]}/{number}" for number in range(TRIALS)]

    def row(self, trial):
        return f"kill -9 at random among {WRITERS} processes"

    def run(self, place, trial):
        start, number = trial.split("/")
        generator = random.Random(f"{self.bench.seed} {number}")
        prepare(self.bench, place, start)
        writers, ledger = {}, Ledger()
        names = iter(range(1 << 30))
        try:
            for _ in range(WRITERS):
                self._start(place, writers, f"w{next(names)}", generator.random())
            for _ in range(KILLS):
                time.sleep(generator.uniform(0, LONGEST))
                self._kill(writers, generator.choice(sorted(writers)), ledger)
                self._start(place, writers, f"w{next(names)}", generator.random())
        finally:
            for process in list(writers):
                self._kill(writers, process, ledger)
        self._expect_working(place, start)
        ledger.compare(place.state())
        return "with calls that were killed in the middle" if ledger.killed_inside else None

    def _start(self, place, writers, name, seed):
        path = os.path.join(place.root, "ledger")
        file = open(path, "w+b")  # not a pipe: it must never keep a writer waiting
        os.unlink(path)
        process = os.fork()
        if process == 0:
            try:
                self._write(name, seed, file.fileno())
            except BaseException as error:
                os.write(file.fileno(), (json.dumps({"done": False, "error": repr(error)}) + "\n").encode())
            os._exit(0)
        writers[process] = file

    def _write(self, name, seed, target):
        def note(entry):
            os.write(target, (json.dumps(entry) + "\n").encode())

        library = Loaded(self.bench, self.bench.library)
        if self.bench.plant == "lose-writes-of-journal":
            self.bench.interposer.lies(lose_writes_of="-journal")
        self._open(library)
        if library.call("DB_LIB_PhoneDetected", (calls.IMEI, "First")) != 1:
            raise Failure("the first phone has another number")
        writer = Writer(random.Random(seed), name)
        while True:
            line, export, args, success = writer.next()
            note({"begin": line})
            if self.bench.plant == "acknowledge-early":
                note({"done": True})
                library.call(export, args)
                continue
            answer = library.call(export, args)
            note({"done": answer > 0 if success is None else answer == success, "answer": answer, "of": export})

    @staticmethod
    def _open(library):
        """A process that is just dying holds the file for some moments more, and loading does not wait for it."""
        for _ in range(TRIES):
            if library.call("DB_Open", ()) == 0:
                return
            time.sleep(0.01)
        raise Failure("the database cannot be opened")

    @staticmethod
    def _kill(writers, process, ledger):
        os.kill(process, signal.SIGKILL)
        _, status = os.waitpid(process, 0)
        with writers.pop(process) as file:
            file.seek(0)
            ledger.take(file.read().decode())
        if os.WIFSIGNALED(status) and os.WTERMSIG(status) != signal.SIGKILL:
            raise Failure(f"a writer crashes: {signal.Signals(os.WTERMSIG(status)).name}")

    def _expect_working(self, place, start):
        def work():
            library = Loaded(self.bench, self.bench.library)
            self._open(library)
            if library.call("DB_LIB_PhoneDetected", (calls.IMEI, "First")) != 1:
                raise Failure("the first phone has another number")
            library.unload()

        in_child(work).expect_value()
        expect_tidy(place, Failure, start)
