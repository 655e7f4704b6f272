#!/usr/bin/env bash
# Installs what is needed, starts a throwaway PostgreSQL server, builds with warnings as errors,
# runs every test; then the same suite built by clang under the address and undefined-behaviour
# sanitizers, with the libFuzzer targets, each run for a few seconds;
# then the Windows sources through the cross compiler's syntax check; last the format and
# clang-tidy checks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

jobs=$(nproc)

# A throwaway PostgreSQL server for the order suites on a server, stopped however the run ends.
KV_ORBLINE_TEST_PG=$(scripts/pg-test-server.sh start)
export KV_ORBLINE_TEST_PG
trap 'scripts/pg-test-server.sh stop "$KV_ORBLINE_TEST_PG"' EXIT

echo "== build and test =="
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== soak, 60 s =="
# The twelve instruments at once on one site, order files arriving (docs/soak.md).
build/tools/soak/kv_soak --seconds 60

echo "== sanitizer build (clang) and test, each fuzz target for a few seconds =="
CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=Debug -DORBLINE_SANITIZE=ON \
    -DORBLINE_BENCH=OFF -DORBLINE_FUZZ=ON -DORBLINE_FUZZ_SECONDS=4
cmake --build build-fuzz -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    LSAN_OPTIONS=suppressions="$(pwd)/tests/lsan.supp" \
    ctest --test-dir build-fuzz --output-on-failure -j "$jobs"

echo "== Windows sources, syntax only =="
scripts/check-win32.sh

echo "== static checks =="
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
run-clang-tidy -p build -quiet "$(pwd)/(src|tools)/" >/tmp/orbline-clang-tidy.log 2>&1 || {
    grep -E "error:|warning:" /tmp/orbline-clang-tidy.log | head -50
    exit 1
}
