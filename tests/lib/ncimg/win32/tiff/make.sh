#!/usr/bin/env bash
# Remakes the grey TIFF files that the Windows loader test reads, with ImageMagick, and beside
# each one the pixels ImageMagick itself reads from it (13x7, 8-bit RGBA, rows from the top).
set -e
cd "$(dirname "$0")"
ramp="-size 13x7 gradient: -strip -colorspace Gray -type Grayscale -compress none"
for depth in 1 4 8 16; do convert $ramp -depth $depth grey$depth.tif; done
convert $ramp -depth 1 -define quantum:polarity=min-is-white grey1w.tif
for f in *.tif; do convert "$f" -depth 8 -alpha on "rgba:${f%.tif}.rgba"; done
