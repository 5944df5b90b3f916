#!/usr/bin/env python3
"""Checks what the guides say about files: quoted code stands in the file named, and every file named exists.

    ```cpp src/core/list.h     each line of such a block stands within one of the file, in this order; "..." stands for any lines
    `src/core/list.h`          a path, from the root or from the guide's folder; so do links

Usage: lint/quotes.py [GUIDE...], by default every guide of the repository.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TOP = {path.name for path in ROOT.iterdir()} - {"build"}

BLOCK = re.compile(r"^[ ]*```(\w+) (\S+)\n(.*?)^[ ]*```$", re.M | re.S)
ANY_BLOCK = re.compile(r"^[ ]*```.*?^[ ]*```$", re.M | re.S)
LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")
CODE = re.compile(r"`([\w.-]+/[\w./-]+)`")


def squeezed(line):
    return " ".join(line.split())


def quote_problems(guide, file, quote):
    path = ROOT / file
    if not path.is_file():
        return [f"{guide}: it quotes {file}, which is not there"]
    lines = iter([squeezed(line) for line in path.read_text(encoding="utf-8").split("\n")])
    for line in map(squeezed, quote.split("\n")):
        if line and line != "..." and not any(line in other for other in lines):
            return [f"{guide}: not in {file}, or not in this order: {line}"]
    return []


def path_problems(guide, text, folder):
    problems = []
    prose = ANY_BLOCK.sub("", text)
    named = [name for name in LINK.findall(prose) if "://" not in name]
    named += [name for name in CODE.findall(prose) if name.split("/")[0] in TOP]
    for name in named:
        if not (folder / name).exists() and not (ROOT / name).exists():
            problems.append(f"{guide}: there is no {name}")
    return problems


def check(guide):
    path = ROOT / guide
    text = path.read_text(encoding="utf-8")
    problems = [p for _, file, quote in BLOCK.findall(text) for p in quote_problems(guide, file, quote)]
    return problems + path_problems(guide, text, path.parent)


def guides_of_repository():
    names = subprocess.run(["git", "ls-files", "-z", "*.md"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in names.split("\0") if name and (ROOT / name).is_file()]


def main():
    guides = sys.argv[1:] or guides_of_repository()
    problems = [problem for guide in guides for problem in check(guide)]
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(guides)} guides, {len(problems)} wrong quotes or paths")
    return 1 if problems or not guides else 0


if __name__ == "__main__":
    sys.exit(main())
