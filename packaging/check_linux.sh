#!/usr/bin/env bash
# Installs what packaging/linux.sh has made where nothing of it was before, builds the examples against it and runs them.
#   packaging/check_linux.sh FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
packages=$(realpath "$1")
root=$PWD/build/roots/amd64
expected=$PWD/examples/expected.txt

say() { printf '   %s\n' "$*"; }
same() { diff "$expected" - && say "$1"; }

# The archive, wherever it is unpacked.
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
tar -xzf "$packages"/kesta-db-*-linux-*.tar.gz -C "$prefix" --strip-components=1
export XDG_DATA_HOME=$prefix/data XDG_RUNTIME_DIR=$prefix PKG_CONFIG_PATH=$prefix/lib/pkgconfig
mkdir -p "$prefix/data"
for language in c cpp; do
    compiler="cc -std=c11"
    [ $language = c ] || compiler="c++ -std=c++20"
    # shellcheck disable=SC2046
    $compiler examples/phone.$language $(pkg-config --cflags --libs kesta_db) -o "$prefix/phone_$language"
    LD_LIBRARY_PATH=$prefix/lib "$prefix/phone_$language" | same "archive: example in $language"
    rm -rf "$prefix/data/NORVIK"
done
if [ -e "$prefix/bin/kesta" ]; then
    "$prefix/bin/kesta" --version | grep -q "^kesta .*, SQLite "
    say "archive: kesta --version"
    for file in man/man1/kesta.1 man/man1/kesta-sync.1 bash-completion/completions/kesta zsh/vendor-completions/_kesta \
        fish/vendor_completions.d/kesta.fish ../lib/systemd/user/kesta-sync@.service; do
        [ -s "$prefix/share/$file" ]
    done
    say "archive: manual pages, completions, units of systemd"
fi
/usr/bin/python3 -m venv --without-pip "$prefix/venv"
/usr/bin/python3 -m pip --python "$prefix/venv/bin/python" install --quiet --no-index --no-deps "$packages"/kesta_db-*.whl
KESTA_DB_LIBRARY=$prefix/lib/libKESTA_DB.so.1 "$prefix/venv/bin/python" examples/phone.py | same "wheel: example"
rm -rf "$prefix/data/NORVIK"
unzip -q "$packages"/KestaDb.*.nupkg -d "$prefix/nuget"
mcs -r:"$prefix/nuget/lib/netstandard2.0/KestaDb.dll" -out:"$prefix/nuget/lib/netstandard2.0/Phone.exe" examples/Phone.cs
LD_LIBRARY_PATH=$prefix/nuget/runtimes/linux-x64/native mono "$prefix/nuget/lib/netstandard2.0/Phone.exe" |
    same "NuGet package: example"

# The source archive, without a network where this system can shut it off.
mkdir "$prefix/source"
tar -xzf "$packages"/kesta-db-[0-9].[0-9].[0-9].tar.gz -C "$prefix/source" --strip-components=1
alone=()
unshare --net true 2>/dev/null && alone=(unshare --net)
(cd "$prefix/source" &&
    { "${alone[@]}" cmake --preset linux -DKESTA_BUILD_TESTS=OFF -DKESTA_BUILD_TOOLS=OFF &&
        "${alone[@]}" cmake --build --preset linux -j "$(nproc)"; } >"$prefix/source.log" 2>&1) ||
    { tail -n 20 "$prefix/source.log"; exit 1; }
LD_LIBRARY_PATH=$prefix/source/build/linux "$prefix/phone_c" | same "source archive: built without a network, example in c"
rm -rf "$prefix/data/NORVIK"

# The Debian packages, by dpkg in a clean system.
lintian --fail-on error "$packages"/*.deb
say "lintian: no errors"
status=0
cmake/clean-root make "$root" amd64 gcc libc6-dev pkg-config || status=$?
if [ $status -eq 77 ]; then
    say "the Debian packages were not installed: no clean system can be made here"
    exit 0
fi
[ $status -eq 0 ]
cmake/clean-root run "$root" --bind "$packages" --bind "$PWD/examples" bash -euc '
    export XDG_DATA_HOME=/tmp XDG_RUNTIME_DIR=/tmp
    trap "dpkg --purge kesta libkesta-db-dev libkesta-db1 >/dev/null 2>&1" EXIT
    dpkg --install "$0"/*.deb >/tmp/dpkg.log 2>&1 || { cat /tmp/dpkg.log; exit 1; }
    gcc -std=c11 "$1/phone.c" $(pkg-config --cflags --libs kesta_db) -o /tmp/phone
    /tmp/phone | diff "$1/expected.txt" -
    [ ! -e /usr/bin/kesta ] || { kesta --version && kesta status >/dev/null; }' "$packages" "$PWD/examples"
say "Debian packages: installed, example built and run, the client run where there is one, removed"
