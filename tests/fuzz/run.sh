#!/usr/bin/env bash
# Fuzzes every reader for so many seconds (60), with Clang's libFuzzer and its sanitizers. What is found stays in the
# build folder, and the run fails.
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds=${1:-60}
build=${KESTA_FUZZ_BUILD:-build/fuzz}

cmake -S . -B "$build" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Release \
    -DKESTA_FUZZ=ON >/dev/null
mapfile -t targets < <(ls tests/fuzz/seeds)
ninja -C "$build" "${targets[@]/#/fuzz_}" >"$build/fuzz.log" 2>&1 || { tail -n 40 "$build/fuzz.log"; exit 1; }
for target in "${targets[@]}"; do
    mkdir -p "$build/corpus/$target"
    printf '%s: ' "$target"
    if ! UBSAN_OPTIONS=halt_on_error=1 "$build/fuzz_$target" -max_total_time="$seconds" -timeout=10 -max_len=16384 \
        -artifact_prefix="$build/$target-" "$build/corpus/$target" "tests/fuzz/seeds/$target" >"$build/$target.log" 2>&1; then
        echo failed
        tail -n 40 "$build/$target.log"
        exit 1
    fi
    tail -n 1 "$build/$target.log"
done
