"""The lists of planted changes, and the explanations of those that no test catches. Their form is in README.md."""

import dataclasses
import pathlib


class ListError(Exception):
    """A list says something that is not true of the sources, or cannot be read."""


@dataclasses.dataclass(frozen=True)
class Change:
    list: str
    fault: str
    file: str
    windows: bool
    tests: tuple  # of (program, filter)
    old: str
    new: str

    @property
    def name(self):
        return f"{self.list}: {self.fault}"

    def applied_to(self, text):
        """The file's text with the change in it."""
        found = text.count(self.old)
        if found != 1:
            raise ListError(f"{self.name}: its text stands in {self.file} {found} times instead of once")
        return text.replace(self.old, self.new)


class _Reader:
    """Reads one list, line by line."""

    def __init__(self, path, programs):
        self.name = path.name
        self.programs = programs
        self.changes = []
        self.number = 0
        self.file = None
        self.windows = False
        self.file_tests = []
        self.change = None  # the fault, tests and lines of the change that is being read
        for self.number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            self.read(line)
        self.finish()

    def fail(self, reason):
        raise ListError(f"{self.name}, line {self.number}: {reason}")

    def read(self, line):
        word, _, rest = line.partition(" ")
        if word in ("-", "+"):
            if self.change is None:
                self.fail("a text without a change")
            self.change[word].append(rest)
        elif not line.strip() or word == "#":
            self.finish()
        elif word in ("file", "windows-file"):
            self.finish()
            self.file, self.windows, self.file_tests = rest, word == "windows-file", []
        elif word == "tests":
            program, _, pattern = rest.partition(" ")
            if program not in self.programs or not pattern:
                self.fail("tests are named by a program and a filter")
            (self.file_tests if self.change is None else self.change["tests"]).append((program, pattern))
        elif word == "change":
            self.finish()
            self.change = {"fault": rest, "tests": [], "-": [], "+": []}
        else:
            self.fail(f"{word!r} means nothing here")

    def finish(self):
        if self.change is None:
            return
        old, new = "\n".join(self.change["-"]), "\n".join(self.change["+"])
        tests = tuple(self.change["tests"] or self.file_tests)
        if self.file is None or not tests or not old or old == new:
            self.fail("a change wants a file, tests, a text that stands there and another that it becomes")
        self.changes.append(Change(self.name, self.change["fault"], self.file, self.windows, tests, old, new))
        self.change = None


def read_lists(folder, programs):
    """All changes of the folder's lists; raises ListError if two have one name."""
    changes = [change for path in sorted(folder.glob("*.txt")) for change in _Reader(path, programs).changes]
    seen = set()
    for change in changes:
        if change.name in seen:
            raise ListError(f"{change.name}: two changes of this name")
        seen.add(change.name)
    return changes


def check_against(changes, root):
    """Raises ListError unless every change's text stands in its file exactly once; tells all that do not."""
    problems = []
    for change in changes:
        try:
            change.applied_to((root / change.file).read_text(encoding="utf-8"))
        except (ListError, OSError) as problem:
            problems.append(str(problem))
    if problems:
        raise ListError("\n".join(problems))


def read_explanations(path):
    """The names of the changes that are known to survive; each needs an explanation below its heading."""
    explained, name = {}, None
    for line in path.read_text(encoding="utf-8").splitlines() if path.exists() else []:
        if line.startswith("## "):
            name = line[3:].strip()
            explained[name] = ""
        elif name is not None:
            explained[name] += line.strip()
    for name, text in explained.items():
        if not text:
            raise ListError(f"{path.name}: {name}: without an explanation")
    return set(explained)
