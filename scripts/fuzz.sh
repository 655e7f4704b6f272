#!/usr/bin/env bash
# The long fuzz run: builds the libFuzzer targets (clang, address and undefined-behaviour
# sanitizers) in build-fuzz and runs each for MINUTES minutes (default 10), two at a time.
# A finding is written to build-fuzz/fuzz/findings/; the inputs found grow the corpus in
# build-fuzz/fuzz/corpus/, which the next run starts from.
#
#   scripts/fuzz.sh [MINUTES] [TARGET-REGEX]
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=${1:-10}
filter=${2:-.}
case "$minutes" in '' | *[!0-9]*) echo "usage: scripts/fuzz.sh [MINUTES] [TARGET-REGEX]" >&2; exit 2 ;; esac

CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORBLINE_SANITIZE=ON \
    -DORBLINE_BENCH=OFF -DORBLINE_FUZZ=ON -DORBLINE_FUZZ_SECONDS=$((minutes * 60))
cmake --build build-fuzz -j "$(nproc)"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-fuzz --output-on-failure -j "$(nproc)" -R "^Fuzz\.($filter|Seeds)"
