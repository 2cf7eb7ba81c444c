#!/usr/bin/python3
"""Draws the viewer's and the slide show's bitmaps and icons. The build does not run this script; the images it
writes are committed beside it. Run it again after changing a drawing:

    /usr/bin/python3 resources/images/draw-images.py

Bitmaps are 24-bit BMP with magenta (255, 0, 255) where they are transparent; icons are
16 x 16, 32-bit with an alpha channel plus the 1-bit mask older readers use.
"""
import math
import os
import struct

from PIL import Image, ImageDraw

HERE = os.path.dirname(os.path.abspath(__file__))
MAGENTA = (255, 0, 255)
LIST_GREY = 0x69  # the thumbnail list's background
SHADOW_DARK = 0x30


def save_bmp(image, name):
    image.convert("RGB").save(os.path.join(HERE, name), "BMP")


def lerp(a, b, t):
    return int(round(a + (b - a) * max(0.0, min(1.0, t))))


# --- 412: shadow pieces ------------------------------------------------------------------
# Five 5 x 5 pieces that lie in the 5-pixel margin at the right and bottom of a thumbnail:
# bottom-left corner, bottom-right corner, top-right corner, bottom edge, right edge. The
# shade fades from dark next to the picture to the list's grey at the margin's far side;
# the two outer corners start 2 pixels in, so the shadow looks cast down and to the right.
def shade(distance):
    return lerp(SHADOW_DARK, LIST_GREY, distance / 5.0)


def draw_shadow():
    strip = Image.new("RGB", (25, 5), MAGENTA)
    px = strip.load()
    for y in range(5):
        for x in range(5):
            # bottom-left: only from x = 2 on, fading in from the left
            if x >= 2:
                g = lerp(LIST_GREY, shade(y), (x - 1) / 3.0)
                px[x, y] = (g, g, g)
            # bottom-right: by distance from the picture's corner
            g = shade(math.hypot(x + 0.5, y + 0.5))
            px[5 + x, y] = (g, g, g)
            # top-right: only from y = 2 down, fading in from the top
            if y >= 2:
                g = lerp(LIST_GREY, shade(x), (y - 1) / 3.0)
                px[10 + x, y] = (g, g, g)
            # bottom edge and right edge
            g = shade(y + 0.5)
            px[15 + x, y] = (g, g, g)
            g = shade(x + 0.5)
            px[20 + x, y] = (g, g, g)
    save_bmp(strip, "shadow.bmp")
    return strip


# --- 420: busy animation -----------------------------------------------------------------
# Twelve 48 x 48 frames: a ring of twelve dots, the brightest one step further round in each
# frame and the others fading behind it. Light greys stand out on the view's 0x464646.
def draw_busy(frames=12):
    size = 48
    strip = Image.new("RGB", (size * frames, size), MAGENTA)
    d = ImageDraw.Draw(strip)
    for f in range(frames):
        for dot in range(12):
            angle = 2 * math.pi * dot / 12 - math.pi / 2
            cx = f * size + size / 2 + 16 * math.cos(angle)
            cy = size / 2 + 16 * math.sin(angle)
            behind = (f - dot) % 12  # 0: the leading dot
            g = lerp(0xF0, 0x80, behind / 11.0)
            r = 3.6 if behind == 0 else 3.2
            d.ellipse([cx - r, cy - r, cx + r, cy + r], fill=(g, g, g))
    save_bmp(strip, "busy.bmp")
    return strip


# --- 408: command images and their tool-bar description -----------------------------------
TOOLBAR = [2006, 2005, 0, 2031, 2009, 0, 2014, 2015, 0, 2081, 2082, 0, 2064, 2065, 0,
           2123, 2124, 2121, 2122, 0, 2105, 5511, 0, 2109, 2107]

INK = (40, 40, 40)
BLUE = (30, 90, 200)
YELLOW = (240, 200, 60)
WHITE = (255, 255, 255)
GREEN = (40, 150, 60)
RED = (200, 50, 40)
GREY = (150, 150, 150)


def folder(d):  # open
    d.polygon([(1, 4), (6, 4), (7, 5), (14, 5), (14, 13), (1, 13)], fill=YELLOW, outline=INK)
    d.line([(2, 7), (14, 7)], fill=INK)


def printer(d):  # print
    d.rectangle([4, 1, 11, 6], fill=WHITE, outline=INK)
    d.rectangle([1, 6, 14, 11], fill=GREY, outline=INK)
    d.rectangle([4, 10, 11, 14], fill=WHITE, outline=INK)
    d.point((12, 8), fill=GREEN)


def sheets(d):  # copy
    d.rectangle([1, 1, 8, 10], fill=WHITE, outline=INK)
    d.rectangle([6, 5, 13, 14], fill=WHITE, outline=INK)
    for y in (8, 10, 12):
        d.line([(8, y), (11, y)], fill=BLUE)


def bin_(d):  # delete
    d.rectangle([2, 3, 13, 4], fill=GREY, outline=INK)
    d.rectangle([6, 1, 9, 2], outline=INK)
    d.polygon([(3, 5), (12, 5), (11, 14), (4, 14)], fill=WHITE, outline=INK)
    for x in (6, 8, 10):
        d.line([(x, 7), (x, 12)], fill=GREY)


def arrow_left(d):  # previous
    d.polygon([(1, 8), (7, 2), (7, 5), (14, 5), (14, 11), (7, 11), (7, 14)], fill=GREEN, outline=INK)


def arrow_right(d):  # next
    d.polygon([(14, 8), (8, 2), (8, 5), (1, 5), (1, 11), (8, 11), (8, 14)], fill=GREEN, outline=INK)


def turn_left(d):  # rotate left; rotate right is its mirror image (see MIRRORED)
    # Three quarters of a circle from the top round the right to the left side, the head at the top.
    d.arc([2, 3, 13, 14], -90, 180, fill=BLUE, width=2)
    d.polygon([(4, 3), (8, 0), (8, 6)], fill=BLUE)


def hand(d):
    # Four fingers above a palm, the thumb to the left.
    for x, top in ((4, 3), (6, 1), (8, 1), (10, 2)):
        d.rectangle([x, top, x + 2, 9], fill=YELLOW, outline=INK)
    d.rectangle([4, 8, 12, 13], fill=YELLOW, outline=INK)
    for x in (6, 8, 10):
        d.point((x, 8), fill=INK)
    d.line([(1, 6), (4, 10)], fill=INK, width=2)


def dashed(d):  # rectangle select
    for x in range(1, 15):
        if (x // 2) % 2 == 0:
            d.point((x, 2), fill=INK)
            d.point((x, 13), fill=INK)
    for y in range(2, 14):
        if (y // 2) % 2 == 0:
            d.point((1, y), fill=INK)
            d.point((14, y), fill=INK)


def magnifier(d, sign):
    d.ellipse([1, 1, 10, 10], fill=WHITE, outline=INK, width=1)
    d.line([(9, 9), (14, 14)], fill=INK, width=2)
    d.line([(3, 5), (8, 5)], fill=BLUE)
    d.line([(3, 6), (8, 6)], fill=BLUE)
    if sign == "+":
        d.line([(5, 3), (5, 8)], fill=BLUE)
        d.line([(6, 3), (6, 8)], fill=BLUE)


def one_to_one(d):  # original size: "1:1"
    d.line([(3, 4), (3, 12)], fill=INK, width=2)
    d.line([(2, 5), (3, 4)], fill=INK)
    d.rectangle([7, 6, 8, 7], fill=INK)
    d.rectangle([7, 10, 8, 11], fill=INK)
    d.line([(12, 4), (12, 12)], fill=INK, width=2)
    d.line([(11, 5), (12, 4)], fill=INK)


def corners(d):  # whole image
    for (x, y, dx, dy) in ((1, 1, 1, 1), (14, 1, -1, 1), (1, 14, 1, -1), (14, 14, -1, -1)):
        d.line([(x, y), (x + 4 * dx, y)], fill=INK, width=1)
        d.line([(x, y), (x, y + 4 * dy)], fill=INK, width=1)
        d.line([(x + dx, y + dy), (x + 3 * dx, y + 3 * dy)], fill=BLUE)


def film(d):  # thumbnail list
    d.rectangle([0, 3, 15, 12], fill=INK)
    for x in range(1, 15, 3):
        d.point((x, 4), fill=WHITE)
        d.point((x, 11), fill=WHITE)
    for x in (1, 6, 11):
        d.rectangle([x, 6, x + 3, 9], fill=(120, 180, 240))


def info(d):  # image information: "i"
    d.ellipse([1, 1, 14, 14], fill=BLUE, outline=INK)
    d.rectangle([7, 3, 8, 4], fill=WHITE)
    d.rectangle([7, 6, 8, 12], fill=WHITE)


def pencil(d):  # edit
    d.polygon([(3, 11), (11, 3), (13, 5), (5, 13)], fill=YELLOW, outline=INK)
    d.polygon([(3, 11), (5, 13), (1, 15)], fill=(230, 190, 150), outline=INK)
    d.line([(10, 4), (12, 6)], fill=RED)


def play(d):  # slide show
    d.polygon([(4, 2), (13, 8), (4, 14)], fill=GREEN, outline=INK)


DRAWINGS = {
    2006: folder, 2005: printer, 2031: sheets, 2009: bin_, 2014: arrow_left, 2015: arrow_right,
    2081: turn_left, 2082: turn_left, 2064: hand, 2065: dashed,
    2123: lambda d: magnifier(d, "+"), 2124: lambda d: magnifier(d, "-"), 2121: one_to_one,
    2122: corners, 2105: film, 5511: info, 2109: pencil, 2107: play,
}

MIRRORED = {2082}


def draw_toolbar():
    commands = [c for c in TOOLBAR if c]
    strip = Image.new("RGB", (16 * len(commands), 16), MAGENTA)
    for i, command in enumerate(commands):
        tile = Image.new("RGB", (16, 16), MAGENTA)
        DRAWINGS[command](ImageDraw.Draw(tile))
        if command in MIRRORED:
            tile = tile.transpose(Image.FLIP_LEFT_RIGHT)
        strip.paste(tile, (16 * i, 0))
    save_bmp(strip, "commands.bmp")
    return strip


# --- icons 201, 204, 205 -----------------------------------------------------------------
def save_ico(image, name):
    """One 16 x 16 entry in the classic form: a 32-bit BGRA bitmap and a 1-bit AND mask."""
    image = image.convert("RGBA")
    w, h = image.size
    px = image.load()
    xor = bytearray()
    mask = bytearray()
    mask_stride = ((w + 31) // 32) * 4
    for y in reversed(range(h)):
        row = bytearray(mask_stride)
        for x in range(w):
            r, g, b, a = px[x, y]
            xor += bytes((b, g, r, a))
            if a == 0:
                row[x // 8] |= 0x80 >> (x % 8)
        mask += row
    header = struct.pack("<IiiHHIIiiII", 40, w, h * 2, 1, 32, 0, len(xor) + len(mask), 0, 0, 0, 0)
    data = header + bytes(xor) + bytes(mask)
    directory = struct.pack("<HHH", 0, 1, 1) + struct.pack("<BBBBHHII", w, h, 0, 0, 1, 32, len(data), 22)
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(directory + data)


def icon_size():  # 201: a frame with ruler marks
    im = Image.new("RGBA", (16, 16), (0, 0, 0, 0))
    d = ImageDraw.Draw(im)
    d.rectangle([3, 3, 14, 14], fill=(255, 255, 255, 255), outline=INK + (255,))
    d.rectangle([0, 0, 15, 1], fill=YELLOW + (255,))
    d.rectangle([0, 0, 1, 15], fill=YELLOW + (255,))
    for t in range(3, 16, 3):
        d.point((t, 1), fill=INK + (255,))
        d.point((1, t), fill=INK + (255,))
    return im


def icon_colours():  # 204: a palette with colour dots
    im = Image.new("RGBA", (16, 16), (0, 0, 0, 0))
    d = ImageDraw.Draw(im)
    d.ellipse([0, 2, 15, 14], fill=(225, 190, 140, 255), outline=INK + (255,))
    d.ellipse([9, 9, 12, 12], fill=(0, 0, 0, 0), outline=INK + (255,))
    for (x, y, c) in ((3, 5, RED), (7, 4, YELLOW), (11, 5, GREEN), (3, 9, BLUE)):
        d.ellipse([x - 1, y - 1, x + 1, y + 1], fill=c + (255,))
    return im


def icon_zoom():  # 205: a magnifier
    im = Image.new("RGBA", (16, 16), (0, 0, 0, 0))
    d = ImageDraw.Draw(im)
    d.line([(9, 9), (14, 14)], fill=INK + (255,), width=3)
    d.ellipse([0, 0, 10, 10], fill=(210, 230, 255, 255), outline=INK + (255,), width=2)
    return im


# --- 416 to 419: the slide show's buttons ---------------------------------------------------
# 32 x 32 glyphs in a light grey that reads on the buttons' dark faces over any picture; no
# anti-aliasing, so no edge pixel mixes with the transparent magenta.
GLYPH = (235, 235, 235)


def skip_back(d):  # 416: previous
    d.rectangle([8, 9, 10, 22], fill=GLYPH)
    d.polygon([(23, 9), (23, 22), (12, 15)], fill=GLYPH)


def close_cross(d):  # 418: close
    d.line([(10, 10), (21, 21)], fill=GLYPH, width=3)
    d.line([(10, 21), (21, 10)], fill=GLYPH, width=3)


def start_glyph(d):  # 419, first image: start (shown while paused)
    d.polygon([(11, 8), (23, 15), (11, 22)], fill=GLYPH)


def pause_glyph(d):  # 419, second image: pause (shown while the show runs)
    d.rectangle([10, 9, 13, 22], fill=GLYPH)
    d.rectangle([18, 9, 21, 22], fill=GLYPH)


def slide_tile(drawing, mirrored=False):
    tile = Image.new("RGB", (32, 32), MAGENTA)
    drawing(ImageDraw.Draw(tile))
    return tile.transpose(Image.FLIP_LEFT_RIGHT) if mirrored else tile


def draw_slide_buttons():
    save_bmp(slide_tile(skip_back), "slide-previous.bmp")
    save_bmp(slide_tile(skip_back, mirrored=True), "slide-next.bmp")
    save_bmp(slide_tile(close_cross), "slide-close.bmp")
    strip = Image.new("RGB", (64, 32), MAGENTA)
    strip.paste(slide_tile(start_glyph), (0, 0))
    strip.paste(slide_tile(pause_glyph), (32, 0))
    save_bmp(strip, "slide-start.bmp")


def main():
    draw_shadow()
    draw_busy()
    draw_toolbar()
    save_ico(icon_size(), "size.ico")
    save_ico(icon_colours(), "colours.ico")
    save_ico(icon_zoom(), "zoom.ico")
    draw_slide_buttons()
    print("toolbar 408:", len(TOOLBAR), "items,", len([c for c in TOOLBAR if c]), "images")


if __name__ == "__main__":
    main()
