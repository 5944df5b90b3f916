#!/usr/bin/env python3
"""Checks that every include in src/ and tools/kesta points down, and that no files include each other in a circle.

    lint/layers.py            checks this repository
    lint/layers.py --picture  prints the picture that docs/architecture.md shows
"""

import argparse
import re
import sys
from pathlib import Path

# The layers of each tree, from the top. A folder may include its own files and those of the layers below it; folders
# that share a layer know nothing of each other. A path here stands for all below it that has no line of its own.
LAYERS = {
    "src": [
        (["playlists"], "playlists and the music copied for them"),
        (["media", "bookmarks", "backups", "pim"], "one family each"),
        (["library"], "phones, main folders, state of each phone"),
        (["core"], "connection, schema, call frame, SQL, lists, dates, trace"),
        (["platform/posix", "platform/windows"], "what implements the services, file for file"),
        (["platform"], "the operating system's services as plain functions"),
        (["kesta_db"], "the public header"),
    ],
    "tools/kesta": [
        (["main.cpp"], "the table of commands, exit codes"),
        (["commands"], "one file a command"),
        (["doctor"], "the checks of kesta doctor"),
        (["stages"], "what comes before the families and after a killed run"),
        (["stages/playlists"], "refers to what media has put on the phone"),
        (["stages/media", "stages/bookmarks", "stages/pim", "stages/backup"], "one family each: reads and plans"),
        (["sync"], "the engine: Session, Plan, Executor, Preview, journal, guard"),
        (["report", "state"], "progress and summary; what is kept on the PC"),
        (["phone"], "the phone's files and names"),
        (["database"], "the library as the client calls it; the database as a file"),
        (["formats/posix", "formats/windows"], "the system's character sets"),
        (["formats"], "foreign file formats"),
        (["os/posix", "os/windows"], "what implements the services, file for file"),
        (["os"], "the operating system's services"),
        (["base"], "text, dates, exit codes"),
        (["kesta_db"], "the public header"),
    ],
}

# Headers that only the files named may include: everybody else speaks to these files.
RESERVED = {
    r"sqlite3\.h": [r"src/core/(sqlite_\w+|statement_cache)\.cpp", r"tools/kesta/database/sqlite_file\.cpp"],
    r"(windows|oleauto|shlobj|io|objbase|shellapi|winsock2)\.h|(sys|linux)/.*|unistd\.h|fcntl\.h|dirent\.h|pthread\.h|dlfcn\.h":
        [r"src/platform/(posix|windows)/.*", r"tools/kesta/(os|formats)/(posix|windows)/.*",
         r"tools/kesta/\w+/\w+_(posix|windows)\.cpp"],
}

# Headers of another tree that a file may include: memory that the library lays out, and the client looks at.
SHARED = {("tools/kesta/os/posix/mutex_owner.h", "platform/posix/shared_mutex.h"): "src"}

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.M)


def sources(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in (".cpp", ".h"))


def layer_of(tree, path):
    """(number of the layer from the top, folder) of the longest path in the table, or None."""
    found = None
    for number, (folders, _) in enumerate(LAYERS[tree]):
        for folder in folders:
            if (path == folder or path.startswith(folder + "/")) and (found is None or len(folder) > len(found[1])):
                found = number, folder
    return found


def circles(includes):
    """One list of files for each circle that a depth-first walk meets."""
    found, done, way = [], set(), []

    def visit(file):
        if file in way:
            found.append(way[way.index(file):] + [file])
        elif file not in done:
            way.append(file)
            for other in includes.get(file, []):
                visit(other)
            done.add(way.pop())

    for file in includes:
        visit(file)
    return found


def check_tree(root, tree):
    problems, includes, used = [], {}, set()
    for path in sources(root / tree):
        file = path.relative_to(root / tree).as_posix()
        own = layer_of(tree, file)
        if own is None:
            problems.append(f"{tree}/{file}: its folder stands in no layer")
            continue
        used.add(own[1])
        includes[file] = []
        for quoted, angled in INCLUDE.findall(path.read_text(encoding="utf-8")):
            name = quoted or angled
            for pattern, allowed in RESERVED.items():
                if re.fullmatch(pattern, name) and not any(re.fullmatch(a, f"{tree}/{file}") for a in allowed):
                    problems.append(f"{tree}/{file}: {name} is not for this file")
            if angled and not angled.startswith("kesta_db/"):
                continue
            if (f"{tree}/{file}", name) in SHARED:
                continue
            if not (root / tree / name).is_file() and not (root / "include" / name).is_file():
                problems.append(f"{tree}/{file}: there is no {name} in this tree")
                continue
            includes[file].append(name)
            other = layer_of(tree, name)
            if other is None:
                problems.append(f"{tree}/{file}: {name} stands in no layer")
                continue
            if other[1] == "kesta_db":
                used.add("kesta_db")
            if other[0] < own[0]:
                problems.append(f"{tree}/{file}: {name} lies in a layer above")
            elif other[0] == own[0] and other[1] != own[1]:
                problems.append(f"{tree}/{file}: {own[1]} and {other[1]} share a layer and know nothing of each other")
    for folders, _ in LAYERS[tree]:
        problems += [f"{tree}: the table has {folder}, which holds nothing" for folder in folders if folder not in used]
    problems += [f"{tree}: a circle: {' -> '.join(circle)}" for circle in circles(includes)]
    return problems


def picture():
    lines = []
    for tree, layers in LAYERS.items():
        lines.append(f"{tree}/")
        width = max(len("  ".join(folders)) for folders, _ in layers)
        lines += [f"    {'  '.join(folders):{width}}   {about}" for folders, about in layers]
        lines.append("")
    return "\n".join(lines).rstrip() + "\n"


def check_picture(root):
    page = root / "docs/architecture.md"
    if page.is_file() and f"```\n{picture()}```" in page.read_text(encoding="utf-8"):
        return []
    return ["docs/architecture.md: its picture is not the one that lint/layers.py --picture prints"]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--picture", action="store_true")
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parent.parent)
    options = parser.parse_args()
    if options.picture:
        print(picture(), end="")
        return 0
    problems = [problem for tree in LAYERS for problem in check_tree(options.root, tree)]
    problems += check_picture(options.root)
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(problems)} wrong includes or layers")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
