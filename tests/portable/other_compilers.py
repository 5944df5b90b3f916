#!/usr/bin/env python3
"""Whether other compilers take what GCC and MinGW build here; nothing is linked or run.

    other_compilers.py BUILD-FOLDER

Clang for Windows reads every source of the library and the client that Windows builds, as build/windows-x64 is configured.
Visual C++ is not to be had, nor are its headers: in its mode Clang takes the flags that CMake would give it, for both sizes,
and reads the header for C.
"""

import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MINGW = "x86_64-w64-mingw32-g++-posix"
GCC_ONLY = {"-fno-gnu-unique", "-fno-keep-inline-dllexport"}
HEADER = ROOT / "include" / "kesta_db" / "kesta_db.h"


def commands(build, folders):
    """(source, folder in which it is compiled, arguments) of the sources below the folders."""
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = Path(entry["directory"], entry["file"]).resolve()
        if any(source.is_relative_to(ROOT / folder) for folder in folders):
            arguments = shlex.split(entry["command"])
            start = next(i for i, argument in enumerate(arguments) if argument.startswith(("-", "/D", "/n")))
            yield source, entry["directory"], arguments[start:]


def without_outputs(arguments):
    """Without what names outputs, and what GCC alone knows."""
    kept, skip = [], False
    for argument in arguments:
        if skip:
            skip = False
        elif argument in ("-o", "-MF", "-MT"):
            skip = True
        elif argument not in ("-MD", "-c") and argument not in GCC_ONLY and not argument.startswith(("/Fo", "/Fd")):
            kept.append(argument)
    return kept


def check(what, runs):
    """Each of runs is (name, folder, command); returns whether all passed."""
    runs = list(runs)
    if not runs:
        sys.exit(f"{what}: there is nothing to check")

    def try_one(run):
        name, folder, command = run
        done = subprocess.run(command, cwd=folder, capture_output=True, text=True)
        return name, done.returncode, done.stdout + done.stderr

    failed = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, code, said in pool.map(try_one, runs):
            if code != 0:
                failed += 1
                print(f"{name}\n{said}")
    print(f"{what}: {len(runs) - failed} of {len(runs)} pass")
    return failed == 0


def clang_for_windows(build):
    said = subprocess.run([MINGW, "-E", "-x", "c++", "-v", os.devnull], capture_output=True, text=True, check=True).stderr
    listed = said.split("#include <...> search starts here:")[1].split("End of search list")[0].split("\n")
    headers = [word for folder in listed if "/c++" in folder for word in ("-isystem", folder.strip())]
    for source, folder, arguments in commands(build, ("src", "tools")):
        compiler = ["clang++", *headers] if source.suffix == ".cpp" else ["clang"]
        yield source, folder, [*compiler, "--target=x86_64-w64-windows-gnu", "-fsyntax-only", *without_outputs(arguments)]


def visual_cpp_flags(build, compiler):
    seen = set()
    for source, folder, arguments in commands(build, ("src",)):
        # The flags alone: what the sources include is not here. The source is the last argument.
        flags = tuple(flag for flag in without_outputs(arguments)[:-1] if flag != "--" and not flag.startswith("-D"))
        if flags not in seen:
            seen.add(flags)
            for target in ("x86_64", "i686"):
                yield (f"flags for {source}", folder,
                       [compiler, *flags, f"--target={target}-pc-windows-msvc", "-Werror=unknown-argument", "-Wno-unused-command-line-argument",
                        "/Zs", os.devnull])


def visual_cpp_header(compiler):
    for target in ("x86_64", "i686"):
        yield (f"{HEADER} for {target}", ROOT,
               [compiler, f"--target={target}-pc-windows-msvc", "/Zs", "/TC", "/W4", "/WX", "/clang:-ffreestanding", "--", HEADER])


def configure_for_visual_cpp(build, compiler):
    tools = compiler.parent
    subprocess.run(
        ["cmake", "-S", ROOT, "-B", build, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Windows", f"-DCMAKE_C_COMPILER={compiler}",
         f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY",
         "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", f"-DCMAKE_RC_COMPILER={tools / 'llvm-rc'}",
         f"-DCMAKE_LINKER={tools / 'lld-link'}", f"-DCMAKE_MT={tools / 'llvm-mt'}", "-DKESTA_BUILD_TOOLS=OFF",
         "-DKESTA_BUILD_TESTS=OFF", f"-DKESTA_DEPS_DIR={ROOT / 'build' / '_deps'}"],
        check=True, stdout=subprocess.DEVNULL)


def main():
    build = Path(sys.argv[1]).resolve()
    clang = subprocess.run(["clang", "-print-prog-name=clang-cl"], capture_output=True, text=True, check=True).stdout.strip()
    visual = Path(clang).resolve().parent / "clang-cl"  # a link to clang, which goes by the name that it is called by
    configure_for_visual_cpp(build, visual)
    passed = [check("Clang for Windows", clang_for_windows(ROOT / "build" / "windows-x64")),
              check("Visual C++'s flags", visual_cpp_flags(build, visual)),
              check("The header in Visual C++'s mode", visual_cpp_header(visual))]
    return 0 if all(passed) else 1


if __name__ == "__main__":
    sys.exit(main())
