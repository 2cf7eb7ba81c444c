#!/usr/bin/env bash
# The photo editor under Wine through the built DLL (pxfRunW), for a 24-megapixel JPEG:
#   - open to screen against the plain decode of the same file in the same process;
#   - Commit and Undo against one memcpy of the picture's bytes (the undo copy is one copy);
#   - memory of 16 undo steps against the picture's size (at most 16 copies plus one).
#   bench/editor/run.sh
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
echo "reproduce: bench/editor/run.sh"
