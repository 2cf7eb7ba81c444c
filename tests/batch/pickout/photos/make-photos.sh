#!/bin/sh
# Regenerates the small files the pickout tests read: a CR2-like raw file whose IFD0 holds a
# JPEG preview and whose IFD1 holds a JPEG thumbnail (as Canon lays them out), the same with
# its offsets pointing past the end of the file, a NEF-like file whose only thumbnail is
# uncompressed RGB, and a JPEG photograph with an exiftool-written Exif thumbnail.
set -e
cd "$(dirname "$0")"
convert -size 160x120 gradient:navy-orange -quality 80 -strip preview.tmp.jpg
convert -size 64x48 gradient:orange-navy -quality 80 -strip thumb.tmp.jpg
python3 - <<'PY'
import struct
preview = open("preview.tmp.jpg", "rb").read()
thumb = open("thumb.tmp.jpg", "rb").read()

def ifd(entries, next_at, at):
    # entries: (tag, type, count, value) with values that fit in four bytes.
    out = struct.pack("<H", len(entries))
    for tag, kind, count, value in sorted(entries):
        out += struct.pack("<HHII", tag, kind, count, value)
    return out + struct.pack("<I", next_at)

def cr2(past_end):
    ifd0_at, ifd1_at = 16, 16 + 2 + 12 * 6 + 4
    data_at = ifd1_at + 2 + 12 * 3 + 4
    preview_at, thumb_at = data_at, data_at + len(preview)
    if past_end:
        preview_at += 1 << 20
        thumb_at += 1 << 20
    head = b"II*\x00" + struct.pack("<I", ifd0_at) + b"CR\x02\x00" + struct.pack("<I", 0)
    ifd0 = ifd([(0x100, 3, 1, 160), (0x101, 3, 1, 120), (0x103, 3, 1, 6), (0x10F, 2, 4, 0x6E6F6143),
                (0x111, 4, 1, preview_at), (0x117, 4, 1, len(preview))], ifd1_at, ifd0_at)
    ifd1 = ifd([(0x103, 3, 1, 6), (0x201, 4, 1, thumb_at), (0x202, 4, 1, len(thumb))], 0, ifd1_at)
    return head + ifd0 + ifd1 + preview + thumb

open("IMG_0001.CR2", "wb").write(cr2(False))
open("IMG_0002.CR2", "wb").write(cr2(True))

# NEF-like: IFD0 a 4x3 reduced-resolution RGB thumbnail, nothing else.
rgb = bytes((i * 7) & 0xFF for i in range(4 * 3 * 3))
ifd0_at = 8
entries = [(0xFE, 4, 1, 1), (0x100, 3, 1, 4), (0x101, 3, 1, 3), (0x103, 3, 1, 1), (0x106, 3, 1, 2), (0x115, 3, 1, 3),
           (0x10F, 2, 4, 0x4F4B494E), (0x111, 4, 1, 0), (0x117, 4, 1, len(rgb)), (0x102, 3, 1, 8)]
data_at = ifd0_at + 2 + 12 * len(entries) + 4
entries = [(t, k, c, data_at if t == 0x111 else v) for t, k, c, v in entries]
open("DSC_0001.NEF", "wb").write(b"II*\x00" + struct.pack("<I", ifd0_at) + ifd(entries, 0, ifd0_at) + rgb)
PY
convert -size 200x150 gradient:white-teal -quality 85 -strip photo.jpg
exiftool -q -overwrite_original "-ThumbnailImage<=thumb.tmp.jpg" -DateTimeOriginal="2024:05:07 10:20:30" photo.jpg
rm -f preview.tmp.jpg thumb.tmp.jpg
