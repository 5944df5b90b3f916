"""Builds the unchanged project once and then, for each change, only the objects and files that it reaches.

The sources are never touched: a changed file lies in a folder of its own, which the compiler searches first. How things
are compiled and linked, and what depends on what, is asked of Ninja."""

import os
import re
import shlex
import subprocess


class BuildError(Exception):
    """The unchanged project does not build or pass, or a change does not compile."""


def run(command, **options):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if result.returncode != 0:
        raise BuildError("\n".join(["does not build", *result.stdout.splitlines()[-30:]]))
    return result.stdout


# Warnings are for people, and a change often leaves something unused; what is compiled once is not worth optimising.
SETTINGS = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_DEBUG=", "-DCMAKE_C_FLAGS_DEBUG=-O1"]


class Build:
    def __init__(self, root, folder, library, programs, helpers=(), settings=()):
        """`library` and `programs` are targets, `helpers` targets that the programs start."""
        self.root = root
        self.folder = folder
        self.commands = {}  # by output
        self.inputs = {}  # the objects of every linked file
        self.outputs = {}  # by target
        self.targets = [library, *programs]
        run(["cmake", "-S", root, "-B", folder, "-G", "Ninja", *SETTINGS, *settings])
        run(["cmake", "--build", folder, "-j", str(os.cpu_count()), "--target", *self.targets, *helpers])
        for target in self.targets:
            self._read_commands(target)
        self.dependencies = self._read_dependencies()

    def _ninja(self, *arguments):
        return run(["ninja", "-C", self.folder, "--quiet", *arguments])

    def _read_commands(self, target):
        for line in self._ninja("-t", "commands", target).splitlines():
            for command in line.split(" && "):
                words = shlex.split(command)
                if "-o" in words:
                    output = words[words.index("-o") + 1]
                    self.commands[output] = words
        # The last one linked is the target's own.
        self.outputs[target] = output
        self.inputs[output] = [word for word in self.commands[output] if re.search(r"\.o(bj)?$", word)]

    def _read_dependencies(self):
        """The sources that every object was made of, relative to the root."""
        dependencies, current = {}, None
        for line in self._ninja("-t", "deps").splitlines():
            if line.startswith(" "):
                path = os.path.normpath(os.path.join(self.folder, line.strip()))
                current.add(os.path.relpath(path, self.root))
            elif ": #deps" in line:
                current = dependencies.setdefault(line.partition(":")[0], set())
        return dependencies

    def output(self, target):
        return self.folder / self.outputs[target]

    def objects_of(self, target, file):
        """The target's objects that the file goes into."""
        return [name for name in self.inputs[self.outputs[target]] if file in self.dependencies.get(name, ())]


class ChangedBuild:
    """What one change makes of the build, in a folder of its own. Everything is made when it is first asked for."""

    def __init__(self, build, change, folder):
        self.build = build
        self.change = change
        self.folder = folder
        self.objects = {}
        # Searched before the sources' own root, as includes name their files from there.
        self.overlay = folder / "src"
        within = os.path.relpath(change.file, "src")
        self.file = self.overlay / within
        self.file.parent.mkdir(parents=True)
        text = (build.root / change.file).read_text(encoding="utf-8")
        self.file.write_text(change.applied_to(text), encoding="utf-8")

    def link(self, target):
        """Links the target with the changed objects; None if the change does not reach it."""
        reached = self.build.objects_of(target, self.change.file)
        if not reached:
            return None
        for name in reached:
            if name not in self.objects:
                self.objects[name] = self._compile(name)
        output = self.build.outputs[target]
        changed = self.folder / os.path.basename(output)
        words = []
        for word in self.build.commands[output]:
            if word == output:
                word = str(changed)
            elif word.startswith("-Wl,--out-implib,"):
                word = f"-Wl,--out-implib,{changed}.a"
            words.append(str(self.objects.get(word, word)))
        run(words, cwd=self.build.folder)
        return changed

    def _compile(self, name):
        changed = self.folder / name.replace("/", "_")
        dependencies = changed.with_suffix(".d")
        words = list(self.build.commands[name])
        words[words.index("-o") + 1] = str(changed)
        words[words.index("-MF") + 1] = str(dependencies)
        source = words.index("-c") + 1
        if os.path.relpath(os.path.join(self.build.folder, words[source]), self.build.root) == self.change.file:
            words[source] = str(self.file)
        # Behind the compiler, and behind the cache before it, if there is one.
        compiler = next(i for i, word in enumerate(words) if re.search(r"(\+\+|g?cc)(-\w+)?$", word) and "ccache" not in word)
        words[compiler + 1 : compiler + 1] = ["-I", str(self.overlay)]
        run(words, cwd=self.build.folder)
        made_of = [os.path.normpath(os.path.join(self.build.folder, word)) for word in dependencies.read_text().split()]
        if str(self.file) not in made_of:
            raise BuildError(f"{name} was compiled without the change")
        return changed
