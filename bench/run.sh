#!/bin/sh
# Benchmarks of a build, as ./dev bench runs them.
#
#   bench/run.sh BUILD-FOLDER [OPTIONS]            times beside the baseline; OPTIONS are those of Google Benchmark
#   bench/run.sh BUILD-FOLDER --instructions [ENTRIES...]   instructions instead of times
#   bench/run.sh BUILD-FOLDER --allocations        what the library allocates beyond SQLite
#   bench/run.sh BUILD-FOLDER --client [OPTIONS]   the client beside rsync and rclone; see bench/client.py
#   bench/run.sh BUILD-FOLDER --callers [ENTRIES]  load, callers beside each other, a million files, peers
#   bench/run.sh BUILD-FOLDER --growth             how the work of the client's readers grows with a file
set -eu

here=$(dirname "$0")
build=$1
shift
case ${1-} in
    --instructions)
        shift
        exec "$here/instructions.sh" "$build" "$@"
        ;;
    --allocations) exec "$build/kesta_allocations" ;;
    --client)
        shift
        exec python3 "$here/client.py" "$build" "$@"
        ;;
    --callers)
        shift
        "$build/kesta_callers" "$@"
        folder=$(mktemp -d)
        trap 'rm -rf "$folder"' EXIT INT TERM
        "$build/kesta_callers" --load "$folder"  # makes the database
        strace -f -c -o "$folder/calls" "$build/kesta_callers" --load "$folder"
        awk '/total$/ { print "system calls of a process that loads it: " $(NF - (NF > 4 ? 2 : 1)) }' "$folder/calls"
        python3 "$here/peer.py" "$folder"
        ;;
    --growth) exec "$here/growth.sh" "$build" ;;
    *) exec "$build/kesta_bench" "$@" ;;
esac
