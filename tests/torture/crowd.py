"""Several processes at once, and what each of them does to be a neighbour of the others: it adds rows and remembers
those that were acknowledged, and it replaces and reads one list that all share."""

import os
import pickle
import selectors
import signal
import threading
import time
import traceback

import calls
from children import Ending, Failure
from native import Native

LIST = "Shared"
NAMES = 5  # of the shared list: each replacement is six statements, between which nobody may come


def together(works, limit, started=None):
    """The endings of the works, each in a process of its own; those that still run after `limit` seconds are killed.
    `started()` is called when all of them are there."""
    selector = selectors.DefaultSelector()
    endings = [None] * len(works)
    children, parts = [], []
    for number, work in enumerate(works):
        child, source = _start(work)
        children.append(child)
        parts.append([])
        selector.register(source, selectors.EVENT_READ, number)
    if started:
        started()
    end = time.monotonic() + limit
    while selector.get_map():
        ready = selector.select(max(0.0, end - time.monotonic()))
        if not ready:
            break
        for key, _ in ready:
            block = os.read(key.fd, 1 << 16)
            if block:
                parts[key.data].append(block)
                continue
            selector.unregister(key.fileobj)
            os.close(key.fd)
            endings[key.data] = _ending(children[key.data], b"".join(parts[key.data]))
    for key in list(selector.get_map().values()):
        os.kill(children[key.data], signal.SIGKILL)
        os.waitpid(children[key.data], 0)
        os.close(key.fd)
        endings[key.data] = Ending(hung=True)
    selector.close()
    return endings


def _start(work):
    reading, writing = os.pipe()
    child = os.fork()
    if child:
        os.close(writing)
        return child, reading
    os.close(reading)
    try:
        value = work()
    except Failure as failure:
        value = failure
    except BaseException:
        value = Failure("the bench itself failed:\n" + traceback.format_exc())
    try:
        with os.fdopen(writing, "wb") as out:
            pickle.dump(value, out)
    finally:
        os._exit(0)


def _ending(child, data):
    _, status = os.waitpid(child, 0)
    if os.WIFSIGNALED(status):
        return Ending(signal_number=os.WTERMSIG(status))
    if not data:
        return Ending(Failure(f"ends with exit code {os.waitstatus_to_exitcode(status)} in the middle"))
    return Ending(pickle.loads(data))


class Neighbour:
    """One thread's dealings with the library."""

    takes_turns = True  # with all others: what several statements write is somebody's whole one

    def __init__(self, path, tag):
        self.library, self.tag = Native(path), tag
        self.acknowledged = []

    def round(self, number):
        path = f"C:\\{self.tag}\\{number}"
        file = {"Path": path, "BasePath": "C:\\Rock", "PhonePath": path, "ModifiedTime": calls.WHEN}
        result = self.library.call("DB_MUSIC_SetAddedFile", (calls.IMEI, file))
        if result != 0:
            raise Failure(f"{self.tag}: adding a file answers {result}")
        self.acknowledged.append(path)
        names = [f"{self.tag} {number}: {i}" for i in range(NAMES)]
        self._must_work("DB_PLAYERMUSIC_SetListFilesname", (calls.IMEI, LIST, names))
        self.look()

    def look(self):
        """The shared list is always somebody's whole one."""
        self._must_work("DB_PLAYERMUSIC_GetListFilesname", (calls.IMEI, LIST, 0))
        names = self.library.read_slot("outnames", 0)
        self.library.release_names(0)
        if self.takes_turns and names and (len(names) != NAMES or len({name.partition(":")[0] for name in names}) != 1):
            raise Failure(f"two calls were inside at once: the shared list is {names}")

    def _must_work(self, export, args):
        result = self.library.call(export, args)
        if result != 0:
            raise Failure(f"{self.tag}: {export} answers {result}")


def run_threads(path, tag, threads, rounds, each_round=None):
    """The acknowledged rows of so many threads of this process, of which the calling one is the first."""
    acknowledged, failures = [], []

    def run(number):
        try:
            neighbour = Neighbour(path, f"{tag}-{number}")
            for at in range(rounds):
                neighbour.round(at)
                if each_round and number == 0:
                    each_round(at)
            acknowledged.extend(neighbour.acknowledged)
        except BaseException as failure:
            failures.append(failure)

    others = [threading.Thread(target=run, args=(number,)) for number in range(1, threads)]
    for other in others:
        other.start()
    run(0)
    for other in others:
        other.join()
    if failures:
        raise failures[0]
    return acknowledged


def missing(state, acknowledged):
    """The acknowledged files of which no row is there."""
    stored = {row[1].decode() for row in state["tMFile"]}
    return [path for path in acknowledged if path not in stored]
