"""Sine gratings for judging a reduction, and how much of each a reduced picture kept.

  gratings.py make DIR W H OW         grey PGM gratings, W x H, varying along x, named by their
                                      frequency in cycles per pixel of an OW-wide output
  gratings.py measure DIR TOOL W H OW  reads DIR/TOOL/<name>.pgm (the reductions) and prints
                                      what was kept of each frequency
  gratings.py pillow DIR W H OW        writes DIR/pillow/<name>.pgm with Pillow's LANCZOS

A frequency f below the output's Nyquist frequency (0.5) should come through whole; one above
it cannot be shown and should vanish, but whatever the filter lets through reappears folded
at |f - round(f)|. Each output row is fitted (least squares: level, cosine and sine) at the
frequency where the grating must show up, and the amplitude found is divided by the input's.
"""
import math
import os
import sys

import numpy as np

AMPLITUDE = 100.0
LEVEL = 128.0
# Output frequencies well inside the band, and above the Nyquist frequency (integers would
# fold onto the mean level and are left out).
PASS = [0.05, 0.1, 0.15, 0.2, 0.25]
ABOVE = [0.525, 0.55, 0.575, 0.6, 0.65, 0.7, 0.75, 0.8, 0.9, 1.1, 1.25, 1.5]


def name(kind, f):
    return "%s_%0.3f" % (kind, f)


def gratings():
    return [("pass", f) for f in PASS] + [("alias", f) for f in ABOVE]


def make(folder, w, h, ow):
    os.makedirs(folder, exist_ok=True)
    scale = w / ow
    x = np.arange(w)
    for kind, f in gratings():
        path = os.path.join(folder, name(kind, f) + ".pgm")
        if os.path.exists(path):
            continue
        row = LEVEL + AMPLITUDE * np.sin(2 * math.pi * (f / scale) * x + 0.3)
        image = np.repeat(np.clip(np.rint(row), 0, 255).astype(np.uint8)[None, :], h, axis=0)
        with open(path, "wb") as out:
            out.write(b"P5\n%d %d\n255\n" % (w, h))
            out.write(image.tobytes())


def read_pgm(path):
    with open(path, "rb") as f:
        data = f.read()
    fields, at = [], 0
    while len(fields) < 4:  # magic, width, height, maximum; comments skipped
        while data[at:at + 1].isspace():
            at += 1
        if data[at:at + 1] == b"#":
            at = data.index(b"\n", at)
            continue
        end = at
        while not data[end:end + 1].isspace():
            end += 1
        fields.append(data[at:end])
        at = end
    assert fields[0] == b"P5", path
    w, h = int(fields[1]), int(fields[2])
    return np.frombuffer(data[at + 1: at + 1 + w * h], dtype=np.uint8).reshape(h, w).astype(np.float64)


def kept(image, f):
    """Amplitude of frequency f (cycles per output pixel, folded) over the input's."""
    shown = abs(f - round(f))
    rows = image[image.shape[0] // 4: 3 * image.shape[0] // 4]
    margin = 8  # the edges repeat their pixel and are no grating
    x = np.arange(margin, rows.shape[1] - margin)
    basis = np.stack([np.ones_like(x, dtype=np.float64), np.cos(2 * math.pi * shown * x),
                      np.sin(2 * math.pi * shown * x)], axis=1)
    coef, *_ = np.linalg.lstsq(basis, rows[:, margin:-margin].T, rcond=None)
    return float(np.mean(np.hypot(coef[1], coef[2]))) / AMPLITUDE


def measure(folder, tool, w, h, ow):
    passed, folded = [], []
    for kind, f in gratings():
        image = read_pgm(os.path.join(folder, tool, name(kind, f) + ".pgm"))
        (passed if kind == "pass" else folded).append((f, kept(image, f)))
    band = [k for _, k in passed]
    alias = [k for _, k in folded]
    print("%-12s alias mean %.4f peak %.4f   pass band %.3f..%.3f   (%s)" % (
        tool, np.mean(alias), max(alias), min(band), max(band),
        " ".join("%g:%.3f" % (f, k) for f, k in passed + folded)))


def pillow(folder, w, h, ow):
    from PIL import Image
    oh = round(h * ow / w)
    os.makedirs(os.path.join(folder, "pillow"), exist_ok=True)
    for kind, f in gratings():
        image = Image.open(os.path.join(folder, name(kind, f) + ".pgm"))
        image.resize((ow, oh), Image.LANCZOS).save(os.path.join(folder, "pillow", name(kind, f) + ".pgm"))


if __name__ == "__main__":
    command, folder = sys.argv[1], sys.argv[2]
    if command == "make":
        make(folder, *map(int, sys.argv[3:6]))
    elif command == "measure":
        measure(folder, sys.argv[3], *map(int, sys.argv[4:7]))
    elif command == "pillow":
        pillow(folder, *map(int, sys.argv[3:6]))
    elif command == "names":
        print(" ".join(name(k, f) for k, f in gratings()))
