#!/usr/bin/env python3
"""The check of the guides has to find quotes and paths that are not true."""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "lint"))
import quotes

HEADER = "include/kesta_db/kesta_db.h"


class QuotesTest(unittest.TestCase):
    def problems(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".md", encoding="utf-8") as guide:
            guide.write(text)
            guide.flush()
            return quotes.check(guide.name)

    def test_true_quote_passes(self):
        self.assertEqual(self.problems(f"```c {HEADER}\nDB_Open(void);\n...\nDB_Close(void);\n```\n"), [])

    def test_changed_line_is_found(self):
        self.assertEqual(len(self.problems(f"```c {HEADER}\nDB_Open(int);\n```\n")), 1)

    def test_other_order_is_found(self):
        self.assertEqual(len(self.problems(f"```c {HEADER}\nDB_Close(void);\nDB_Open(void);\n```\n")), 1)

    def test_quote_of_missing_file_is_found(self):
        self.assertEqual(len(self.problems("```c include/other.h\nint a;\n```\n")), 1)

    def test_quote_in_a_list_is_read(self):
        self.assertEqual(len(self.problems(f"1. So:\n\n   ```c {HEADER}\n   DB_Open(int);\n   ```\n")), 1)

    def test_existing_paths_pass(self):
        self.assertEqual(self.problems("See `src/core/list.h`, `src/pim/` and [the tests](tests/api/given.h#top).\n"), [])

    def test_missing_path_is_found(self):
        self.assertEqual(len(self.problems("See `src/core/shelf.h`.\n")), 1)

    def test_dead_link_is_found(self):
        self.assertEqual(len(self.problems("See [the tests](tests/nowhere.md).\n")), 1)


if __name__ == "__main__":
    unittest.main()
