"""The Windows build under Wine: processes that call from two threads each and load and unload the library meanwhile.

All calls are answered, and every acknowledged row is there once. Signals, forks and a damaged mutex have no counterpart
that could be tried there.
"""

import glob
import os
import shutil

from children import Failure
from database import Damaged, is_complete, read_state
from parts.windows_kills import Process, WindowsKills

PROCESSES = 3
ROUNDS = 12
LOADED_FOR = 3  # rounds


class WindowsNeighbours(WindowsKills):
    name = "windows-neighbours"
    share = 1
    plants = ("a lost row",)

    def row(self, trial):
        return f"threads in {PROCESSES} Windows processes, loading and unloading"

    def run(self, place, trial):
        data = self.data_folder()
        shutil.rmtree(data, ignore_errors=True)
        acknowledged = {}
        processes = [Process(self, f"{trial}-{number}") for number in range(PROCESSES)]
        try:
            for process in processes:
                process.send(*self.commands(process.name))
            for process in processes:
                self.collect(process, acknowledged)
        finally:
            for process in processes:
                process.kill()
        if self.bench.plant == "a lost row":
            acknowledged["never announced"] = 1
        self.judge(os.path.join(data, "NORVIK Sync", "Database", "KESTA_DB.s3db"), acknowledged)

    def data_folder(self):
        roaming = glob.glob(os.path.join(self.prefix, "drive_c", "users", "*", "AppData", "Roaming"))
        users = [folder for folder in roaming if not folder.endswith("/Public/AppData/Roaming")]
        if len(users) != 1:
            raise Failure(f"the bench itself failed: application-data folders {users}")
        return os.path.join(users[0], "NORVIK")

    @staticmethod
    def commands(name):
        """In each round the first thread waits for the second one."""
        for number in range(ROUNDS):
            if number % LOADED_FOR == 0:
                yield from ["unload"] * (number > 0) + ["load", "call\tDB_Open"]
            yield f"begin\tDB_LIB_PhoneDetected\t{name}-{number}-second\tname"
            yield f"call\tDB_LIB_PhoneDetected\t{name}-{number}-first\tname"
            yield "end"

    def collect(self, process, acknowledged):
        commands = list(self.commands(process.name))
        answers = process.await_answers(len(commands))
        for command, answer in zip(commands, answers):
            what, *arguments = command.split("\t")
            if what in ("load", "unload", "begin"):
                expected = answer == "ok"
            else:
                expected = answer == "0" if arguments == ["DB_Open"] else answer.isdigit() and int(answer) > 0
            if not expected:
                raise Failure(f"process {process.name} answers {answer!r} to {command!r}")
            if what == "begin":
                begun = arguments[1]
            elif what == "end" or arguments[:1] == ["DB_LIB_PhoneDetected"]:
                acknowledged[begun if what == "end" else arguments[1]] = int(answer)

    @staticmethod
    def judge(database, acknowledged):
        try:
            state = read_state(database)
        except Damaged as damage:
            raise Failure(f"the database is damaged: {damage}") from damage
        if not is_complete(state):
            raise Failure("the database is not complete")
        phones = {row[1].decode(): row[0] for row in state["tPhone"]}
        wrong = {imei: (number, phones.get(imei)) for imei, number in acknowledged.items()
                 if phones.get(imei) != number}
        if wrong or len(phones) != len(state["tPhone"]):
            raise Failure(f"acknowledged and stored numbers differ: {dict(list(wrong.items())[:3])}")
