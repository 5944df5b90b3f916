#!/usr/bin/env python3
"""Plants faults into the library, one at a time, and sees whether the tests catch each of them. See README.md."""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import threading
import time

from build import Build, BuildError, ChangedBuild
from changes import ListError, check_against, read_explanations, read_lists
from testing import TestPrograms, isolation, prepared_folder

LIBRARY = "KESTA_DB"
# By the names that lists use, in the order in which they are tried for what the tests named for a change let pass.
PROGRAMS = {"statements": "kesta_statement_tests", "unit": "kesta_unit_tests", "api": "kesta_api_tests",
            "faults": "kesta_fault_tests", "process": "kesta_process_tests"}
SHORT = 12  # --short takes one change in so many
LEAST_RATE = 0.98


class Platform:
    """The unchanged build of one platform, and its tests."""

    def __init__(self, root, name, programs, isolate, lanes, settings=(), launcher=(), beside=()):
        self.programs = programs  # what passes the tests named for a change goes through all tests of these
        self.folder = root / "build" / "mutation" / name
        targets = [PROGRAMS[program] for program in programs]
        self.build = Build(root, self.folder, LIBRARY, targets, ["kesta_test_helper"], settings)
        self.tests = TestPrograms(self.build, isolate, launcher, beside)
        self.turn = threading.Semaphore(lanes)  # of so many test programs at a time
        self.named_only = False
        self.lock = threading.Lock()
        self.limits = {}

    def time_limit(self, program, pattern):
        """What the unchanged library's tests take, and a good deal more. They have to pass, and to be there."""
        with self.lock:
            mine = (program, pattern) not in self.limits
            known = self.limits.setdefault((program, pattern), concurrent.futures.Future())
        if mine:
            try:
                known.set_result(self._measure(PROGRAMS[program], pattern))
            except (BuildError, ListError) as problem:
                known.set_exception(problem)
        return known.result()

    def _measure(self, target, pattern):
        folder = prepared_folder(self.folder / "changed" / f"unchanged-{threading.get_ident()}")
        for part in pattern.split(":"):
            if not self.tests.has(target, part, folder):
                raise ListError(f"{target} has no test {part}")
        start = time.monotonic()
        with self.turn:
            failed = self.tests.run(target, pattern, folder)
        if failed:
            raise BuildError(f"{target} fails without any change: {failed}")
        shutil.rmtree(folder)
        return 30 + 4 * (time.monotonic() - start)

    def outcome(self, change, number):
        """Which test catches the change; None if none does."""
        folder = prepared_folder(self.folder / "changed" / str(number))
        changed = ChangedBuild(self.build, change, folder)
        named = set(change.tests)
        others = [(program, "*") for program in self.programs if (program, "*") not in named and not self.named_only]
        for program, pattern in [*change.tests, *others]:
            limit = self.time_limit(program, pattern)
            target = PROGRAMS[program]
            linked = changed.link(target)
            library = None if linked else changed.link(LIBRARY)  # a program has the library's objects, or loads it
            with self.turn:
                caught = self.tests.run(target, pattern, folder, linked, library, limit)
            if caught:
                shutil.rmtree(folder)
                return caught
        shutil.rmtree(folder)
        return None


def open_platforms(root, changes, jobs):
    isolate = isolation()
    if not isolate:
        print("Without name spaces of their own, which this system refuses, one test program runs at a time.")
    platforms = {}
    if any(not change.windows for change in changes):
        platforms[False] = Platform(root, "linux", list(PROGRAMS), isolate, jobs if isolate else 1)
    if any(change.windows for change in changes):
        toolchain = f"-DCMAKE_TOOLCHAIN_FILE={root / 'cmake' / 'mingw-x64.cmake'}"
        wine = root / "cmake" / "wine-run"
        subprocess.run([wine, "wineboot", "--init"], capture_output=True, check=True)
        named = {program for change in changes if change.windows for program, _ in change.tests}
        # One prefix, one application-data folder: the programs take turns.
        platforms[True] = Platform(root, "windows", [program for program in PROGRAMS if program in named], isolate, 1,
                                   [toolchain], [wine], ["KESTA_DB.dll", "kesta_test_helper.exe"])
    return platforms


def selected(changes, options):
    root = options.project
    if options.changed:
        touched = subprocess.run(["git", "-C", root, "diff", "--name-only", options.changed, "--", "src"],
                                 capture_output=True, text=True, check=True).stdout.split()
        changes = [change for change in changes if change.file in touched]
    if options.only:
        changes = [change for change in changes
                   if any(text in change.name or text in change.file for text in options.only)]
    if options.short:
        changes = [change for change in changes if not change.windows][::SHORT]
    return sorted(changes, key=lambda change: change.file.endswith(".h"))  # what compiles quickly comes first


def try_all(changes, platforms, jobs):
    """Tells the outcome of each as it comes. Returns who survived, and what was wrong with the lists."""
    survivors, problems = [], []
    told, lock = 0, threading.Lock()

    def try_one(number, change):
        nonlocal told
        start = time.monotonic()
        problem = None
        try:
            caught = platforms[change.windows].outcome(change, number)
            verdict = f"caught by {caught}" if caught else "SURVIVED"
        except (BuildError, ListError) as error:
            caught, problem = None, error
            verdict = "ERROR"
        with lock:
            told += 1
            print(f"[{told:>3}/{len(changes)}] {time.monotonic() - start:5.1f} s  {change.name}: {verdict}", flush=True)
            if problem:
                problems.append(f"{change.name}: {problem}")
            elif not caught:
                survivors.append(change)

    with concurrent.futures.ThreadPoolExecutor(jobs) as executor:
        for attempt in [executor.submit(try_one, number, change) for number, change in enumerate(changes)]:
            attempt.result()
    return survivors, problems


def print_table(changes, survivors):
    planted = collections.Counter(os.path.dirname(change.file) for change in changes)
    survived = collections.Counter(os.path.dirname(change.file) for change in survivors)
    print(f"\n{'Folder':<24}{'Planted':>9}{'Caught':>9}{'Survived':>10}")
    for folder in [*sorted(planted), "All"]:
        count = len(changes) if folder == "All" else planted[folder]
        left = len(survivors) if folder == "All" else survived[folder]
        print(f"{folder:<24}{count:>9}{count - left:>9}{left:>10}")
    print(f"Caught: {100 * (len(changes) - len(survivors)) / len(changes):.1f} %")


def judge(changes, survivors, explained, whole):
    """Prints what is wrong; whether nothing is."""
    good = True
    for change in survivors:
        known = change.name in explained
        print(f"{'Survived, as explained' if known else 'SURVIVED'}: {change.name}  ({change.file})")
        good = good and known
    for name in sorted(explained & {change.name for change in changes} - {change.name for change in survivors}):
        print(f"Caught now, the explanation can go: {name}")
    if whole and len(changes) - len(survivors) < LEAST_RATE * len(changes):
        print(f"Less than {100 * LEAST_RATE:.0f} % were caught.")
        good = False
    return good


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--short", action="store_true", help=f"a sample: the same one change of {SHORT} each time")
    parser.add_argument("--changed", metavar="REV", help="only changes in files that were touched since REV")
    parser.add_argument("--only", metavar="TEXT", action="append", help="only changes whose name or file has TEXT in it")
    parser.add_argument("--named", action="store_true",
                        help="only the tests named for a change: quicker, but what these let pass others may catch")
    parser.add_argument("--check", action="store_true", help="only check the lists against the sources")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many changes are tried at a time")
    parser.add_argument("--project", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parents[2],
                        help="the sources, with lists of their own in tests/mutation (these)")
    options = parser.parse_args()

    root = options.project.resolve()
    lists = root / "tests" / "mutation"
    everything = read_lists(lists / "changes", PROGRAMS)
    explained = read_explanations(lists / "survivors.md")
    if unknown := explained - {change.name for change in everything}:
        raise ListError(f"survivors.md explains what no list has: {', '.join(sorted(unknown))}")
    check_against(everything, root)
    changes = selected(everything, options)
    print(f"{len(everything)} changes listed, {len(changes)} to try", flush=True)
    if options.check or not changes:
        return 0

    platforms = open_platforms(root, changes, options.jobs)
    for platform in platforms.values():
        platform.named_only = options.named
    start = time.monotonic()
    survivors, problems = try_all(changes, platforms, options.jobs)
    if problems:
        raise ListError("\n".join(problems))
    print_table(changes, survivors)
    print(f"Time: {(time.monotonic() - start) / 60:.1f} minutes")
    return 0 if judge(changes, survivors, explained, len(changes) == len(everything)) else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (ListError, BuildError) as problem:
        sys.exit(f"{problem}")
