"""What others wrote and the library or the client is built from: where it comes from and where its licence stands.

The list is held against the build: every package that CMake fetches and every library of Debian's that ./dev installs for
building has to be in it.
"""

import re
import subprocess
import tarfile
from dataclasses import dataclass
from pathlib import Path
from typing import Optional

ROOT = Path(__file__).resolve().parents[1]


@dataclass(frozen=True)
class Component:
    name: str
    used_by: str  # "library", "client"
    licence: str  # as SPDX has it
    npm: Optional[str] = None  # the package that carries it
    text: Optional[str] = None  # its licence, within that package
    debian: Optional[str] = None  # or the package of Debian's
    windows_only: bool = False


COMPONENTS = [
    Component("SQLite", "library", "blessing", npm="better-sqlite3"),
    Component("Gumbo", "client", "Apache-2.0", npm="gumbo-parser", text="package/deps/gumbo-parser/COPYING"),
    Component("minizip", "client", "Zlib", npm="react-native-zip-archive",
              text="package/ios/SSZipArchive/minizip/LICENSE"),
    Component("CLI11", "client", "BSD-3-Clause", debian="libcli11-dev"),
    Component("JSON for Modern C++", "client", "MIT", debian="nlohmann-json3-dev"),
    Component("{fmt}", "client", "MIT", debian="libfmt-dev"),
    Component("UTF8-CPP", "client", "BSL-1.0", debian="libutfcpp-dev"),
    Component("xxHash", "client", "BSD-2-Clause", debian="libxxhash-dev"),
    Component("zlib", "client", "Zlib", debian="zlib1g-dev"),
    Component("zlib for Windows", "client", "Zlib", debian="libz-mingw-w64-dev", windows_only=True),
    Component("GCC's runtime libraries", "library", "GPL-3.0-or-later WITH GCC-exception-3.1",
              debian="g++-mingw-w64-x86-64-posix", windows_only=True),
    Component("mingw-w64's runtime", "library", "ZPL-2.1", debian="mingw-w64-common", windows_only=True),
]


def fetched():
    """The npm packages that CMake fetches: name to version and hash, as the build files have them."""
    found = {}
    for path in [*ROOT.glob("cmake/*.cmake"), *ROOT.glob("tools/**/*.cmake")]:
        for name, version, digest in re.findall(r"PACKAGE (\S+) VERSION (\S+)\s+SHA256 ([0-9a-f]{64})",
                                                path.read_text(encoding="utf-8")):
            found[name] = (version, digest)
    return found


def installed_for_building():
    """The libraries of Debian's that ./dev installs for building."""
    text = (ROOT / "dev").read_text(encoding="utf-8")
    packages = []
    for array in ("build_packages", "windows_packages"):
        packages += re.search(array + r"=\((.*?)\)", text, flags=re.S)[1].split()
    tools = {"g++", "cmake", "ninja-build", "wine", "wine64", "g++-mingw-w64-i686-posix", "debootstrap"}
    return [package for package in packages if package not in tools]


def check():
    """Whether the list names all that is linked in, and nothing else."""
    ours = {component.npm for component in COMPONENTS if component.npm}
    assert ours == set(fetched()), (ours, set(fetched()))
    ours = {component.debian for component in COMPONENTS if component.debian} - {"mingw-w64-common"}
    assert ours == set(installed_for_building()), ours ^ set(installed_for_building())


def version(component, deps):
    if component.name == "SQLite":
        header = member(component, deps, "package/deps/sqlite3/sqlite3.h")
        return re.search(r'#define SQLITE_VERSION\s+"(.*)"', header)[1]
    if component.npm:
        return re.search(r"# " + component.name + r" (\S+)", cmake_of(component))[1]
    query = subprocess.run(["dpkg-query", "-W", "-f=${Version}", component.debian], capture_output=True, text=True)
    assert query.returncode == 0, f"{component.debian} is not installed"
    return query.stdout


def cmake_of(component):
    for path in [*ROOT.glob("cmake/*.cmake"), *ROOT.glob("tools/**/*.cmake")]:
        text = path.read_text(encoding="utf-8")
        if f"PACKAGE {component.npm} " in text:
            return text
    raise AssertionError(component.npm)


def member(component, deps, name):
    archive = deps / f"{component.npm}-{fetched()[component.npm][0]}.tgz"
    with tarfile.open(archive) as tar:
        return tar.extractfile(name).read().decode("utf-8", "replace")


def licence_text(component, deps):
    if component.name == "SQLite":
        header = member(component, deps, "package/deps/sqlite3/sqlite3.h")
        blessing = re.search(r"\*\* The author disclaims copyright.*?(?=\n\*{10})", header, flags=re.S)[0]
        return re.sub(r"^\*\* ?", "", blessing, flags=re.M)
    if component.npm:
        return member(component, deps, component.text)
    return Path("/usr/share/doc", component.debian, "copyright").read_text(encoding="utf-8", errors="replace")
