// ExifContainer: finds the Exif data of a file by its first bytes, whatever holds it:
// a JPEG (APP1 segment), a TIFF or TIFF-based raw file (including ORF's and RW2's own
// magic numbers), a Fuji RAF (its embedded JPEG), a Minolta MRW (its TTW block) or a
// Canon CRW (CIFF heap), and decodes it into an ExifRecord.
#pragma once

#include <optional>

#include "ByteSource.h"
#include "ExifRecord.h"

namespace lx {

// nullopt when the file is none of those containers or holds no Exif structure. With
// `withImages` the record also lists the embedded images (a few more reads).
std::optional<ExifRecord> ReadExifRecord(ByteSource& source, bool withImages);

}  // namespace lx
