#!/usr/bin/env python3
"""The check of the layers has to find each kind of wrong include in a copy of the sources."""

import shutil
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "lint"))
import layers


class LayersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for tree in (*layers.LAYERS, "include"):
            shutil.copytree(ROOT / tree, self.root / tree)

    def include(self, file, name):
        path = self.root / file
        path.parent.mkdir(parents=True, exist_ok=True)
        old = path.read_text(encoding="utf-8") if path.exists() else ""
        path.write_text(f"#include {name}\n{old}", encoding="utf-8")

    def problems(self):
        return [problem for tree in layers.LAYERS for problem in layers.check_tree(self.root, tree)]

    def found_after(self, file, name):
        self.include(file, name)
        problems = self.problems()
        self.assertEqual(len(problems), 1, problems)
        return problems[0]

    def test_copy_is_in_order(self):
        self.assertEqual(self.problems(), [])

    def test_upward_include_is_found(self):
        self.assertEqual(self.found_after("src/core/dates.cpp", '"library/tables.h"'),
                         "src/core/dates.cpp: library/tables.h lies in a layer above")

    def test_upward_include_of_client_is_found(self):
        self.assertEqual(self.found_after("tools/kesta/base/text.cpp", '"report/table.h"'),
                         "tools/kesta/base/text.cpp: report/table.h lies in a layer above")

    def test_include_of_neighbouring_family_is_found(self):
        self.assertEqual(self.found_after("src/pim/items.cpp", '"backups/backups.h"'),
                         "src/pim/items.cpp: pim and backups share a layer and know nothing of each other")

    def test_stage_that_knows_another_family_is_found(self):
        self.assertIn("share a layer", self.found_after("tools/kesta/stages/pim/pim_text.cpp",
                                                        '"stages/bookmarks/bookmark_file.h"'))

    def test_interface_that_knows_its_implementation_is_found(self):
        self.include("src/platform/files.h", '"platform/posix/lock_file.h"')
        self.assertIn("src/platform/files.h: platform/posix/lock_file.h lies in a layer above", self.problems())

    def test_circle_is_found(self):
        self.include("src/core/text.h", '"core/trace.h"')
        self.include("src/core/trace.h", '"core/text.h"')
        self.assertTrue([problem for problem in self.problems() if problem.startswith("src: a circle: core/t")])

    def test_file_that_includes_itself_is_found(self):
        self.assertEqual(self.found_after("src/core/dates.h", '"core/dates.h"'),
                         "src: a circle: core/dates.h -> core/dates.h")

    def test_folder_without_a_layer_is_found(self):
        self.assertEqual(self.found_after("src/helpers/strings.h", "<string>"),
                         "src/helpers/strings.h: its folder stands in no layer")

    def test_client_that_knows_the_librarys_sources_is_found(self):
        self.assertEqual(self.found_after("tools/kesta/database/database.cpp", '"core/dates.h"'),
                         "tools/kesta/database/database.cpp: there is no core/dates.h in this tree")

    def test_sqlite_beside_its_files_is_found(self):
        self.assertEqual(self.found_after("src/media/gallery.cpp", "<sqlite3.h>"),
                         "src/media/gallery.cpp: sqlite3.h is not for this file")

    def test_system_header_in_shared_code_is_found(self):
        self.assertEqual(self.found_after("tools/kesta/sync/executor.cpp", "<unistd.h>"),
                         "tools/kesta/sync/executor.cpp: unistd.h is not for this file")

    def test_empty_layer_is_found(self):
        shutil.rmtree(self.root / "tools/kesta/stages/backup")
        self.assertIn("tools/kesta: the table has stages/backup, which holds nothing", self.problems())

    def test_outdated_picture_is_found(self):
        page = self.root / "docs/architecture.md"
        page.parent.mkdir()
        page.write_text(f"```\n{layers.picture()}```\n", encoding="utf-8")
        self.assertEqual(layers.check_picture(self.root), [])
        page.write_text(page.read_text(encoding="utf-8").replace("library ", "shelf   "), encoding="utf-8")
        self.assertEqual(len(layers.check_picture(self.root)), 1)


if __name__ == "__main__":
    unittest.main()
