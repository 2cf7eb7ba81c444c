// TiffExif: walks a TIFF structure's IFDs (the IFD0 chain, the Exif and GPS IFDs, the
// SubIFDs of raw files) into an ExifRecord: the tag values of IFD0, Exif and GPS, and the
// embedded JPEG previews and uncompressed RGB thumbnails found on the way.
//
// The walk visits each IFD offset once (a chain that loops back ends), at most kMaxIfds
// IFDs and SubIFDs kMaxSubIfdDepth deep. MakerNote structures are not entered.
#pragma once

#include "ExifRecord.h"
#include "TiffReader.h"

namespace lx {

constexpr int kMaxIfds = 64;
constexpr int kMaxSubIfdDepth = 3;

// `withImages` also checks each JPEG candidate's frame header (a few more reads) and keeps
// only displayable ones with their pixel size; without it no images are collected.
void ReadTiffStructure(const TiffReader& reader, ExifRecord& record, bool withImages);

}  // namespace lx
