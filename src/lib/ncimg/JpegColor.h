// Colour conversion for the JPEG decoder, into the blue-green-red order of DIB rows.
//
// YCbCr uses the common decoders' 16-bit fixed-point tables, so results match theirs
// exactly. CMYK files are taken as Adobe applications write them, with every channel
// stored inverted (255 = no ink); YCCK is such CMYK with its first three channels coded
// as YCbCr. Both become RGB the way djpeg and the system decoder show them: each stored
// channel times the stored K, over 255, rounded (R = C' * K' / 255). That is the plain
// subtractive model without a colour profile, and it is what users see elsewhere.
#pragma once

#include <cstdint>

namespace lx {

void YccToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int width, uint8_t* bgr);
void RgbToBgr(const uint8_t* r, const uint8_t* g, const uint8_t* b, int width, uint8_t* bgr);
void CmykToBgr(const uint8_t* c, const uint8_t* m, const uint8_t* y, const uint8_t* k, int width, uint8_t* bgr);
void YcckToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, const uint8_t* k, int width, uint8_t* bgr);

}  // namespace lx
