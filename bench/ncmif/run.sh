#!/bin/sh
# Image-class speed against libvips and ImageMagick on a photograph-like picture, in one run.
# Every program reads the same PPM file, does one operation and writes a PPM file; times are
# the best wall-clock time of several runs with the processor time (user + system) of that
# run, memory the peak resident size. On a busy machine the processor times compare more
# fairly than the wall-clock ones. "op_s" is the operation alone inside our program (no file
# reading or writing), "op_cpu" its processor time over both threads.
#   bench/ncmif/run.sh [runs]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/bench/lib.sh"
runs=${1:-3}
work=$root/build/bench-ncmif
mkdir -p "$work"
cd "$root"

cmake --preset native-release >/dev/null
cmake --build build/native-release --target mif_bench -j2 >/dev/null
bench=$root/build/native-release/bench/ncmif/mif_bench

photo=$work/photo.ppm      # 6000 x 4000, 24 MP
photo12=$work/photo12.ppm  # 4000 x 3000, 12 MP
layer=$work/layer.ppm      # the photo mirrored, laid over it
if [ ! -s "$photo" ]; then
    echo "making $photo (6000 x 4000) ..."
    convert -size 1500x1000 -seed 7 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -depth 8 "$photo"
fi
[ -s "$photo12" ] || convert "$photo" -crop 4000x3000+1000+500 +repage "$photo12"
[ -s "$layer" ] || convert "$photo" -flop "$layer"

# measure COMMAND...: prints "wall_s cpu_s peak_kB" of the fastest of $runs runs.
measure() {
    best=""
    i=0
    while [ $i -lt "$runs" ]; do
        /usr/bin/time -f "%e %U %S %M" -o "$work/time.txt" "$@" >/dev/null 2>"$work/stderr.txt"
        read -r t u s m < "$work/time.txt"
        if [ -z "$best" ] || [ "$(echo "$t < $best" | bc)" = 1 ]; then
            best=$t; cpu=$(echo "$u + $s" | bc); peak=$m
            [ -s "$work/stderr.txt" ] && cp "$work/stderr.txt" "$work/best-stderr.txt"
        fi
        i=$((i + 1))
    done
    echo "$best $cpu $peak"
}

# row NAME MEGAPIXELS "OUR COMMAND" TOOL "TOOL COMMAND" [TOOL "TOOL COMMAND"]
# Prints one line per reference tool: wall and processor times, MP/s of the wall time, the
# ratios tool/ours (above 1: we are faster) and the peak memory of both.
row() {
    name=$1; mp=$2; ours=$3; shift 3
    # shellcheck disable=SC2086
    o=$(measure $ours)
    read -r ow oc om <<EOT
$o
EOT
    op=$(cut -d' ' -f2 "$work/best-stderr.txt")
    opcpu=$(cut -d' ' -f3 "$work/best-stderr.txt")
    while [ $# -gt 0 ]; do
        tool=$1; cmd=$2; shift 2
        # shellcheck disable=SC2086
        r=$(measure $cmd)
        read -r rw rc rm <<EOT
$r
EOT
        printf "%-9s %-6s %7.2f %7.2f %7.2f %7.2f %6.3f %6.3f %8.1f %8.1f %6.2f %6.2f %7d %7d\n" "$name" "$tool" \
            "$rw" "$ow" "$rc" "$oc" "$op" "$opcpu" "$(echo "$mp / $rw" | bc -l)" "$(echo "$mp / $ow" | bc -l)" \
            "$(echo "$rw / $ow" | bc -l)" "$(echo "$rc / $oc" | bc -l)" "$((rm / 1024))" "$((om / 1024))"
    done
}

printf "%-9s %-6s %7s %7s %7s %7s %6s %6s %8s %8s %6s %6s %7s %7s\n" op tool tool_s ours_s tool_cpu our_cpu op_s op_cpu tool_MPs ours_MPs ratio cpu_rt tool_MB ours_MB
row resize 24 "$bench resize $photo $work/ours.ppm" \
    vips "vips resize $photo $work/vips.ppm 0.16667" \
    magick "$im_convert $photo -filter Lanczos -resize 1000x667! $work/im.ppm"
row quantize 12 "$bench quantize $photo12 $work/ours.ppm" \
    magick "$im_convert $photo12 -dither FloydSteinberg -colors 256 $work/im.ppm"
row blur 12 "$bench blur $photo12 $work/ours.ppm" \
    vips "vips gaussblur $photo12 $work/vips.ppm 5" \
    magick "$im_convert $photo12 -blur 0x5 $work/im.ppm"
row multiply 24 "$bench multiply $photo $work/ours.ppm $layer" \
    vips "vips composite2 $photo $layer $work/vips.ppm multiply" \
    magick "$im_convert $photo $layer -compose multiply -composite $work/im.ppm"
echo "reproduce: bench/ncmif/run.sh $runs   (MP/s: input megapixels per wall second; ratio = tool_s / ours_s,"
echo "cpu_rt = tool_cpu / our_cpu; above 1 we are faster; load average now: $(cut -d' ' -f1-3 /proc/loadavg))"
