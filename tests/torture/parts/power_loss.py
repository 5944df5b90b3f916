"""The power fails at every operation on files, of loading and of the calls after it. What had not been synced is kept,
gone, or torn; each disk that this can leave is opened again, by SQLite or by the library.

The database is then valid, and its rows are those after one of the transactions: not more than the very last of the
acknowledged ones is missing. A first start that was cut short is made good by the next one.
"""

import os
import random
import zlib

import calls
from bench import Part
from children import Failure, in_child
from database import Damaged, difference, read_state
from disk import MARK, NAMES, UNLINK, VARIANTS, Disk, read_log
from interposer import FILES, watch
from loaded import Loaded
from starts import KEPT, STARTS, expect_tidy, prepare

LOADED = 0  # the mark after loading; the calls' follow
MISSING = "states in which the last acknowledged transaction is missing"


class Story:
    """The operations of one process, and the rows after loading and after each transaction since."""

    def __init__(self, place, files, operations):
        self.place, self.files, self.operations = place, files, operations
        self.states = []
        self.committed = [0]      # after so many operations: how many transactions
        self.acknowledged = [-1]  # and how many of them were acknowledged; -1 before the end of loading
        disk = self.disk_at(0)
        for operation in operations:
            disk.apply(operation)
            committed, acknowledged = self.committed[-1], self.acknowledged[-1]
            if operation[0] == MARK:
                if operation[2] == LOADED:
                    self.states = [self._state(disk)]
                    committed = 0
                acknowledged = committed
            elif operation[0] == UNLINK and os.fsdecode(operation[3]) == place.journal and self.states:
                self.states.append(self._state(disk))
                committed += 1
            self.committed.append(committed)
            self.acknowledged.append(acknowledged)

    def _state(self, disk):
        return read_state(disk.content()[self.place.database], self.states[0] if self.states else None)

    def disk_at(self, count):
        disk = Disk(self.place.data, self.files)
        for operation in self.operations[:count]:
            disk.apply(operation)
        return disk


class PowerLoss(Part):
    name = "power"
    share = 3
    plants = ("skip-syncs-of-journal", "skip-syncs-of-database")

    def __init__(self, bench):
        super().__init__(bench)
        self.stories = {}

    def story(self, start):
        key = start, self.bench.plant
        if key not in self.stories:
            self.stories[key] = self._tell(start)
        return self.stories[key]

    def _tell(self, start):
        bench, place = self.bench, self.bench.place
        prepare(bench, place, start)
        files = place.files()
        samples = calls.writing_samples() if start == "good" else ["DB_LIB_PhoneDetected:known", *calls.writing_samples()[:6]]

        def work():
            if bench.plant == "skip-syncs-of-journal":
                bench.interposer.lies(skip_syncs_of="-journal")
            elif bench.plant == "skip-syncs-of-database":
                bench.interposer.lies(skip_syncs_of=".s3db")
            library = Loaded(bench, bench.library, watch(FILES))
            bench.interposer.mark(LOADED)
            for number, sample in enumerate(samples):
                library.planned(watch(FILES), *calls.sample(sample))
                bench.interposer.mark(number + 1)

        _, log = bench.log_of(place, work)
        return Story(place, files, read_log(log))

    def trials(self):
        """start/after so many operations-the next one."""
        self.bench.hot  # made here, for the workers to share
        points = []
        for start in STARTS:
            operations = self.story(start).operations
            points += [f"{start}/{count}-{NAMES[operations[count][0]] if count < len(operations) else 'end'}"
                       for count in range(len(operations) + 1)]
        random.Random(self.bench.seed).shuffle(points)
        return points

    def row(self, trial):
        return f"power loss, {trial.split('/')[0]}"

    def run(self, place, trial):
        start, _, point = trial.partition("/")
        story = self.story(start)
        count = min(int(point.partition("-")[0]), len(story.operations))
        disk = story.disk_at(count)
        seen, missing = [], 0
        for number, variant in enumerate(VARIANTS):
            files = disk.after_power_loss(variant, random.Random(zlib.crc32(f"{trial} {variant}".encode())))
            files = {os.path.relpath(path, story.place.data): content for path, content in files.items()}
            if files in seen:
                continue
            seen.append(files)
            place.reset_files(files)
            # A start that was cut short is for the library to make good; else it looks at some, and SQLite at all.
            by_library = number == count % len(VARIANTS) or start not in KEPT
            try:
                missing += self._look(place, story, start, count, by_library)
            except Failure as failure:
                raise Failure(f"{variant}: {failure}") from failure
        return MISSING if missing else None

    def _look(self, place, story, start, count, by_library):
        """1 when the last acknowledged transaction is missing, else 0."""
        if by_library:
            self._open_by_library(place, start)
        try:
            state = read_state(place.database)
        except Damaged as damage:
            raise Failure(f"the database is damaged: {damage}") from damage
        acknowledged = story.acknowledged[count]
        if acknowledged < 0:
            wanted = self.bench.before if start in KEPT else story.states[0]
            if state != wanted:
                raise Failure(f"in loading: {difference(state, wanted)}")
            return 0
        allowed = range(max(0, acknowledged - 1), story.committed[count] + 1)
        matching = [number for number in allowed if state == story.states[number]]
        if not matching:
            found = [number for number, other in enumerate(story.states) if other == state]
            raise Failure(f"{acknowledged} transactions were acknowledged, " +
                          (f"the rows are those after {found[0]}" if found else
                           f"the rows are of none: {difference(state, story.states[acknowledged])}"))
        return 1 if max(matching) < acknowledged else 0

    def _open_by_library(self, place, start):
        def work():
            library = Loaded(self.bench, self.bench.library)
            answer = library.call("DB_Open", ())
            library.unload()
            return answer

        answer = in_child(work).expect_value()
        if answer != 0:
            raise Failure(f"the next start answers {answer}")
        expect_tidy(place, Failure, start)
