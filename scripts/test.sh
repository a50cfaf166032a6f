#!/usr/bin/env bash
# Every test: native, sanitizers, Windows under Wine, the WebAssembly build
# and a short fuzz run. Benchmarks are built, not run.
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/.." && pwd)"
cd "$ROOT"
bash scripts/setup.sh

JOBS=2
FUZZ_SECONDS="${BVX_FUZZ_SECONDS:-60}"
step() { printf '\n=== %s (at %ds) ===\n' "$*" "$SECONDS"; }

step "native release build and tests"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DBVX_FIDELITY=ON
ninja -C build/release -j$JOBS
ctest --test-dir build/release --output-on-failure

step "address and undefined-behaviour sanitizers"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBVX_SANITIZE=ON -DBVX_BENCH=OFF -DBVX_FIDELITY=ON
ninja -C build/asan -j$JOBS
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --test-dir build/asan --output-on-failure

step "Windows cross build, tests under Wine"
cmake -S . -B build/mingw -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" -DBVX_BENCH=OFF
ninja -C build/mingw -j$JOBS
ctest --test-dir build/mingw --output-on-failure

step "WebAssembly build"
export NODE_PATH=/usr/share/nodejs
emcmake cmake -S . -B build/wasm -G Ninja -DCMAKE_BUILD_TYPE=Release -DBVX_TESTS=OFF -DBVX_BENCH=OFF
ninja -C build/wasm -j$JOBS

step "fuzzing the bitmap reader for ${FUZZ_SECONDS}s"
CC=clang-14 CXX=clang++-14 cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DBVX_FUZZ=ON -DBVX_TESTS=OFF -DBVX_BENCH=OFF
ninja -C build/fuzz -j$JOBS
# New inputs go to a scratch copy; the committed corpus changes only by hand.
rm -rf build/fuzz/corpus && mkdir -p build/fuzz/corpus && cp fuzz/corpus/dib_read/* build/fuzz/corpus/
build/fuzz/fuzz/dib_read_fuzzer -max_total_time="$FUZZ_SECONDS" -max_len=8192 -print_final_stats=1 \
  build/fuzz/corpus

step "all suites passed"
