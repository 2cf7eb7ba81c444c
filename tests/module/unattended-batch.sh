#!/usr/bin/env bash
# lxhost's unattended split, contrast and pickout under Wine, their results read back by
# Linux tools: ImageMagick's identify for the halves and the contrast page, exiftool's own
# extraction (-PreviewImage, -ThumbnailImage) compared byte for byte with the thumbnails.
#   unattended-batch.sh LXHOST.EXE
set -euo pipefail
lxhost=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
source "$root/scripts/wine-env.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Sources given up go to a recycle bin of this run's own.
export XDG_DATA_HOME="$work/xdg"
mkdir -p "$XDG_DATA_HOME"
winpath() { echo "Z:$1" | tr / '\\'; }
fail() { echo "FAIL: $*"; exit 1; }
expect() { # file "FORMAT WxH [colourspace]"
    local got
    got=$(identify -format "%m %wx%h${3:-}" "$1" 2>/dev/null || true)
    [ "$got" = "$2" ] || fail "$1 is '$got', expected '$2'"
}

convert -size 1001x800 gradient:red-blue "$work/spread.png"
convert -size 300x400 gradient:red-blue "$work/tall.bmp"
wine "$lxhost" split --unattended --portrait no "$(winpath "$work/spread.png")" "$(winpath "$work/tall.bmp")" \
    >/dev/null || true
expect "$work/spread-1.jpg" "JPEG 501x800"
expect "$work/spread-2.jpg" "JPEG 500x800"
[ ! -e "$work/spread.png" ] || fail "the split source stays"
[ -e "$work/xdg/Trash/files/spread.png" ] || fail "the split source is not in the recycle bin"
[ -e "$work/tall.bmp" ] && [ ! -e "$work/tall-1.jpg" ] || fail "--portrait no split a portrait"
wine "$lxhost" split --unattended --portrait yes "$(winpath "$work/tall.bmp")" >/dev/null
expect "$work/tall-2.jpg" "JPEG 150x400"

convert -size 2480x3508 plasma:fractal "$work/scan.png"
convert -size 100x100 xc:gray50 "$work/flat.bmp"
wine "$lxhost" contrast --unattended "$(winpath "$work/scan.png")" "$(winpath "$work/flat.bmp")" >/dev/null
expect "$work/scan.png" "JPEG 1131x1600 Gray" " %[colorspace]"
expect "$work/xdg/Trash/files/scan.png" "PNG 2480x3508"
expect "$work/flat.bmp" "JPEG 100x100"

photos="$root/tests/batch/pickout/photos"
wine "$lxhost" pickout --unattended --output "$(winpath "$work/thumbs")" \
    "$(winpath "$photos/IMG_0001.CR2")" "$(winpath "$photos/photo.jpg")" "$(winpath "$photos/DSC_0001.NEF")" >/dev/null
wine "$lxhost" pickout --unattended --smallest --output "$(winpath "$work/thumbs")" \
    "$(winpath "$photos/IMG_0001.CR2")" >/dev/null
cmp "$work/thumbs/IMG_0001.thm(L).jpg" <(exiftool -b -PreviewImage "$photos/IMG_0001.CR2") || fail "largest of the raw file"
cmp "$work/thumbs/IMG_0001.thm(S).jpg" <(exiftool -b -ThumbnailImage "$photos/IMG_0001.CR2") || fail "smallest of the raw file"
cmp "$work/thumbs/photo.thm(L).jpg" <(exiftool -b -ThumbnailImage "$photos/photo.jpg") || fail "thumbnail of the JPEG"
expect "$work/thumbs/DSC_0001.thm(L).bmp" "BMP3 4x3"  # an RGB thumbnail is written as a bitmap
status=0
wine "$lxhost" pickout --unattended --output "$(winpath "$work/thumbs")" "$(winpath "$photos/IMG_0001.CR2")" \
    "$(winpath "$photos/IMG_0002.CR2")" >/dev/null || status=$?
[ $status -eq 1 ] || fail "a second run and a broken raw file must write nothing (exit 1), got $status"
[ "$(ls "$work/thumbs" | wc -l)" -eq 4 ] || fail "unexpected files: $(ls "$work/thumbs")"
echo "PASS"
