#!/usr/bin/env bash
# Contrast resize speed: scanned pages of 2480 x 3508 (JPEG) turned grey, reduced to 1600
# high, normalised and written as JPEG quality 75: lxhost contrast --unattended under Wine
# (the tool as the host runs it, sources to a recycle bin of its own) against ImageMagick
# (-colorspace Gray -resize x1600 -normalize -quality 75) and Pillow doing the same steps, in
# the same run. Each figure is the best wall-clock time of several runs; the ratio is the
# reference tool's time over ours (above 1: we are faster).
#   bench/contrast/run.sh [pages] [runs]        (LXHOST=path/to/lxhost.exe to use another build)
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
pages=${1:-50}
runs=${2:-2}
work=$root/build/bench-contrast
mkdir -p "$work"
cd "$root"
source bench/lib.sh
bench_lxhost
/usr/bin/python3 -c "import PIL" 2>/dev/null || { echo "Pillow is missing (python3-pil)"; exit 1; }

# One scanned page (text-like lines on grey paper), linked under every input name.
if [ ! -s "$work/page.jpg" ]; then
    lines=()
    for y in $(seq 200 60 3300); do lines+=(-draw "rectangle 200,$y,$((1200 + (y * 7) % 1000)),$((y + 22))"); done
    convert -size 2480x3508 xc:'#d8d4cc' -fill '#302c28' "${lines[@]}" -attenuate 0.3 +noise Gaussian -quality 90 \
        "$work/page.jpg"
fi
fresh_inputs() {
    rm -rf "$work/in" "$work/xdg"
    mkdir -p "$work/in" "$work/xdg"
    for i in $(seq 1 "$pages"); do ln "$work/page.jpg" "$work/in/p$i.jpg"; done
}

source "$root/scripts/wine-env.sh"
export XDG_DATA_HOME="$work/xdg"
ours() {
    fresh_inputs
    set --
    for f in "$work"/in/*.jpg; do set -- "$@" "$(winpath "$f")"; done
    wine "$lxhost" contrast --unattended "$@"
}
magick() {
    fresh_inputs
    mogrify -path "$work/out/magick" -colorspace Gray -resize x1600 -normalize -quality 75 "$work"/in/*.jpg
}
pillow() {
    fresh_inputs
    /usr/bin/python3 - "$work/out/pillow" "$work"/in/*.jpg <<'PY'
import sys
from PIL import Image, ImageOps
out = sys.argv[1]
for path in sys.argv[2:]:
    image = Image.open(path).convert("L")
    if image.height > 1600:
        image = image.resize((image.width * 1600 // image.height, 1600), Image.LANCZOS)
    image = ImageOps.autocontrast(image, cutoff=0.1)
    image.save(out + "/" + path.rsplit("/", 1)[1], quality=75)
PY
}

tm=$(best_time "$work/out/magick" magick)
tp=$(best_time "$work/out/pillow" pillow)
to=$(best_time "$work/out/ours" ours)
[ "$(identify -format '%wx%h' "$work/in/p1.jpg")" = 1131x1600 ] || echo "warning: lxhost did not write the pages"
echo "$pages pages of 2480 x 3508, best of $runs runs"
printf "%-16s %9s %10s\n" tool seconds "ratio"
printf "%-16s %9.2f %10.2f\n" ImageMagick "$tm" 1
printf "%-16s %9.2f %10.2f\n" Pillow "$tp" "$(echo "$tm / $tp" | bc -l)"
printf "%-16s %9.2f %10.2f\n" "lxhost (Wine)" "$to" "$(echo "$tm / $to" | bc -l)"
printf "ours vs ImageMagick %.2f, vs Pillow %.2f (reference time / ours)\n" "$(echo "$tm / $to" | bc -l)" \
    "$(echo "$tp / $to" | bc -l)"
echo "reproduce: bench/contrast/run.sh $pages $runs"
