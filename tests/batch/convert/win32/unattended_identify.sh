#!/usr/bin/env bash
# lxhost convert --unattended under Wine, its outputs read back by ImageMagick's identify:
# scaling by long and short side, a.png to JPEG in its own folder, a.jpeg replaced in place
# with --delete-source, an unreadable file skipped (exit 1) while the others are written, two
# sources for one output name (the first converted, the second left and named), and what a
# killed run left behind put right by the next run.
#   unattended_identify.sh LXHOST.EXE
set -euo pipefail
lxhost=$1
root=$(cd "$(dirname "$0")/../../../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
source "$root/scripts/wine-env.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
winpath() { echo "Z:$1" | tr / '\\'; }
fail() { echo "FAIL: $*"; exit 1; }
expect() { # file "FORMAT WxH"
    local got
    got=$(identify -format '%m %wx%h' "$1" 2>/dev/null || true)
    [ "$got" = "$2" ] || fail "$1 is '$got', expected '$2'"
}

convert -size 1200x800 -seed 3 plasma:fractal png24:"$work/a.png"
convert -size 600x400 -seed 4 plasma:fractal -quality 90 "$work/b.jpeg"
echo "not an image" > "$work/broken.png"

wine "$lxhost" convert --unattended --format 2 --mode 0 --size 300 --output "$(winpath "$work/long")" \
    "$(winpath "$work/a.png")" >/dev/null
expect "$work/long/a.jpg" "JPEG 300x200"
wine "$lxhost" convert --unattended --format 10 --mode 1 --size 300 --output "$(winpath "$work/short")" \
    "$(winpath "$work/a.png")" >/dev/null
expect "$work/short/a.png" "PNG 450x300"
wine "$lxhost" convert --unattended --format 2 --mode 0 --size 1000 --no-enlarge \
    --output "$(winpath "$work/kept")" "$(winpath "$work/b.jpeg")" >/dev/null
expect "$work/kept/b.jpeg" "JPEG 600x400"

status=0
wine "$lxhost" convert --unattended --format 2 --output "$(winpath "$work")" "$(winpath "$work/broken.png")" \
    "$(winpath "$work/a.png")" >/dev/null || status=$?
[ $status -eq 1 ] || fail "a skipped file must give exit status 1, got $status"
expect "$work/a.jpg" "JPEG 1200x800"
[ -f "$work/a.png" ] || fail "without --delete-source the source stays"

before=$(md5sum < "$work/b.jpeg")
wine "$lxhost" convert --unattended --format 2 --jpeg-quality 40 --delete-source --output "$(winpath "$work")" \
    "$(winpath "$work/b.jpeg")" >/dev/null
expect "$work/b.jpeg" "JPEG 600x400"
[ "$(md5sum < "$work/b.jpeg")" != "$before" ] || fail "b.jpeg was not rewritten"
ls "$work" | grep -q '\.~' && fail "a set-aside file was left behind"

mkdir "$work/same"
convert -size 40x30 xc:red "$work/same/x.png"
convert -size 20x10 xc:blue "$work/same/x.bmp"
second=$(md5sum < "$work/same/x.bmp")
status=0
wine "$lxhost" convert --unattended --format 2 --delete-source --output "$(winpath "$work/same")" \
    "$(winpath "$work/same/x.png")" "$(winpath "$work/same/x.bmp")" >/dev/null 2>"$work/same.err" || status=$?
[ $status -eq 1 ] || fail "a source left alone must give exit status 1, got $status"
expect "$work/same/x.jpg" "JPEG 40x30"
[ "$(md5sum < "$work/same/x.bmp")" = "$second" ] || fail "the second source must stay as it was"
tr '\n' ' ' < "$work/same.err" | grep -q "message 4161: .*x\.bmp" || fail "the run must name the source it left"

mkdir "$work/killed"
cp "$work/b.jpeg" "$work/killed/c.jpeg.~00"     # set aside by a killed run
echo partial > "$work/killed/c.jpeg.~lx7-1.tmp"  # its cut-short write
cp "$work/b.jpeg" "$work/killed/d.jpeg"
wine "$lxhost" convert --unattended --format 10 --output "$(winpath "$work/killed")" \
    "$(winpath "$work/killed/d.jpeg")" >/dev/null
[ "$(ls "$work/killed" | tr '\n' ' ')" = "c.jpeg d.jpeg d.png " ] || fail "killed run not undone: $(ls "$work/killed")"
expect "$work/killed/c.jpeg" "JPEG 600x400"
echo "PASS"
