"""The shared mutex of all processes, damaged: its memory holds nonsense, belongs to somebody else, is removed while it
is used, or is shared by processes whose numbers mean different threads.

Judged as the neighbours are: nobody crashes or hangs, all acknowledged rows are there, and no two calls are inside at
once. Most of it needs root, for memory of its own and other users.
"""

import os
import random
import signal
import time

import namespaces
import segments
from crowd import Neighbour, run_threads
from parts.neighbours import Neighbours

FOREIGN_USER = 12345
MUTEXES = ("random bytes", "ones", "counting up", "short", "scrambled", "of all", "foreign", "held by the dead",
           "removed while used", "lock file removed while used", "folder for the lock file", "runtime folder of some",
           "foreign for some", "process numbers that meet")


class DamagedMutexes(Neighbours):
    name = "mutex"
    share = 1
    plants = ("no common lock",)

    def trials(self):
        self.bench.image  # made here, for the workers to share
        if namespaces.available():
            return list(MUTEXES)
        print("mutex: what needs root is left out: everything but killed holders", flush=True)
        return ["held by the dead"]

    def row(self, trial):
        return "damaged mutexes"

    def work(self, place, trial):
        return getattr(self, "_" + trial.replace(" ", "_"))()

    def four(self):
        return self.collect([self.process(number, 2) for number in range(4)])

    def probe(self):
        """Where the mutex lies: the segment that a process has attached when it has loaded the library."""
        def work():
            Neighbour(self.bench.library, "probe").look()
            return segments.attached()

        found = self.collect([work])
        if len(found) != 1:
            raise AssertionError(f"the library has attached {len(found)} segments, and the bench expects one")
        return found[0]

    def _with_content(self, content):
        segments.make(self.probe(), content)
        return self.collect([self.process(number, 2) for number in range(2)])

    def _random_bytes(self):
        return self._with_content(random.Random(1).randbytes(segments.BYTES))

    def _ones(self):
        return self._with_content(b"\xff" * segments.BYTES)

    def _counting_up(self):
        return self._with_content(b"\1\0\0\0" * (segments.BYTES // 4))

    def _short(self):
        return self._with_content(b"\0")

    def _scrambled(self):
        """It says that it is set up, and is not."""
        segment = self.probe()
        content = segments.read(segment)
        segments.make(segment, content[:24] + b"\xa5" * 64 + content[88:])
        return self.four()

    def _of_all(self):
        """Everybody may write to it."""
        segments.make(self.probe(), bytes(segments.BYTES), mode=0o666)
        return self.four()

    def _foreign(self):
        self._make_foreign()
        return self.four()

    def _make_foreign(self):
        segment = self.probe()
        segments.remove(segment)

        def other():
            namespaces.become(FOREIGN_USER)
            segments.make(segment, bytes(segments.BYTES), mode=0o666)

        self.collect([other])

    def _held_by_the_dead(self):
        """A process is killed in the middle of calls, again and again."""
        for _ in range(5):
            child = os.fork()
            if child == 0:
                try:
                    run_threads(self.bench.library, f"killed{os.getpid()}", 2, 10000)
                finally:
                    os._exit(1)
            time.sleep(0.1)
            os.kill(child, signal.SIGKILL)
            os.waitpid(child, 0)
        return self.four()

    def _disturbed(self, disturb):
        """Four processes that call, to which the first does something; two that come after that and meet the others."""
        flag = os.path.join(self.place.root, "disturbed")

        def each_round(number):
            if number == 2:
                disturb()
                with open(flag, "wb"):
                    pass

        def late(number):
            def work():
                while not os.path.exists(flag):
                    time.sleep(0.001)
                return self.process(number, 2)()
            return work

        try:
            return self.collect([self.process(number, 2, self.rounds * 5, each_round if number == 0 else None)
                                 for number in range(4)] + [late(5), late(6)])
        finally:
            os.path.exists(flag) and os.unlink(flag)

    def _removed_while_used(self):
        """Who came before and who comes after have no lock in common then: nothing else may happen to them."""
        segment = self.probe()
        Neighbour.takes_turns = False
        try:
            return self._disturbed(lambda: segments.remove(segment))
        finally:
            Neighbour.takes_turns = True

    def _lock_file_removed_while_used(self):
        self._make_foreign()

        def disturb():
            for folder in (self.place.runtime, self.place.folder):
                for name in os.listdir(folder):
                    if name.endswith(".lock"):
                        os.unlink(os.path.join(folder, name))
        return self._disturbed(disturb)

    def _folder_for_the_lock_file(self):
        self._make_foreign()
        folder = os.path.join(self.place.runtime, "NORVIK_KESTA_DB_ACCESS_MUTEX.lock")
        os.mkdir(folder)
        try:
            return self.four()
        finally:
            os.rmdir(folder)

    def _runtime_folder_of_some(self):
        self._make_foreign()

        def without(number):
            def work():
                os.environ.pop("XDG_RUNTIME_DIR")
                return self.process(number, 2)()
            return work

        return self.collect([self.process(1, 2), self.process(2, 2), without(3), without(4)])

    def _foreign_for_some(self):
        """Two processes have the mutex when it is taken from under the others."""
        def late(number):
            def work():
                time.sleep(0.1)
                if number == 3:
                    self._make_foreign()
                time.sleep(0.1)
                return self.process(number, 2)()
            return work

        return self.collect([self.process(1, 2), self.process(2, 2), late(3), late(4)])

    def _process_numbers_that_meet(self):
        """Containers that share the memory but not the numbers of their processes and threads."""
        def contained(number):
            def work():
                namespaces.own_process_numbers()
                return self.collect([self.process(number, 1)])  # number 1 of its own world
            return work

        return self.collect([contained(number) for number in range(4)])
