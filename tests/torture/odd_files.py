"""What is no ordinary file in the place of the database, or beside it. See hindrances.py."""

import os
import shutil
import stat

from hindrances import NOT_OPEN, expect, expect_closed, expect_complete, expect_rows, is_kept
from starts import old_version


def folder_in_the_place(bench, place):
    os.makedirs(os.path.join(place.database, "inside"))
    expect_closed((yield))
    yield
    expect(os.path.isdir(os.path.join(place.database, "inside")), "the folder is gone")


def _node(kind, device=0):
    def prepare(bench, place):
        os.makedirs(place.folder)
        os.mknod(place.database, kind | 0o600, device)
        expect_closed((yield))
        yield
        expect(stat.S_IFMT(os.lstat(place.database).st_mode) == kind, "what was in the place is gone")
    return prepare


def dangling_link(bench, place):
    os.makedirs(place.folder)
    target = os.path.join(place.root, "target")
    os.symlink(target, place.database)
    answer = yield
    if answer == 0:
        expect_complete(place.database)
    yield
    os.path.exists(target) and os.unlink(target)


def looping_link(bench, place):
    os.makedirs(place.folder)
    os.symlink(place.database, place.database)
    expect_closed((yield))
    yield
    expect(os.path.islink(place.database), "the link is gone")


def link_to_a_good_file(bench, place):
    os.makedirs(place.folder)
    target = os.path.join(place.root, "target")
    with open(target, "wb") as file:
        file.write(bench.image)
    os.symlink(target, place.database)
    expect((yield) == 0, "the database behind the link is not open")
    expect_rows(bench, target)
    yield
    expect(os.path.islink(place.database), "the link is gone")
    os.unlink(target)


def link_to_another_version(bench, place):
    os.makedirs(place.folder)
    target = os.path.join(place.root, "target")
    with open(target, "wb") as file:
        file.write(old_version())
    os.symlink(target, place.database)
    yield
    with open(target, "rb") as file:
        expect(file.read() == old_version(), "the file behind the link is another one")
    yield
    os.unlink(target)


def hard_link(bench, place):
    place.reset(bench.image)
    other = os.path.join(place.root, "other")
    os.link(place.database, other)
    expect((yield) == 0, "the database is not open")
    expect_rows(bench, other)
    yield
    expect(os.path.samefile(place.database, other), "the two names are of two files")
    os.unlink(other)


def database_folder_is_a_file(bench, place):
    os.makedirs(os.path.dirname(place.folder))
    with open(place.folder, "wb"):
        pass
    expect_closed((yield))
    yield
    expect(os.path.isfile(place.folder), "the file is gone")


def database_folder_is_a_link(bench, place):
    place.reset(bench.image)
    elsewhere = os.path.join(place.root, "elsewhere")
    os.rename(place.folder, elsewhere)
    os.symlink(elsewhere, place.folder)
    expect((yield) == 0, "the database is not open")
    expect_rows(bench, place.database)
    yield
    shutil.rmtree(elsewhere)


def _beside(suffix, make):
    def prepare(bench, place):
        place.reset(bench.image)
        make(place.database + suffix)
        answer = yield
        expect(answer == 0 or answer in NOT_OPEN, f"DB_Open answers {answer}")
        yield
        expect(os.path.isfile(place.database), "the database is gone")
        with open(place.database, "rb") as file:
            expect(file.read(16) == b"SQLite format 3\0", "the database is another file")
    return prepare


def _replaced(stamp):
    return f"KESTA_DB.s3db.replaced-{stamp}"


def replaced_before(bench, place):
    """Of the files of other versions the three newest stay, and everything that only looks like one."""
    place.reset(old_version())
    old = [_replaced(f"{year}0101-000000") for year in (2001, 2002, 2003, 2004)]
    others = [_replaced("notes"), _replaced("20010101-00000"), "KESTA_DB.s3db.bak", "KESTA_DB.s3db.replaced",
              "x.replaced-20010101-000000"]
    for name in old + others:
        with open(os.path.join(place.folder, name), "wb") as file:
            file.write(name.encode())
    expect((yield) == 0, "the database is not open")
    names = set(os.listdir(place.folder))
    new = [name for name in names if name.startswith(_replaced("20")) and name not in old + others]
    expect(len(new) == 1 and is_kept(os.path.join(place.folder, new[0]), old_version()), "the file is not kept")
    expect(names & set(old) == set(old[2:]), f"of the older ones stay {sorted(names & set(old))}")
    expect(names >= set(others), f"files of the user's are gone: {sorted(set(others) - names)}")
    yield


def _link(target):
    return lambda path: os.symlink(target, path)


SPECIAL = {
    "folder": folder_in_the_place, "fifo": _node(stat.S_IFIFO), "socket": _node(stat.S_IFSOCK),
    "device null": _node(stat.S_IFCHR, os.makedev(1, 3)), "device zero": _node(stat.S_IFCHR, os.makedev(1, 5)),
    "device full": _node(stat.S_IFCHR, os.makedev(1, 7)),
    "device that is not there": _node(stat.S_IFBLK, os.makedev(250, 9)),
    "dangling link": dangling_link, "looping link": looping_link, "link": link_to_a_good_file,
    "link to another version": link_to_another_version, "hard link": hard_link,
    "replaced before": replaced_before,
    "file for the folder": database_folder_is_a_file, "link for the folder": database_folder_is_a_link,
    **{f"{name} for {suffix}": _beside(suffix, make) for suffix in ("-journal", "-wal", "-shm")
       for name, make in (("folder", os.mkdir), ("fifo", os.mkfifo), ("dangling link", _link("nowhere")),
                          ("looping link", lambda path: os.symlink(path, path)),
                          ("link to itself", _link("KESTA_DB.s3db")),
                          ("device null", lambda path: os.mknod(path, stat.S_IFCHR | 0o600, os.makedev(1, 3))))},
}
