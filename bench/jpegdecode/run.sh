#!/bin/sh
# Decoder speed against djpeg (libjpeg-turbo) on 24-megapixel JPEG files, full size and at
# 1/8 (`djpeg -scale 1/8`), in one run: a synthetic photograph-like picture and a real
# photograph enlarged to the same size, each as 4:2:0 baseline, progressive and 4:4:4. Both
# programs read the JPEG file and write a PPM file on one core; times are the best of
# several runs, processor time (user + system) beside wall-clock time. Our decoder's own
# time (without file reading and writing) is shown as well.
#   bench/jpegdecode/run.sh [runs]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
runs=${1:-3}
work=$root/build/bench-jpegdecode
mkdir -p "$work"
cd "$root"
im_convert=/usr/bin/convert  # ImageMagick by its installed path, not a stand-in found first on PATH

cmake --preset native-release >/dev/null
cmake --build build/native-release --target jpegdecode_bench -j2 >/dev/null 2>&1
bench=$root/build/native-release/bench/jpegdecode/jpegdecode_bench

if [ ! -s "$work/synthetic.ppm" ]; then
    echo "making the 6000 x 4000 pictures ..."
    $im_convert -size 1500x1000 -seed 7 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -depth 8 "$work/synthetic.ppm"
    $im_convert /usr/lib/python3/dist-packages/skimage/data/coffee.png -resize 6000x4000! -depth 8 "$work/photo.ppm"
fi

# measure COMMAND...: wall and cpu become the shortest wall-clock and processor times of
# $runs runs; decode the shortest decoder-only time our program reported.
measure() {
    wall="" cpu="" decode=""
    i=0
    while [ $i -lt "$runs" ]; do
        start=$(date +%s.%N)
        taskset -c 0 /usr/bin/time -f "%U %S" -o "$work/cpu.txt" "$@" 2>"$work/stderr.txt" >/dev/null
        end=$(date +%s.%N)
        d=$(awk '/^decode /{print $2}' "$work/stderr.txt")
        if [ -n "$d" ] && { [ -z "$decode" ] || [ "$(echo "$d < $decode" | bc)" = 1 ]; }; then decode=$d; fi
        t=$(echo "$end - $start" | bc)
        c=$(awk '{print $1 + $2}' "$work/cpu.txt")
        if [ -z "$wall" ] || [ "$(echo "$t < $wall" | bc)" = 1 ]; then wall=$t; fi
        if [ -z "$cpu" ] || [ "$(echo "$c < $cpu" | bc)" = 1 ]; then cpu=$c; fi
        i=$((i + 1))
    done
}

printf "%-22s %5s %8s %8s %6s %9s %9s %6s %8s %6s\n" file scale djpeg_s ours_s speed djpeg_cpu ours_cpu cpu ours_dec same
for picture in synthetic photo; do
    for form in baseline420 progressive baseline444; do
        case $form in
            baseline420) opt="" ;;
            progressive) opt="-progressive" ;;
            baseline444) opt="-sample 1x1" ;;
        esac
        jpeg=$work/$picture-$form.jpg
        [ -s "$jpeg" ] || cjpeg -quality 90 $opt -outfile "$jpeg" "$work/$picture.ppm"
        for scale in 1 8; do
            measure djpeg -scale 1/$scale -ppm -outfile "$work/djpeg.ppm" "$jpeg"
            dwall=$wall dcpu=$cpu
            measure "$bench" -scale 1/$scale -outfile "$work/ours.ppm" "$jpeg"
            same=no
            cmp -s "$work/djpeg.ppm" "$work/ours.ppm" && same=yes
            printf "%-22s %5s %8.3f %8.3f %5.2fx %9.3f %9.3f %5.2fx %8.3f %6s\n" "$picture-$form" "1/$scale" \
                "$dwall" "$wall" "$(echo "$dwall / $wall" | bc -l)" "$dcpu" "$cpu" "$(echo "$dcpu / $cpu" | bc -l)" \
                "$decode" "$same"
        done
    done
done
echo "speed and cpu: djpeg's time over ours (above 1: we are faster); same: identical output files"
echo "reproduce: bench/jpegdecode/run.sh $runs"
