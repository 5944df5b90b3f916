#!/bin/sh
# Instructions per operation as a ratio to the baseline, counted by callgrind.
#
#   bench/instructions.sh [BUILD-FOLDER [ENTRIES...]]
#
# Fails when a ratio is above its goal.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/linux-bench}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- 1000 10000

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT INT TERM
valgrind --tool=callgrind --instr-atstart=no --collect-atstart=no --callgrind-out-file="$out/count" \
    "$build/kesta_instructions" "$@" 2>"$out/log" || { cat "$out/log" >&2; exit 1; }

# Of each dump: its name, and the instructions counted in it.
for dump in $(ls -v "$out"/count.*); do
    sed -n -e 's/^desc: Trigger: Client Request: //p' -e 's/^totals: //p' "$dump" | paste -d ' ' - -
done | awk '
    NF != 6 { next }
    {
        key = $1 " " $3
        if (!(key in seen)) { seen[key] = 1; order[++keys] = key; goal[key] = $5 }
        each[key, $2] = $6 / $4
    }
    END {
        if (keys == 0) { print "nothing was counted" > "/dev/stderr"; exit 1 }
        printf "%-34s %8s %14s %14s %8s %8s\n", "operation", "entries", "library", "baseline", "ratio", "goal"
        for (i = 1; i <= keys; ++i) {
            split(order[i], part, " ")
            ratio = each[order[i], "library"] / each[order[i], "baseline"]
            missed = ratio > goal[order[i]]
            failed += missed
            printf "%-34s %8d %14.0f %14.0f %8.3f %8.2f%s\n", part[1], part[2], each[order[i], "library"],
                each[order[i], "baseline"], ratio, goal[order[i]], missed ? "  missed" : ""
        }
        exit failed > 0
    }'
