#!/usr/bin/env bash
# The main job: build the command-line host, draw the device test card, and
# paint a sample drawing through the control in the script host's window.
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
echo "A drawing through the control's members, painted in a window of the script host (examples/drawing.bvxs):"
(cd build && release/src/hosts/cli/bvxcad run ../examples/drawing.bvxs)
echo "The drawing is at $ROOT/build/drawing.bmp"
