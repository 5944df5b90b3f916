"""What may lie in the database's place that is no ordinary file, and disks and folders that refuse to be written.

Each trial prepares its place in a child, loads the library, calls every export, and looks at what is left. No crash, no
hang, no result that the contract does not know; what was there before is still there; and where the hindrance can be
taken away, DB_Open then opens a complete database.
"""

import os

import calls
import namespaces
from bench import Part
from children import in_child
from results import check_result, checked_call
from hindrances import expect
from interposer import FILES, PLANTS, Plan, watch
from loaded import Loaded
from odd_files import SPECIAL
from odd_places import PLACES, no_home_and_no_user
from refusals import RIGHTS, ROOM

LIMIT = 60
KINDS = {"special": SPECIAL, "rights": RIGHTS, "place": PLACES, "room": ROOM}


class SpecialFiles(Part):
    name = "special"
    share = 1
    plants = ("crash", "hang", "delete-database")

    def trials(self):
        self.bench.hot  # made here, for the workers to share
        if not namespaces.available():
            print("special: what needs root is left out: other users, devices, and disks of a size", flush=True)
            return [f"place/{name}" for name in PLACES if PLACES[name] is not no_home_and_no_user] + [
                "rights/read-only file"]
        queues = [[f"{kind}/{name}" for name in trials] for kind, trials in KINDS.items()]
        return [queue[at] for at in range(max(map(len, queues))) for queue in queues if at < len(queue)]

    def row(self, trial):
        return {"special": "special files", "rights": "rights and read-only disks", "place": "odd places and names",
                "room": "full disks"}[trial.partition("/")[0]]

    def run(self, place, trial):
        kind, _, name = trial.partition("/")
        place.reset()
        os.chmod(place.root, 0o700)
        plan = watch(0)
        if self.bench.plant:
            plan = Plan(FILES, 5, 0, 0, 0, PLANTS.index(self.bench.plant))

        def work():
            steps = KINDS[kind][name](self.bench, place)
            next(steps)
            library = Loaded(self.bench, self.bench.library, plan)
            answer = library.call("DB_Open", ())
            check_result("DB_Open", answer)
            more = steps.send(answer)
            for sample in calls.sample_names():
                checked_call(library, *calls.sample(sample))
            if more is not None:
                more[1]()
                answer = library.call("DB_Open", ())
                expect(answer == 0, f"DB_Open answers {answer} though there is room now")
                phone = library.call("DB_LIB_PhoneDetected", (calls.IMEI, "again"))
                expect(phone > 0, "a call fails though there is room")
            next(steps, None)
            library.unload()

        in_child(work, LIMIT if not self.bench.plant else 5).expect_value()
