#!/bin/sh
# How the work of the client's readers grows with a file, counted by callgrind.
#
#   bench/growth.sh [BUILD-FOLDER]
#
# Fails when a file that is four times as large takes more than five times the instructions.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/linux-bench}

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT INT TERM
valgrind --tool=callgrind --instr-atstart=no --collect-atstart=no --callgrind-out-file="$out/count" \
    "$build/kesta_growth" 2>"$out/log" || { cat "$out/log" >&2; exit 1; }

# Of each dump: its name, and the instructions counted in it.
for dump in $(ls -v "$out"/count.*); do
    sed -n -e 's/^desc: Trigger: Client Request: //p' -e 's/^totals: //p' "$dump" | paste -d ' ' - -
done | awk '
    NF != 3 { next }
    !($1 in size) { order[++keys] = $1; size[$1] = $2; count[$1] = $3; next }
    { larger[$1] = $2; more[$1] = $3 }
    END {
        if (keys == 0) { print "nothing was counted" > "/dev/stderr"; exit 1 }
        printf "%-24s %8s %14s %8s %14s %8s\n", "file", "size", "instructions", "size", "instructions", "ratio"
        for (i = 1; i <= keys; ++i) {
            key = order[i]
            isThere = key in more && size[key] > 0
            ratio = isThere ? more[key] / count[key] : 0
            missed = !isThere || ratio > 1.25 * larger[key] / size[key]
            failed += missed
            printf "%-24s %8d %14.0f %8d %14.0f %8.2f%s\n", key, size[key], count[key], larger[key], more[key], ratio,
                missed ? "  missed" : ""
        }
        exit failed > 0
    }'
