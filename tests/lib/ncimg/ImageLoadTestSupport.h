// What the codec tests share: ImageMagick as the independent oracle (making test files
// with `convert`, and reading any file back as raw RGBA), synthetic pictures for the
// writers, and pixel comparison with a tolerance.
#pragma once

#include "PackedDib.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <span>
#include <filesystem>
#include <string>
#include <vector>

namespace lxtest {

// Pixels as 0xAARRGGBB, rows from the top.
struct Rgba {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

// ImageMagick's built-in photograph, cut to an odd size so row padding matters.
inline const std::string kRose = "rose: -crop 37x23+5+7 +repage";

// Runs "convert <arguments> <out>"; true when it succeeded and wrote the file. Arguments
// ending in a format prefix such as "BMP3:" have it joined to the output name.
inline bool MagickMake(std::string arguments, const std::filesystem::path& out) {
    std::string format;
    const size_t lastBlank = arguments.rfind(' ');
    if (!arguments.empty() && arguments.back() == ':' && lastBlank != std::string::npos) {
        format = arguments.substr(lastBlank + 1);
        arguments.resize(lastBlank);
    }
    return Run("convert " + arguments + " '" + format + out.string() + "' 2>/dev/null") == 0 &&
           std::filesystem::exists(out);
}

inline Rgba ReadRawRgba(const std::filesystem::path& raw, const std::filesystem::path& size) {
    Rgba image;
    const std::vector<uint8_t> text = ReadFile(size);
    if (std::sscanf(std::string(text.begin(), text.end()).c_str(), "%d %d", &image.width, &image.height) != 2)
        return {};
    const std::vector<uint8_t> bytes = ReadFile(raw);
    if (bytes.size() != static_cast<size_t>(image.width) * image.height * 4) return {};
    for (size_t i = 0; i < bytes.size(); i += 4)
        image.pixels.push_back(static_cast<uint32_t>(bytes[i + 3]) << 24 | bytes[i] << 16 | bytes[i + 1] << 8 |
                               bytes[i + 2]);
    return image;
}

// Decodes a file with Pillow (Debian's python3-pil) into RGBA.
inline Rgba PillowRead(const std::filesystem::path& file) {
    const std::filesystem::path raw = file.string() + ".rgba", size = file.string() + ".size";
    const std::string script = "import sys; from PIL import Image; im = Image.open(sys.argv[1]).convert('RGBA'); "
                               "open(sys.argv[2], 'wb').write(im.tobytes()); "
                               "open(sys.argv[3], 'w').write('%d %d' % im.size)";
    if (Run("/usr/bin/python3 -c \"" + script + "\" '" + file.string() + "' '" + raw.string() + "' '" + size.string() +
            "' 2>/dev/null") != 0)
        return {};
    return ReadRawRgba(raw, size);
}

// Decodes the first frame of a file into RGBA with an independent reader: ImageMagick,
// except for two formats Pillow reads. ImageMagick 6.9 stores the rows of the Targa files
// it writes in the opposite order from their origin flag (and reads them the same way, so
// it agrees only with itself); it cannot read back the indexed Photoshop files it writes,
// and un-mattes the colours of translucent ones. Pillow reads only 8-bit Photoshop files,
// so deeper ones still go to ImageMagick. `prefix` names the format for ImageMagick ("SGI:").
inline Rgba OracleRead(const std::filesystem::path& file, const std::string& prefix = "") {
    std::string ext = file.extension().string();
    for (char& ch : ext) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    if (prefix == "TGA:" || (prefix.empty() && ext == ".tga")) return PillowRead(file);
    if (prefix.empty() && ext == ".psd")
        if (Rgba pillow = PillowRead(file); pillow.width > 0) return pillow;
    const std::filesystem::path raw = file.string() + ".rgba", size = file.string() + ".size";
    const std::string source = "'" + prefix + file.string() + "[0]'";
    if (Run("convert " + source + " -depth 8 -alpha on rgba:'" + raw.string() + "' 2>/dev/null") != 0 ||
        Run("identify -format '%w %h' " + source + " > '" + size.string() + "' 2>/dev/null") != 0)
        return {};
    return ReadRawRgba(raw, size);
}

// Largest difference of any channel between two colours.
inline int ChannelDistance(uint32_t a, uint32_t b, bool withAlpha) {
    int worst = 0;
    for (int shift = 0; shift < (withAlpha ? 32 : 24); shift += 8)
        worst = std::max(worst, std::abs(static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff)));
    return worst;
}

// Every pixel of the DIB equals the oracle's within `tolerance` per channel. Alpha is
// compared only when the DIB has it (32 bits); an opaque oracle pixel matches otherwise.
inline ::testing::AssertionResult SamePixels(const lx::PackedDib& dib, const Rgba& expected, int tolerance = 0) {
    if (dib.empty()) return ::testing::AssertionFailure() << "no image";
    if (dib.width() != expected.width || dib.height() != expected.height)
        return ::testing::AssertionFailure() << "size " << dib.width() << "x" << dib.height() << ", expected "
                                             << expected.width << "x" << expected.height;
    const bool alpha = dib.bitCount() == 32;
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) {
            const uint32_t got = dib.pixel(x, y), want = expected.at(x, y);
            if (!alpha && (want >> 24) != 255)
                return ::testing::AssertionFailure() << "oracle has alpha at " << x << "," << y << " but image is "
                                                     << dib.bitCount() << "-bit";
            if (ChannelDistance(got, want, alpha) > tolerance)
                return ::testing::AssertionFailure() << "pixel " << x << "," << y << ": got " << std::hex << got
                                                     << ", expected " << want;
        }
    return ::testing::AssertionSuccess();
}

// A colourful 24-bit test picture with an odd width: gradients plus a hard edge.
inline lx::PackedDib SyntheticRgb(int width = 37, int height = 23) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* p = dib.row(y) + x * 3;
            p[0] = static_cast<uint8_t>(x * 255 / (width - 1));
            p[1] = static_cast<uint8_t>(y * 255 / (height - 1));
            p[2] = static_cast<uint8_t>(x < width / 2 ? 200 : (x * 7 + y * 13) & 0xff);
        }
    return dib;
}

// The same with an alpha channel running from transparent (left) to opaque (right).
inline lx::PackedDib SyntheticRgba(int width = 37, int height = 23) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 32);
    const lx::PackedDib rgb = SyntheticRgb(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* p = dib.row(y) + x * 4;
            const uint8_t* s = rgb.row(y) + x * 3;
            p[0] = s[0], p[1] = s[1], p[2] = s[2];
            p[3] = static_cast<uint8_t>(x * 255 / (width - 1));
        }
    return dib;
}

// A palette picture of `bits` (1, 4 or 8) with a colourful palette and every index used.
inline lx::PackedDib SyntheticPalette(int bits, int width = 37, int height = 23) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, bits);
    auto pal = dib.palette();
    for (size_t i = 0; i < pal.size(); ++i)
        pal[i] = lx::Rgbq{static_cast<uint8_t>(i * 37), static_cast<uint8_t>(255 - i * 11), static_cast<uint8_t>(i * 91), 0};
    const unsigned count = static_cast<unsigned>(pal.size());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const unsigned index = static_cast<unsigned>(x + y * 3) % count;
            uint8_t* row = dib.row(y);
            if (bits == 8) row[x] = static_cast<uint8_t>(index);
            else if (bits == 4) row[x >> 1] |= static_cast<uint8_t>(index << ((x & 1) ? 0 : 4));
            else row[x >> 3] |= static_cast<uint8_t>(index << (7 - (x & 7)));
        }
    return dib;
}

// Rgba of a DIB itself, to compare two images through the same path.
inline Rgba PixelsOf(const lx::PackedDib& dib) {
    Rgba out{dib.width(), dib.height(), {}};
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x) out.pixels.push_back(dib.pixel(x, y) | (dib.bitCount() == 32 ? 0 : 0xff000000u));
    return out;
}

using Reader = std::function<std::optional<lx::PackedDib>(std::span<const uint8_t>)>;

// A reader given the file cut short at several points (inside the header, inside the
// pixels) returns no image, and never reads past what it was given (the sanitizers watch).
inline ::testing::AssertionResult FailsWhenTruncated(const Reader& read, const std::vector<uint8_t>& file) {
    for (size_t cut : {size_t{0}, size_t{1}, size_t{8}, size_t{20}, file.size() / 2, file.size() * 3 / 4}) {
        if (cut >= file.size()) continue;
        // An exact-size copy, so the sanitizer sees any read past the cut.
        const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(cut));
        if (read(part)) return ::testing::AssertionFailure() << "decoded a file cut to " << cut << " of " << file.size() << " bytes";
    }
    return ::testing::AssertionSuccess();
}

// The grey ramp as an 8-bit image: entry i is level i.
inline lx::PackedDib SyntheticGrey(int width = 37, int height = 23) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) dib.row(y)[x] = static_cast<uint8_t>((x * 7 + y * 11) & 0xff);
    return dib;
}

// One synthetic picture for the writer tests.
struct DibCase {
    const char* name;
    lx::PackedDib (*make)();
};

inline const DibCase kRgbCase{"rgb", [] { return SyntheticRgb(); }};
inline const DibCase kRgbaCase{"rgba", [] { return SyntheticRgba(); }};
inline const DibCase kGreyCase{"grey", [] { return SyntheticGrey(); }};
inline const DibCase kPal8Case{"pal8", [] { return SyntheticPalette(8); }};
inline const DibCase kPal4Case{"pal4", [] { return SyntheticPalette(4); }};
inline const DibCase kPal1Case{"pal1", [] { return SyntheticPalette(1); }};
// One bit with the plain black (0) and white (1) palette.
inline const DibCase kMonoCase{"mono", [] {
    lx::PackedDib dib = lx::PackedDib::Create(19, 7, 1);
    for (int y = 0; y < 7; ++y) dib.row(y)[y % 3] = 0xa5;
    return dib;
}};

}  // namespace lxtest
