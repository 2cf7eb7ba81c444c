// Moving packed DIBs in and out of global memory blocks, the form in which Windows code
// (clipboard, codec entry points, the image view control, the loader's messages) passes them.
//
// A PackedDib's bytes are a fixed global memory block already (AllocateDibBlock), so the
// hand-overs that give the DIB up, ReleaseToGlobal and AdoptGlobal, move the block and copy
// nothing when its layout allows. DibToGlobal and DibFromGlobal copy and leave the source to
// its owner.
#pragma once

#include <windows.h>

#include <optional>

#include "PackedDib.h"

namespace lx {

// A new movable block holding the DIB's bytes, or null when memory runs out.
HGLOBAL DibToGlobal(const PackedDib& dib);

// The DIB held by the block, checked against the block's size; nullopt when malformed.
std::optional<PackedDib> DibFromGlobal(HGLOBAL block);

// The DIB's own block, now the caller's to free with GlobalFree (null for an empty DIB).
// A DIB that only borrows its bytes is copied into a new block.
HGLOBAL ReleaseToGlobal(PackedDib&& dib);

// The DIB held by the block, which it takes in every case: a fixed block laid out as a
// PackedDib lays one out becomes the DIB's bytes as it is; any other is read into a new DIB
// and freed. Nullopt (the block freed) when malformed.
std::optional<PackedDib> AdoptGlobal(HGLOBAL block);

}  // namespace lx
