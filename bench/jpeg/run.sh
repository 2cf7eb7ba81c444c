#!/usr/bin/env bash
# Encoder speed, size and quality against cjpeg (libjpeg-turbo), same input files, same
# settings, one run:
#   bench/jpeg/run.sh [quality] [runs]
# Inputs: a 6000 x 4000 mosaic of real photographs and a synthetic photograph-like picture
# of the same size, both as binary PPM read by both programs. Forms: baseline with the
# example tables, optimised tables, progressive, baseline with smoothing 10; cjpeg is given
# the matching options and our 4:2:0 sampling (-sample 2x2).
#
# Times are the best of $runs runs:
#   cpu     processor time (user + system) of the whole program, one thread: the steadier
#           figure on a shared, busy machine, and the one the goal is stated in
#   enc     processor time of the encoder alone. Ours is measured inside the program (without
#           reading the PPM into a DIB); cjpeg's is its whole time less the processor time of
#           copying the file once from the page cache, which is all its PPM reader does
#   wall    wall-clock time of the whole program, cjpeg (one thread) against ours with two
#   enc2    wall-clock time of our encoder alone with two threads, against one
# Ratios are cjpeg's time over ours: above 1, we are faster.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
quality=${1:-75}
runs=${2:-5}
work=$root/build/bench-jpeg
mkdir -p "$work"
cd "$root"
source bench/lib.sh

cmake --preset native-release >/dev/null
cmake --build build/native-release --target jpeg_bench -j2 >/dev/null 2>&1
bench=$root/build/native-release/bench/jpeg/jpeg_bench

bench_real_ppm "$work/real.ppm" 6000 4000
if [ ! -s "$work/synthetic.ppm" ]; then
    echo "making $work/synthetic.ppm (6000 x 4000) ..."
    "$im_convert" -size 1500x1000 -seed 7 plasma:fractal -resize 6000x4000 -attenuate 0.4 +noise Gaussian \
        -depth 8 "$work/synthetic.ppm"
fi

# measure COMMAND...: best wall-clock and best processor seconds of the child over $runs
# runs (resource usage of the child in microseconds; /usr/bin/time rounds to 10 ms).
# Our program also prints "encode WALL s CPU cpu": enc_wall and enc_cpu keep the best.
measure() {
    read -r wall cpu enc_wall enc_cpu < <(python3 - "$runs" "$@" <<'EOF'
import os, re, sys, time
runs, cmd = int(sys.argv[1]), sys.argv[2:]
best = [float("inf")] * 4
for _ in range(runs):
    read_end, write_end = os.pipe()
    start = time.perf_counter()
    pid = os.fork()
    if pid == 0:
        os.close(read_end)
        os.dup2(write_end, 2)
        os.execvp(cmd[0], cmd)
    os.close(write_end)
    with os.fdopen(read_end, "rb") as pipe:
        err = pipe.read().decode(errors="replace")
    _, status, usage = os.wait4(pid, 0)
    wall = time.perf_counter() - start
    if status != 0:
        sys.exit(f"failed ({status}): " + " ".join(cmd) + "\n" + err)
    m = re.search(r"encode ([0-9.]+) s ([0-9.]+) cpu", err)
    enc = (float(m.group(1)), float(m.group(2))) if m else (float("nan"), float("nan"))
    for i, v in enumerate((wall, usage.ru_utime + usage.ru_stime) + enc):
        best[i] = min(best[i], v) if v == v else v
print(" ".join(f"{v:.4f}" for v in best))
EOF
)
}

psnr() {
    djpeg -pnm -outfile "$work/decoded.ppm" "$2"
    /usr/bin/compare -metric PSNR "$1" "$work/decoded.ppm" null: 2>&1 || true
}

ratio() { echo "$1 / $2" | bc -l; }

for input in real synthetic; do
    photo=$work/$input.ppm
    measure dd if="$photo" of=/dev/null bs=64K
    read_cpu=$cpu
    echo
    echo "$input photograph, 6000 x 4000, quality $quality (reading the file alone: ${read_cpu} s cpu)"
    printf "%-12s %8s %8s %6s %8s %8s %6s %8s %8s %6s %8s %8s %6s %9s %6s %7s %7s\n" form \
        cjpeg_cpu ours_cpu cpu cjpeg_enc ours_enc enc cjpeg_wl ours_wl2 wall ours_enc1 ours_enc2 enc2 \
        ours_B size cjpeg_dB ours_dB
    for form in baseline optimize progressive smooth10; do
        case $form in
            baseline) opt=() ;;
            optimize) opt=(-optimize) ;;
            progressive) opt=(-progressive) ;;
            smooth10) opt=(-smooth 10) ;;
        esac
        measure cjpeg -quality "$quality" -sample 2x2 "${opt[@]}" -outfile "$work/cjpeg.jpg" "$photo"
        cw=$wall cc=$cpu
        ce=$(echo "$cc - $read_cpu" | bc -l)
        measure "$bench" -threads 1 -quality "$quality" "${opt[@]}" -outfile "$work/ours.jpg" "$photo"
        oc=$cpu oe=$enc_cpu oe1=$enc_wall
        measure "$bench" -threads 2 -quality "$quality" "${opt[@]}" -outfile "$work/ours.jpg" "$photo"
        ow2=$wall oe2=$enc_wall
        sc=$(stat -c %s "$work/cjpeg.jpg")
        so=$(stat -c %s "$work/ours.jpg")
        printf "%-12s %8.4f %8.4f %6.2f %8.4f %8.4f %6.2f %8.4f %8.4f %6.2f %8.4f %8.4f %6.2f %9d %6.3f %7.3f %7.3f\n" \
            "$form" "$cc" "$oc" "$(ratio "$cc" "$oc")" "$ce" "$oe" "$(ratio "$ce" "$oe")" \
            "$cw" "$ow2" "$(ratio "$cw" "$ow2")" "$oe1" "$oe2" "$(ratio "$oe1" "$oe2")" \
            "$so" "$(ratio "$so" "$sc")" "$(psnr "$photo" "$work/cjpeg.jpg")" "$(psnr "$photo" "$work/ours.jpg")"
    done
done
echo
echo "cpu, enc: one thread, cjpeg's processor time / ours; wall: cjpeg (one thread) / ours with two threads"
echo "enc2: our encoder's wall-clock time with one thread / with two; size: our bytes / cjpeg's"
echo "dB: PSNR of the decoded file (djpeg) against the source"
echo "reproduce: bench/jpeg/run.sh $quality $runs"
