"""Runs the test programs: each in name spaces of its own where the system permits that, for the library's lock and
trace are shared by all processes of a user, and a changed library may leave both in any state."""

import os
import re
import shutil
import signal
import subprocess
import tempfile

_ISOLATE = 'mount -t tmpfs tmpfs /dev/shm && exec "$@"'


def isolation():
    """The command before an isolated command; empty where the system permits no name spaces."""
    for rights in ([], ["--map-root-user"]):
        command = ["unshare", *rights, "--mount", "--ipc", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c", _ISOLATE, "sh"]
        try:
            if subprocess.run([*command, "true"], capture_output=True, check=False).returncode == 0:
                return command
        except OSError:
            break
    return []


class TestPrograms:
    def __init__(self, build, isolate, launcher=(), beside=()):
        """`launcher` runs foreign programs; those find the library and the files `beside` in their own folder."""
        self.build = build
        self.isolate = isolate
        self.launcher = [str(word) for word in launcher]
        self.beside = beside

    def _program(self, target, folder, changed, library):
        """The program to run, and what its environment needs to reach the changed library."""
        original = self.build.output(target)
        if not self.launcher:
            return changed or original, {} if library is None else {"KESTA_TEST_LIBRARY": str(library)}
        program = folder / original.name
        libraries = [] if library is not None else [original.parent / name for name in self.beside if name.endswith(".dll")]
        others = [original.parent / name for name in self.beside if not name.endswith(".dll")]
        for source in [original, *libraries, *others]:
            if not (folder / source.name).exists():
                os.link(source, folder / source.name)
        return program, {}

    def has(self, target, pattern, folder):
        """Whether the program has a test that the pattern names."""
        output, _ = self._start(target, folder, ["--gtest_list_tests", f"--gtest_filter={pattern}"])
        return re.search(r"^  \w", output, re.MULTILINE) is not None

    def run(self, target, pattern, folder, changed=None, library=None, limit=600):
        """Runs a program's tests up to the first failure. Returns why they failed, or None if they passed."""
        arguments = [f"--gtest_filter={pattern}", "--gtest_fail_fast", "--gtest_brief=1", "--gtest_color=no"]
        output, code = self._start(target, folder, arguments, changed, library, limit)
        if code is None:
            return "the time limit"
        failed = re.search(r"\[  FAILED  \] ([\w./]+)", output)
        if failed:
            return failed.group(1)
        passed = re.search(r"\[  PASSED  \] (\d+) test", output)
        if code == 0 and passed:
            return None
        return "a crash" if code != 0 else "an early exit"

    def _start(self, target, folder, arguments, changed=None, library=None, limit=600):
        """What the program writes and its exit code, None for one that ran into the limit."""
        program, environment = self._program(target, folder, changed, library)
        with tempfile.TemporaryDirectory(prefix="kesta-mutation-") as home:
            environment = os.environ | environment | {
                "XDG_RUNTIME_DIR": home, "XDG_DATA_HOME": home, "LC_ALL": "C.UTF-8",
                "KESTA_TEST_PARAGRAPH_SIGN": "c2a7",  # as tests/statements has it for CTest
                "MALLOC_PERTURB_": "85"}  # what was freed and what was never written does not look right by accident
            process = subprocess.Popen(
                [*self.isolate, *self.launcher, str(program), *arguments], cwd=folder, env=environment,
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", start_new_session=True)
            try:
                output, _ = process.communicate(timeout=limit)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                return "", None
            return output, process.returncode


def prepared_folder(path):
    shutil.rmtree(path, ignore_errors=True)
    path.mkdir(parents=True)
    return path
