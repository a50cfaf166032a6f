#!/usr/bin/env bash
# The drawing written by ImageToBitmap at the window's size, read back by an
# independent reader (netpbm's bmptopnm, which reads whole-row run-length
# files and refuses deltas), holds exactly the pixels the window shows, as
# the host saves them: 24 bits, 8 bits plain and run-length, 4 bits
# run-length.
#   bash tests/hosts/export_readback.sh BVXCAD
set -euo pipefail
bvxcad="$1"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cat > "$work/drawing.bvxs" <<SCRIPT
.size 240, 160
LayerPenFg(1) = &HFF
LayerBrushStyle(1) = 1
LayerBrushFg(1) = &HC0C000
\$a = DrawRectangle 10, 90, 60, 40, 1
\$b = DrawCircle 60, 50, 25, 1
\$c = DrawLine 0, 0, 100, 100, 1
\$t = TextAdd 1, "Export", 5, 20, 0
ShapeSelect \$b, False
.paint
.save $work/window.bmp
ImageToBitmap "$work/rgb.bmp", 240, 160, 24, 0
ImageToBitmap "$work/plain8.bmp", 240, 160, -8, 0
ImageToBitmap "$work/rle8.bmp", 240, 160, 0, 0
ImageToBitmap "$work/rle4.bmp", 240, 160, 4, 0
SCRIPT
"$bvxcad" run "$work/drawing.bvxs" > "$work/output.txt"
if grep -q -- '-> False' "$work/output.txt"; then
  echo "export_readback: an export failed" >&2
  cat "$work/output.txt" >&2
  exit 1
fi
bmptopnm "$work/window.bmp" > "$work/window.ppm" 2>/dev/null
for picture in rgb plain8 rle8 rle4; do
  bmptopnm "$work/$picture.bmp" > "$work/$picture.ppm" 2>/dev/null
  cmp -s "$work/window.ppm" "$work/$picture.ppm" || {
    echo "export_readback: $picture.bmp differs from the window" >&2
    exit 1
  }
done
echo "export_readback: 4 files read back alike"
