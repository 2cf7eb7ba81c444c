// Images for the image-class tests: every pixel format the class accepts, filled with
// patterns that make misplaced pixels visible, a smooth photograph-like picture, and BMP
// files for the outside tools used as oracles.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "PackedDib.h"
#include "Painted.h"
#include "TestFiles.h"
#include "mif.h"

namespace miftest {

struct Format {
    int bits;
    bool bitfields;  // BI_BITFIELDS (16: 5-6-5, 32: 8-8-8 without alpha)
    std::string name() const { return std::to_string(bits) + (bitfields ? "bf" : ""); }
};

inline const std::vector<Format>& AllFormats() {
    static const std::vector<Format> formats = {{1, false}, {4, false}, {8, false}, {16, false},
                                                {16, true}, {24, false}, {32, false}, {32, true}};
    return formats;
}

// A zero image of the format; palette formats get 2^bits distinct colours.
inline lx::PackedDib Blank(int w, int h, Format f) {
    if (!f.bitfields) {
        lx::PackedDib dib = lx::PackedDib::Create(w, h, f.bits);
        for (size_t i = 0; i < dib.palette().size(); ++i)
            dib.palette()[i] = lx::Rgbq{static_cast<uint8_t>(i * 37), static_cast<uint8_t>(255 - i * 11),
                                        static_cast<uint8_t>(i * 71 + 5), 0};
        return dib;
    }
    const size_t stride = lx::DibStride(w, f.bits);
    std::vector<uint8_t> bytes(40 + 12 + stride * h, 0);
    lx::WriteLe32(&bytes[0], 40);
    lx::WriteLe32(&bytes[4], static_cast<uint32_t>(w));
    lx::WriteLe32(&bytes[8], static_cast<uint32_t>(h));
    lx::WriteLe16(&bytes[12], 1);
    lx::WriteLe16(&bytes[14], static_cast<uint16_t>(f.bits));
    lx::WriteLe32(&bytes[16], lx::kBiBitfields);
    const uint32_t masks[3] = {f.bits == 16 ? 0xf800u : 0xff0000u, f.bits == 16 ? 0x07e0u : 0x00ff00u,
                               f.bits == 16 ? 0x001fu : 0x0000ffu};
    for (int i = 0; i < 3; ++i) lx::WriteLe32(&bytes[40 + 4 * i], masks[i]);
    return *lx::PackedDib::FromBytes(bytes.data(), bytes.size());
}

// Raw pixel values that differ from their neighbours, so any misplaced pixel shows.
inline lx::PackedDib Pattern(int w, int h, Format f) {
    lx::PackedDib dib = Blank(w, h, f);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const uint32_t v = static_cast<uint32_t>(x * 7 + y * 13 + x * y * 3 + 1) * 2654435761u;
            uint8_t* row = dib.row(y);
            switch (f.bits) {
            case 1: if ((v >> 20) & 1) row[x >> 3] |= static_cast<uint8_t>(0x80 >> (x & 7)); break;
            case 4: row[x >> 1] |= static_cast<uint8_t>(((v >> 20) & 15) << ((x & 1) ? 0 : 4)); break;
            case 8: row[x] = static_cast<uint8_t>(v >> 20); break;
            case 16: lx::WriteLe16(row + 2 * x, static_cast<uint16_t>((v >> 12) & (f.bitfields ? 0xffff : 0x7fff))); break;
            case 24: row[3 * x] = v >> 8; row[3 * x + 1] = v >> 16; row[3 * x + 2] = v >> 24; break;
            case 32: lx::WriteLe32(row + 4 * x, f.bitfields ? (v >> 8) : (v | 0xff000000u)); break;
            }
        }
    return dib;
}

// A w x h 24-bit image of one colour 0x00RRGGBB.
inline lx::PackedDib Solid(int w, int h, uint32_t rgb) { return lxtest::Painted(w, h, [=](int, int) { return rgb; }); }

inline uint32_t Grey(int v) { return static_cast<uint32_t>(v * 0x010101); }

// A smooth 24-bit picture with some texture: what the resampling of a photograph sees.
inline lx::PackedDib Photo(int w, int h) {
    lx::PackedDib dib = lx::PackedDib::Create(w, h, 24);
    for (int y = 0; y < h; ++y) {
        uint8_t* row = dib.row(y);
        for (int x = 0; x < w; ++x) {
            const double u = static_cast<double>(x) / w, v = static_cast<double>(y) / h;
            const double fine = std::sin(x * 0.7) * std::sin(y * 0.45) * 18;
            row[3 * x] = static_cast<uint8_t>(std::lround(128 + 90 * std::sin(6 * u + 2 * v) + fine * 0.5));
            row[3 * x + 1] = static_cast<uint8_t>(std::lround(120 + 80 * std::cos(4 * v - 3 * u) + fine));
            row[3 * x + 2] = static_cast<uint8_t>(std::lround(60 + 150 * u * v + 30 * std::sin(9 * v)));
        }
    }
    return dib;
}

// True when both hold the same colours at every pixel (formats may differ).
inline bool SameColours(const lx::PackedDib& a, const lx::PackedDib& b) {
    if (a.width() != b.width() || a.height() != b.height()) return false;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if ((a.pixel(x, y) & 0xffffff) != (b.pixel(x, y) & 0xffffff)) return false;
    return true;
}

// The image's bytes survive the DIB parser: header, table and rows consistent.
inline bool WellFormed(const lx::PackedDib& dib) {
    auto again = lx::PackedDib::FromBytes(dib.bytes().data(), dib.bytes().size());
    return again && again->width() == dib.width() && again->height() == dib.height() &&
           again->bytes().size() == dib.bytes().size();
}

// A BMP file: the 14-byte file header before the packed DIB.
inline std::vector<uint8_t> BmpFile(const lx::PackedDib& dib) {
    std::vector<uint8_t> file(14, 0);
    file[0] = 'B';
    file[1] = 'M';
    lx::WriteLe32(&file[2], static_cast<uint32_t>(14 + dib.bytes().size()));
    lx::WriteLe32(&file[10], static_cast<uint32_t>(14 + dib.bitsOffset()));
    file.insert(file.end(), dib.bytes().begin(), dib.bytes().end());
    return file;
}

inline std::optional<lx::PackedDib> ReadBmp(const std::filesystem::path& path) {
    const std::vector<uint8_t> file = lxtest::ReadFile(path);
    if (file.size() < 14 || file[0] != 'B' || file[1] != 'M') return std::nullopt;
    return lx::PackedDib::FromBytes(file.data() + 14, file.size() - 14);
}

#ifndef _WIN32
// Runs ImageMagick's convert on a BMP of `dib`; the result read back, or nullopt.
inline std::optional<lx::PackedDib> Magick(const lx::PackedDib& dib, const std::string& options) {
    lxtest::ScratchDir dir("mif-magick");
    lxtest::WriteFile(dir / "in.bmp", BmpFile(dib));
    const std::string command = "convert " + (dir / "in.bmp").string() + " " + options + " -type TrueColor BMP3:" + (dir / "out.bmp").string();
    if (lxtest::Run(command) != 0) return std::nullopt;
    return ReadBmp(dir / "out.bmp");
}
#endif

inline double MeanAbsDifference(const lx::PackedDib& a, const lx::PackedDib& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const uint32_t p = a.pixel(x, y), q = b.pixel(x, y);
            for (int s = 0; s < 24; s += 8) sum += std::abs(static_cast<int>((p >> s) & 0xff) - static_cast<int>((q >> s) & 0xff));
        }
    return sum / (3.0 * a.width() * a.height());
}

}  // namespace miftest
