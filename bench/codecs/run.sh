#!/bin/sh
# Speed of the codec library's own readers and writers against ImageMagick's convert, on the
# same 6-megapixel photograph-like image, in one run. Each side does the same work:
# decoding reads the format and writes a binary PPM; encoding reads the PPM and writes the
# format. Wall-clock times are the best of several runs; output sizes are compared too.
#   bench/codecs/run.sh [runs]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/bench/lib.sh"
runs=${1:-3}
work=$root/build/bench-codecs
mkdir -p "$work"
cd "$root"

cmake --preset native-release >/dev/null
cmake --build build/native-release --target codecs_bench -j2 >/dev/null
bench=$root/build/native-release/bench/codecs/codecs_bench

photo=$work/photo.ppm
if [ ! -s "$photo" ]; then
    echo "making $photo (3000 x 2000) ..."
    convert -size 750x500 -seed 7 plasma:fractal -resize 3000x2000 -attenuate 0.4 +noise Gaussian \
        -depth 8 "$photo"
fi

# best_time COMMAND...: the shortest wall-clock time of $runs runs, in seconds.
best_time() {
    best=""
    i=0
    while [ $i -lt "$runs" ]; do
        start=$(date +%s.%N)
        "$@" >/dev/null 2>&1
        end=$(date +%s.%N)
        t=$(echo "$end - $start" | bc)
        if [ -z "$best" ] || [ "$(echo "$t < $best" | bc)" = 1 ]; then best=$t; fi
        i=$((i + 1))
    done
    echo "$best"
}

printf "%-8s %-7s %10s %10s %8s %12s %12s %8s\n" what format magick_s ours_s speed magick_B ours_B size
for ext in bmp png gif tif tga pcx ras sgi; do
    prefix=""
    [ "$ext" = sgi ] && prefix="SGI:"
    tm=$(best_time "$im_convert" "$photo" "$prefix$work/magick.$ext")
    to=$(best_time "$bench" encode "$photo" "$work/ours.$ext")
    sm=$(stat -c %s "$work/magick.$ext")
    so=$(stat -c %s "$work/ours.$ext")
    printf "%-8s %-7s %10.3f %10.3f %8.2f %12d %12d %8.3f\n" encode "$ext" "$tm" "$to" \
        "$(echo "$tm / $to" | bc -l)" "$sm" "$so" "$(echo "$so / $sm" | bc -l)"
done
# Decoding reads the same input file on both sides: the one ImageMagick wrote.
convert "$photo" -compress RLE "$work/magick-rle.tga"
convert "$photo" "$work/magick.psd"
for file in magick.bmp magick.tga magick-rle.tga magick.pcx magick.ras magick.sgi magick.psd; do
    prefix=""
    case $file in *.sgi) prefix="SGI:" ;; esac
    tm=$(best_time "$im_convert" "$prefix$work/$file" "$work/decoded-magick.ppm")
    to=$(best_time "$bench" decode "$work/$file" "$work/decoded-ours.ppm")
    printf "%-8s %-7s %10.3f %10.3f %8.2f\n" decode "${file#magick}" "$tm" "$to" "$(echo "$tm / $to" | bc -l)"
done
echo "speed = convert time / our time (above 1: faster); size = our bytes / convert bytes"
echo "reproduce: bench/codecs/run.sh $runs"
