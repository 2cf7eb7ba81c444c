#!/bin/sh
# Regenerates the tiny photographs the Windows rename tests use: 8x8 JPEGs whose shooting
# times are written by exiftool, plus one without any Exif data.
set -e
cd "$(dirname "$0")"
convert -size 8x8 xc:steelblue -strip plain.jpg
shoot() {
  cp plain.jpg "$1"
  exiftool -q -overwrite_original "-DateTimeOriginal=$2" "$1"
}
shoot may07-a.jpg "2024:05:07 10:20:30"
shoot may07-b.jpg "2024:05:07 10:20:30"
shoot jun05.jpg "2024:06:05 08:00:00"
shoot mar1990.jpg "1990:03:04 12:00:00"
