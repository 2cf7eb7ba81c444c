# Sourced by the benchmark scripts: what several of them share.
#   bench_photo DIR         DIR/photo.jpg, a 4000 x 3000 photograph-like picture, and DIR/photo.ppm
#   bench_real_ppm OUT W H  OUT, a W x H mosaic of real photographs (scikit-image's sample
#                           pictures, each cropped to 750 x 500 at about its own scale)
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

bench_real_ppm() {
    local out=$1 width=$2 height=$3 data=/usr/lib/python3/dist-packages/skimage/data tmp i=0 tiles=()
    [ -s "$out" ] && return 0
    echo "making $out ($width x $height of real photographs) ..."
    tmp=$(mktemp -d)
    for f in coffee.png chelsea.png astronaut.png motorcycle_left.png rocket.jpg hubble_deep_field.jpg \
        retina.jpg motorcycle_right.png; do
        "$im_convert" "$data/$f" -resize '750x500^' -gravity center -extent 750x500 -depth 8 "$tmp/t$i.ppm"
        i=$((i + 1))
    done
    # Neighbouring tiles differ, row after row.
    local across=$(( (width + 749) / 750 )) down=$(( (height + 499) / 500 )) r c
    for ((r = 0; r < down; r++)); do
        for ((c = 0; c < across; c++)); do tiles+=("$tmp/t$(( (3 * r + c) % 8 )).ppm"); done
    done
    /usr/bin/montage "${tiles[@]}" -tile "${across}x${down}" -geometry +0+0 -depth 8 "$tmp/mosaic.ppm"
    "$im_convert" "$tmp/mosaic.ppm" -crop "${width}x${height}+0+0" +repage -depth 8 "$out"
    rm -rf "$tmp"
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
