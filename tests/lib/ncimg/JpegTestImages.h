// Shared by the JPEG encoder tests: synthetic photographs, PNM files for the reference
// tools, decoding through djpeg, PSNR, and a walk over a JPEG file's marker segments.
#pragma once

#include "PackedDib.h"
#include "TestFiles.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace jpegtest {

// Smooth shading, a few textures and hard edges, plus mild deterministic noise: enough
// like a photograph that the encoder's choices show up in size and error.
inline lx::PackedDib MakePhoto(int width, int height, uint32_t seed = 1) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    uint32_t state = seed * 2654435761u + 1;
    for (int y = 0; y < height; ++y) {
        uint8_t* row = dib.row(y);
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            const int noise = static_cast<int>(state >> 28) - 8;
            const double fx = static_cast<double>(x) / width, fy = static_cast<double>(y) / height;
            double r = 200 * fx + 30 * std::sin(y * 0.21);
            double g = 180 * fy + 40 * std::sin((x + y) * 0.07);
            double b = 120 + 90 * std::cos(x * 0.045) * std::sin(y * 0.033);
            if ((x / 37 + y / 29) % 5 == 0) r = 250 - r / 3, g = 20 + g / 4;  // hard-edged patches
            auto clamp = [noise](double v) { return static_cast<uint8_t>(std::lround(std::fmin(255, std::fmax(0, v + noise)))); };
            row[3 * x] = clamp(b);
            row[3 * x + 1] = clamp(g);
            row[3 * x + 2] = clamp(r);
        }
    }
    return dib;
}

// An 8-bit grey-palette image of the photograph's luminance.
inline lx::PackedDib MakeGreyPhoto(int width, int height, uint32_t seed = 1) {
    const lx::PackedDib colour = MakePhoto(width, height, seed);
    lx::PackedDib grey = lx::PackedDib::Create(width, height, 8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint8_t* p = colour.row(y) + 3 * x;
            grey.row(y)[x] = static_cast<uint8_t>((p[0] * 29 + p[1] * 150 + p[2] * 77) >> 8);
        }
    return grey;
}

struct Raster {
    int width = 0, height = 0, channels = 0;  // channels 1 (grey) or 3 (RGB)
    std::vector<uint8_t> samples;              // top-down rows
};

// The picture as the reference tools see it: RGB, or grey for grey-palette images.
inline Raster ToRaster(const lx::PackedDib& dib) {
    Raster r;
    r.width = dib.width();
    r.height = dib.height();
    r.channels = dib.bitCount() <= 8 && dib.hasGreyPalette() ? 1 : 3;
    for (int y = 0; y < r.height; ++y)
        for (int x = 0; x < r.width; ++x) {
            const uint32_t p = dib.pixel(x, y);
            if (r.channels == 1) {
                r.samples.push_back(static_cast<uint8_t>(p));
            } else {
                r.samples.push_back(static_cast<uint8_t>(p >> 16));
                r.samples.push_back(static_cast<uint8_t>(p >> 8));
                r.samples.push_back(static_cast<uint8_t>(p));
            }
        }
    return r;
}

inline std::vector<uint8_t> PnmBytes(const Raster& r) {
    const std::string head = (r.channels == 1 ? "P5\n" : "P6\n") + std::to_string(r.width) + " " +
                             std::to_string(r.height) + "\n255\n";
    std::vector<uint8_t> out(head.begin(), head.end());
    out.insert(out.end(), r.samples.begin(), r.samples.end());
    return out;
}

inline Raster ParsePnm(const std::vector<uint8_t>& bytes) {
    Raster r;
    std::string text(bytes.begin(), bytes.begin() + std::min<size_t>(bytes.size(), 64));
    std::istringstream in(text);
    std::string magic;
    int maxval = 0;
    in >> magic >> r.width >> r.height >> maxval;
    if ((magic != "P5" && magic != "P6") || maxval != 255) return {};
    r.channels = magic == "P5" ? 1 : 3;
    const size_t offset = static_cast<size_t>(in.tellg()) + 1;
    const size_t n = static_cast<size_t>(r.width) * r.height * r.channels;
    if (bytes.size() < offset + n) return {};
    r.samples.assign(bytes.begin() + offset, bytes.begin() + offset + n);
    return r;
}

// Decodes with djpeg; an empty raster when djpeg refuses the data.
inline Raster Djpeg(const std::vector<uint8_t>& jpeg, const lxtest::ScratchDir& dir) {
    lxtest::WriteFile(dir / "in.jpg", jpeg);
    std::remove((dir / "out.pnm").string().c_str());
    if (lxtest::Run("djpeg -pnm -outfile '" + (dir / "out.pnm").string() + "' '" + (dir / "in.jpg").string() +
                    "' 2>/dev/null") != 0)
        return {};
    return ParsePnm(lxtest::ReadFile(dir / "out.pnm"));
}

// Encodes the raster with cjpeg and the given options.
inline std::vector<uint8_t> Cjpeg(const Raster& r, const std::string& options, const lxtest::ScratchDir& dir) {
    lxtest::WriteFile(dir / "ref.pnm", PnmBytes(r));
    const auto out = dir / "ref.jpg";
    std::remove(out.string().c_str());
    lxtest::Run("cjpeg " + options + " -outfile '" + out.string() + "' '" + (dir / "ref.pnm").string() + "'");
    return lxtest::ReadFile(out);
}

inline double Psnr(const Raster& a, const Raster& b) {
    if (a.samples.size() != b.samples.size() || a.samples.empty()) return 0;
    double sum = 0;
    for (size_t i = 0; i < a.samples.size(); ++i) {
        const double d = static_cast<double>(a.samples[i]) - b.samples[i];
        sum += d * d;
    }
    if (sum == 0) return 99;
    return 10 * std::log10(255.0 * 255.0 * a.samples.size() / sum);
}

struct Segment {
    uint8_t marker = 0;
    std::vector<uint8_t> payload;  // without the length field
};

// The marker segments up to EOI; entropy-coded data is skipped. A malformed file ends
// the list early with marker 0.
inline std::vector<Segment> Segments(const std::vector<uint8_t>& jpeg) {
    std::vector<Segment> list;
    if (jpeg.size() < 2 || jpeg[0] != 0xff || jpeg[1] != 0xd8) return list;
    size_t i = 2;
    while (i + 1 < jpeg.size()) {
        if (jpeg[i] != 0xff) return list.push_back({}), list;
        const uint8_t marker = jpeg[i + 1];
        if (marker == 0xd9) {
            list.push_back({marker, {}});
            return list;
        }
        if (i + 3 >= jpeg.size()) break;
        const size_t length = static_cast<size_t>(jpeg[i + 2]) << 8 | jpeg[i + 3];
        if (length < 2 || i + 2 + length > jpeg.size()) break;
        list.push_back({marker, std::vector<uint8_t>(jpeg.begin() + i + 4, jpeg.begin() + i + 2 + length)});
        i += 2 + length;
        if (marker == 0xda) {
            while (i + 1 < jpeg.size() && !(jpeg[i] == 0xff && jpeg[i + 1] != 0 && (jpeg[i + 1] < 0xd0 || jpeg[i + 1] > 0xd7)))
                ++i;
        }
    }
    list.push_back({});
    return list;
}

inline int CountMarker(const std::vector<Segment>& segments, uint8_t marker) {
    int n = 0;
    for (const Segment& s : segments) n += s.marker == marker;
    return n;
}

inline const Segment* FindMarker(const std::vector<Segment>& segments, uint8_t marker) {
    for (const Segment& s : segments)
        if (s.marker == marker) return &s;
    return nullptr;
}

}  // namespace jpegtest
