#!/usr/bin/env python3
"""Finds words that this project does not use for a thing, because it has another word for it.

    lint/words.py           reads every file of the repository
    lint/words.py FILE...   reads these

Names in code are read as the words they are made of, and sentences across the ends of lines.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

# (what to say, what is not said, in which files). Patterns see lower-case words with one blank between them; other
# punctuation than hyphens and quotation marks is a bar.
WORDS = [
    ("database, record, row", r"(?<!address )books", ""),
    ("layer; baseline (of a benchmark)", r"floors?|houses?", ""),
    ("bookmark, flag, suffix or sentinel",
     r"(?<!question )(?<!byte order )marks?(?! (a|an|all|as|each|every|it|that|the|them|this)\b)", ""),
    ("deferred", r"h[eo]ld(s|ing)? back", ""),
    ("plan, execute; preview", r"carr(y|ies|ied|ying) out|foret(ell|ells|elling|old)|fores(ee|ees|een|aw)", ""),
    ("skip", r"pass(es|ed|ing)? over", ""),
    ("obsolete, misplaced, reassign", r"homeless|rehom(e|es|ed|ing)", ""),
    ("cached statement", r"kept statements?|(prepare|exec) kept|kept kept", ""),
    ("valid, well-formed", r"(un)?sound(s|ly|ness)?", ""),
    ("not a date, not a ZIP archive", r"(is|are|was|were|be) no (date|archive|zip archive)", ""),
    ("none if, std::nullopt if", r"(nothing|none) when", ""),
    ("data set, benchmark case", r"scenes?", ""),
    ("benchmark case", r"work(?= \| h\b)|(library|bare|make) work", "bench/"),
]

# (files, text of the line, reason): what the words mean in these places.
EXCEPTIONS = [
    (r"lint/words\.py|tests/lint/.*", r"", "the list itself and the test of it"),
    (r"(tools/kesta/sync|tests/client)/.*", r"held-back\.json", "the file's name in the state of earlier versions"),
    (r"tools/kesta/demo(_samples)?\.sh", r"(?i)sound", "what is to be heard"),
    (r"tests/torture/interposer\.py", r"\bceil\b", "a function of the C library"),
    (r"tests/torture/.*", r"(?i)mark", "the name of a point in the log of operations"),
]

# Names that the interface or another library has fixed.
FIXED = re.compile(r"(std::(chrono::)?|math\.|Math\.)[Ff]loor|\bDB_\w+|BookMarkType|(?<=Synced)Marks?|(?<=Added)Mark|(?<=Deleted)Mark|(?<=Updated)Mark")

# Data that others would write, not words of this project.
DATA = re.compile(r"tests/(fuzz/seeds|client/compatibility)/|\.svg$")

TOKEN = re.compile(r"[A-Z]+(?![a-z])|[A-Z]?[a-z']+|[0-9]+|[^\sA-Za-z0-9_\-\"'`*/#]")


def words_of(text):
    """The text as the patterns see it, and for each line where it begins in there."""
    parts, begins, size = [], [], 0
    for line in text.split("\n"):
        begins.append(size)
        for token in TOKEN.findall(FIXED.sub("|", line)):
            word = token.lower() if token[0].isalnum() else "|"
            parts.append(word)
            size += len(word) + 1
    return " ".join(parts), begins


def is_exception(name, line):
    return any(re.fullmatch(files, name) and re.search(text, line) for files, text, _ in EXCEPTIONS)


def check_text(name, text):
    problems = []
    words, begins = words_of(text)
    lines = text.split("\n")
    for say, pattern, folder in WORDS:
        if not name.startswith(folder):
            continue
        for match in re.finditer(rf"(?<![a-z0-9'])(?:{pattern})(?![a-z0-9'])", words):
            number = max(i for i, begin in enumerate(begins) if begin <= match.start())
            if not is_exception(name, lines[number]):
                problems.append(f"{name}:{number + 1}: '{match.group()}': say {say}")
    return problems


def repository_files():
    names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in names.split("\0") if name and not DATA.search(name) and (ROOT / name).is_file()]


def main():
    problems = []
    for name in sys.argv[1:] or repository_files():
        problems += check_text(name, (ROOT / name).read_text(encoding="utf-8", errors="replace"))
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(problems)} words to replace")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
