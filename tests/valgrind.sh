#!/usr/bin/env bash
# The tests under valgrind: valgrind.sh BUILD-FOLDER. Fails on any wrong access, and on a leak where everything is given
# back. What callers never give back, some of it by the library's contract, is not counted in the tests of the exports:
# tests of their own count it. The tests that put faults into the allocator need the system's.
set -euo pipefail
build=$(cd "$1" && pwd)
failed=0

# run PROGRAM LEAK-CHECK [ARGUMENTS...]: as many processes as there are processors share the program's tests.
run() {
    local program=$1 leaks=$2 shards shard pids=()
    shift 2
    shards=$(nproc)
    printf '\n== valgrind %s\n' "$program"
    for ((shard = 0; shard < shards; ++shard)); do
        GTEST_TOTAL_SHARDS=$shards GTEST_SHARD_INDEX=$shard valgrind --quiet --error-exitcode=9 --leak-check="$leaks" \
            --errors-for-leak-kinds=definite,indirect --show-leak-kinds=definite,indirect --num-callers=20 \
            "$build/$program" --gtest_brief=1 "$@" &
        pids+=($!)
    done
    for pid in "${pids[@]}"; do wait "$pid" || failed=1; done
}

# valgrind holds up all threads while one of them waits for a lock of an open file: who holds it never lets go.
waiting_for_a_file='PosixMutex.SegmentOfAnotherUser_*:PosixMutex.LockFileRemovedWhileUsed_*:PosixMutex.MakerDiedHalfway_*'
run kesta_unit_tests full --gtest_filter="-$waiting_for_a_file:MixedMutex.*"
run kesta_fault_tests full --gtest_filter='-FailingMemory*'
run kesta_format_tests full
run kesta_client_unit_tests full
run kesta_process_tests no --gtest_filter='Threads*:Loading*'
run kesta_api_tests no
exit $failed
