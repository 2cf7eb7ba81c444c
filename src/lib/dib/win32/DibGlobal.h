// Moving packed DIBs in and out of global memory blocks, the form in which Windows code
// (clipboard, codec entry points, the image view control) passes them. The block returned by
// DibToGlobal is owned by the caller and freed with GlobalFree; DibFromGlobal copies and
// leaves the block to its owner.
#pragma once

#include <windows.h>

#include <optional>

#include "PackedDib.h"

namespace lx {

// A new movable block holding the DIB's bytes, or null when memory runs out.
HGLOBAL DibToGlobal(const PackedDib& dib);

// The DIB held by the block, checked against the block's size; nullopt when malformed.
std::optional<PackedDib> DibFromGlobal(HGLOBAL block);

}  // namespace lx
