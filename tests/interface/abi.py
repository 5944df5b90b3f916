#!/usr/bin/env python3
"""Compares the binary interface of the header, types and functions, with the one that was released.

    abi.py            ends with 1 when a program compiled with the released header could notice the difference
    abi.py --renew    stores the present interface; for a new major version, or after an addition

A library is made for it that has every function of the header and does nothing, so that what is compared is the header and
nothing of the implementation. That the real library has these functions the compiler and check_exports.py see to.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
HEADER = ROOT / "include/kesta_db/kesta_db.h"
BASELINE = Path(__file__).with_name("kesta_db.abi")


def interface(folder):
    """Writes the interface of the header and returns the file."""
    text = re.sub(r"/\*.*?\*/", "", HEADER.read_text(encoding="utf-8"), flags=re.S)
    declared = re.findall(r"KESTA_DB_API (int32_t KESTA_DB_CALL DB_\w+\([^)]*\));", text)
    assert len(declared) > 100, len(declared)
    source, library, found = folder / "all.c", folder / "libKESTA_DB.so.1", folder / "kesta_db.abi"
    source.write_text('#include "kesta_db/kesta_db.h"\n' + "".join(f"{line} {{ return 0; }}\n" for line in declared),
                      encoding="ascii")
    subprocess.run(["gcc", "-std=c11", "-g", "-w", "-shared", "-fPIC", "-Wl,-soname,libKESTA_DB.so.1",
                    f"-I{ROOT / 'include'}", source.name, "-o", library], check=True, cwd=folder)
    subprocess.run(["abidw", "--no-show-locs", "--no-corpus-path", "--no-comp-dir-path", "--no-elf-needed",
                    "--no-architecture", "--out-file", found, library], check=True)
    return found


def main():
    with tempfile.TemporaryDirectory() as folder:
        found = interface(Path(folder))
        if "--renew" in sys.argv[1:]:
            # Where it was made is no part of it.
            text = found.read_text(encoding="utf-8").replace(str(folder), ".").replace(str(ROOT), ".")
            BASELINE.write_text(text, encoding="utf-8")
            return 0
        return 1 if subprocess.run(["abidiff", "--no-architecture", BASELINE, found]).returncode else 0


if __name__ == "__main__":
    sys.exit(main())
