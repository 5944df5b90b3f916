#!/usr/bin/env python3
"""Compares libKESTA_DB.so with the model on random sequences of calls. See README.md."""

import argparse
import os
import pickle
import resource
import shutil
import signal
import sys
import tempfile
import time
import traceback

import records
import startup
from generate import Generator
from side_by_side import Difference, SideBySide

CHECK_EVERY = 50
CLOSED_EVERY = 10  # Every tenth run begins with a closed database and goes on with one without tables.
TIME_LIMIT = 300
SHRINK_SECONDS = 45
SHOWN_STEPS = 30


def in_child(work):
    """Runs work() in a process of its own: the library keeps state for as long as it is loaded, and may crash."""
    reading, writing = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(reading)
        signal.alarm(TIME_LIMIT)
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        try:
            answer = work()
        except BaseException:
            answer = ("broken", traceback.format_exc())
        with os.fdopen(writing, "wb") as pipe:
            pickle.dump(answer, pipe)
        os._exit(0)
    os.close(writing)
    with os.fdopen(reading, "rb") as pipe:
        raw = pipe.read()
    _, status = os.waitpid(child, 0)
    if raw:
        return pickle.loads(raw)
    return "crash", f"the process ended with status {status} (signal {status & 0x7F})"


def private_folder():
    base = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    return tempfile.mkdtemp(prefix="kesta-model-", dir=base)


def run_steps(library, steps, closed=False):
    """None, or (number of the step that differs, text)."""
    folder = private_folder()
    progress = os.path.join(folder, "progress")

    def work():
        position = -1
        try:
            sides = SideBySide(folder, library, closed)
            with open(progress, "w", encoding="ascii") as note:
                for position, step in enumerate(steps):
                    os.pwrite(note.fileno(), f"{position:9}".encode(), 0)
                    sides.step(step)
                    if position % CHECK_EVERY == CHECK_EVERY - 1:
                        sides.check_tables()
            position = len(steps)
            sides.finish()
        except Difference as difference:
            return position, str(difference)
        return None

    try:
        answer = in_child(work)
        if answer and answer[0] in ("crash", "broken"):
            reached = open(progress, encoding="ascii").read().strip() if os.path.exists(progress) else "-1"
            answer = int(reached or -1), f"{answer[0]}: {answer[1]}"
        return answer
    finally:
        shutil.rmtree(folder)


def shrink(library, steps, found, closed):
    """Leaves out steps as long as a difference remains that is of the same kind."""
    deadline = time.monotonic() + SHRINK_SECONDS
    kind = found[1].split(":")[0]
    name = steps[found[0]][1] if 0 <= found[0] < len(steps) and steps[found[0]][0] == "call" else None

    def same(other, other_steps):
        if other is None or other[1].split(":")[0] != kind:
            return False
        return name is None or (0 <= other[0] < len(other_steps) and other_steps[other[0]][1:2] == (name,))

    steps = steps[:found[0] + 1]
    size = max(1, len(steps) // 2)
    while size and time.monotonic() < deadline:
        position = max(0, len(steps) - size)
        while time.monotonic() < deadline:
            candidate = steps[:position] + steps[position + size:]
            other = run_steps(library, candidate, closed)
            if same(other, candidate):
                steps, found = candidate[:other[0] + 1], other
            if position == 0:
                break
            position = max(0, min(position, len(steps)) - size)
        size //= 2
    return steps, found


def report(library, seed, steps, found, closed):
    print(f"DIFFERENCE seed {seed}, step {found[0]} of {len(steps)}\n  {found[1]}", flush=True)
    if found[1].startswith("broken"):
        sys.exit("the comparison itself is broken")
    again = run_steps(library, steps, closed)
    if again is None:
        # Lines are dropped when the viewer gets no processor for 100 ms; a real difference comes again.
        again = run_steps(library, steps, closed)
    if again is None:
        print("  (did not come again in two further runs)\n", flush=True)
        return
    shorter, last = shrink(library, steps, again, closed)
    print(f"  shrunk to {len(shorter)} steps" + (", the last of them:" if len(shorter) > SHOWN_STEPS else ":"))
    for step in shorter[-SHOWN_STEPS:]:
        text = repr(step)
        print("    " + (text if len(text) < 1500 else text[:700] + " ... " + text[-700:]))
    print(f"  {last[1]}\n", flush=True)


def exports_of(library):
    def work():
        import ctypes
        os.environ["XDG_DATA_HOME"] = os.environ["XDG_RUNTIME_DIR"] = folder
        loaded = ctypes.CDLL(library)
        return [name for name in records.EXPORTS if getattr(loaded, name, None) is not None]

    folder = private_folder()
    try:
        answer = in_child(work)
    finally:
        shutil.rmtree(folder)
    if answer and answer[0] in ("crash", "broken"):
        sys.exit(f"the library cannot be loaded: {answer[1]}")
    return answer


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--library", required=True, help="path of libKESTA_DB.so")
    parser.add_argument("--seed", type=int, default=1, help="seed of the first run")
    parser.add_argument("--steps", type=int, default=2000, help="steps of a run")
    parser.add_argument("--runs", type=int, default=10, help="runs, each with the next seed")
    parser.add_argument("--keep-going", action="store_true", help="go on after a difference")
    parser.add_argument("--no-startup", action="store_true", help="leave the start-up scenarios out")
    options = parser.parse_args()
    library = os.path.abspath(options.library)
    records.check_layout()
    exports = exports_of(library)
    missing = len(records.EXPORTS) - len(exports)
    print(f"{len(exports)} exports" + (f", {missing} not there yet" if missing else ""), flush=True)

    failures = 0
    if not options.no_startup:
        for name, error in startup.run_all(library, in_child, private_folder):
            failures += 1
            print(f"DIFFERENCE at start-up, {name}\n  {error}\n", flush=True)
    for seed in range(options.seed, options.seed + options.runs):
        steps = Generator(seed, exports).steps(options.steps)
        closed = seed % CLOSED_EVERY == 0
        if closed:
            steps.insert(len(steps) // 2, ("open",))
        began = time.monotonic()
        found = run_steps(library, steps, closed)
        if found is None:
            print(f"seed {seed}: {len(steps)} steps alike ({time.monotonic() - began:.1f} s)", flush=True)
            continue
        failures += 1
        report(library, seed, steps, found, closed)
        if not options.keep_going:
            break
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
