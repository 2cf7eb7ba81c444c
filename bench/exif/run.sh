#!/bin/sh
# Shooting time of 1,000 JPEG files: lx_exif against exiftool, measured in the same run
# over the same files (both warm in the page cache, each reader in one process).
# Reproduce with:  bench/exif/run.sh
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
cd "$root"
cmake --preset native-release >/dev/null
cmake --build build/native-release --target lx_exif_bench -j2 >/dev/null
bench=build/native-release/bench/exif/lx_exif_bench

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/photos"

# Ten distinct photographs (640x480, noisy so the JPEG data is realistic in size), with
# Exif in both byte orders, sub-seconds and an IFD1 thumbnail, each copied 100 times.
convert -size 160x120 xc:gray "$work/thumb.jpg"
for i in 0 1 2 3 4 5 6 7 8 9; do
  order=II; [ $((i % 2)) -eq 1 ] && order=MM
  convert -size 640x480 plasma:fractal -seed "$i" -quality 90 "$work/src$i.jpg"
  exiftool -q -q -m -overwrite_original -ExifByteOrder=$order -Make=Bench -Model="Camera $i" \
    "-DateTimeOriginal=2024:0$((i % 9 + 1)):1$i 1$i:2$i:3$i" -SubSecTimeOriginal=$i$i -ExposureTime=1/250 \
    -FNumber=4 -ISO=400 "-ThumbnailImage<=$work/thumb.jpg" "$work/src$i.jpg"
  for k in $(seq -w 0 99); do cp "$work/src$i.jpg" "$work/photos/p$i-$k.jpg"; done
done
cat "$work"/photos/* > /dev/null

now() { date +%s.%N; }
# Warm-up runs, then the measured ones.
"$bench" "$work/photos" > /dev/null 2>&1
exiftool -fast -q -s3 -DateTimeOriginal "$work/photos" > /dev/null

ours=$("$bench" "$work/photos" 2>/dev/null)
t0=$(now)
exiftool -fast -q -s3 -DateTimeOriginal -SubSecTimeOriginal "$work/photos" > /dev/null
t1=$(now)
theirs=$(echo "$t1 - $t0" | bc -l)

# Both readers must agree on every file.
"$bench" --print "$work/photos" 2>/dev/null | sort > "$work/ours.txt"
exiftool -fast -q -p '$FileName $DateTimeOriginal' "$work/photos" | sort > "$work/theirs.txt"
if cmp -s "$work/ours.txt" "$work/theirs.txt"; then agree=yes; else agree=NO; fi

files=$(ls "$work/photos" | wc -l)
printf '\nShooting time of %d JPEG files (results agree: %s)\n' "$files" "$agree"
printf '%-10s %10s %14s %10s\n' reader seconds files/s ratio
printf '%-10s %10.4f %14.0f %10s\n' lx_exif "$ours" "$(echo "$files / $ours" | bc -l)" 1
printf '%-10s %10.4f %14.0f %10.1f\n' exiftool "$theirs" "$(echo "$files / $theirs" | bc -l)" \
  "$(echo "$theirs / $ours" | bc -l)"
printf '\nratio = exiftool time / lx_exif time (goal: at least 20)\n'
printf 'reproduce: bench/exif/run.sh\n'
