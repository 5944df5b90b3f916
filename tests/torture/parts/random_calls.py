"""Random sequences of calls with extreme arguments, under the address and undefined-behaviour sanitizers and led by
coverage: random_calls/ has the program. A trial is half a minute of it.

What a trial finds stays as an input in the build folder, which the failure names.
"""

import os
import re
import shutil
import subprocess

from bench import Part
from calls import SAMPLES
from children import Failure

SECONDS = 30
MANY = 100000
CALLS_OF_AN_INPUT = 50
BYTES_OF_A_CALL = 16
SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
_SETTINGS = ("-G", "Ninja", "-DCMAKE_C_COMPILER=clang", "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_BUILD_TYPE=Debug",
             "-DKESTA_SANITIZE=address,undefined", "-DKESTA_BUILD_TOOLS=OFF", "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g",
             "-DCMAKE_C_FLAGS_DEBUG=-O1 -g")

# Mistakes that the part must find: file, what stands there, what is planted.
PLANTED = {
    "a text of any length": ("src/core/sql_text.cpp", "NarrowText(argument, end_, room())",
                             "NarrowText(argument, end_, size_t{1} << 20)"),
    "a text released twice": ("src/core/caller_memory.cpp", "    memory = nullptr;\n", ""),
    "a list without its end": ("src/core/list.h", "rows.step() && i < room;", "rows.step() && i <= room;"),
}


class RandomCalls(Part):
    name = "calls"
    share = 2
    plants = tuple(PLANTED)

    def trials(self):
        self._plant = self.bench.plant
        self._folder = os.path.join(self.bench.build, "..", "calls")
        source = SOURCE
        if self._plant:
            self._folder += "-planted"
            source = self._planted_source()
        self._folder = os.path.abspath(self._folder)
        self._corpus = os.path.join(self.bench.root if self._plant else self._folder, "corpus")
        self._build(source)
        self._write_first_inputs()
        return [str(self.bench.seed * MANY + number) for number in range(MANY)]

    def missing(self):
        programs = ("clang++", "cmake", "ninja")
        return next((f"there is no {program}" for program in programs if not shutil.which(program)), None)

    def row(self, trial):
        return "random calls"

    def run(self, place, trial):
        place.reset()
        log = os.path.join(place.root, "log")
        found = os.path.join(self._folder, f"found-{trial}-")
        with open(log, "wb") as output:
            # Without the interposer: the program replaces the same functions.
            environment = {**os.environ, "UBSAN_OPTIONS": "print_stacktrace=1", "LD_PRELOAD": ""}
            subprocess.run([os.path.join(self._folder, "fuzz_calls"), f"-max_total_time={SECONDS}",
                            f"-max_len={1 + CALLS_OF_AN_INPUT * BYTES_OF_A_CALL}", "-timeout=25", f"-seed={trial}",
                            "-print_final_stats=1", "-use_value_profile=0", f"-artifact_prefix={found}", self._corpus],
                           stdout=output, stderr=output, env=environment, check=False)
        with open(log, encoding="utf-8", errors="replace") as lines:
            text = lines.read()
        calls = re.search(r"^calls: (\d+)$", text, flags=re.M)
        if calls:
            self._count(calls[1])
            return
        wrong = re.search(r"^(FAILED: .*|.*runtime error: .*|==\d+==ERROR: .*|SUMMARY: .*)$", text, flags=re.M)
        kept = re.search(r"Test unit written to (\S+)", text)
        raise Failure(f"{wrong[1] if wrong else text[-500:]}\n    the input: "
                      f"{os.path.join(self._folder, 'fuzz_calls')} {kept[1] if kept else '(none)'}")

    def _count(self, calls):
        """Tells how many calls all trials have made; several workers write to the file."""
        path = os.path.join(self.bench.root, "calls")
        with open(path, "a", encoding="ascii") as file:
            file.write(f"{calls}\n")
        with open(path, encoding="ascii") as file:
            print(f"  {sum(map(int, file)):,} random calls so far", flush=True)

    def _build(self, source):
        print(f"calls: building {self._folder}", flush=True)
        environment = {**os.environ, "LD_PRELOAD": ""}
        for command in (["cmake", "-S", source, "-B", self._folder, *_SETTINGS],
                        ["ninja", "-C", self._folder, "-j", str(os.cpu_count()), "fuzz_calls"]):
            done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment, text=True,
                                  errors="replace", check=False)
            if done.returncode:
                raise SystemExit(f"{done.stdout[-4000:]}\ncalls: the program could not be built")

    def _planted_source(self):
        """A copy of the sources with a mistake in it."""
        copy = os.path.abspath(self._folder + "-source")
        shutil.rmtree(copy, ignore_errors=True)
        os.makedirs(copy)
        shutil.copy(os.path.join(SOURCE, "CMakeLists.txt"), copy)
        for name in ("bindings", "cmake", "examples", "exports", "include", "packaging", "src", "tests"):
            shutil.copytree(os.path.join(SOURCE, name), os.path.join(copy, name))
        # The sources of SQLite are there already.
        os.makedirs(os.path.join(copy, "build"))
        os.symlink(os.path.join(SOURCE, "build", "_deps"), os.path.join(copy, "build", "_deps"))
        for file, _, _ in PLANTED.values():  # the one before may have been built of another text
            os.utime(os.path.join(copy, file))
        file, old, new = PLANTED[self._plant]
        path = os.path.join(copy, file)
        with open(path, encoding="utf-8") as text:
            content = text.read()
        if content.count(old) != 1:
            raise AssertionError(f"{file} has {content.count(old)} places to plant in")
        with open(path, "w", encoding="utf-8") as text:
            text.write(content.replace(old, new))
        return copy

    def _write_first_inputs(self):
        """Ordinary calls of every export, five to an input, on each of the three databases."""
        os.makedirs(self._corpus, exist_ok=True)
        for database in range(3):
            for first in range(0, len(SAMPLES), 5):
                exports = range(first, min(first + 5, len(SAMPLES)))  # an export is called by its number
                calls = b"".join(bytes([export]) + bytes(BYTES_OF_A_CALL - 1) for export in exports)
                with open(os.path.join(self._corpus, f"first-{database}-{first}"), "wb") as file:
                    file.write(bytes([database]) + calls)
