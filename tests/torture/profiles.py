"""What each call of the table does without faults: the faults and kills are counted and judged by that."""

import calls
from database import read_state
from disk import UNLINK, Disk, read_log
from fault_space import FaultSpace
from interposer import FILES, MEMORY, watch
from loaded import Loaded

# The library has just been loaded; it has worked before; a process has died in the middle of a transaction.
SETTINGS = ("fresh", "warm", "journal")


class Profile:
    """The answer, what the caller was given, the calls it made, and the rows before and after each transaction."""

    def __init__(self, result, outputs, kinds, states):
        self.result, self.outputs, self.kinds, self.states = result, outputs, kinds, states
        self.faults = FaultSpace(kinds)


class Profiles:
    """Made on demand in the bench's own place, so before the workers start."""

    def __init__(self, bench):
        self.bench, self.known = bench, {}

    def pairs(self, samples, settings):
        """Samples and settings to go through: all of them, or each sample in one setting in the short form."""
        if not self.bench.short:
            return [(sample, setting) for sample in samples for setting in settings]
        return [(sample, settings[index % len(settings)]) for index, sample in enumerate(samples)]

    def of(self, sample, setting):
        if (sample, setting) not in self.known:
            self.known[sample, setting] = self._make(sample, setting)
        return self.known[sample, setting]

    def prepared(self, place, setting):
        """The library on the data set that the place holds."""
        library = Loaded(self.bench, self.bench.library)
        library.prime("outlog", 0, {"Type": 1})  # the log that the data set has
        if setting == "warm":
            library.call("DB_LIB_GetAllPhones", (5,))
        elif setting == "journal":
            place.overwrite(*self.bench.hot)
        return library

    def _make(self, sample, setting):
        place = self.bench.place
        place.reset(self.bench.image)
        export, args = calls.sample(sample)

        def work():
            library = self.prepared(place, setting)
            result = library.planned(watch(FILES | MEMORY), export, args)
            kinds = self.bench.interposer.kinds()
            return result, library.outputs(export, args), kinds

        # Beside the journal its own deletion, when it has been played back, counts as the first transaction.
        base = self.bench.hot if setting == "journal" else (self.bench.image, None)
        (result, outputs, kinds), log = self.bench.log_of(place, work)
        return Profile(result, outputs, kinds, self._states(place, base, log))

    def _states(self, place, base, log):
        """A transaction ends with the deletion of its journal."""
        files = {place.database: base[0]}
        if base[1] is not None:
            files[place.journal] = base[1]
        disk = Disk(place.folder, files)
        states = [self.bench.before]
        for operation in read_log(log):
            disk.apply(operation)
            if operation[0] == UNLINK:
                state = read_state(disk.content()[place.database], self.bench.before)
                if state != states[-1]:
                    states.append(state)
        return states
