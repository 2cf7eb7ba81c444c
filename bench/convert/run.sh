#!/usr/bin/env bash
# Batch conversion speed: 100 photographs of 4000 x 3000 to JPEG quality 85 at long side
# 1600, against ImageMagick's mogrify and libvips' vipsthumbnail, in the same run.
#   - JPEG inputs through lxhost convert --unattended under Wine (the tool as the host runs it);
#   - PPM inputs through the same run natively (convert_bench), where JPEG does not decode.
# Each figure is the best wall-clock time of several runs; files per second and the ratio of
# the reference tool's time to ours (above 1: we are faster).
#   bench/convert/run.sh [files] [runs]        (LXHOST=path/to/lxhost.exe to use another build)
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
# One wine server and one display for all of the benchmark's Wine runs.
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
files=${1:-100}
runs=${2:-2}
work=$root/build/bench-convert
mkdir -p "$work"
cd "$root"
source bench/lib.sh

cmake --preset native-release >/dev/null
cmake --build build/native-release --target convert_bench -j2 >/dev/null
bench=$root/build/native-release/bench/convert/convert_bench
bench_lxhost

# One photograph-like picture, linked under every input name: all tools read the same cached
# bytes, so the figures compare conversion work, not the disk.
bench_photo "$work"
rm -rf "$work/in"
mkdir -p "$work/in/jpg" "$work/in/ppm"
i=0
while [ $i -lt "$files" ]; do
    ln "$work/photo.jpg" "$work/in/jpg/p$i.jpg"
    ln "$work/photo.ppm" "$work/in/ppm/p$i.ppm"
    i=$((i + 1))
done

written() { ls "$1" | wc -l; }

line() { # name input seconds count reference_seconds
    if [ "$4" -eq 0 ]; then
        printf "%-22s %-5s %9.2f %6d %10s %8s\n" "$1" "$2" "$3" "$4" "-" "-"
    else
        printf "%-22s %-5s %9.2f %6d %10.2f %8.2f\n" "$1" "$2" "$3" "$4" "$(echo "$4 / $3" | bc -l)" \
            "$(echo "$5 / $3" | bc -l)"
    fi
}

source "$root/scripts/wine-env.sh"
lxhost_run() {
    set --
    for f in "$work"/in/jpg/*.jpg; do set -- "$@" "$(winpath "$f")"; done
    wine "$lxhost" convert --unattended --format 2 --mode 0 --size 1600 --jpeg-quality 85 \
        --output "$(winpath "$work/out/lxhost")" "$@"
}

echo "$files files, best of $runs runs"
printf "%-22s %-5s %9s %6s %10s %8s\n" tool input seconds files files/s ratio
for input in jpg ppm; do
    tm=$(best_time "$work/out/mogrify" mogrify -path "$work/out/mogrify" -resize 1600x1600 -quality 85 \
        -format jpg "$work"/in/$input/*.$input)
    nm=$(written "$work/out/mogrify")
    tv=$(best_time "$work/out/vips" vipsthumbnail --size 1600 -o "$work/out/vips/%s.jpg[Q=85]" \
        "$work"/in/$input/*.$input)
    nv=$(written "$work/out/vips")
    if [ $input = jpg ]; then
        to=$(best_time "$work/out/lxhost" lxhost_run)
        no=$(written "$work/out/lxhost")
        ours="lxhost (Wine)"
    else
        to=$(best_time "$work/out/native" "$bench" 2 1600 85 "$work/out/native" "$work"/in/ppm/*.ppm)
        no=$(written "$work/out/native")
        ours="convert_bench"
    fi
    line mogrify $input "$tm" "$nm" "$tm"
    line vipsthumbnail $input "$tv" "$nv" "$tm"
    line "$ours" $input "$to" "$no" "$tm"
    [ "$no" -gt 0 ] && printf "%-22s %-5s ours vs mogrify %.2f, vs vipsthumbnail %.2f (reference time / ours)\n" \
        "" $input "$(echo "$tm / $to" | bc -l)" "$(echo "$tv / $to" | bc -l)"
done
echo "ratio column: mogrify's time / the tool's time (above 1: faster than mogrify)"
echo "reproduce: bench/convert/run.sh $files $runs"
