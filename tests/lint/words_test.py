#!/usr/bin/env python3
"""The check of the words has to find each of them, in prose and in names, and to leave their neighbours alone."""

import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "lint"))
import words


def found(text, name="src/core/some.cpp"):
    return [problem.split("'")[1] for problem in words.check_text(name, text)]


class WordsTest(unittest.TestCase):
    def test_every_word_is_found(self):
        for text in ("the books say", "five floors", "the house", "a mark", "held back", "carried out", "foretold",
                     "passed over", "homeless", "rehomed", "a kept statement", "unsound", "is no date",
                     "nothing when it fails", "the scene"):
            self.assertEqual(len(found(text)), 1, text)

    def test_names_in_code_are_read_as_words(self):
        for text in ("kHeldBack", "held_back", "heldBack_", "BareFloor", "OfFloor", "endMark", "MakeScene()",
                     "prepareKept(sql)"):
            self.assertEqual(len(found(text)), 1, text)

    def test_words_are_found_across_lines(self):
        self.assertEqual(found("// Removals are held\n// back."), ["held back"])
        self.assertEqual(words.check_text("a.md", "one\nheld\nback\n")[0].split(": ")[0], "a.md:2")

    def test_words_do_not_reach_across_sentences(self):
        self.assertEqual(found("It is held. Back there it is not."), [])

    def test_neighbours_are_left_alone(self):
        self.assertEqual(found("bookmarks, marked, address books, a household, benchmark, passes, sounding"), [])

    def test_names_of_the_interface_are_left_alone(self):
        self.assertEqual(found("DB_BOOKMARK_SetAddedMark GetSyncedMarks BookMarkType"), [])

    def test_word_of_one_folder_is_found_there_alone(self):
        self.assertEqual(found('#include "work.h"', "bench/media.cpp"), ["work"])
        self.assertEqual(found('#include "work.h"', "src/media/media.cpp"), [])

    def test_exceptions_have_reasons_and_are_needed(self):
        for files, text, reason in words.EXCEPTIONS:
            self.assertTrue(reason)
            without = [e for e in words.EXCEPTIONS if e != (files, text, reason)]
            names = [name for name in words.repository_files() if words.re.fullmatch(files, name)]
            saved, words.EXCEPTIONS = words.EXCEPTIONS, without
            try:
                problems = [p for name in names
                            for p in words.check_text(name, (ROOT / name).read_text(encoding="utf-8"))]
            finally:
                words.EXCEPTIONS = saved
            self.assertTrue(problems, f"nothing needs the exception for {files} {text}")


if __name__ == "__main__":
    unittest.main()
