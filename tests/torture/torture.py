#!/usr/bin/env python3
"""The torture bench: makes everything around the built library fail and looks at what is left of the data.

Runs the parts one after the other, each for its share of the time, and ends with one table: test, trials, failures.
Exit code 1 when anything failed.
"""

import argparse
import gc
import os
import pickle
import random
import select
import signal
import struct
import sys
import time
from collections import Counter

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..", "model")]
sys.dont_write_bytecode = True

import calls  # noqa: E402
import interposer  # noqa: E402
from bench import Bench, Clock  # noqa: E402
from children import Failure  # noqa: E402
from parts import PARTS  # noqa: E402

SHORT_SECONDS = 240  # of all parts together
ROUNDS = 10          # of all trials until a planted fault has to show: two threads meet by chance only
SHOWN = 12           # failures of one row; the others are counted


class Row:
    def __init__(self):
        self.trials, self.failures, self.seconds = 0, 0, 0.0
        self.notes = Counter()


class Work:
    """Trials handed to worker processes, one at a time each, until they or the time run out."""

    def __init__(self, bench, part, trials, clock, jobs):
        self.bench, self.part, self.trials, self.clock, self.jobs = bench, part, iter(trials), clock, jobs
        self.begun = False

    def results(self):
        """(trial, None or what failed, None or what is worth telling), as they come."""
        workers = {}
        gc.freeze()
        for _ in range(self.jobs):
            worker = self._start()
            workers[worker[1].fileno()] = worker
        try:
            yield from self._results_of(workers)
        finally:  # the table may have seen enough
            for _, reading, writing in workers.values():
                writing.close()
                reading.close()
            for process, _, _ in workers.values():
                os.waitpid(process, 0)

    def _results_of(self, workers):
        busy = {key for key, worker in workers.items() if self._hand_out(worker)}
        while busy:
            for key in select.select(list(busy), [], [])[0]:
                worker = workers[key]
                yield self._receive(worker)
                if not self._hand_out(worker):
                    busy.discard(key)

    def _start(self):
        to_worker, from_worker = os.pipe(), os.pipe()
        place = self.bench.new_place()
        process = os.fork()
        if process == 0:
            os.close(to_worker[1])
            os.close(from_worker[0])
            signal.signal(signal.SIGTERM, signal.SIG_DFL)
            try:
                self._serve(place, os.fdopen(to_worker[0], "rb"), os.fdopen(from_worker[1], "wb"))
            finally:
                place.close()
                os._exit(0)
        os.close(to_worker[0])
        os.close(from_worker[1])
        return process, os.fdopen(from_worker[0], "rb"), os.fdopen(to_worker[1], "wb")

    def _serve(self, place, source, target):
        place.enter()
        while True:
            try:
                trial = pickle.load(source)
            except EOFError:  # the bench was ended
                return
            if trial is None:
                return
            try:
                answer = (trial, None, self.part.run(place, trial))
            except Failure as failure:
                answer = (trial, str(failure), None)
            except Exception as error:  # a mistake of the bench is no passed trial
                answer = (trial, f"the bench itself failed: {type(error).__name__}: {error}", None)
            data = pickle.dumps(answer)
            target.write(struct.pack("=Q", len(data)) + data)
            target.flush()

    def _hand_out(self, worker):
        # One at least, however late it is: a part that tries nothing shows nothing.
        trial = next(self.trials, None) if self.clock.left() > 0 or not self.begun else None
        self.begun = True
        pickle.dump(trial, worker[2])
        worker[2].flush()
        return trial is not None

    @staticmethod
    def _receive(worker):
        head = worker[1].read(8)
        if len(head) < 8:
            raise SystemExit("a worker process of the bench is gone")
        return pickle.loads(worker[1].read(struct.unpack("=Q", head)[0]))


def chosen(parts, options):
    wanted = options.part.split(",") if options.part else None
    for part in parts:
        if wanted and part.name not in wanted:
            continue
        missing = part.missing()
        if missing:
            print(f"{part.name}: left out, {missing}")
            continue
        yield part


def repeat(bench, part, trial):
    return f"./dev torture --seed {bench.seed} --part {part.name} --only '{trial}'"


def run_parts(bench, parts, options):
    """Rows by name, in order."""
    rows = {}
    # Preparing the trials is not counted: on a slow machine it would leave no time for them.
    left = SHORT_SECONDS if options.short else options.minutes * 60
    for index, part in enumerate(parts):
        trials = part.trials()
        began = start = time.monotonic()
        clock = Clock(max(1.0, left) * part.share / sum(other.share for other in parts[index:]))
        if options.only:
            trials = [trial for trial in trials if trial == options.only or trial.startswith(options.only + "/")]
        print(f"{part.name}: {len(trials)} trials are there, {clock.left():.0f} s for them", flush=True)
        shown, tried = {}, 0
        jobs = part.jobs or options.jobs
        for trial, problem, note in Work(bench, part, trials, clock, jobs).results():
            name = part.row(trial)
            row = rows.setdefault(name, Row())
            if note:
                row.notes[note] += 1
            row.trials += 1
            tried += 1
            row.seconds += time.monotonic() - start  # what passed since the result before
            start = time.monotonic()
            if problem:
                row.failures += 1
                shown[name] = shown.get(name, 0) + 1
                if shown[name] <= SHOWN or options.all:
                    print(f"  FAILED {trial}\n    {problem}\n    again: {repeat(bench, part, trial)}", flush=True)
        left -= time.monotonic() - began
        if not tried:
            print(f"{part.name}: NOTHING WAS TRIED", flush=True)
            rows[part.name] = Row()
    return rows


def prove(bench, parts, options):
    """Each part must find each fault that is planted for it, in a trial that passes without."""
    rows = {}
    for part in parts:
        for plant in part.plants:
            row = rows.setdefault(f"{part.name} finds: {plant}", Row())
            bench.plant = plant
            found = None
            known = part.trials()
            trials = (trial for _ in range(ROUNDS) for trial in known)
            results = Work(bench, part, trials, Clock(options.minutes * 60), 1).results()
            for trial, problem, _ in results:
                row.trials += 1
                if problem and not problem.startswith("the bench itself"):
                    bench.plant = None
                    without = [again for _, again, _ in Work(bench, part, [trial], Clock(60), 1).results()]
                    bench.plant = plant
                    if without == [None]:
                        found = (trial, problem)
                        break
            results.close()
            bench.plant = None
            if found:
                print(f"{part.name}: {plant} is found by {found[0]}\n    {found[1]}", flush=True)
            else:
                print(f"{part.name}: {plant} IS NOT FOUND in {row.trials} trials", flush=True)
                row.failures += 1
    return rows


def print_table(rows):
    width = max([len(name) for name in rows] + [4])
    print(f"\n{'test':{width}}  {'trials':>8}  {'failures':>8}  {'seconds':>7}")
    for name, row in rows.items():
        print(f"{name:{width}}  {row.trials:8}  {row.failures:8}  {row.seconds:7.0f}")
    for name, row in rows.items():
        for note, count in row.notes.items():
            print(f"{name}: {count} x {note}")
    total = sum(row.trials for row in rows.values()), sum(row.failures for row in rows.values())
    print(f"{'all':{width}}  {total[0]:8}  {total[1]:8}")


def main():
    parser = argparse.ArgumentParser(prog="./dev torture")
    parser.add_argument("minutes", nargs="?", type=float, default=20, help="for all parts together (20)")
    parser.add_argument("--short", action="store_true", help="the short form of each part, a few minutes in all")
    parser.add_argument("--prove", action="store_true", help="show that each part finds faults planted for it")
    parser.add_argument("--part", help="only these parts, separated by commas")
    parser.add_argument("--only", help="only this trial, or those below it")
    parser.add_argument("--seed", type=int, help="1 for the short form, else by the clock")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="workers side by side")
    parser.add_argument("--all", action="store_true", help="print every failure")
    parser.add_argument("--list", action="store_true", help="list parts and trials instead of running them")
    parser.add_argument("--check", action="store_true",
                        help="only see that the table has every export and that faults reach every call")
    parser.add_argument("--library", default="build/linux/libKESTA_DB.so")
    parser.add_argument("--interposer", default="build/linux/libkesta_torture.so")
    options = parser.parse_args()
    interposer.preload(options.interposer)
    if options.seed is None:
        options.seed = 1 if options.short or options.prove else int(time.time()) % 100000
    calls.check_table(os.path.join(HERE, "..", "..", "exports", "kesta_db.def"))
    interposer.check_covered(options.library, options.interposer)
    if options.check:
        return
    random.seed(options.seed)
    bench = Bench(options.library, options.seed, options.minutes, options.short)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # so that nothing is left behind
    try:
        parts = list(chosen([part(bench) for part in PARTS], options))
        if not parts:
            raise SystemExit("no such part")
        if options.list:
            for part in parts:
                for trial in part.trials():
                    print(f"{part.name}: {trial}")
            return
        print(f"seed {options.seed}", flush=True)
        rows = (prove if options.prove else run_parts)(bench, parts, options)
    finally:
        bench.close()
    print_table(rows)
    sys.exit(1 if any(row.failures or not row.trials for row in rows.values()) else 0)


if __name__ == "__main__":
    main()
