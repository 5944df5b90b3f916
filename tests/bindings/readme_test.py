"""What the README shows of using the library: every block is built and run as it stands there, against an installation.

    readme_test.py BUILD_FOLDER
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SECTION = (ROOT / "README.md").read_text(encoding="utf-8").split("## Using the library\n", 1)[1].split("\n## ", 1)[0]
BLOCKS = dict(re.findall(r"```(\w+)\n(.*?)```", SECTION, flags=re.S))
BUILD = Path(sys.argv.pop()).resolve()


class Readme(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp())
        cls.prefix = cls.folder / "prefix"
        for component in ("runtime", "development"):
            subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.prefix, "--component", component], check=True,
                           stdout=subprocess.DEVNULL)
        library = cls.prefix / "lib"
        cls.environment = {**os.environ, "XDG_DATA_HOME": str(cls.folder), "XDG_RUNTIME_DIR": str(cls.folder),
                           "PKG_CONFIG_PATH": str(library / "pkgconfig"), "LD_LIBRARY_PATH": str(library),
                           "CMAKE_PREFIX_PATH": str(cls.prefix), "KESTA_DB_LIBRARY": str(library / "libKESTA_DB.so.1"),
                           "PYTHONPATH": str(ROOT / "bindings/python/src"), "PYTHONDONTWRITEBYTECODE": "1"}

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def run_it(self, *command):
        result = subprocess.run([str(part) for part in command], cwd=self.folder, env=self.environment,
                                capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result.stdout

    def write(self, name, block):
        (self.folder / name).write_text(BLOCKS[block], encoding="utf-8")

    def test_all_blocks_are_tried(self):
        self.assertEqual(sorted(BLOCKS), ["c", "cmake", "cpp", "csharp", "python", "sh"])
        for name, block in BLOCKS.items():
            self.assertLessEqual(len(block.splitlines()), 7, name)

    def test_c_by_pkg_config(self):
        self.write("my_program.c", "c")
        self.run_it("sh", "-ec", BLOCKS["sh"])
        self.assertEqual(self.run_it("./my_program"), "0 folders\n")

    def test_cpp_by_cmake(self):
        self.write("my_program.cpp", "cpp")
        (self.folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(my_program CXX)\nset(CMAKE_CXX_STANDARD 20)\n"
            "add_executable(my_program my_program.cpp)\n" + BLOCKS["cmake"], encoding="utf-8")
        self.run_it("cmake", "-S", ".", "-B", "build", "-G", "Ninja")
        self.run_it("cmake", "--build", "build")
        self.assertEqual(self.run_it("build/my_program"), "0 folders\n")

    def test_python(self):
        self.write("my_program.py", "python")
        self.assertEqual(self.run_it(sys.executable, "my_program.py"), "0 folders\n")

    @unittest.skipUnless(shutil.which("mono") and (BUILD / "tests/bindings/KestaDb.dll").exists(), "without mono")
    def test_csharp(self):
        self.write("my_program.cs", "csharp")
        assembly = self.folder / "KestaDb.dll"
        shutil.copy(BUILD / "tests/bindings/KestaDb.dll", assembly)
        self.run_it("mcs", f"-r:{assembly}", "my_program.cs")
        self.assertEqual(self.run_it("mono", "my_program.exe"), "0 folders\n")


if __name__ == "__main__":
    unittest.main()
