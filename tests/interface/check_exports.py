#!/usr/bin/env python3
"""Compares the list of exports with the header and with a built library.

The .def file is the list. The header has to declare exactly its names; a Linux library has to export exactly its names
and carry its major version in the SONAME; a DLL has to export exactly its names under exactly its ordinals, to need no
DLL but the system's, and to carry the version resource.
"""

import argparse
import re
import struct
import subprocess
import sys
from pathlib import Path

# What every Windows has.
SYSTEM_DLLS = {"kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "advapi32.dll", "user32.dll"}

FIXED_FILE_INFO = struct.pack("<I", 0xFEEF04BD)

problems = []


def check(condition, problem):
    if not condition:
        problems.append(problem)


def compare(where, found, expected):
    for name in sorted(set(expected) - set(found)):
        problems.append(f"{where} lacks {name}")
    for name in sorted(set(found) - set(expected)):
        problems.append(f"{where} has {name}, which is not in the list of exports")
    check(len(found) == len(set(found)), f"{where} has a name twice")


def read_definition(path):
    """Names and ordinals, in the order of the file."""
    exports = []
    text = path.read_text(encoding="ascii")
    entries = text.split("EXPORTS", 1)[1].split("\n")[1:]
    for line in entries:
        if not line.strip() or line.lstrip().startswith(";"):
            continue
        match = re.fullmatch(r"\s+(DB_\w+)\s+@(\d+)", line)
        check(match, f"{path.name}: a line that is no export with its ordinal: {line!r}")
        if match:
            exports.append((match[1], int(match[2])))
    ordinals = [ordinal for _, ordinal in exports]
    check(len(exports) > 0, f"{path.name} lists nothing")
    check(len(set(ordinals)) == len(ordinals), f"{path.name} has an ordinal twice")
    return exports


def check_header(path, names, version):
    whole = re.search(r'^#define KESTA_DB_VERSION "(.*)"', path.read_text(encoding="utf-8"), flags=re.M)
    check(whole and whole[1] == version, f"{path.name}: the version as a text is {whole and whole[1]}, not {version}")
    text = re.sub(r"/\*.*?\*/", "", path.read_text(encoding="utf-8"), flags=re.S)
    declared = re.findall(r"^KESTA_DB_API int32_t KESTA_DB_CALL (DB_\w+)\(", text, flags=re.M)
    compare(path.name, declared, names)
    mentioned = re.findall(r"\b(DB_\w+)\s*\(", text)
    compare(f"{path.name}, however declared,", mentioned, names)


def output_of(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True).stdout


def check_linux(library, names, nm, readelf, version):
    symbols = [line.split()[-1] for line in output_of(nm, "-D", "--defined-only", library).splitlines()]
    compare(library.name, symbols, names)
    soname = re.search(r"\(SONAME\).*\[(.*)\]", output_of(readelf, "-d", library))
    expected = f"libKESTA_DB.so.{version.split('.')[0]}"
    check(soname and soname[1] == expected, f"{library.name}: SONAME is {soname and soname[1]}, not {expected}")


def check_windows(library, exports, objdump, version):
    text = output_of(objdump, "-p", library)
    check("Name \t" in text and "KESTA_DB.dll" in text, f"{library.name} does not bear its name")
    base = int(re.search(r"^Ordinal Base\s+(\d+)", text, flags=re.M)[1])
    table = text.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
    rows = re.findall(r"^\s*\[\s*(\d+)\](?:\s+\+base\[\s*\d+\]\s+[0-9a-f]+)?\s+(\S+)\s*$", table, flags=re.M)
    compare(library.name, [name for _, name in rows], [name for name, _ in exports])
    ordinals = {name: base + int(index) for index, name in rows}
    for name, ordinal in exports:
        found = ordinals.get(name)
        check(found in (None, ordinal), f"{library.name}: {name} has ordinal {found}, not {ordinal}")
    addresses = text.split("Export Address Table", 1)[1].split("[Ordinal/Name Pointer] Table", 1)[0]
    count = len(re.findall(r"\+base\[", addresses))
    check(count == len(exports), f"{library.name} exports {count} addresses, not {len(exports)}")

    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    check(imports, f"{library.name}: no imports found")
    for name in sorted(imports - SYSTEM_DLLS):
        problems.append(f"{library.name} needs {name}")
    check_version_resource(library, version)


def check_version_resource(library, version):
    content = library.read_bytes()
    start = content.find("VS_VERSION_INFO".encode("utf-16-le"))
    info = content.find(FIXED_FILE_INFO, start)
    if start < 0 or info < 0:
        problems.append(f"{library.name} has no version resource")
        return
    low_first = struct.unpack_from("<4H", content, info + 8)
    found = f"{low_first[1]}.{low_first[0]}.{low_first[3]}"
    check(found == version, f"{library.name}: the version resource says {found}, not {version}")
    check("KESTA_DB.dll".encode("utf-16-le") in content[start:], f"{library.name}: the version resource has no name")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--definition", type=Path, required=True)
    parser.add_argument("--header", type=Path, required=True)
    parser.add_argument("--library", type=Path, required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--nm", help="for a Linux library")
    parser.add_argument("--readelf", help="for a Linux library")
    parser.add_argument("--objdump", help="for a DLL")
    options = parser.parse_args()

    exports = read_definition(options.definition)
    names = [name for name, _ in exports]
    compare(options.definition.name, names, names)
    check_header(options.header, names, options.version)
    if options.objdump:
        check_windows(options.library, exports, options.objdump, options.version)
    else:
        check_linux(options.library, names, options.nm, options.readelf, options.version)
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f"{len(exports)} exports, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
