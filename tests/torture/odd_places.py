"""Environments that name an odd place for the data, or none. See hindrances.py."""

import os
import shutil

import namespaces
from hindrances import any_answer, closed, expect, expect_complete, temporary

LONGEST_PATH = 504     # bytes that SQLite takes: it keeps room for "-journal"


def _environment(data_home, home, judge):
    """`data_home` and `home` are functions of the place; None: not set."""
    def prepare(bench, place):
        place.reset()
        os.makedirs(place.data)
        for name, value in (("XDG_DATA_HOME", data_home(place)), ("HOME", home(place))):
            os.environ.pop(name, None)
            if value is not None:
                os.environb[name.encode()] = os.fsencode(value)
        judge(bench, place, (yield))
        yield
        shutil.rmtree(place.data, ignore_errors=True)
    return prepare


def _opens_in(folder):
    def judge(bench, place, answer):
        expect(answer == 0, f"DB_Open answers {answer}")
        expect_complete(os.path.join(os.fsdecode(folder(place)), "NORVIK", "NORVIK Sync", "Database", "KESTA_DB.s3db"))
    return judge


def _long_folder(place, bytes_of_path):
    """A folder below the place's with which the database's path has so many bytes, its names being allowed ones."""
    rest = bytes_of_path - len(place.data) - len("/NORVIK/NORVIK Sync/Database/KESTA_DB.s3db")
    path = place.data
    while rest > 0:
        take = min(rest, 201)
        if rest - take == 1:
            take -= 1  # a slash alone is no name
        path += "/" + "n" * (take - 1)
        rest -= take
    return path


def _long(bytes_of_path):
    def folder(place):
        return _long_folder(place, bytes_of_path)
    fits = bytes_of_path <= LONGEST_PATH
    return _environment(folder, lambda place: place.root, _opens_in(folder) if fits else any_answer)


def no_home_and_no_user(bench, place):
    """Nothing says where the data should be: neither the environment nor the list of users."""
    place.reset()
    os.makedirs(place.data)
    for name in ("XDG_DATA_HOME", "HOME"):
        os.environ.pop(name, None)
    for folder in (bench.root, place.root):
        os.chmod(folder, 0o755)
    os.chdir("/")
    namespaces.become(54321)
    temporary(bench, place, (yield))
    yield


def _no_environment(place):
    return None


def _below(name):
    def folder(place):
        return os.path.join(os.fsencode(place.data), name if isinstance(name, bytes) else os.fsencode(name))
    return folder


def _named(name):
    return _environment(_below(name), lambda place: place.root, _opens_in(_below(name)))


def _home(place):
    return os.path.join(place.data, "home")


def _in_home(place):
    return os.path.join(_home(place), ".local", "share")


PLACES = {
    "no home, no user": no_home_and_no_user,
    "relative": _environment(lambda place: "data", _home, _opens_in(_in_home)),
    "empty": _environment(lambda place: "", _home, _opens_in(_in_home)),
    "not set": _environment(_no_environment, _home, _opens_in(_in_home)),
    "a dot": _environment(lambda place: ".", _home, _opens_in(_in_home)),
    "a file": _environment(lambda place: "/dev/null", lambda place: place.root, temporary),
    "below a file": _environment(lambda place: "/dev/null/data", lambda place: place.root, temporary),
    "of the system": _environment(lambda place: "/proc/self", lambda place: place.root, closed),
    "home below a file": _environment(_no_environment, lambda place: "/dev/null/home", temporary),
    "slashes": _named("a//b///"), "dots": _named("a/../b/./c"), "a name too long": _environment(
        _below("n" * 256), lambda place: place.root, temporary),
    **{f"name {name}": _named(name) for name in (
        "with blanks ", "100%", "a?mode=memory", "a#b", "it's", '"', "ü", "\U0001f600", "line\nbreak", ":memory:", "-",
        "~", "$HOME", "file:x")},
    "name of bytes": _named(b"\xff\xfe\x80"),
    **{f"{size} bytes": _long(size) for size in (
        500, 503, 504, 505, 512, 1000, *range(1030, 1046), 2048, 4000, 4095, 4096, 4097, 5000)},
}
