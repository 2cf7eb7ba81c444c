#!/usr/bin/env bash
# Remakes the PNG variants that the Windows loader test reads, with ImageMagick, and beside
# each one the pixels ImageMagick itself reads from it (13x7, 8-bit RGBA, rows from the top).
set -e
cd "$(dirname "$0")"
plain="-strip -define png:exclude-chunks=date,time"
rose="rose: -crop 13x7+20+20 +repage"
ramp="-size 13x7 gradient:"
convert -size 13x7 gradient:red-blue $plain -depth 16 rgb16.png
convert $ramp $plain -depth 16 grey16.png
convert -size 13x7 gradient:red-blue \( -size 13x7 gradient:white-black \) -alpha off -compose copy_opacity -composite \
  $plain -depth 16 rgba16.png
convert $ramp \( +clone -flop \) -alpha off -compose copy_opacity -composite -type GrayscaleAlpha $plain -depth 8 greya8.png
convert $ramp \( +clone -flop \) -alpha off -compose copy_opacity -composite -type GrayscaleAlpha $plain -depth 16 greya16.png
convert $ramp $plain -define png:color-type=0 -define png:bit-depth=4 grey4.png
convert $ramp $plain -define png:color-type=0 -define png:bit-depth=1 grey1.png
convert $ramp $plain -define png:color-type=0 -define png:bit-depth=2 grey2.png
convert $rose $plain PNG8:pal8.png
convert $rose -colors 12 $plain -define png:color-type=3 -define png:bit-depth=4 pal4.png
convert $rose -colors 4 $plain -define png:color-type=3 -define png:bit-depth=2 pal2.png
convert $rose -colors 2 $plain -define png:color-type=3 -define png:bit-depth=1 pal1.png
convert $rose -alpha set -channel A -fx 'i<6?0:1' +channel -colors 8 $plain PNG8:pal8trns.png
convert $rose -alpha set -channel A -fx 'i<6?0:1' +channel -colors 8 -strip -define png:bit-depth=4 PNG8:pal4trns.png
convert $rose $plain -interlace PNG PNG24:rgb8i.png
convert $rose -alpha set -channel A -fx 'i<6?0.5:1' +channel $plain -interlace PNG PNG32:rgba8i.png
for f in *.png; do convert "$f" -depth 8 -alpha on "rgba:${f%.png}.rgba"; done
