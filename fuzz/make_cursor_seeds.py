#!/usr/bin/env python3
"""Writes the .cur seeds of the cursor reader's fuzz corpus (fuzz/corpus/cursor_read)
and the cursor files the test suite loads (tests/data). Seeds named bad_ must be
refused. Run from the checkout: python3 fuzz/make_cursor_seeds.py"""
import os
import struct

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CORPUS = os.path.join(ROOT, "fuzz", "corpus", "cursor_read")
DATA = os.path.join(ROOT, "tests", "data")


def stride(width, bits):
    return (width * bits + 31) // 32 * 4


def rows(width, height, bits, pixel):
    """Bottom-up rows of pixel(x, y) (y from the top) packed at `bits` per pixel."""
    out = b""
    for y in reversed(range(height)):
        row = bytearray(stride(width, bits))
        for x in range(width):
            v = pixel(x, y)
            if bits < 8:
                row[x * bits // 8] |= v << (8 - bits - x * bits % 8)
            else:
                row[x * bits // 8:x * bits // 8 + bits // 8] = v.to_bytes(bits // 8, "little")
        out += bytes(row)
    return out


def image(width, height, bits, xor, mask, palette=None, core=False, compression=0, height_factor=2):
    """A packed DIB as a cursor entry holds it: header, table, XOR rows, AND rows."""
    if palette is None and bits <= 8:
        palette = [(i * 255 // ((1 << bits) - 1),) * 3 for i in range(1 << bits)]
    if core:
        head = struct.pack("<IHHHH", 12, width, height * height_factor, 1, bits)
        table = b"".join(bytes((b, g, r)) for r, g, b in palette or [])
    else:
        head = struct.pack("<IiiHHIIiiII", 40, width, height * height_factor, 1, bits, compression, 0, 0, 0, 0, 0)
        table = b"".join(bytes((b, g, r, 0)) for r, g, b in palette or [])
    bits_and = rows(width, height, 1, mask) if mask else b""
    return head + table + rows(width, height, bits, xor) + bits_and


def cursor(entries, type_=2, count=None):
    """entries: (width, height, hot x, hot y, data); offsets follow the directory."""
    count = len(entries) if count is None else count
    out = struct.pack("<HHH", 0, type_, count)
    offset = 6 + 16 * len(entries)
    for w, h, hx, hy, data in entries:
        out += struct.pack("<BBBBHHII", w % 256, h % 256, 0, 0, hx, hy, len(data), offset)
        offset += len(data)
    return out + b"".join(e[4] for e in entries)


def write(folder, name, data):
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


# Monochrome: XOR white on the ten top rows, AND set left of column 13.
mono = cursor([(32, 32, 5, 9, image(32, 32, 1, lambda x, y: int(y < 10), lambda x, y: int(x < 13)))])
# 32 bits with alpha: opaque left of column 24, the AND mask all clear.
argb = cursor([(32, 32, 16, 16, image(32, 32, 32, lambda x, y: 0xFF000000 * (x < 24) | (8 * x) << 16 | (8 * y) << 8 | 100,
                                      lambda x, y: 0))])
# Several images: the 8-bit 32 by 32 is the closest and deepest.
ramp = [(i, 255 - i, 7) for i in range(256)]
several = cursor([
    (16, 16, 1, 1, image(16, 16, 1, lambda x, y: x & 1, lambda x, y: 0)),
    (32, 32, 3, 3, image(32, 32, 4, lambda x, y: x & 15, lambda x, y: 0)),
    (48, 48, 2, 2, image(48, 48, 32, lambda x, y: 0x00FF00, lambda x, y: 0)),
    (32, 32, 4, 4, image(32, 32, 8, lambda x, y: (x + 2 * y) & 255, lambda x, y: int(x == y), ramp)),
])
truncated = mono[:len(mono) - 40]

for folder in (CORPUS, DATA):
    os.makedirs(folder, exist_ok=True)
write(DATA, "pointer_mono.cur", mono)
write(DATA, "pointer_argb.cur", argb)
write(DATA, "pointer_several.cur", several)
write(DATA, "pointer_truncated.cur", truncated)

small = image(16, 16, 1, lambda x, y: x & 1, lambda x, y: y & 1)
seeds = {
    "mono.cur": mono,
    "argb.cur": argb,
    "several.cur": several,
    "rgb24.cur": cursor([(16, 16, 0, 0, image(16, 16, 24, lambda x, y: x * 0x10203, lambda x, y: x > y))]),
    "rgb8.cur": cursor([(16, 16, 0, 0, image(16, 16, 8, lambda x, y: x * y & 255, lambda x, y: 0, ramp))]),
    "core1.cur": cursor([(16, 16, 15, 15, image(16, 16, 1, lambda x, y: x & 1, lambda x, y: 1, core=True))]),
    "hot_spot_outside.cur": cursor([(16, 16, 99, 300, small)]),
    "bad_empty.cur": b"",
    "bad_truncated.cur": truncated,
    "bad_directory_cut.cur": mono[:20],
    "bad_icon_type.cur": cursor([(16, 16, 0, 0, small)], type_=1),
    "bad_no_images.cur": cursor([], count=0),
    "bad_count_lies.cur": cursor([(16, 16, 0, 0, small)], count=40),
    "bad_offset_past_end.cur": mono[:18] + struct.pack("<I", len(mono) + 5) + mono[22:],
    "bad_offset_in_directory.cur": mono[:18] + struct.pack("<I", 8) + mono[22:],
    "bad_size_past_end.cur": mono[:14] + struct.pack("<I", len(mono)) + mono[18:],
    "bad_size_huge.cur": mono[:14] + struct.pack("<I", 0xFFFFFF00) + mono[18:],
    "bad_png.cur": cursor([(16, 16, 0, 0, b"\x89PNG\r\n\x1a\n" + bytes(64))]),
    "bad_width_lies.cur": cursor([(24, 16, 0, 0, small)]),
    "bad_height_not_doubled.cur": cursor([(16, 16, 0, 0, image(16, 16, 1, lambda x, y: 1, lambda x, y: 1,
                                                                height_factor=1))]),
    "bad_run_length.cur": cursor([(16, 16, 0, 0, image(16, 16, 8, lambda x, y: 0, lambda x, y: 0, ramp,
                                                       compression=1))]),
    "bad_16_bits.cur": cursor([(16, 16, 0, 0, image(16, 16, 16, lambda x, y: 0x7FFF, lambda x, y: 0))]),
    "bad_no_mask.cur": cursor([(16, 16, 0, 0, image(16, 16, 32, lambda x, y: 0xFF00FF00, None))]),
    "bad_one_entry_of_two.cur": cursor([(32, 32, 0, 0, image(32, 32, 1, lambda x, y: 0, lambda x, y: 1)),
                                        (16, 16, 0, 0, b"\x89PNG\r\n\x1a\n" + bytes(64))]),
}
for name, data in seeds.items():
    write(CORPUS, name, data)
