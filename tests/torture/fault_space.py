"""All faults of one stretch of calls, numbered, so that a run can take some of them without listing them all."""

import random
from bisect import bisect_right
from itertools import accumulate

from interposer import ERRORS, FILES, MEMORY, fault


class FaultSpace:
    """`kinds`: what the stretch called, in order. A fault's name is what/number/error/once or sticky."""

    def __init__(self, kinds):
        self.points = [("memory", str(i), ["ENOMEM/once", "ENOMEM/sticky"]) for i in range(kinds.count("memory"))]
        for number, kind in enumerate(kind for kind in kinds if kind != "memory"):
            errors = [f"{error}/{often}" for error in ERRORS[kind] for often in ("once", "sticky")]
            if kind in ("read", "write"):
                errors.append("short/once")
            self.points.append(("files", f"{number}-{kind}", errors))
        self.ends = list(accumulate(len(errors) for _, _, errors in self.points))

    def __len__(self):
        return self.ends[-1] if self.ends else 0

    def __getitem__(self, index):
        place = bisect_right(self.ends, index)
        what, number, errors = self.points[place]
        return f"{what}/{number}/{errors[index - self.ends[place] + len(errors)]}"


def plan_of(name, plant="none"):
    """The interposer's plan for a fault's name."""
    what, number, error, often = name.split("/")
    return fault(MEMORY if what == "memory" else FILES, int(number.partition("-")[0]), error, often == "sticky", plant)


class Mixed:
    """Trials of several spaces by turns, so that each has had some when the time is over: head/fault for each
    (head, space), at most `most` of each."""

    def __init__(self, seed, spaces, most):
        self.seed, self.spaces, self.most = seed, list(spaces), most

    def __len__(self):
        return sum(min(len(space), self.most) for _, space in self.spaces)

    def __iter__(self):
        generator = random.Random(self.seed)
        queues = [(head, space, iter(generator.sample(range(len(space)), min(len(space), self.most))))
                  for head, space in self.spaces]
        while queues:
            left = []
            for head, space, order in queues:
                index = next(order, None)
                if index is not None:
                    left.append((head, space, order))
                    yield f"{head}/{space[index]}"
            queues = left
