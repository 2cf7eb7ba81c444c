#!/bin/sh
# Encoder speed, size and quality against cjpeg (libjpeg-turbo) on the same 24-megapixel
# photograph-like image, at the same quality, in one run. Both programs read the same PPM
# file and write a JPEG file; wall-clock times are the best of several runs.
#   bench/jpeg/run.sh [quality] [runs]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
quality=${1:-75}
runs=${2:-3}
work=$root/build/bench-jpeg
mkdir -p "$work"
cd "$root"

cmake --preset native-release >/dev/null
cmake --build build/native-release --target jpeg_bench -j2 >/dev/null 2>&1
bench=$root/build/native-release/bench/jpeg/jpeg_bench

photo=$work/photo.ppm
if [ ! -s "$photo" ]; then
    echo "making $photo (6000 x 4000) ..."
    convert -size 1500x1000 -seed 7 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -depth 8 "$photo"
fi

# best_time COMMAND...: the shortest wall-clock time of $runs runs, in seconds.
best_time() {
    best=""
    i=0
    while [ $i -lt "$runs" ]; do
        start=$(date +%s.%N)
        "$@" 2>/dev/null
        end=$(date +%s.%N)
        t=$(echo "$end - $start" | bc)
        if [ -z "$best" ] || [ "$(echo "$t < $best" | bc)" = 1 ]; then best=$t; fi
        i=$((i + 1))
    done
    echo "$best"
}

psnr() {
    djpeg -pnm -outfile "$work/decoded.ppm" "$1"
    compare -metric PSNR "$photo" "$work/decoded.ppm" null: 2>&1 || true
}

printf "%-12s %10s %10s %10s %10s %10s %10s %8s %8s\n" form cjpeg_s ours_s speed cjpeg_B ours_B size cjpeg_dB ours_dB
for form in standard optimize progressive; do
    case $form in
        standard) opt="" ;;
        optimize) opt="-optimize" ;;
        progressive) opt="-progressive" ;;
    esac
    tc=$(best_time cjpeg -quality "$quality" $opt -outfile "$work/cjpeg.jpg" "$photo")
    to=$(best_time "$bench" -quality "$quality" $opt -outfile "$work/ours.jpg" "$photo")
    sc=$(stat -c %s "$work/cjpeg.jpg")
    so=$(stat -c %s "$work/ours.jpg")
    pc=$(psnr "$work/cjpeg.jpg")
    po=$(psnr "$work/ours.jpg")
    printf "%-12s %10.3f %10.3f %10.2f %10d %10d %10.4f %8.3f %8.3f\n" "$form" "$tc" "$to" \
        "$(echo "$tc / $to" | bc -l)" "$sc" "$so" "$(echo "$so / $sc" | bc -l)" "$pc" "$po"
done
echo "speed = cjpeg time / our time (above 1: faster); size = our bytes / cjpeg bytes"
echo "reproduce: bench/jpeg/run.sh $quality $runs"
