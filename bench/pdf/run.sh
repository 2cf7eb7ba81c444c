#!/bin/sh
# Packing 100 JPEG files of 4000 x 3000 into one PDF: our composer (pdf_bench, native
# release build) against Debian's img2pdf, and against a plain `cat` of the same bytes (the
# floor: every byte of every file read once and written once). One run measures all three
# with hyperfine; the table gives mean times and the ratios ours/img2pdf and ours/cat.
# With "wine" as third argument the Windows build of the same program (the worker's run:
# content probe, output through CreateFileW) is measured too under Wine, next to Wine
# starting the program and leaving at once (the start-up cost included in its time).
#   bench/pdf/run.sh [files] [runs] [wine]
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
# One wine server and one display for all of the benchmark's Wine runs.
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
count=${1:-100}
runs=${2:-5}
wine=${3:-}
work=$root/build/bench-pdf
mkdir -p "$work/in"
cd "$root"

cmake --preset native-release >/dev/null
cmake --build build/native-release --target pdf_bench -j2 >/dev/null
bench=$root/build/native-release/bench/pdf/pdf_bench

# Four different photograph-like pictures, copied round-robin into $count files.
if [ ! -s "$work/in/$(printf 'p%03d.jpg' "$count")" ]; then
    echo "making $count JPEG files of 4000 x 3000 in $work/in ..."
    for s in 1 2 3 4; do
        convert -size 800x600 -seed $s plasma:fractal -resize 4000x3000 -attenuate 0.3 +noise Gaussian \
            -depth 8 "$work/seed$s.ppm"
        cjpeg -quality 90 -outfile "$work/seed$s.jpg" "$work/seed$s.ppm"
        rm -f "$work/seed$s.ppm"
    done
    i=1
    while [ $i -le "$count" ]; do
        cp "$work/seed$(( (i - 1) % 4 + 1 )).jpg" "$work/in/$(printf 'p%03d.jpg' $i)"
        i=$((i + 1))
    done
fi
files=$(ls "$work"/in/p*.jpg | head -n "$count" | tr '\n' ' ')
bytes=$(cat $files | wc -c)

set -- -n ours "$bench $work/ours.pdf $files" \
    -n img2pdf "img2pdf -o $work/img2pdf.pdf $files" \
    -n cat "cat $files > $work/cat.bin"
if [ "$wine" = wine ]; then
    cmake --preset windows >/dev/null
    cmake --build build/windows --target pdf_bench -j2 >/dev/null
    exe=$root/build/windows/bench/pdf/pdf_bench.exe
    # The output and the inputs as Windows paths, single-quoted for hyperfine's shell.
    winfiles=$(for f in "$work/wine.pdf" $files; do printf "'Z:%s' " "$f" | tr / '\\'; done)
    set -- "$@" -n wine "$root/scripts/wine-run.sh $exe $winfiles" \
        -n wine-start "$root/scripts/wine-run.sh $exe"
fi
hyperfine --style none -i --warmup 1 --runs "$runs" --export-json "$work/times.json" "$@" >/dev/null

qpdf --check "$work/ours.pdf" >/dev/null
if [ "$wine" = wine ]; then cmp "$work/ours.pdf" "$work/wine.pdf"; fi

python3 - "$work/times.json" "$count" "$bytes" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
print(f"{sys.argv[2]} JPEG files of 4000x3000, {int(sys.argv[3]) / 1e6:.1f} MB in total")
print(f"{'tool':10} {'mean s':>9} {'stddev s':>9} {'ours/tool':>10} {'wine/tool':>10}")
for name in r:
    ours = r["ours"]["mean"] / r[name]["mean"]
    wine = f"{r['wine']['mean'] / r[name]['mean']:10.2f}" if "wine" in r else ""
    print(f"{name:10} {r[name]['mean']:9.3f} {r[name]['stddev']:9.3f} {ours:10.2f} {wine}")
PY
echo "reproduce: bench/pdf/run.sh $count $runs $wine"
