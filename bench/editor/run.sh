#!/usr/bin/env bash
# The photo editor under Wine through the built DLL (pxfRunW), for a 24-megapixel JPEG:
#   - open to screen against the plain decode of the same file in the same process;
#   - Commit and Undo against one memcpy of the picture's bytes (the undo copy is one copy);
#   - memory of 16 undo steps against the picture's size (at most 16 copies plus one);
# and natively (native-release), the image operations against ImageMagick in the same run:
#   - image size to half by each method against -filter point, triangle and catrom;
#   - paste of a 12 MP picture with the drop shadow onto the 24 MP one against -shadow and
#     -composite;
#   - reduction to 256 colours by error diffusion against -dither FloydSteinberg -colors 256.
#   bench/editor/run.sh [runs]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
work=$root/build/bench-editor
mkdir -p "$work"
cd "$root"
source bench/lib.sh
cmake --preset windows >/dev/null
cmake --build build/windows --target editor_bench lxpicture -j2 >/dev/null
source scripts/wine-env.sh
if [ ! -s "$work/photo24.jpg" ]; then
    echo "making the photograph ..."
    convert -size 1500x1000 -seed 3 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -quality 90 "$work/photo24.jpg"
fi
out=$(wine build/windows/bench/editor/editor_bench.exe "$(winpath "$root/build/windows/src/module/lxpicture.dll")" \
      "$(winpath "$work/photo24.jpg")" | tr -d '\r')
get() { echo "$out" | awk -v k="$1" '$1 == k {print $2}'; }
ratio() { echo "$1 / $2" | bc -l | cut -c1-5; }
decode=$(get decode); open=$(get open); copy=$(get memcpy); mirror=$(get mirror)
command=$(get command); undo=$(get undo); steps=$(get steps_mb); image=$(get image_mb)
printf "%-52s %9s %8s\n" "measure (24 MP JPEG, best of 3)" seconds ratio
printf "%-52s %9.4f %8s\n" "plain decode (reference)" "$decode" 1
printf "%-52s %9.4f %8s\n" "pxfRunW to picture in the view" "$open" "$(ratio "$open" "$decode")"
printf "%-52s %9.4f %8s\n" "memcpy of the picture (reference)" "$copy" 1
printf "%-52s %9.4f %8s\n" "mirror command minus the mirror itself (Commit)" "$(echo "$command - $mirror" | bc -l)" \
       "$(ratio "($command - $mirror)" "$copy")"
printf "%-52s %9.4f %8s\n" "undo command" "$undo" "$(ratio "$undo" "$copy")"
echo "16 undo steps: $steps MB for a $image MB picture = $(ratio "$steps" "$image") copies (at most 17)"

runs=${1:-3}
cmake --preset native-release >/dev/null
cmake --build build/native-release --target mif_bench -j2 >/dev/null
bench=$root/build/native-release/bench/ncmif/mif_bench
photo=$work/photo24.ppm layer=$work/layer12.ppm out=$work/out
[ -s "$photo" ] || "$im_convert" "$work/photo24.jpg" -depth 8 "$photo"
[ -s "$layer" ] || "$im_convert" "$photo" -crop 4000x3000+1000+500 +repage -flop "$layer"
# compare NAME "OURS" "IMAGEMAGICK": best wall-clock seconds of both and the ratio.
compare() {
    # shellcheck disable=SC2086
    ours=$(best_time "$out" $2)
    # shellcheck disable=SC2086
    theirs=$(best_time "$out" $3)
    printf "%-52s %9.3f %9.3f %8s\n" "$1" "$ours" "$theirs" "$(ratio "$theirs" "$ours")"
}
echo
printf "%-52s %9s %9s %8s\n" "native, 24 MP (best of $runs)" ours_s magick_s ratio
compare "image size to half, nearest / -filter point" "$bench size-nearest $photo $out/o.ppm" \
    "$im_convert $photo -filter point -resize 3000x2000! $out/m.ppm"
compare "image size to half, linear / -filter triangle" "$bench size-linear $photo $out/o.ppm" \
    "$im_convert $photo -filter triangle -resize 3000x2000! $out/m.ppm"
compare "image size to half, cubic / -filter catrom" "$bench size-cubic $photo $out/o.ppm" \
    "$im_convert $photo -filter catrom -resize 3000x2000! $out/m.ppm"
compare "paste 12 MP with shadow / -shadow -composite" "$bench paste $photo $out/o.ppm $layer" \
    "$im_convert $photo ( $layer ( +clone -background black -shadow 100x1.6+3+3 ) +swap -background none -layers merge +repage ) -gravity center -composite $out/m.ppm"
compare "256 colours, error diffusion / FloydSteinberg" "$bench quantize $photo $out/o.ppm" \
    "$im_convert $photo -dither FloydSteinberg -colors 256 $out/m.ppm"
echo "ratio = magick_s / ours_s (above 1 we are faster); load average now: $(cut -d' ' -f1-3 /proc/loadavg)"
echo "reproduce: bench/editor/run.sh $runs"
