#!/usr/bin/env bash
# Thumbnail list speed: thumbnails (long side 72) of a folder of N 12-megapixel photographs,
# files per second, against libvips' vipsthumbnail --size 72 in the same run.
#   - JPEG inputs through the Windows build under Wine (the system codec decodes them);
#   - JPEG inputs carrying an Exif thumbnail, as cameras write them (our fast path);
#   - PPM inputs natively (native-release), where JPEG does not decode.
# Each figure is the best wall-clock time of several runs; the ratio column is
# vipsthumbnail's time over ours (above 1: we are faster).
#   bench/viewer/run.sh [files] [runs]
# NATIVE_BENCH / WINDOWS_BENCH name other builds of thumbnail_bench(.exe).
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
# One wine server and one display for all of the benchmark's Wine runs.
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
files=${1:-50}
runs=${2:-2}
work=$root/build/bench-viewer
mkdir -p "$work"
cd "$root"
source bench/lib.sh

native=${NATIVE_BENCH:-}
if [ -z "$native" ]; then
    cmake --preset native-release >/dev/null
    cmake --build build/native-release --target thumbnail_bench -j2 >/dev/null
    native=$root/build/native-release/bench/viewer/thumbnail_bench
fi
windows=${WINDOWS_BENCH:-}
if [ -z "$windows" ]; then
    cmake --preset windows >/dev/null
    cmake --build build/windows --target thumbnail_bench -j2 >/dev/null
    windows=$root/build/windows/bench/viewer/thumbnail_bench.exe
fi

# One photograph-like picture linked under every input name: every tool reads the same
# cached bytes, so the figures compare decoding and reduction, not the disk.
bench_photo "$work"
if [ ! -s "$work/camera.jpg" ]; then
    convert "$work/photo.jpg" -resize 160x120 -quality 85 "$work/thumb.jpg"
    cp "$work/photo.jpg" "$work/camera.jpg"
    exiftool -q -overwrite_original "-ThumbnailImage<=$work/thumb.jpg" "$work/camera.jpg"
fi
rm -rf "$work/in"
mkdir -p "$work/in/jpg" "$work/in/exif" "$work/in/ppm"
i=0
while [ $i -lt "$files" ]; do
    ln "$work/photo.jpg" "$work/in/jpg/p$i.jpg"
    ln "$work/camera.jpg" "$work/in/exif/p$i.jpg"
    ln "$work/photo.ppm" "$work/in/ppm/p$i.ppm"
    i=$((i + 1))
done

source "$root/scripts/wine-env.sh"
ours_wine() {
    set --
    for f in "$work/in/$kind"/*.jpg; do set -- "$@" "$(winpath "$f")"; done
    "$root/scripts/with-display.sh" wine "$windows" 72 "$@"
}
made_wine() { ours_wine 2>/dev/null | awk '{print $1}'; }

line() { # tool input seconds count reference_seconds
    printf "%-26s %-5s %9.2f %6d %9.1f %8.2f\n" "$1" "$2" "$3" "$4" "$(echo "$4 / $3" | bc -l)" \
        "$(echo "$5 / $3" | bc -l)"
}

echo "$files files of 4000 x 3000, thumbnails of 72, best of $runs runs"
printf "%-26s %-5s %9s %6s %9s %8s\n" tool input seconds files files/s ratio
for kind in jpg exif ppm; do
    ext=$kind
    [ $kind = exif ] && ext=jpg
    tv=$(best_time "$work/out" vipsthumbnail --size 72 -o "$work/out/%s.png" "$work/in/$kind"/*.$ext)
    if [ $kind = ppm ]; then
        to=$(best_time "$work/out" "$native" 72 "$work/in/ppm"/*.ppm)
        made=$("$native" 72 "$work/in/ppm"/*.ppm | awk '{print $1}')
        ours="thumbnail_bench"
    else
        to=$(best_time "$work/out" ours_wine)
        made=$(made_wine)
        ours="thumbnail_bench.exe (Wine)"
    fi
    line vipsthumbnail $kind "$tv" "$files" "$tv"
    line "$ours" $kind "$to" "${made:-0}" "$tv"
done
echo "input exif: the same JPEG with a 160 x 120 Exif thumbnail, which vipsthumbnail does not use"
echo "ratio column: vipsthumbnail's time / the tool's time (above 1: faster than vipsthumbnail)"
echo "reproduce: bench/viewer/run.sh $files $runs"
