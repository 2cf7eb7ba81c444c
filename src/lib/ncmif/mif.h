// mif: the in-memory image that the editor, the batch tools and the codecs transform.
//
// A mif holds one packed DIB (lx::PackedDib) of depth 1, 4, 8, 16, 24 or 32, BI_RGB or
// BI_BITFIELDS, and owns it. Every operation works on any of these depths and leaves a valid
// image behind; an operation that cannot be done returns false (or 0) and leaves the image as
// it was. Rectangles are clipped to the image, so nothing is ever read or written outside the
// pixels; a rectangle that clips to nothing is refused.
//
// Which depth comes out:
//   - crop, rotate, flip, mirror, zoom_near and blt keep the depth, the palette and the masks.
//   - grayscale gives 8 bits with a 256-entry grey palette (entry i = level i).
//   - zoom, zoom_linear, normalize and blur_gauss_rle work on direct colour: an 8-bit image
//     whose palette is that grey ramp stays as it is, a 24- or 32-bit BI_RGB image keeps its
//     depth, anything else (other palettes, 16 bits, BI_BITFIELDS) becomes 24 bits first
//     (32-bit BI_BITFIELDS becomes 32-bit BI_RGB).
//   - quantize gives 1 bit for up to 2 colours, 4 bits for up to 16, 8 bits otherwise.
//   - addlayer, solidfill and settoalpha: see each member.
//
// Coordinates: x to the right, y downwards from the top-left pixel (the DIB's rows are stored
// bottom-up, which callers never see). MifRect members take left, top, right, bottom with
// right and bottom exclusive, like RECT; the int overloads of flip, mirror and solidfill and
// blt take left, top, width and height instead.
//
// Colours passed in as uint32_t are 0x00BBGGRR, the layout of COLORREF.
//
// Long operations split rows over the machine's cores (at most two threads). Running out of
// memory throws std::bad_alloc, as the standard library does; the picture is then unchanged.
#pragma once

#include <cstdint>
#include <span>

#include "PackedDib.h"

#ifdef _WIN32
// The Windows handle types, declared the way the system headers declare them, so that this
// header stays free of them.
struct HBITMAP__;
struct HPALETTE__;
#endif

namespace lx {

// Field for field a RECT: left, top, right, bottom, right and bottom exclusive.
struct MifRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
};

// Field for field a PALETTEENTRY and a LOGPALETTE: `count` entries follow `version`.
struct MifPaletteEntry {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t flags = 0;
};
struct MifLogPalette {
    uint16_t version = 0x300;
    uint16_t count = 0;
    MifPaletteEntry entries[1];
};

// The codes of addlayer's blend modes. 5 and 9 are not modes; addlayer refuses them.
enum MifBlend : int {
    kBlendNormal = 0,
    kBlendDarken = 1,
    kBlendLighten = 2,
    kBlendHue = 3,
    kBlendSaturation = 4,
    kBlendLuminosity = 6,
    kBlendMultiply = 7,
    kBlendScreen = 8,
    kBlendOverlay = 10,
    kBlendHardLight = 11,
    kBlendSoftLight = 12,
    kBlendDifference = 13,
    kBlendExclusion = 14,
    kBlendColorDodge = 15,
    kBlendColorBurn = 16,
    kBlendAdd = 17,
    kBlendSubtract = 18,
};

// The methods of quantize.
enum MifQuantize : int {
    kQuantizeNearest = 0,        // each pixel takes the nearest palette colour
    kQuantizeDiffusion = 1,      // Floyd-Steinberg error diffusion
    kQuantizeDiffusionSoft = 2,  // error diffusion with damped, bounded errors: less colour bleeding
    kQuantizePattern = 3,        // ordered dither with an 8x8 Bayer pattern
};

// zoom's high-quality mode, the one the batch tools use.
constexpr int kZoomHighQuality = 10;

class mif {
public:
    mif() = default;
    // A copy of the DIB (which stays with the caller).
    explicit mif(const PackedDib& dib);
    // A new black image; depths up to 8 get a grey palette. Empty when the size or depth is
    // not possible.
    mif(int width, int height, int depth);

    // Frees the image; the mif is empty afterwards.
    void destroy();
    // Takes the DIB into the image, replacing what was there. False (and the DIB left with the
    // caller) when it is empty or of a kind the class does not handle (compressed).
    bool attachdib(PackedDib&& dib);
    // A copy of the current image; empty when there is none.
    PackedDib createdib() const;
    // The current image itself, given up without a copy; the mif is empty afterwards.
    PackedDib detachdib();

    bool empty() const { return dib_.empty(); }
    int width() const { return dib_.width(); }
    int height() const { return dib_.height(); }
    int depth() const { return dib_.bitCount(); }
    // The image itself, for reading.
    const PackedDib& dib() const { return dib_; }
    // The colour table (empty above 8 bits).
    std::span<const Rgbq> palette() const { return dib_.palette(); }

    // Clips `rect` (null: the whole image) to the image into `clipped`. True when the result
    // is not empty; otherwise `clipped` is all zero.
    bool validaterect(const MifRect* rect, MifRect* clipped) const;

    // Keeps only the rectangle (left, top, right, bottom).
    bool crop(const MifRect* rect);

    // Resamples to width x height. mode 10 (kZoomHighQuality): area averaging along an axis
    // that shrinks, bicubic (Catmull-Rom) along one that grows, results clamped so nothing
    // rings past black or white. Any other mode is the cubic parameter of the editor's image
    // size dialog, 0 to 9 (values outside are clamped): the cubic kernel with a = -mode / 10,
    // so 0 is smooth, 5 is Catmull-Rom and 9 the sharpest; a shrinking axis widens the kernel
    // so it does not alias. `flag` is reserved: pass 0.
    bool zoom(int width, int height, int mode, int flag);
    // Bilinear resampling (the triangle widened when shrinking).
    bool zoom_linear(int width, int height);
    // Nearest neighbour; keeps the depth.
    bool zoom_near(int width, int height);

    // 0: 90 degrees to the right (clockwise), 1: 90 degrees to the left, 2: 180 degrees.
    bool rotate(int code);
    // Turns the rectangle (left, top, width, height; all zero: the whole image) upside down.
    bool flip(int left, int top, int width, int height);
    // Mirrors the rectangle (left, top, width, height; all zero: the whole image) left to right.
    bool mirror(int left, int top, int width, int height);

    // Grey levels 0.299 R + 0.587 G + 0.114 B; the image becomes 8-bit grey.
    bool grayscale();
    // Stretches the levels found in the rectangle (null: whole image) to 0..255 inside it, one
    // linear map for all channels so hues stay. The darkest and brightest 0.1% of the samples
    // are let clip, so a few stray pixels do not stop the stretch.
    bool normalize(const MifRect* rect);

    // Reduces to at most `count` colours (2 to 256) with a quantize method (0 to 3). Without a
    // palette, the palette is chosen for the image by median cut (or is the image's own colours
    // when it has no more than `count`); with one, its first `count` entries are used. Alpha
    // is dropped.
    bool quantize(int count, int method, const MifLogPalette* palette);
    // Number of distinct colours in the pixels (alpha ignored); 0 for an empty image.
    int countcolors() const;

    // Gaussian blur of the rectangle (null: whole image) with standard deviation `radius`
    // pixels; pixels outside the rectangle are read as neighbours but not changed. A radius
    // of 0 or less changes nothing and succeeds.
    bool blur_gauss_rle(const MifRect* rect, double radius);

    // Fills the rectangle (null, or all zero in the int form: the whole image) with `colour`
    // laid over with `opacity` 0..255 (255 replaces). With `keepAlpha` non-zero a 32-bit image
    // keeps its alpha channel; otherwise filled pixels become opaque. Palette images take the
    // nearest palette entry.
    bool solidfill(const MifRect* rect, uint32_t colour, int opacity, int keepAlpha);
    bool solidfill(int left, int top, int width, int height, uint32_t colour, int opacity, int keepAlpha);

    // Copies the rectangle (srcX, srcY, width, height) of `source` to (x, y) of this image,
    // clipped to both; either position may be negative. Same depth and format: the pixel values
    // are copied as they are (palette indexes included); otherwise colours are converted
    // (to the nearest palette entry for a palette target). Copying from itself is allowed.
    bool blt(int x, int y, int width, int height, const mif* source, int srcX, int srcY);

    // Lays `layer` over this image with its top-left at (x, y), clipped, using a blend code
    // (MifBlend) and an opacity `alpha` 0..255. The fourth byte of a 32-bit BI_RGB layer is its
    // alpha (as settoalpha leaves it) and multiplies in, so a layer whose fourth bytes are all
    // zero lays nothing: convert such a layer to 24 bits first. The image becomes 24 bits
    // (32 stays 32, its alpha unchanged). False for unknown codes.
    bool addlayer(const mif* layer, int x, int y, int mode, int alpha);
    // Makes the image a 32-bit alpha source: the colours stay, each pixel's alpha becomes its
    // grey level (0.299 R + 0.587 G + 0.114 B).
    bool settoalpha();

    // Gives a palette image a colour table of `count` entries (1 to 2^depth): existing entries
    // stay, new ones are black. False for images above 8 bits.
    bool alloccmap(int count);
    // Replaces the colour table of a palette image by `entries` (1 to 2^depth of them).
    bool replace_palette(std::span<const Rgbq> entries);
    // Converts to another depth, keeping the picture: 16 gives 5-5-5, 24 and 32 direct colour,
    // 1, 4 and 8 a palette (grey stays grey; colour is reduced with quantize method 0).
    bool setdepth(int depth);

#ifdef _WIN32
    // Windows only. `global` is an HGLOBAL holding a packed DIB.
    // Copies the DIB held in the block; the block stays with the caller.
    explicit mif(void* global);
    // Takes the block: on success the image holds its DIB and the block is freed.
    bool attachdib(void* global);
    // A new movable HGLOBAL holding the current image, owned by the caller; null on failure.
    void* createglobaldib() const;
    // A DIB section showing the image, owned by the caller; with `palette` non-null it receives
    // a new HPALETTE for palette images (null otherwise), also owned by the caller.
    HBITMAP__* createbitmap(HPALETTE__** palette) const;
    // Puts the first 2^depth entries of a GDI palette in as the colour table.
    bool replace_palette(HPALETTE__* palette);
#endif

private:
    PackedDib dib_;
};

}  // namespace lx
