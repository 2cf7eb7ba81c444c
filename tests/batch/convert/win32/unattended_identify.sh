#!/usr/bin/env bash
# lxhost convert --unattended under Wine, its outputs read back by ImageMagick's identify:
# scaling by long and short side, a.png to JPEG in its own folder, a.jpeg replaced in place
# with --delete-source, an unreadable file skipped (exit 1) while the others are written.
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
echo "PASS"
