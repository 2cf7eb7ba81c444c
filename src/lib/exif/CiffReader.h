// CiffReader: Canon's CIFF heap (CRW files), read on a best-effort basis into the same
// ExifRecord the TIFF-based files give: maker and model, the shooting time, the image
// size, and the embedded JPEG thumbnail and preview.
//
// Heaps nest; the walk visits at most kMaxCiffHeaps of them, kMaxCiffDepth deep.
#pragma once

#include "ByteSource.h"
#include "ExifRecord.h"

namespace lx {

constexpr int kMaxCiffHeaps = 64;
constexpr int kMaxCiffDepth = 4;

// Whether the source starts with a CIFF header ("II" or "MM", header length, "HEAPCCDR").
bool IsCiff(ByteSource& source);

void ReadCiff(ByteSource& source, ExifRecord& record, bool withImages);

}  // namespace lx
