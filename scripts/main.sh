#!/usr/bin/env bash
# The main job: build the command-line host and draw the device test card.
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/.." && pwd)"
cd "$ROOT"
bash scripts/setup.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release
ninja -C build/release -j"$(nproc)" bvxcad
OUT="$ROOT/build/testcard.bmp"
build/release/src/hosts/cli/bvxcad testcard "$OUT"
echo "The picture is at $OUT"
echo
echo "An example script through the control's members (examples/shapes.bvxs):"
build/release/src/hosts/cli/bvxcad run examples/shapes.bvxs
