#!/usr/bin/env bash
# Packages for Linux into FOLDER: .deb (runtime, development, client), .tar.gz, wheel, NuGet package, source archive, with
# the bill of materials. ./dev package calls this.
#   packaging/linux.sh FOLDER [OPTION...]    OPTION: of CMake's; -DKESTA_BUILD_TOOLS=OFF leaves the client out
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "$1")
mkdir -p "$out"
shift
version=$(sed -n 's/^#define KESTA_DB_VERSION "\(.*\)"/\1/p' include/kesta_db/kesta_db.h)
deps=$PWD/build/_deps
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH PYTHONDONTWRITEBYTECODE=1

build() {
    cmake --preset "$1" "${@:2}" >"build/$1.log" 2>&1 || { tail -n 40 "build/$1.log"; return 1; }
    cmake --build --preset "$1" -j "$(nproc)" >>"build/$1.log" 2>&1 || { tail -n 60 "build/$1.log"; return 1; }
}
pack() { (cd "build/$1" && cpack -B "$out" >>"../$1.log" 2>&1) || { tail -n 40 "build/$1.log"; return 1; }; }

[ -d "$deps" ] || cmake --preset linux-package >/dev/null
packaging/notices.py --deps "$deps" build/notices.md
packaging/notices.py --debian --deps "$deps" build/notices-debian.md
build linux-package "-DKESTA_NOTICES_FILE=$PWD/build/notices-debian.md" "$@"
pack linux-package
build linux "-DKESTA_NOTICES_FILE=$PWD/build/notices.md" -DKESTA_BUILD_TESTS=OFF "$@"
pack linux
rm -rf "$out/_CPack_Packages" "$out"/*.sha256
packaging/sbom.py --deps "$deps" --version "$version" "$out/kesta-db-$version-linux.spdx.json"

# The wheel holds Python alone and finds the library where it is installed. Built from a copy: setuptools writes beside.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r bindings/python "$work/python"
/usr/bin/python3 -m pip wheel --quiet --no-deps --no-build-isolation --no-index --wheel-dir "$out" "$work/python"

# The NuGet package: a ZIP archive of a certain layout.
mkdir -p "$work/nuget/lib/netstandard2.0" "$work/nuget/runtimes/linux-x64/native"
mcs -warn:4 -optimize -target:library "-out:$work/nuget/lib/netstandard2.0/KestaDb.dll" bindings/csharp/src/*.cs
cp -L build/linux/libKESTA_DB.so "$work/nuget/runtimes/linux-x64/native/"
strip --strip-unneeded "$work/nuget/runtimes/linux-x64/native/libKESTA_DB.so"
for architecture in x64 x86; do
    dll=build/windows-$architecture/KESTA_DB.dll
    if [ -e "$dll" ]; then
        mkdir -p "$work/nuget/runtimes/win-$architecture/native"
        cp "$dll" "$work/nuget/runtimes/win-$architecture/native/"
    fi
done
cp bindings/csharp/README.md build/notices.md "$work/nuget/"
sed "s/@VERSION@/$version/" bindings/csharp/KestaDb.nuspec >"$work/nuget/KestaDb.nuspec"
cp -r bindings/csharp/package/. "$work/nuget/"
(cd "$work/nuget" && zip -q -X -r "$out/KestaDb.$version.nupkg" .)

# All that a build without network needs, but what Debian has.
mkdir -p "$work/kesta-db-$version/build/_deps"
git archive HEAD | tar -x -C "$work/kesta-db-$version"
cp "$deps"/*.tgz "$work/kesta-db-$version/build/_deps/"
tar -C "$work" --sort=name --owner=0 --group=0 --mtime="@$SOURCE_DATE_EPOCH" -czf "$out/kesta-db-$version.tar.gz" \
    "kesta-db-$version"
