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

# measure COMMAND...: sets wall and cpu to the shortest wall-clock time and the shortest
# processor time (user + system, all threads) of $runs runs, in seconds. On a shared,
# busy machine the processor time is the steadier figure.
# Our program also reports the time spent in the encoder alone (without reading the
# 72 MB input); encode is the shortest of those, for the last program measured.
measure() {
    wall=""
    cpu=""
    encode=""
    i=0
    while [ $i -lt "$runs" ]; do
        start=$(date +%s.%N)
        /usr/bin/time -f "%U %S" -o "$work/cpu.txt" "$@" 2>"$work/stderr.txt"
        end=$(date +%s.%N)
        e=$(awk '/^encode /{print $2}' "$work/stderr.txt")
        if [ -n "$e" ] && { [ -z "$encode" ] || [ "$(echo "$e < $encode" | bc)" = 1 ]; }; then encode=$e; fi
        t=$(echo "$end - $start" | bc)
        c=$(awk '{print $1 + $2}' "$work/cpu.txt")
        if [ -z "$wall" ] || [ "$(echo "$t < $wall" | bc)" = 1 ]; then wall=$t; fi
        if [ -z "$cpu" ] || [ "$(echo "$c < $cpu" | bc)" = 1 ]; then cpu=$c; fi
        i=$((i + 1))
    done
}

psnr() {
    djpeg -pnm -outfile "$work/decoded.ppm" "$1"
    compare -metric PSNR "$photo" "$work/decoded.ppm" null: 2>&1 || true
}

printf "%-12s %8s %8s %7s %8s %8s %7s %8s %9s %9s %7s %8s %8s\n" form cjpeg_s ours_s speed cjpeg_cpu ours_cpu cpu \
    ours_enc cjpeg_B ours_B size cjpeg_dB ours_dB
for form in standard optimize progressive; do
    case $form in
        standard) opt="" ;;
        optimize) opt="-optimize" ;;
        progressive) opt="-progressive" ;;
    esac
    measure cjpeg -quality "$quality" $opt -outfile "$work/cjpeg.jpg" "$photo"
    tc=$wall cc=$cpu
    measure "$bench" -quality "$quality" $opt -outfile "$work/ours.jpg" "$photo"
    to=$wall co=$cpu eo=$encode
    sc=$(stat -c %s "$work/cjpeg.jpg")
    so=$(stat -c %s "$work/ours.jpg")
    pc=$(psnr "$work/cjpeg.jpg")
    po=$(psnr "$work/ours.jpg")
    printf "%-12s %8.3f %8.3f %7.2f %8.2f %8.2f %7.2f %8.3f %9d %9d %7.4f %8.3f %8.3f\n" "$form" "$tc" "$to" \
        "$(echo "$tc / $to" | bc -l)" "$cc" "$co" "$(echo "$cc / $co" | bc -l)" "$eo" "$sc" "$so" \
        "$(echo "$so / $sc" | bc -l)" "$pc" "$po"
done
echo "speed = cjpeg wall time / ours, cpu = cjpeg processor time / ours (above 1: we are faster)"
echo "ours_enc = wall time of our encoder alone, without reading the input file"
echo "size = our bytes / cjpeg bytes; dB = PSNR of the decoded file against the source"
echo "reproduce: bench/jpeg/run.sh $quality $runs"
