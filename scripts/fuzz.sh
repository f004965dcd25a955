#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds every libFuzzer target (fuzz/*_fuzz.cpp) with clang in build-fuzz and runs each
# for the given number of seconds (default 60). Inputs that crash, hang or exhaust memory
# are copied to tests/data/fuzz/<name>/ (the target's name without "_fuzz"), where the
# fuzz regression test feeds them to the parsers on every test run.
#
#   scripts/fuzz.sh [seconds]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
if ! [[ $seconds =~ ^[0-9]+$ ]] || ((seconds == 0)); then
    echo "usage: scripts/fuzz.sh [seconds per target]" >&2
    exit 2
fi

build=build-fuzz
cmake -S . -B "$build" -G Ninja -Wno-dev \
    -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DPLYRA_BUILD_FUZZ=ON -DPLYRA_BUILD_TESTS=OFF -DPLYRA_BUILD_GUI=OFF -DPLYRA_SANITIZE= > /dev/null

targets=()
for source in fuzz/*_fuzz.cpp; do
    targets+=("$(basename "$source" .cpp)")
done
cmake --build "$build" -j "$(nproc)" --target "${targets[@]}"

status=0
for target in "${targets[@]}"; do
    name=${target%_fuzz}
    work="$build/fuzz-work/$target"
    artifacts="$work/artifacts/"
    rm -rf "$artifacts"
    mkdir -p "$work/corpus" "$artifacts"

    # Seeds stay untouched in fuzz/corpus; the growing corpus lives in the build folder.
    seeds=()
    for dir in "fuzz/corpus/$target" "fuzz/corpus/$name"; do
        [[ -d $dir ]] && seeds+=("$dir")
    done
    options=(-max_total_time="$seconds" -artifact_prefix="$artifacts" -print_final_stats=1
        -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 -timeout=10 -rss_limit_mb=2048)
    [[ -f fuzz/$target.dict ]] && options+=(-dict="fuzz/$target.dict")

    echo "== $target for ${seconds}s"
    "$build/fuzz/$target" "${options[@]}" "$work/corpus" "${seeds[@]}" > "$work/log.txt" 2>&1 || true
    tail -n 3 "$work/log.txt"

    found=0
    for input in "$artifacts"crash-* "$artifacts"timeout-* "$artifacts"oom-* "$artifacts"leak-*; do
        [[ -f $input ]] || continue
        mkdir -p "tests/data/fuzz/$name"
        cp "$input" "tests/data/fuzz/$name/"
        found=$((found + 1))
    done
    if ((found > 0)); then
        echo "$target: $found failing input(s) copied to tests/data/fuzz/$name/ (log: $work/log.txt)"
        status=1
    fi
done
exit $status
