"""Sees on a small project that the mutation run tells caught changes from survivors, and true lists from wrong ones."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SURVIVOR = "answer.txt: nobody is told otherwise"


class MutationRun(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kesta-mutation-")
        cls.project = pathlib.Path(cls.folder.name) / "project"
        shutil.copytree(HERE / "self_test", cls.project)
        cls.lists = cls.project / "tests" / "mutation"

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def tearDown(self):
        (self.lists / "survivors.md").unlink(missing_ok=True)
        (self.lists / "changes" / "more.txt").unlink(missing_ok=True)

    def run_mutation(self, *options, more="", explained=""):
        if more:
            (self.lists / "changes" / "more.txt").write_text(more, encoding="utf-8")
        (self.lists / "survivors.md").write_text(explained, encoding="utf-8")
        return subprocess.run([sys.executable, HERE / "run.py", "--project", self.project, "--jobs", "2", *options],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)

    def assert_list_error(self, told, more):
        result = self.run_mutation("--only", "more.txt", more=more)
        self.assertNotEqual(result.returncode, 0, result.stdout)
        self.assertIn(told, result.stdout)

    def test_whole_run_tells_caught_from_survived(self):
        result = self.run_mutation()
        self.assertEqual(result.returncode, 1, result.stdout)
        self.assertIn("a half is a third: caught by Half.OfTheAnswer", result.stdout)
        self.assertIn("another answer: caught by Library.Answers", result.stdout)
        self.assertIn("there is no answer: caught by a crash", result.stdout)
        self.assertIn(f"{SURVIVOR}: SURVIVED", result.stdout)
        self.assertRegex(result.stdout, r"src/core +4 +3 +1\n")
        self.assertIn("Caught: 75.0 %", result.stdout)
        self.assertIn("Less than 98 %", result.stdout)

    def test_sources_stay_as_they_are(self):
        self.run_mutation("--only", "another answer")
        self.assertEqual((self.project / "src" / "core" / "answer.cpp").read_text(), (HERE / "self_test" / "src" / "core" / "answer.cpp").read_text())

    def test_caught_change_alone_is_well(self):
        result = self.run_mutation("--only", "another answer")
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertIn("Caught: 100.0 %", result.stdout)

    def test_survivor_must_be_explained(self):
        self.assertEqual(self.run_mutation("--only", "nobody").returncode, 1)
        result = self.run_mutation("--only", "nobody", explained=f"## {SURVIVOR}\n\nNobody asks.\n")
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertIn(f"Survived, as explained: {SURVIVOR}", result.stdout)

    def test_heading_alone_explains_nothing(self):
        result = self.run_mutation("--check", explained=f"## {SURVIVOR}\n")
        self.assertNotEqual(result.returncode, 0, result.stdout)

    def test_explanation_of_no_change_is_an_error(self):
        result = self.run_mutation("--check", explained="## answer.txt: something else\n\nIt was here once.\n")
        self.assertNotEqual(result.returncode, 0, result.stdout)

    def test_text_that_is_not_there_is_an_error(self):
        self.assert_list_error("0 times", "file src/core/answer.cpp\ntests api Library.*\n\nchange a\n- return 43;\n+ return 44;\n")

    def test_text_that_is_there_twice_is_an_error(self):
        self.assert_list_error("2 times", "file src/core/answer.cpp\ntests api Library.*\n\nchange a\n- return\n+ exit\n")

    def test_change_that_does_not_compile_is_an_error(self):
        self.assert_list_error("does not build", "file src/core/answer.cpp\ntests api Library.*\n\nchange a\n- return 7;\n+ return;\n")

    def test_filter_without_a_test_is_an_error(self):
        self.assert_list_error("has no test Nothing.*", "file src/core/answer.cpp\ntests api Nothing.*\n\nchange a\n- return 7;\n+ return 8;\n")

    def test_two_changes_of_one_name_are_an_error(self):
        one = "change a\n- return 7;\n+ return 8;\n\n"
        self.assert_list_error("two changes", "file src/core/answer.cpp\ntests api Library.*\n\n" + one + one)


if __name__ == "__main__":
    unittest.main()
