#!/usr/bin/env bash
# The high-quality reduction (zoom mode 10), 6000 x 4000 to 1000 x 667, against Pillow's
# LANCZOS, libvips (vips resize, lanczos3) and ImageMagick (-filter Lanczos), in one run.
#
# Speed: every program reads the same PPM photograph, reduces it and writes a PPM, pinned to
# one core and then to two (taskset; vips and ImageMagick also told their thread count).
# whole_s is the best wall-clock time of the whole program over several runs, cpu_s its
# processor time; op_s is the reduction alone inside the program (ours and Pillow), ratio the
# tool's time over ours (above 1: we are faster). op_cpu is the reduction's processor time
# over all its threads: on a busy machine it compares more fairly than the wall clock.
#
# Aliasing: grey sine gratings along x, reduced by each tool, fitted by least squares
# (gratings.py): the share of the amplitude left of frequencies above the output's Nyquist
# frequency (mean and peak, lower is better) and kept of frequencies well inside the band.
#   bench/resample/run.sh [runs]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
runs=${1:-3}
work=$root/build/bench-resample
here=$root/bench/resample
py=/usr/bin/python3
mkdir -p "$work"
cd "$root"
source bench/lib.sh
magick=$im_convert
for tool in vips taskset "$magick"; do command -v "$tool" >/dev/null || { echo "$tool is missing"; exit 1; }; done
$py -c "import PIL, numpy" 2>/dev/null || { echo "Pillow or NumPy is missing (python3-pil, python3-numpy)"; exit 1; }

cmake --preset native-release >/dev/null
cmake --build build/native-release --target mif_bench -j2 >/dev/null
bench=$root/build/native-release/bench/ncmif/mif_bench

photo=$work/photo.ppm
if [ ! -s "$photo" ]; then
    echo "making $photo (6000 x 4000) ..."
    $magick -size 1500x1000 -seed 7 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian -depth 8 "$photo"
fi

# measure COMMAND...: "wall_s cpu_s op_s op_cpu" of the fastest of $runs runs (op_s and op_cpu
# "-" when the program does not report them).
measure() {
    local best="" i=0 t u s op opcpu cpu="" bestop="-" bestopcpu="-"
    while [ $i -lt "$runs" ]; do
        /usr/bin/time -f "%e %U %S" -o "$work/time.txt" "$@" >/dev/null 2>"$work/stderr.txt"
        read -r t u s < "$work/time.txt"
        if [ -z "$best" ] || [ "$(echo "$t < $best" | bc)" = 1 ]; then
            best=$t; cpu=$(printf "%.2f" "$(echo "$u + $s" | bc)")
            op=$(awk '$1 == "resize" { print $2 }' "$work/stderr.txt")
            opcpu=$(awk '$1 == "resize" { print $3 }' "$work/stderr.txt")
            bestop=${op:--}; bestopcpu=${opcpu:--}
        fi
        i=$((i + 1))
    done
    echo "$best $cpu $bestop $bestopcpu"
}

ratio() { if [ "$2" = - ] || [ "$1" = - ]; then echo "-"; else printf "%.2f" "$(echo "$1 / $2" | bc -l)"; fi; }

echo "speed: $(basename "$photo") 6000 x 4000 RGB -> 1000 x 667, best of $runs runs"
line() { printf "%-5s %-12s %8s %8s %8s %8s %8s %8s %8s\n" "$@"; }
line cores tool whole_s cpu_s op_s op_cpu ratio cpu_rt op_rt
for cores in 1 2; do
    cpus=$([ "$cores" = 1 ] && echo 0 || echo 0,1)
    pin=(taskset -c "$cpus")
    read -r ow oc oop oopc <<< "$(measure "${pin[@]}" "$bench" resize "$photo" "$work/ours.ppm")"
    read -r pw pc pop popc <<< "$(measure "${pin[@]}" $py "$here/pillow_resize.py" "$photo" "$work/pillow.ppm" 1000 667)"
    read -r vw vc _ _ <<< "$(measure env VIPS_CONCURRENCY="$cores" "${pin[@]}" vips resize "$photo" "$work/vips.ppm" 0.16667)"
    read -r mw mc _ _ <<< "$(measure env MAGICK_THREAD_LIMIT="$cores" "${pin[@]}" $magick "$photo" -filter Lanczos \
        -resize '1000x667!' "$work/magick.ppm")"
    line "$cores" ours "$ow" "$oc" "$oop" "$oopc" 1.00 1.00 1.00
    line "$cores" Pillow "$pw" "$pc" "$pop" "$popc" "$(ratio "$pw" "$ow")" "$(ratio "$pc" "$oc")" "$(ratio "$pop" "$oop")"
    line "$cores" vips "$vw" "$vc" - - "$(ratio "$vw" "$ow")" "$(ratio "$vc" "$oc")" -
    line "$cores" ImageMagick "$mw" "$mc" - - "$(ratio "$mw" "$ow")" "$(ratio "$mc" "$oc")" -
    eval "pillow_op_$cores=\$(ratio \"\$pop\" \"\$oop\")"
    eval "pillow_opcpu_$cores=\$(ratio \"\$popc\" \"\$oopc\")"
done
echo "(ratio: tool's whole_s over ours, cpu_rt: cpu_s over ours, op_rt: op_s over ours; above 1 we are faster)"

echo
echo "aliasing: grey gratings 6000 x 4000 -> 1000 x 667 (amplitude kept / input amplitude)"
gratings=$work/gratings
$py "$here/gratings.py" make "$gratings" 6000 4000 1000
mkdir -p "$gratings/ours" "$gratings/vips" "$gratings/ImageMagick"
for name in $($py "$here/gratings.py" names "$gratings"); do
    "$bench" resize "$gratings/$name.pgm" "$gratings/ours/$name.pgm" 2>/dev/null
    vips resize "$gratings/$name.pgm" "$gratings/vips/$name.pgm" 0.16667
    $magick "$gratings/$name.pgm" -filter Lanczos -resize '1000x667!' "$gratings/ImageMagick/$name.pgm"
done
$py "$here/gratings.py" pillow "$gratings" 6000 4000 1000
for tool in ours pillow vips ImageMagick; do $py "$here/gratings.py" measure "$gratings" "$tool" 6000 4000 1000; done

echo
echo "reduction alone, Pillow's time over ours: one core $pillow_op_1 (processor time $pillow_opcpu_1)," \
    "two cores $pillow_op_2 (processor time $pillow_opcpu_2)"
echo "reproduce: bench/resample/run.sh $runs   (load average now: $(cut -d' ' -f1-3 /proc/loadavg))"
