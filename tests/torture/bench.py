"""What the parts share: the library under test, private folders, the data set, the table of results."""

import os
import shutil
import sqlite3
import tempfile
import time

import calls
from children import Failure, in_child
from database import Damaged, read_columns, read_state
from disk import UNLINK, Disk, read_log
from interposer import FILES, Interposer, watch
from loaded import Loaded


class Part:
    """One kind of test. Subclasses say their trials and run them; each runs in a worker process, in a folder of its
    own, and raises Failure when the library falls short."""

    name = ""         # as --part takes it
    share = 1         # of the time, beside the other parts
    plants = ()       # faults of the bench's own that it must find: see Bench.plant
    jobs = None       # how many workers, where that is not for the user to say

    def __init__(self, bench):
        self.bench = bench

    def missing(self):
        """What the part cannot do without and does not find, or None."""
        return None

    def trials(self):
        """The names of all trials, most telling first; a run takes as many as its time allows. Each says by itself how
        to repeat it. Called once, before the workers start, in the bench's own place."""
        raise NotImplementedError

    def row(self, trial):
        """The row of the table that the trial counts for."""
        return self.name

    def run(self, place, trial):
        """One trial. Failure says what is wrong; a text that is returned is counted and told below the table."""
        raise NotImplementedError


class Place:
    """A worker's private folder with the library's data in it."""

    def __init__(self, root, number, interposer):
        self.interposer = interposer
        self.root = os.path.join(root, str(number))
        self.data = os.path.join(self.root, "data")
        self.runtime = os.path.join(self.root, "run")
        self.folder = os.path.join(self.data, "NORVIK", "NORVIK Sync", "Database")
        self.database = os.path.join(self.folder, "KESTA_DB.s3db")
        self.journal = self.database + "-journal"
        self.mutex = f"torture {self.root}"[-31:]
        os.makedirs(self.runtime)

    def environment(self):
        return {"XDG_DATA_HOME": self.data, "XDG_RUNTIME_DIR": self.runtime, "HOME": self.root}

    def enter(self):
        """From now on this process's library lives here."""
        os.environ.update(self.environment())
        self.interposer.place(self.database, self.mutex)

    def reset(self, database=None, journal=None):
        """Nothing in the folder but these; not even the folder when there is no database. And a new mutex."""
        self._clear()
        if database is not None:
            os.makedirs(self.folder)
            self.overwrite(database, journal)

    def _clear(self):
        shutil.rmtree(self.data, ignore_errors=True)
        self.interposer.forget_mutex(self.mutex)

    def reset_files(self, files):
        """The data folder holds exactly these: path below it -> bytes."""
        self._clear()
        os.makedirs(self.data)
        for path, content in files.items():
            path = os.path.join(self.data, path)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(content)

    def overwrite(self, database, journal=None):
        """Puts other bytes into the file that a loaded library has open."""
        descriptor = os.open(self.database, os.O_RDWR | os.O_CREAT, 0o644)
        os.pwrite(descriptor, database, 0)
        os.ftruncate(descriptor, len(database))
        os.close(descriptor)
        if journal is not None:
            with open(self.journal, "wb") as file:
                file.write(journal)

    def state(self):
        """All rows; a missing or damaged file is a failure."""
        if not os.path.exists(self.database):
            raise Failure("the database is gone")
        try:
            return read_state(self.database)
        except Damaged as damage:
            raise Failure(f"the database is damaged: {damage}") from damage

    def files(self):
        """Full path -> bytes of all that lies in the database's folder."""
        return {os.path.join(self.folder, name): open(os.path.join(self.folder, name), "rb").read()
                for name in os.listdir(self.folder)} if os.path.isdir(self.folder) else {}

    def close(self):
        shutil.rmtree(self.root, ignore_errors=True)
        self.interposer.forget_mutex(self.mutex)


class Bench:
    def __init__(self, library, seed, minutes, short):
        self.library = os.path.abspath(library)
        self.build = os.path.dirname(self.library)
        self.seed, self.minutes, self.short = seed, minutes, short
        self.interposer = Interposer()
        self.root = tempfile.mkdtemp(prefix="kesta-torture-", dir="/dev/shm" if os.path.isdir("/dev/shm") else None)
        self.plant = None  # the planted fault that the parts are to find now, one of Part.plants
        self.places = 0
        self.place = self.new_place()
        self._image = None
        self._hot = self._fresh = None

    def new_place(self):
        self.places += 1
        return Place(self.root, self.places, self.interposer)

    def close(self):
        self.place.close()
        shutil.rmtree(self.root, ignore_errors=True)

    @property
    def image(self):
        """The bytes of a database with the data set in it, made by the library itself."""
        if self._image is None:
            self._image = self._make_image()
            self.before = read_state(self._image)
            self.columns = read_columns(self._image)
        return self._image

    def _make_image(self):
        place = self.place
        place.reset()

        def make():
            place.enter()
            library = Loaded(self, self.library)
            beside = sqlite3.connect(place.database, isolation_level=None)
            beside.executescript(calls.FOREIGN_TABLES)
            beside.close()
            for export, args in calls.seed_calls():
                result = library.call(export, args)
                if result != (1 if export == "DB_LIB_PhoneDetected" else 0):
                    raise AssertionError(f"{export}{args} answers {result}")
            library.unload()

        in_child(make).expect_value()
        with open(place.database, "rb") as file:
            return file.read()

    @property
    def fresh(self):
        """The rows of a file that the library has just made."""
        if self._fresh is None:
            self.place.reset()

            def make():
                self.place.enter()
                Loaded(self, self.library)

            in_child(make).expect_value()
            self._fresh = self.place.state()
        return self._fresh

    @property
    def hot(self):
        """The data set's file and journal as a process leaves them that is killed in the middle of a transaction."""
        if self._hot is None:
            place = self.place
            place.reset(self.image)

            def write():
                library = Loaded(self, self.library)
                library.planned(WATCH_FILES, *calls.sample("DB_MUSIC_SetAddedFile:new"))

            _, log = self.log_of(place, write)
            disk = Disk(place.folder, {place.database: self.image})
            for operation in read_log(log):
                if operation[0] == UNLINK:
                    break
                disk.apply(operation)
            left = disk.content()
            self._hot = left[place.database], left[place.journal]
            if left[place.database] == self.image:
                raise AssertionError("the killed process has not written to the database")
        return self._hot

    def log_of(self, place, work):
        """work()'s value and the operations that the library did in it, in a child."""
        log = os.path.join(place.root, "operations")

        def logged():
            place.enter()
            descriptor = os.open(log, os.O_CREAT | os.O_TRUNC | os.O_WRONLY | os.O_APPEND)
            self.interposer.log(descriptor)
            value = work()
            self.interposer.log(-1)
            return value

        value = in_child(logged).expect_value()
        with open(log, "rb") as file:
            return value, file.read()


class Clock:
    """How long a part may go on."""

    def __init__(self, seconds):
        self.end = time.monotonic() + seconds

    def left(self):
        return max(0.0, self.end - time.monotonic())


WATCH_FILES = watch(FILES)
