// Depth changes the writers and the tools need, on packed DIBs.
//
// Writers accept every depth a DIB may have but encode only 1, 4, 8 (palette), 24 and 32
// (BGRA) bits; WritableForm brings 16-bit and bit-field images to 24 bits first.
#pragma once

#include "PackedDib.h"

#include <cstdint>
#include <optional>

namespace lx {

// A copy at 24 bits (or 32, alpha kept), whatever the source depth; nullopt for an empty
// image or any other target depth.
std::optional<PackedDib> ConvertDepth(const PackedDib& dib, int bitCount);

// A new 24-bit image of the given size, every pixel `fillColour` (a Windows colour value:
// red in the low byte, then green, then blue). Empty when the size is out of range.
PackedDib CreateBlankImage(int width, int height, uint32_t fillColour);

// The image as 1, 4, 8, 24 or 32-bit BI_RGB data (a copy only when a change is needed).
PackedDib WritableForm(const PackedDib& dib);

// A 1- or 4-bit image widened to one index byte per pixel, palette kept.
PackedDib WidenToIndex8(const PackedDib& dib);

// True for an 8-bit image whose 256 entries are the grey ramp (entry i = level i), which
// formats with a grey mode store without a colour table.
bool HasGreyRamp(const PackedDib& dib);

// True when a 32-bit image holds alpha worth keeping. Many producers leave the fourth
// byte zero everywhere, which means "no alpha", not "fully transparent"; all 255 is opaque.
bool HasUsableAlpha(const PackedDib& dib);

}  // namespace lx
