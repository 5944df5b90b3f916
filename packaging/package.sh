#!/usr/bin/env bash
# All packages into FOLDER, each installed and used where nothing of it was before, and their checksums.
#   packaging/package.sh FOLDER [OPTION...]    OPTION: of CMake's; -DKESTA_BUILD_TOOLS=OFF leaves the client out
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:?the folder for the packages}")

say() { printf '\n== %s\n' "$*"; }

shift
rm -rf "$out"
mkdir -p "$out"
say "Packages for Windows"
packaging/windows.sh "$out" "$@"
say "Packages for Linux"
packaging/linux.sh "$out" "$@"
(cd "$out" && sha256sum -- * >SHA256SUMS)
say "Trying the packages for Linux"
packaging/check_linux.sh "$out"
say "Trying the packages for Windows"
packaging/check_windows.sh "$out"
say "Packages"
(cd "$out" && sha256sum --quiet --check SHA256SUMS && ls -1)
