#!/usr/bin/env bash
# The viewer as a user meets it, under Wine through the built DLL (imgRunW):
#   - time from Open to the picture in the view for a 24-megapixel JPEG, against the plain
#     decode of the same file (the same system decoder in the same process, and libjpeg-turbo's
#     djpeg natively, as references measured in the same run);
#   - memory of the frame after it has listed a folder of N 12-megapixel JPEGs, and after
#     their thumbnails are made.
# Thumbnail speed itself is bench/viewer.
#   bench/viewer-open/run.sh [files]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
# One wine server and one display for all of the benchmark's Wine runs.
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
files=${1:-200}
work=$root/build/bench-viewer-open
mkdir -p "$work"
cd "$root"
source bench/lib.sh
cmake --preset windows >/dev/null
cmake --build build/windows --target viewer_open_bench lxpicture -j2 >/dev/null
source scripts/wine-env.sh

if [ ! -s "$work/photo24.jpg" ]; then
    echo "making the photographs ..."
    convert -size 1500x1000 -seed 3 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -quality 90 "$work/photo24.jpg"
    convert "$work/photo24.jpg" -resize 4000x3000 -quality 90 "$work/photo12.jpg"
fi
mkdir -p "$work/one" && cp "$work/photo24.jpg" "$work/one/photo.jpg"
rm -rf "$work/folder" && mkdir -p "$work/folder"
for i in $(seq 1 "$files"); do ln "$work/photo12.jpg" "$work/folder/p$i.jpg"; done

djpeg_best=""
for _ in 1 2 3; do
    s=$(date +%s.%N); djpeg -outfile /dev/null "$work/one/photo.jpg"; e=$(date +%s.%N)
    t=$(echo "$e - $s" | bc)
    if [ -z "$djpeg_best" ] || [ "$(echo "$t < $djpeg_best" | bc)" = 1 ]; then djpeg_best=$t; fi
done

out=$(scripts/with-display.sh wine build/windows/bench/viewer-open/viewer_open_bench.exe \
      "$(winpath "$root/build/windows/src/module/lxpicture.dll")" "$(winpath "$work/one/photo.jpg")" \
      "$(winpath "$work/folder/p1.jpg")" "$files" | tr -d '\r')
get() { echo "$out" | awk -v k="$1" '$1 == k {print $2}'; }
decode=$(get decode); open=$(get open)
printf "%-44s %9s %8s\n" "measure (24 MP JPEG, best of 3)" seconds ratio
printf "%-44s %9.3f %8.2f\n" "djpeg (libjpeg-turbo, native)" "$djpeg_best" 1
printf "%-44s %9.3f %8.2f\n" "plain decode, system codec under Wine" "$decode" "$(echo "$decode / $djpeg_best" | bc -l)"
printf "%-44s %9.3f %8.2f\n" "viewer: imgRunW to picture in the view" "$open" "$(echo "$open / $djpeg_best" | bc -l)"
echo "open / plain decode: $(echo "$open / $decode" | bc -l | cut -c1-5)"
echo "frame memory for $files photographs: $(get listed_mb) MB once listed, $(get thumbnails_mb) MB with thumbnails"
echo "ratio column: seconds / djpeg's seconds (1 = as fast as djpeg)"
echo "reproduce: bench/viewer-open/run.sh $files"
