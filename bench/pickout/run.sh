#!/usr/bin/env bash
# Thumbnail pickout speed: the largest embedded JPEG of raw-like files (a CR2-like layout: a
# 3000 x 2000 JPEG preview in IFD0, a 160 x 120 thumbnail in IFD1, 16 MB of sensor data) taken
# out byte for byte: lxhost pickout --unattended under Wine against exiftool -b -PreviewImage
# over the same files, in the same run. Best wall-clock time of several runs; the ratio is
# exiftool's time over ours (above 1: we are faster).
#   bench/pickout/run.sh [files] [runs]        (LXHOST=path/to/lxhost.exe to use another build)
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
files=${1:-200}
runs=${2:-2}
work=$root/build/bench-pickout
mkdir -p "$work"
cd "$root"
source bench/lib.sh
bench_lxhost

if [ ! -s "$work/raw.CR2" ]; then
    convert -size 750x500 -seed 5 plasma:fractal -resize 3000x2000 -quality 90 -strip "$work/preview.jpg"
    convert "$work/preview.jpg" -resize 160x120 -quality 80 -strip "$work/thumb.jpg"
    /usr/bin/python3 - "$work" <<'PY'
import struct, sys
work = sys.argv[1]
preview = open(work + "/preview.jpg", "rb").read()
thumb = open(work + "/thumb.jpg", "rb").read()
sensor = bytes(16 << 20)
def ifd(entries, next_at):
    out = struct.pack("<H", len(entries))
    for e in sorted(entries):
        out += struct.pack("<HHII", *e)
    return out + struct.pack("<I", next_at)
ifd0_at, ifd1_at = 16, 16 + 2 + 12 * 5 + 4
data_at = ifd1_at + 2 + 12 * 3 + 4
thumb_at, preview_at = data_at, data_at + len(thumb)
head = b"II*\x00" + struct.pack("<I", ifd0_at) + b"CR\x02\x00" + struct.pack("<I", 0)
ifd0 = ifd([(0x100, 3, 1, 3000), (0x101, 3, 1, 2000), (0x103, 3, 1, 6), (0x111, 4, 1, preview_at),
            (0x117, 4, 1, len(preview))], ifd1_at)
ifd1 = ifd([(0x103, 3, 1, 6), (0x201, 4, 1, thumb_at), (0x202, 4, 1, len(thumb))], 0)
open(work + "/raw.CR2", "wb").write(head + ifd0 + ifd1 + thumb + preview + sensor)
PY
fi
rm -rf "$work/in"
mkdir -p "$work/in"
for i in $(seq 1 "$files"); do ln "$work/raw.CR2" "$work/in/IMG_$i.CR2"; done

source "$root/scripts/wine-env.sh"
ours() {
    set --
    for f in "$work"/in/*.CR2; do set -- "$@" "$(winpath "$f")"; done
    wine "$lxhost" pickout --unattended --output "$(winpath "$work/out/ours")" "$@"
}
te=$(best_time "$work/out/exiftool" exiftool -b -PreviewImage -w "$work/out/exiftool/%f.jpg" "$work"/in/*.CR2)
to=$(best_time "$work/out/ours" ours)
cmp -s "$work/out/ours/IMG_1.thm(L).jpg" "$work/out/exiftool/IMG_1.jpg" || echo "warning: the two disagree on IMG_1"
echo "$files raw-like files, best of $runs runs"
printf "%-16s %9s %7s\n" tool seconds files
printf "%-16s %9.2f %7d\n" exiftool "$te" "$(ls "$work/out/exiftool" | wc -l)"
printf "%-16s %9.2f %7d\n" "lxhost (Wine)" "$to" "$(ls "$work/out/ours" | wc -l)"
printf "ours vs exiftool %.2f (exiftool's time / ours)\n" "$(echo "$te / $to" | bc -l)"
echo "reproduce: bench/pickout/run.sh $files $runs"
