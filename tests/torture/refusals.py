"""Files, folders and disks that refuse to be read or written, and disks that are full. See hindrances.py."""

import os

import namespaces
from database import VERSION, read_state
from hindrances import any_answer, closed, expect, expect_closed, expect_complete, expect_rows, is_kept, read_only
from starts import old_version

BLOCK = 4096
CREATION_BLOCKS = 110  # more than a fresh database and its journal take
CALLS_BLOCKS = 40


def _as_nobody(prepare_files, judge):
    def prepare(bench, place):
        for folder in (bench.root, place.root):
            os.chmod(folder, 0o755)
        prepare_files(bench, place)
        namespaces.become(namespaces.NOBODY)
        answer = yield
        judge(bench, place, answer)
        yield
    return prepare


def _owned_by_nobody(place, *more):
    for folder, folders, files in os.walk(place.root):
        for name in ("", *folders, *files):
            os.chown(os.path.join(folder, name), namespaces.NOBODY, namespaces.NOBODY, follow_symlinks=False)
    for path, mode in more:
        os.chmod(path, mode)


def _mode(mode, of):
    def prepare(bench, place):
        place.reset(bench.image)
        _owned_by_nobody(place, (getattr(place, of), mode))
    return prepare


def _foreign(mode):
    def prepare(bench, place):
        place.reset(bench.image)
        _owned_by_nobody(place)
        os.chown(place.database, 0, 0)
        os.chmod(place.database, mode)
    return prepare


def _no_folder(mode):
    def prepare(bench, place):
        place.reset()
        os.makedirs(place.data)
        _owned_by_nobody(place, (place.data, mode))
    return prepare


def read_only_file(bench, place):
    place.reset(bench.image)
    os.chmod(place.database, 0o444)
    expect((yield) == 19, "DB_Open does not answer 19")
    yield
    expect_rows(bench, place.database)


def read_only_disk(bench, place):
    place.reset(bench.image)
    namespaces.own_mounts()
    namespaces.mount_read_only(place.data)
    expect((yield) == 19, "DB_Open does not answer 19")
    yield
    expect_rows(bench, place.database)


def read_only_disk_with_a_journal(bench, place):
    place.reset(*bench.hot)
    namespaces.own_mounts()
    namespaces.mount_read_only(place.data)
    expect((yield) == 19, "DB_Open does not answer 19")
    yield
    with open(place.database, "rb") as file:
        expect(file.read() == bench.hot[0], "the file has changed")


def read_only_empty_disk(bench, place):
    place.reset()
    os.makedirs(place.data)
    namespaces.own_mounts()
    namespaces.mount_read_only(place.data)
    expect_closed((yield))
    yield


def _full_from_the_start(blocks):
    def prepare(bench, place):
        place.reset()
        os.makedirs(place.data)
        namespaces.own_mounts()
        namespaces.mount_memory(place.data, max(blocks, 1) * BLOCK)
        if blocks == 0:
            with open(os.path.join(place.data, "filler"), "wb") as file:
                file.write(bytes(BLOCK))
        answer = yield
        if answer == 0:
            expect_complete(place.database)
        yield "room", lambda: namespaces.remount_memory(place.data, 64 << 20)
        expect_complete(place.database)
    return prepare


def _full_later(blocks):
    def prepare(bench, place):
        place.reset()
        os.makedirs(place.data)
        namespaces.own_mounts()
        need = -(-len(bench.image) // BLOCK)
        namespaces.mount_memory(place.data, (need + blocks) * BLOCK)
        os.makedirs(place.folder)
        place.overwrite(bench.image)
        expect((yield) == 0, "the database is not open")
        expect_rows(bench, place.database)
        yield "room", lambda: namespaces.remount_memory(place.data, 64 << 20)
        state = read_state(place.database)
        expect(state["tVersion"] == [(VERSION,)], "the version is gone")
    return prepare


def _other_version_on_a_disk_with(blocks):
    def prepare(bench, place):
        place.reset()
        os.makedirs(place.data)
        namespaces.own_mounts()
        namespaces.mount_memory(place.data, len(old_version()) + blocks * BLOCK)
        os.makedirs(place.folder)
        place.overwrite(old_version())
        yield
        kept = [name for name in os.listdir(place.folder) if is_kept(os.path.join(place.folder, name), old_version())]
        expect(kept, "the file of another version is gone")
        yield "room", lambda: namespaces.remount_memory(place.data, 64 << 20)
        expect_complete(place.database)
    return prepare


RIGHTS = {
    "read-only file": read_only_file, "read-only disk": read_only_disk,
    "read-only disk with a journal": read_only_disk_with_a_journal, "read-only empty disk": read_only_empty_disk,
    "file 000": _as_nobody(_mode(0o000, "database"), read_only),
    "file 400": _as_nobody(_mode(0o400, "database"), read_only),
    "file 200": _as_nobody(_mode(0o200, "database"), closed),
    "folder 000": _as_nobody(_mode(0o000, "folder"), closed),
    "folder 500": _as_nobody(_mode(0o500, "folder"), any_answer),
    "folder 300": _as_nobody(_mode(0o300, "folder"), any_answer),
    "data folder 000": _as_nobody(_mode(0o000, "data"), closed),
    "data folder 500": _as_nobody(_mode(0o500, "data"), any_answer),
    "foreign file 644": _as_nobody(_foreign(0o644), read_only),
    "foreign file 600": _as_nobody(_foreign(0o600), read_only),
    "foreign file 666": _as_nobody(_foreign(0o666), any_answer),
    "no file, data folder 500": _as_nobody(_no_folder(0o500), closed),
    "no file, data folder 000": _as_nobody(_no_folder(0o000), closed),
}
ROOM = {
    **{f"for a new file/{blocks}": _full_from_the_start(blocks) for blocks in range(CREATION_BLOCKS)},
    **{f"for a new file beside another version/{blocks}": _other_version_on_a_disk_with(blocks)
       for blocks in range(0, CREATION_BLOCKS, 2)},
    **{f"for calls/{blocks}": _full_later(blocks) for blocks in range(CALLS_BLOCKS)},
}
