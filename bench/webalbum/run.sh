#!/usr/bin/env bash
# Web album speed: sheets and thumbnails for N photographs of 4000 x 3000 (12 MP), through
# lxhost webalbum --unattended under Wine (the tool as the host runs it), against a script doing
# the same with libvips' vipsthumbnail and plain HTML, in the same run. Two kinds of input:
#   camera  photographs with an Exif thumbnail of 160 x 120, as cameras write them (the album
#           takes that embedded picture);
#   plain   the same photographs without Exif (every picture decoded whole).
# Each figure is the best wall-clock time of several runs: files per second and the ratio of
# the reference's time to ours (above 1: we are faster).
#   bench/webalbum/run.sh [files] [runs]       (LXHOST=path/to/lxhost.exe to use another build)
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
files=${1:-200}
runs=${2:-2}
work=$root/build/bench-webalbum
mkdir -p "$work"
cd "$root"
source bench/lib.sh
bench_lxhost

bench_photo "$work"
if [ ! -s "$work/camera.jpg" ]; then
    convert "$work/photo.jpg" -resize 160x120 "$work/thumb.jpg"
    cp "$work/photo.jpg" "$work/camera.jpg"
    exiftool -q -overwrite_original "-ThumbnailImage<=$work/thumb.jpg" -ImageDescription="bench" "$work/camera.jpg"
fi
rm -rf "$work/in"
mkdir -p "$work/in/camera" "$work/in/plain"
i=0
while [ $i -lt "$files" ]; do
    ln "$work/camera.jpg" "$work/in/camera/p$i.jpg"
    ln "$work/photo.jpg" "$work/in/plain/p$i.jpg"
    i=$((i + 1))
done

source "$root/scripts/wine-env.sh"
album_run() { # input kind
    set --
    for f in "$work"/in/$kind/*.jpg; do set -- "$@" "$(winpath "$f")"; done
    wine "$lxhost" webalbum --unattended --output "$(winpath "$work/out/lxhost")" "$@"
}

# The reference: a 128 x 96 thumbnail each, and one page of 12 cells per sheet.
vips_run() {
    vipsthumbnail --size 128x96 -o "$work/out/vips/sh_%s.jpg[Q=60]" "$work"/in/$kind/*.jpg
    local n=0 sheet=1 page=""
    for f in "$work"/in/$kind/*.jpg; do
        name=$(basename "$f")
        page+="<td><a href=\"$f\"><img src=\"sh_${name%.jpg}.jpg\"><br>$name</a></td>"
        n=$((n + 1))
        if [ $((n % 12)) = 0 ]; then
            echo "<html><body><table>$page</table></body></html>" >"$work/out/vips/sheet_$sheet.html"
            sheet=$((sheet + 1)) page=""
        fi
    done
    [ -z "$page" ] || echo "<html><body><table>$page</table></body></html>" >"$work/out/vips/sheet_$sheet.html"
}

# The album keeps the settings the dialog stored: start from the defaults (128 x 96, 4 x 3).
wine reg delete 'HKCU\Software\Northcape\Applets\lxpicture\WebAlbum' /f >/dev/null 2>&1 || true

echo "$files photographs of 4000 x 3000, best of $runs runs"
printf "%-16s %-7s %9s %8s %8s\n" tool input seconds files/s ratio
for kind in camera plain; do
    tv=$(best_time "$work/out/vips" vips_run)
    to=$(best_time "$work/out/lxhost" album_run)
    n=$(ls "$work/out/lxhost" | grep -c '^sh_' || true)
    [ "$n" -eq "$files" ] || echo "lxhost wrote $n thumbnails of $files" >&2
    printf "%-16s %-7s %9.2f %8.1f %8s\n" vipsthumbnail $kind "$tv" "$(echo "$files / $tv" | bc -l)" 1.00
    printf "%-16s %-7s %9.2f %8.1f %8.2f\n" "lxhost (Wine)" $kind "$to" "$(echo "$files / $to" | bc -l)" \
        "$(echo "$tv / $to" | bc -l)"
done
