#!/usr/bin/env bash
# Every test: native, a program built against the installed library,
# sanitizers, Windows under Wine, the WebAssembly build and a short fuzz run.
# Benchmarks are built, not run.
#   bash scripts/test.sh               every step, in order
#   bash scripts/test.sh STEP [STEP]   only those steps (see --help)
# BVX_BUILD_ROOT moves the build folders (default build/), BVX_JOBS the
# parallelism (default: every processor), BVX_FUZZ_SECONDS the fuzz run.
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/.." && pwd)"
cd "$ROOT"

STEPS=(native consumer asan mingw wasm fuzz)
usage() {
  cat <<'EOF'
usage: bash scripts/test.sh [STEP...]
With no step, runs every step in this order:
  native    release build, the test suite, example scripts, fidelity under Wine
  consumer  installs the release build into build/install and builds and runs
            examples/consumer against it (builds the release tree if needed)
  asan      the suite with address and undefined-behaviour sanitizers
  mingw     Windows cross build, the suite under Wine; the 32-bit control, built
  wasm      WebAssembly build of the core with Emscripten
  fuzz      a short libFuzzer run of the bitmap, cursor and drawing file readers
EOF
}

selected=()
for arg in "$@"; do
  case "$arg" in
    -h | --help) usage; exit 0 ;;
  esac
  if [[ " ${STEPS[*]} " == *" $arg "* ]]; then
    selected+=("$arg")
  else
    echo "test.sh: unknown step '$arg'" >&2
    usage >&2
    exit 2
  fi
done
((${#selected[@]})) || selected=("${STEPS[@]}")

bash scripts/setup.sh

JOBS="${BVX_JOBS:-$(nproc)}"
BUILD="$(realpath -m "${BVX_BUILD_ROOT:-build}")"
FUZZ_SECONDS="${BVX_FUZZ_SECONDS:-60}"
step() { printf '\n=== %s (at %ds) ===\n' "$*" "$SECONDS"; }

# The native and consumer steps share this tree; the same options keep a
# consumer run alone from reconfiguring what the native step built.
configure_release() {
  cmake -S . -B "$BUILD/release" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBVX_FIDELITY=ON
}

step_native() {
  step "native release build and tests"
  configure_release
  ninja -C "$BUILD/release" -j"$JOBS"
  ctest --test-dir "$BUILD/release" --output-on-failure
}

step_consumer() {
  step "installed library used by another CMake project"
  configure_release
  ninja -C "$BUILD/release" -j"$JOBS"
  rm -rf "$BUILD/install" "$BUILD/consumer"
  cmake --install "$BUILD/release" --prefix "$BUILD/install"
  local config package
  config="$(find "$BUILD/install" -name bvxcadConfig.cmake -print -quit)"
  [[ -n "$config" ]] || { echo "test.sh: no bvxcadConfig.cmake under $BUILD/install" >&2; exit 1; }
  package="$(dirname "$config")"
  # A relocatable package names no path of the source or build tree.
  if grep -rlF -e "$ROOT/src" -e "$BUILD/release" "$package"; then
    echo "test.sh: the installed package refers to the source or build tree" >&2
    exit 1
  fi
  cmake -S examples/consumer -B "$BUILD/consumer" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$BUILD/install" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
  # It must have found this install, not another copy on the machine.
  grep -qxF "bvxcad_DIR:PATH=$package" "$BUILD/consumer/CMakeCache.txt" || {
    echo "test.sh: the consumer found bvxcad somewhere else than $BUILD/install" >&2
    exit 1
  }
  ninja -C "$BUILD/consumer" -j"$JOBS"
  "$BUILD/consumer/consumer"
}

step_asan() {
  step "address and undefined-behaviour sanitizers"
  cmake -S . -B "$BUILD/asan" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBVX_SANITIZE=ON -DBVX_BENCH=OFF -DBVX_FIDELITY=ON
  ninja -C "$BUILD/asan" -j"$JOBS"
  ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0" UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir "$BUILD/asan" --output-on-failure
}

step_mingw() {
  step "Windows cross build, tests under Wine"
  cmake -S . -B "$BUILD/mingw" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" -DBVX_BENCH=ON -DBVX_TRAP_UB=ON
  ninja -C "$BUILD/mingw" -j"$JOBS"
  ctest --test-dir "$BUILD/mingw" --output-on-failure
  # The control for 32-bit hosts is built only: running it would need
  # Wine's 32-bit side (Debian's multiarch wine32), which setup leaves out.
  cmake -S . -B "$BUILD/mingw32" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-i686.cmake" -DBVX_BENCH=OFF -DBVX_TESTS=OFF
  ninja -C "$BUILD/mingw32" -j"$JOBS" bvxcad_dll
}

step_wasm() {
  step "WebAssembly build"
  # Debian's emscripten loads acorn and its other node modules from
  # /usr/share/nodejs, which not every node searches; see the README.
  export NODE_PATH=/usr/share/nodejs
  emcmake cmake -S . -B "$BUILD/wasm" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBVX_TESTS=OFF -DBVX_BENCH=OFF
  ninja -C "$BUILD/wasm" -j"$JOBS"
}

step_fuzz() {
  local cursor_seconds=$((FUZZ_SECONDS < 30 ? FUZZ_SECONDS : 30))
  step "fuzzing the bitmap reader for ${FUZZ_SECONDS}s, the cursor and drawing file readers for ${cursor_seconds}s each"
  CC=clang-14 CXX=clang++-14 cmake -S . -B "$BUILD/fuzz" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DBVX_FUZZ=ON -DBVX_TESTS=OFF -DBVX_BENCH=OFF
  ninja -C "$BUILD/fuzz" -j"$JOBS"
  # READER SECONDS MAX_LEN: new inputs go to a scratch copy of the reader's
  # corpus; the committed corpus changes only by hand.
  fuzz_reader() {
    rm -rf "$BUILD/fuzz/corpus/$1" && mkdir -p "$BUILD/fuzz/corpus/$1" && cp fuzz/corpus/"$1"/* "$BUILD/fuzz/corpus/$1/"
    "$BUILD/fuzz/fuzz/$1_fuzzer" -max_total_time="$2" -max_len="$3" -print_final_stats=1 "$BUILD/fuzz/corpus/$1"
  }
  fuzz_reader dib_read "$FUZZ_SECONDS" 8192
  fuzz_reader cursor_read "$cursor_seconds" 16384
  # The drawing file reader paints through fontconfig, whose own blocks
  # live until the process ends.
  LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0" \
    fuzz_reader native_read "$cursor_seconds" 4096
}

for s in "${selected[@]}"; do
  "step_$s"
done

if (($# == 0)); then
  step "all suites passed"
else
  step "passed: ${selected[*]}"
fi
