# Sourced by the benchmark scripts: what several of them share.
#   bench_photo DIR         DIR/photo.jpg, a 4000 x 3000 photograph-like picture, and DIR/photo.ppm
#   best_time OUTDIR CMD... the shortest wall-clock seconds of $runs runs, OUTDIR emptied first
#   winpath PATH            PATH as Wine names it (Z: drive)
#   bench_lxhost            sets $lxhost: $LXHOST when given, else lxhost.exe built from this tree
#   $im_convert             ImageMagick's convert by its installed path: a `convert` found earlier on PATH may be
#                           a wrapper whose own start-up would be timed with it

im_convert=/usr/bin/convert
[ -x "$im_convert" ] || { echo "ImageMagick is missing ($im_convert)" >&2; exit 1; }

bench_photo() {
    if [ ! -s "$1/photo.jpg" ]; then
        echo "making the 4000 x 3000 photograph ..."
        convert -size 1000x750 -seed 7 plasma:fractal -resize 4000x3000 -attenuate 0.4 +noise Gaussian \
            -quality 92 "$1/photo.jpg"
        convert "$1/photo.jpg" -depth 8 "$1/photo.ppm"
    fi
}

best_time() {
    local out=$1 best="" r=0 start end t
    shift
    while [ $r -lt "$runs" ]; do
        rm -rf "$out"
        mkdir -p "$out"
        start=$(date +%s.%N)
        "$@" >/dev/null 2>&1 || true
        end=$(date +%s.%N)
        t=$(echo "$end - $start" | bc)
        if [ -z "$best" ] || [ "$(echo "$t < $best" | bc)" = 1 ]; then best=$t; fi
        r=$((r + 1))
    done
    echo "$best"
}

winpath() { echo "Z:$1" | tr / '\\'; }

bench_lxhost() {
    lxhost=${LXHOST:-}
    if [ -z "$lxhost" ]; then
        cmake --preset windows >/dev/null
        cmake --build build/windows --target lxhost -j2 >/dev/null
        lxhost=$root/build/windows/tools/lxhost/lxhost.exe
    fi
}
