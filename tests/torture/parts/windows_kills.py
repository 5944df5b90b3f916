"""The Windows build under Wine: two processes write and are killed at random, beginning with the first start of all.

Nothing below the exports can be made to fail there: what Wine does to files does not pass through the interposer. What
is left is what the user meets: a killed process, and the next one, which must find every acknowledged row.
"""

import glob
import os
import random
import shutil
import signal
import subprocess
import time

from bench import Part
from children import Failure
from database import MAIN_FOLDERS, Damaged, is_complete, read_state

PROCESSES = 2
KILLS = 4
LIMIT = 120  # seconds for one answer of a process under Wine; only against hanging


class Process:
    """The tests' second process, fed with more commands than it can have answered when it is killed."""

    def __init__(self, part, name):
        self.name, self.begun, self.answered = name, 0, []
        self.output = os.path.join(part.root, f"answers-{name}")
        with open(self.output, "wb") as output:
            self.process = subprocess.Popen([part.wine, part.helper], stdin=subprocess.PIPE, stdout=output,
                                            stderr=subprocess.DEVNULL, env=part.environment)

    def send(self, *commands):
        try:
            self.process.stdin.write("".join(command + "\n" for command in commands).encode())
            self.process.stdin.flush()
        except BrokenPipeError:
            raise Failure(f"process {self.name} has ended by itself: {self.answers()[-1:]}") from None

    def answers(self):
        with open(self.output, encoding="utf-8") as output:
            return [line.rstrip("\r\n") for line in output if line.endswith("\n")]

    def await_answers(self, count):
        end = time.monotonic() + LIMIT
        while len(self.answers()) < count:
            if time.monotonic() > end:
                raise Failure(f"process {self.name} hangs after {self.answers()[-1:]}")
            if self.process.poll() is not None:
                raise Failure(f"process {self.name} has ended with {self.process.returncode}")
            time.sleep(0.01)
        return self.answers()

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        self.process.stdin.close()
        return self.answers()


class WindowsKills(Part):
    name = "windows"
    share = 2
    jobs = 1  # the prefix has one application-data folder
    plants = ("acknowledge-early",)

    def __init__(self, bench):
        super().__init__(bench)
        self.root = bench.place.root
        build = os.path.join(bench.build, "..", "windows-x64")
        self.helper = os.path.abspath(os.path.join(build, "kesta_test_helper.exe"))
        self.library = os.path.abspath(os.path.join(build, "KESTA_DB.dll"))
        self.wine = os.path.abspath(os.path.join(bench.build, "..", "..", "cmake", "wine-run"))
        self.prefix = os.path.abspath(os.path.join(bench.build, "..", "wine-torture"))
        self.environment = {**os.environ, "WINEPREFIX": self.prefix, "LC_ALL": "C.UTF-8"}
        del self.environment["LD_PRELOAD"]

    def missing(self):
        if not shutil.which("wine64") and not os.path.exists("/usr/lib/wine/wine64"):
            return "there is no Wine"
        return None if os.path.exists(self.helper) and os.path.exists(self.library) else "the Windows build is not there"

    def trials(self):
        if not os.path.isdir(os.path.join(self.prefix, "drive_c")):
            subprocess.run([self.wine, "wineboot", "--init"], env=self.environment, check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return [str(number) for number in range(1000)]

    def row(self, trial):
        return f"kill -9 at random among {PROCESSES} Windows processes"

    def run(self, place, trial):
        generator = random.Random(f"{self.bench.seed} {trial}")
        roaming = glob.glob(os.path.join(self.prefix, "drive_c", "users", "*", "AppData", "Roaming"))
        users = [folder for folder in roaming if not folder.endswith("/Public/AppData/Roaming")]
        if len(users) != 1:
            raise Failure(f"the bench itself failed: application-data folders {users}")
        data = os.path.join(users[0], "NORVIK")
        shutil.rmtree(data, ignore_errors=True)
        database = os.path.join(data, "NORVIK Sync", "Database", "KESTA_DB.s3db")
        names = iter(range(1 << 30))
        running, acknowledged, begun = [], {}, set()
        try:
            for _ in range(PROCESSES):
                running.append(self._start(next(names), begun))
            for number in range(KILLS):
                if number == 0 or generator.random() < 0.7:  # else it may still be loading
                    running[0].await_answers(generator.randrange(10, 20))
                time.sleep(generator.uniform(0, 0.2))
                self._end(running.pop(0), acknowledged)
                running.append(self._start(next(names), begun))
        finally:
            for process in running:
                self._end(process, acknowledged)
        self._judge(next(names), database, acknowledged, begun)

    def _start(self, number, begun):
        process = Process(self, f"{number}")
        imeis = [f"{number}-{phone}" for phone in range(150)]
        begun.update(imeis)
        # A process that is just dying holds the file for some moments more, and loading does not wait for it.
        process.send("load", *["call\tDB_Open"] * 3)
        process.send(*[f"call\tDB_LIB_PhoneDetected\t{imei}\tname" for imei in imeis])
        return process

    def _end(self, process, acknowledged):
        answers = process.kill()
        if self.bench.plant == "acknowledge-early":
            answers = answers + ["999"] if len(answers) > 4 else answers
        for phone, answer in enumerate(answers[4:]):
            # -1: the database could not be opened in time; nothing is acknowledged then.
            if answer.startswith("failed"):
                raise Failure(f"process {process.name} answers: {answer}")
            if answer != "-1":
                acknowledged[f"{process.name}-{phone}"] = int(answer)

    def _judge(self, number, database, acknowledged, begun):
        if not acknowledged:
            raise Failure("no call was acknowledged")
        process = Process(self, f"{number}")
        process.send("load", "call\tDB_Open", "call\tDB_LIB_PhoneDetected\tlast\tname", "exit\t0")
        answers = process.await_answers(3)
        process.process.wait()
        process.process.stdin.close()
        if answers[:2] != ["ok", "0"] or int(answers[2]) < 1:
            raise Failure(f"the next start answers {answers}")
        try:
            state = read_state(database)
        except Damaged as damage:
            raise Failure(f"the database is damaged: {damage}") from damage
        if not is_complete(state):
            raise Failure(f"incomplete: {len(state.get('tLibMainFolder', []))} main folders")
        phones = {row[1].decode(): row[0] for row in state["tPhone"]}
        if len(phones) != len(state["tPhone"]) or not set(phones) <= begun | {"last"}:
            raise Failure("a phone is there twice, or one that nobody has announced")
        for imei, identity in acknowledged.items():
            if imei not in phones or (phones[imei] != identity and identity != 999):
                raise Failure(f"the phone {imei} was acknowledged as {identity}, in the database it is "
                              f"{phones.get(imei)}")
            chosen = sum(1 for row in state["tSyncContents"] if row[0] == identity)
            if chosen != MAIN_FOLDERS and identity != 999:
                raise Failure(f"the phone {imei} has {chosen} main folders to choose, not {MAIN_FOLDERS}")
