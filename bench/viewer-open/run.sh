#!/usr/bin/env bash
# The viewer as a user meets it, under Wine through the built DLL (imgRunW), all in one run:
#   - open-to-screen: from the imgRunW call to the picture painted in the view, for a
#     24-megapixel JPEG, against the plain decode of the same file (LoadImageFile, what the
#     loader thread runs, in the same process) and libjpeg-turbo's djpeg natively (one core);
#     the same open of a tiny JPEG shows what the frame itself costs;
#   - peak memory of the open, each in a fresh process: how far the process rose above what
#     it held before, against the plain decode's peak and the picture's own size (the view
#     should hold the pixels once, plus its reduced copy);
#   - memory of the frame after it has listed a folder of N 12-megapixel JPEGs, and after
#     their thumbnails are made.
# Times are the best of 3. Thumbnail speed itself is bench/viewer.
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
    "$im_convert" -size 1500x1000 -seed 3 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -quality 90 "$work/photo24.jpg"
    "$im_convert" "$work/photo24.jpg" -resize 4000x3000 -quality 90 "$work/photo12.jpg"
fi
mkdir -p "$work/one" && cp "$work/photo24.jpg" "$work/one/photo.jpg"
rm -rf "$work/folder" && mkdir -p "$work/folder"
for i in $(seq 1 "$files"); do ln "$work/photo12.jpg" "$work/folder/p$i.jpg"; done

"$im_convert" -size 64x48 gradient:red-blue -quality 90 "$work/tiny.jpg"
mkdir -p "$work/small" && cp "$work/tiny.jpg" "$work/small/tiny.jpg"

djpeg_best=""
for _ in 1 2 3; do
    s=$(date +%s.%N); djpeg -outfile /dev/null "$work/one/photo.jpg"; e=$(date +%s.%N)
    t=$(echo "$e - $s" | bc)
    if [ -z "$djpeg_best" ] || [ "$(echo "$t < $djpeg_best" | bc)" = 1 ]; then djpeg_best=$t; fi
done

bench=build/windows/bench/viewer-open/viewer_open_bench.exe
dll=$(winpath "$root/build/windows/src/module/lxpicture.dll")
run() { scripts/with-display.sh wine "$bench" "$@" | tr -d '\r'; }
out=$(run "$dll" "$(winpath "$work/one/photo.jpg")" "$(winpath "$work/folder/p1.jpg")" "$files")
tiny=$(run "$dll" "$(winpath "$work/small/tiny.jpg")" "$(winpath "$work/small/tiny.jpg")" 1)
peak_open=$(run --peak open "$dll" "$(winpath "$work/one/photo.jpg")")
peak_decode=$(run --peak decode "$dll" "$(winpath "$work/one/photo.jpg")")
get() { echo "$2" | awk -v k="$1" '$1 == k {print $2}'; }
ratio() { echo "$1 / $2" | bc -l | awk '{printf "%.2f", $1}'; }
decode=$(get decode "$out"); open=$(get open "$out"); frame=$(get open "$tiny")
dims=$("${im_convert%/*}/identify" -format '%wx%h' "$work/one/photo.jpg")
picture_mb=$("${im_convert%/*}/identify" -format '%[fx:w*h*3/1048576]' "$work/one/photo.jpg")

printf "%-52s %9s %8s\n" "time ($dims JPEG, best of 3)" seconds "/decode"
printf "%-52s %9.3f %8s\n" "djpeg (libjpeg-turbo, native, one core)" "$djpeg_best" "$(ratio "$djpeg_best" "$decode")"
printf "%-52s %9.3f %8s\n" "decode alone: LoadImageFile under Wine" "$decode" 1.00
printf "%-52s %9.3f %8s\n" "open-to-screen: imgRunW to picture painted" "$open" "$(ratio "$open" "$decode")"
printf "%-52s %9.3f %8s\n" "  the same for a 64 x 48 JPEG (the frame alone)" "$frame" "$(ratio "$frame" "$decode")"
echo "open-to-screen / decode alone: $(ratio "$open" "$decode") (goal: at most 1.20)"
echo
printf "%-52s %9s %8s\n" "peak resident memory above the idle process" MB "/picture"
printf "%-52s %9.1f %8s\n" "the picture's pixels, 24-bit" "$picture_mb" 1.00
# Resident memory: Wine reports no peak of committed memory.
d=$(get peak_resident_mb "$peak_decode"); o=$(get peak_resident_mb "$peak_open")
printf "%-52s %9.1f %8s\n" "decode alone (the system codec holds its own copy)" "$d" "$(ratio "$d" "$picture_mb")"
printf "%-52s %9.1f %8s\n" "open-to-screen, until the picture is painted" "$o" "$(ratio "$o" "$picture_mb")"
echo
echo "frame memory for $files photographs: $(get listed_mb "$out") MB once listed, $(get thumbnails_mb "$out") MB with thumbnails"
echo "reproduce: bench/viewer-open/run.sh $files"
