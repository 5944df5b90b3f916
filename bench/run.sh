#!/bin/sh
# Benchmarks of a build, as ./dev bench runs them.
#
#   bench/run.sh BUILD-FOLDER [OPTIONS]            times beside the floor; OPTIONS are those of Google Benchmark
#   bench/run.sh BUILD-FOLDER --instructions [ENTRIES...]   instructions instead of times
#   bench/run.sh BUILD-FOLDER --allocations        what the library allocates beyond SQLite
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
    *) exec "$build/kesta_bench" "$@" ;;
esac
