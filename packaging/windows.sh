#!/usr/bin/env bash
# Packages for Windows into FOLDER, x64 and x86: DLL, import libraries for GCC and Visual C++, list of exports, headers and
# client in one ZIP archive; the symbols split off in another.
#   packaging/windows.sh FOLDER [OPTION...]    OPTION: of CMake's; -DKESTA_BUILD_TOOLS=OFF leaves the client out
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "$1")
mkdir -p "$out"
shift
version=$(sed -n 's/^#define KESTA_DB_VERSION "\(.*\)"/\1/p' include/kesta_db/kesta_db.h)
export PYTHONDONTWRITEBYTECODE=1

for architecture in x64 x86; do
    case $architecture in
        x64) gcc=x86_64-w64-mingw32 machine=i386:x86-64 ;;
        x86) gcc=i686-w64-mingw32 machine=i386 ;;
    esac
    preset=windows-$architecture-package
    log=build/$preset.log
    { cmake --preset "$preset" "$@" && cmake --build --preset "$preset" -j "$(nproc)"; } >"$log" 2>&1 ||
        { tail -n 60 "$log"; exit 1; }
    packaging/notices.py --windows --deps build/_deps "build/notices-windows.md"

    name=kesta-db-$version-windows-$architecture
    root=build/$preset/$name
    rm -rf "$root" "$root-symbols"
    mkdir -p "$root-symbols"
    cmake --install "build/$preset" --prefix "$root" >>"$log"
    for file in bin/KESTA_DB.dll bin/kesta.exe; do
        [ -e "$root/$file" ] || continue
        symbols=$root-symbols/$(basename "$file").debug
        $gcc-objcopy --only-keep-debug "$root/$file" "$symbols"
        # The debugger finds them by this name and checksum, when they lie beside the program.
        $gcc-strip --strip-unneeded "$root/$file"
        $gcc-objcopy --add-gnu-debuglink="$symbols" "$root/$file"
    done
    llvm-dlltool -m "$machine" -D KESTA_DB.dll -d exports/kesta_db.def -l "$root/lib/KESTA_DB.lib"
    mkdir -p "$root/share/doc/kesta-db"
    cp build/notices-windows.md "$root/share/doc/kesta-db/THIRD-PARTY-NOTICES.md"
    (cd "build/$preset" && rm -f "$out/$name.zip" "$out/$name-symbols.zip" && zip -q -X -r "$out/$name.zip" "$name" &&
        zip -q -X -r "$out/$name-symbols.zip" "$name-symbols")
done
packaging/sbom.py --windows --deps build/_deps --version "$version" "$out/kesta-db-$version-windows.spdx.json"
