#!/usr/bin/env python3
"""The client beside rsync and rclone, on the same trees of one run, with the flushes that each takes.

    bench/client.py BUILD-FOLDER [--disk FOLDER] [--files 10000] [--large 100] [--cards 5000] [--repeat 3]

Times are medians. A goal is a ratio; "bare records" is what the library itself takes to record as many files.
"""

import argparse
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from datetime import datetime
from pathlib import Path

HERE = Path(__file__).resolve().parent
FLUSHES = "fsync,fdatasync,syncfs,sync_file_range,sync"


def write(path, data):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


def cards(path, count, changed=0):
    text = "".join(f"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:{i}\r\nFN:{'Changed' if i == changed else 'Person'} {i}\r\nEND:VCARD\r\n"
                   for i in range(1, count + 1))
    write(path, text.encode())


class Bench:
    def __init__(self, build, folder):
        self.build = build
        self.folder = folder

    def environment(self, side):
        """Databases and state of their own for each side, beside what it copies."""
        data = self.folder / side / "data"
        data.mkdir(parents=True, exist_ok=True)
        return dict(os.environ, XDG_DATA_HOME=str(data), XDG_CONFIG_HOME=str(data), XDG_CACHE_HOME=str(data),
                    KESTA_DB_LIBRARY=str(self.build / "libKESTA_DB.so"))

    def command(self, side, pc, options=()):
        phone = self.folder / side / "phone"
        phone.mkdir(parents=True, exist_ok=True)
        if side == "kesta":
            return [self.build / "kesta", "sync", "--phone", phone, "--imei", "351111", "--quiet", *(options or ("--music", pc))]
        if side == "rclone":
            return ["rclone", "copy", pc, phone / "pc"]
        if side == "bare records":
            return [sys.executable, __file__, "--record", pc]
        return ["rsync", "-a", *(["--fsync"] if "fsync" in side else []), pc, phone]

    def run(self, side, command):
        os.sync()
        start = time.perf_counter()
        ended = subprocess.run(command, env=self.environment(side), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        taken = time.perf_counter() - start
        if ended.returncode != 0:
            sys.exit(f"{side}: {ended.stdout}")
        return taken

    def flushes(self, side, command):
        log = self.folder / "calls"
        self.run(side, ["strace", "-f", "-o", log, "-e", f"trace={FLUSHES}", *command])
        return len(re.findall(rf"\b(?:{FLUSHES.replace(',', '|')})\(", log.read_text()))

    def clear(self, side):
        shutil.rmtree(self.folder / side, ignore_errors=True)


def compare(bench, title, pc, sides, repeat, files, fresh, goals):
    print(f"\n{title}")
    times, flushes = {side: [] for side in sides}, {}
    for _ in range(repeat):
        for side in sides:
            if fresh:
                bench.clear(side)
            times[side].append(bench.run(side, bench.command(side, pc)))
    for side in sides:
        if fresh:
            bench.clear(side)
        flushes[side] = bench.flushes(side, bench.command(side, pc))
    middle = {side: statistics.median(taken) for side, taken in times.items()}
    for side in sides:
        print(f"  {side:<14} {middle[side]:9.2f} s   {flushes[side] / files:6.2f} flushes per file")
    for side, most in goals.items():
        ratio = middle["kesta"] / middle[side]
        print(f"  kesta / {side:<14} {ratio:6.2f}   goal {most}{'' if ratio <= most else '   missed'}")


def one_card(bench, count):
    print(f"\none changed card among {count:,}")
    bench.clear("kesta")
    file = bench.folder / "friends.vcf"
    command = bench.command("kesta", None, ("--contacts", file))
    cards(file, count)
    bench.run("kesta", command)
    cards(file, count, changed=count // 2)
    taken = bench.run("kesta", command)
    cards(file, count)  # one card again: back to what it was
    flushes = bench.flushes("kesta", command)
    print(f"  kesta          {taken:9.2f} s   {flushes} flushes   goal 20{'' if flushes <= 20 else '   missed'}")


def record(pc):
    """The bare records of the files below the folder."""
    sys.path.insert(0, str(HERE.parent / "bindings" / "python" / "src"))
    import kesta_db
    db = kesta_db.Database()
    db.phones.announce("351111", "phone")
    music = db.media("351111", kesta_db.Category.MUSIC)
    files = [path for path in Path(pc).rglob("*") if path.is_file()]
    music.add_folder(kesta_db.Folder(pc, count=len(files), size=1))
    for path in files:
        music.add_file(kesta_db.File(str(path), pc, f"Music/{path.relative_to(pc)}", datetime(2024, 2, 29, 12)))


def main():
    if sys.argv[1] == "--record":
        return record(sys.argv[2])
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--disk", type=Path, default=Path(tempfile.gettempdir()), help="where everything lies")
    parser.add_argument("--files", type=int, default=10_000, help="small files")
    parser.add_argument("--large", type=int, default=100, help="MB of each of the 20 large files; 0 for none")
    parser.add_argument("--cards", type=int, default=5_000)
    parser.add_argument("--repeat", type=int, default=3)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="kesta-bench-", dir=options.disk) as folder:
        bench = Bench(options.build.resolve(), Path(folder).resolve())
        small, large = bench.folder / "small" / "pc", bench.folder / "large" / "pc"
        for i in range(options.files):
            write(small / f"{i // 100}" / f"{i}.mp3", os.urandom(4_500))
        copying = ["bare records", "kesta", "rsync -a", "rsync --fsync", "rclone"]
        compare(bench, f"{options.files:,} small files", small, copying, options.repeat, options.files, True,
                {"bare records": 1.3, "rsync --fsync": 2.5})
        compare(bench, f"{options.files:,} small files, nothing has changed", small, ["kesta", "rsync -a", "rclone"],
                max(options.repeat, 3), options.files, False, {"rsync -a": 2})
        if options.large > 0:
            block = os.urandom(1_000_000)
            for i in range(20):
                write(large / f"{i}.mp3", block * options.large)
            compare(bench, f"20 files of {options.large} MB", large, copying[1:], options.repeat, 20, True,
                    {"rsync --fsync": 1.2})
        one_card(bench, options.cards)
    return None


if __name__ == "__main__":
    main()
