#!/usr/bin/env bash
# Unpacks what packaging/windows.sh has made, builds the example against it with GCC's and with Visual C++'s import library,
# and runs it under Wine; for x86 where a 32-bit system could be made.
#   packaging/check_windows.sh FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
packages=$(realpath "$1")
# Below the build, for the 32-bit system sees nothing else.
work=$PWD/build/try-windows
rm -rf "$work"
mkdir -p "$work"

say() { printf '   %s\n' "$*"; }

for architecture in x64 x86; do
    case $architecture in
        x64) gcc=x86_64-w64-mingw32-gcc target=x86_64-pc-windows-msvc wine=cmake/wine-run entry=start ;;
        x86) gcc=i686-w64-mingw32-gcc target=i686-pc-windows-msvc wine=cmake/wine32-run entry=start ;;
    esac
    unzip -q "$packages"/kesta-db-*-windows-$architecture.zip -d "$work"
    root=$(echo "$work"/kesta-db-*-windows-$architecture)
    $gcc -std=c11 examples/phone.c "-I$root/include" "-L$root/lib" -lKESTA_DB -lole32 -o "$root/bin/phone.exe"

    # Without Visual C++'s runtime: a program of nothing but an entry that calls the library and returns its result.
    printf '#include <kesta_db/kesta_db.h>\nint start(void) { return DB_Close() + 7; }\n' |
        clang --target=$target -std=c11 -ffreestanding -O1 "-I$root/include" -c -x c - -o "$work/start.obj"
    lld-link /nologo /nodefaultlib /subsystem:console /entry:$entry "/out:$root/bin/start.exe" "$work/start.obj" \
        "$root/lib/KESTA_DB.lib"
    say "$architecture: programs linked with both import libraries"

    if [ $architecture = x86 ]; then
        status=0
        cmake/wine32-run --prepare || status=$?
        if [ $status -eq 77 ]; then
            say "x86: not run, no 32-bit system can be made here"
            continue
        fi
        [ $status -eq 0 ]
    fi
    # One folder of application data: what an earlier try left of the example's phone does no harm.
    $wine "$root/bin/phone.exe" | tr -d '\r' | diff examples/expected.txt -
    status=0
    $wine "$root/bin/start.exe" || status=$?
    [ $status -eq 7 ]
    [ ! -e "$root/bin/kesta.exe" ] || $wine "$root/bin/kesta.exe" --version | tr -d '\r' | grep "^kesta .*, SQLite "
    say "$architecture: example, minimal program and kesta run"
done
