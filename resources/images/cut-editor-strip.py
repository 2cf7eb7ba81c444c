#!/usr/bin/env python3
"""Builds editor.bmp, the photo editor's tool-bar images, from the viewer's commands.bmp
(the commands both frames share) and two drawings of its own (save, undo). Standard library
only; run it after changing commands.bmp or the list below."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
VIEWER_STRIP = [2006, 2005, 2031, 2009, 2014, 2015, 2081, 2082, 2064, 2065,
                2123, 2124, 2121, 2122, 2105, 5511, 2109, 2107]
# The editor's tool bar without its separators, in button order (see images.rc, 409).
EDITOR_BUTTONS = [2006, 2008, 2031, 2036, 2081, 2082, 2123, 2124, 2121, 2122]
MAGENTA = (255, 0, 255)
INK = (40, 40, 40)
BLUE = (30, 90, 200)
WHITE = (255, 255, 255)

# 16 x 16 drawings: one character per pixel, "." transparent.
DRAWINGS = {
    2008: [  # save: a disk
        "................",
        ".KKKKKKKKKKKKK..",
        ".KBBWWWWWWWWBK..",
        ".KBBWWWWWWWWBK..",
        ".KBBWWWWWWWWBK..",
        ".KBBWWWWWWWWBK..",
        ".KBBBBBBBBBBBK..",
        ".KBBBBBBBBBBBK..",
        ".KBBKKKKKKKBBK..",
        ".KBBKWWKKKKBBK..",
        ".KBBKWWKKKKBBK..",
        ".KBBKWWKKKKBBK..",
        ".KKKKKKKKKKKKK..",
        "................",
        "................",
        "................",
    ],
    2036: [  # undo: an arrow turning back to the left
        "................",
        "................",
        "....K...........",
        "...KB...........",
        "..KBBKKKKKK.....",
        ".KBBBBBBBBBKK...",
        "..KBBKKKKKBBBK..",
        "...KB.....KBBK..",
        "....K......KBBK.",
        "...........KBBK.",
        "...........KBBK.",
        "..........KBBK..",
        ".........KBBK...",
        "........KKKK....",
        "................",
        "................",
    ],
}
COLOURS = {".": MAGENTA, "K": INK, "B": BLUE, "W": WHITE}


def read_strip(name):
    data = open(os.path.join(HERE, name), "rb").read()
    offset = struct.unpack("<I", data[10:14])[0]
    width, height = struct.unpack("<ii", data[18:26])
    stride = (width * 3 + 3) // 4 * 4
    rows = []
    for y in range(height):  # top row first
        start = offset + (height - 1 - y) * stride
        row = data[start:start + width * 3]
        rows.append([(row[i + 2], row[i + 1], row[i]) for i in range(0, width * 3, 3)])
    return rows


def tile_of(strip, command):
    i = VIEWER_STRIP.index(command)
    return [row[16 * i:16 * i + 16] for row in strip]


def drawn(command):
    return [[COLOURS[c] for c in line] for line in DRAWINGS[command]]


def save_strip(tiles, name):
    width, height = 16 * len(tiles), 16
    stride = (width * 3 + 3) // 4 * 4
    pixels = bytearray()
    for y in reversed(range(height)):
        row = bytearray()
        for tile in tiles:
            for (r, g, b) in tile[y]:
                row += bytes((b, g, r))
        pixels += row + bytes(stride - len(row))
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(b"BM" + struct.pack("<IHHI", 14 + 40 + len(pixels), 0, 0, 54) + header + pixels)


def main():
    strip = read_strip("commands.bmp")
    tiles = [drawn(c) if c in DRAWINGS else tile_of(strip, c) for c in EDITOR_BUTTONS]
    save_strip(tiles, "editor.bmp")
    print("editor.bmp:", len(tiles), "images")


if __name__ == "__main__":
    main()
