#!/usr/bin/env bash
# The slide show as a user meets it, under Wine through the built DLL (slideRunW), on a folder
# of 24-megapixel JPEGs with the default display time of 2 seconds:
#   - how late each slide change comes, against the plain decode of one such file (the same
#     system decoder in the same process, and libjpeg-turbo's djpeg natively, measured in
#     the same run): a show that prepares the next slide while one is shown changes on time
#     even though one decode takes a good part of the display time;
#   - the memory the show holds with its cache of ten prepared slides full.
#   bench/slideshow/run.sh [changes]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
# One wine server and one display for all of the benchmark's Wine runs.
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
changes=${1:-14}
work=$root/build/bench-slideshow
mkdir -p "$work"
cd "$root"
source bench/lib.sh
cmake --preset windows >/dev/null
cmake --build build/windows --target slideshow_bench lxpicture -j2 >/dev/null
source scripts/wine-env.sh

if [ ! -s "$work/photo24.jpg" ]; then
    echo "making the photograph ..."
    convert -size 1500x1000 -seed 3 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -quality 90 "$work/photo24.jpg"
fi
# Sixteen slides: more than the cache holds, so the show keeps loading as it goes round.
rm -rf "$work/folder" && mkdir -p "$work/folder"
for i in $(seq 1 16); do ln "$work/photo24.jpg" "$work/folder/p$i.jpg"; done

djpeg_best=""
for _ in 1 2 3; do
    s=$(date +%s.%N); djpeg -outfile /dev/null "$work/photo24.jpg"; e=$(date +%s.%N)
    t=$(echo "$e - $s" | bc)
    if [ -z "$djpeg_best" ] || [ "$(echo "$t < $djpeg_best" | bc)" = 1 ]; then djpeg_best=$t; fi
done

out=$(wine build/windows/bench/slideshow/slideshow_bench.exe \
      "$(winpath "$root/build/windows/src/module/lxpicture.dll")" "$(winpath "$work/photo24.jpg")" \
      "$(winpath "$work/folder")" "$changes" | tr -d '\r')
get() { echo "$out" | awk -v k="$1" '$1 == k {print $2}'; }
decode=$(get decode)
[ -n "$decode" ] || { echo "the benchmark program failed"; exit 1; }
printf "%-48s %9s %8s\n" "measure (24 MP JPEG, display time 2 s)" seconds "/ decode"
printf "%-48s %9.3f %8.2f\n" "djpeg (libjpeg-turbo, native)" "$djpeg_best" "$(echo "$djpeg_best / $decode" | bc -l)"
printf "%-48s %9.3f %8.2f\n" "plain decode, system codec under Wine" "$decode" 1
printf "%-48s %9.3f %8.2f\n" "slideRunW to the first slide" "$(get first)" "$(echo "$(get first) / $decode" | bc -l)"
printf "%-48s %9.3f %8.2f\n" "slide change later than 2 s, mean of $changes" "$(get late_mean)" \
    "$(echo "$(get late_mean) / $decode" | bc -l)"
printf "%-48s %9.3f %8.2f\n" "slide change later than 2 s, worst" "$(get late_max)" \
    "$(echo "$(get late_max) / $decode" | bc -l)"
echo "memory with ten slides prepared: $(get cache_mb) MB (one decoded 24 MP picture: $((6000 * 4000 * 3 / 1048576)) MB)"
echo "reproduce: bench/slideshow/run.sh $changes"
