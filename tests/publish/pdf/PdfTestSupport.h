// Helpers for the PDF tests: a real tiny JPEG, frame-only JPEG files, a checker that every
// xref entry points where its object starts, and (native builds only) JPEG files made by
// cjpeg and ImageMagick and the outside oracles (qpdf for structure, pdftoppm for pages).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "TestFiles.h"

namespace pdftest {

namespace fs = std::filesystem;

// A 16x8 baseline JPEG made by cjpeg (-quality 50 -optimize), 287 bytes.
inline std::vector<uint8_t> TinyJpeg() { return lxtest::ReadFile(lxtest::SourceDir() / "tests/publish/pdf/tiny.jpg"); }

// Not a picture: SOI, a frame header with `marker` (0xC0 baseline, 0xC9 arithmetic, ...),
// padding and EOI, `size` bytes in all, so that offsets in a document are known in advance.
inline void WriteFrameOnlyJpeg(const fs::path& path, uint16_t width, uint16_t height, uint8_t components, size_t size,
                               uint8_t marker = 0xC0) {
    std::vector<uint8_t> b = {0xFF, 0xD8, 0xFF, marker, 0x00, 0x11, 8, uint8_t(height >> 8), uint8_t(height),
                              uint8_t(width >> 8), uint8_t(width), components};
    b.resize(size - 2, 0x55);
    b.push_back(0xFF);
    b.push_back(0xD9);
    lxtest::WriteFile(path, b);
}

inline std::string ReadText(const fs::path& path) {
    const auto bytes = lxtest::ReadFile(path);
    return std::string(bytes.begin(), bytes.end());
}

// Checks the cross-reference table against the document itself: every in-use entry must give
// the offset at which "N 0 obj" starts, except image objects, whose entry deliberately points
// at the line break two bytes before. Also checks that startxref points at "xref".
inline void ExpectXrefMatchesObjects(const std::string& pdf) {
    const size_t xref = pdf.rfind("xref\r\n0 ");
    ASSERT_NE(xref, std::string::npos);
    const size_t startxref = pdf.rfind("startxref\r\n");
    ASSERT_NE(startxref, std::string::npos);
    EXPECT_EQ(std::stoll(pdf.substr(startxref + 11)), (long long)(xref));

    const size_t countAt = xref + 8;
    const int count = std::stoi(pdf.substr(countAt));
    size_t line = pdf.find("\r\n", countAt) + 2;
    for (int object = 0; object < count; ++object, line += 20) {
        ASSERT_LE(line + 20, pdf.size());
        const std::string entry = pdf.substr(line, 20);
        if (object == 0) {
            EXPECT_EQ(entry, "0000000000 65535 f\r\n");
            continue;
        }
        ASSERT_EQ(entry.substr(10, 10), " 00000 n\r\n") << "object " << object;
        const size_t offset = std::stoull(entry.substr(0, 10));
        const std::string head = std::to_string(object) + " 0 obj\r\n";
        const bool atObject = pdf.compare(offset, head.size(), head) == 0;
        const bool twoEarly = pdf.compare(offset, 2, "\r\n") == 0 && pdf.compare(offset + 2, head.size(), head) == 0 &&
                              pdf.compare(offset + 2 + head.size(), 15, "<</Type/XObject") == 0;
        EXPECT_TRUE(atObject || twoEarly) << "object " << object << " entry " << entry;
    }
    EXPECT_EQ(pdf.compare(line, 9, "trailer\r\n"), 0);
}

// The structure check; natively qpdf checks the file as well.
inline void ExpectQpdfAccepts(const fs::path& pdf) {
    ExpectXrefMatchesObjects(ReadText(pdf));
#ifndef _WIN32
    LX_REQUIRE_TOOLS("qpdf");
    const std::string command = "qpdf --check '" + pdf.string() + "' > '" + pdf.string() + ".qpdf.txt' 2>&1";
    const int status = lxtest::Run(command);
    EXPECT_EQ(status, 0) << ReadText(pdf.string() + ".qpdf.txt");
    // qpdf exits 3 on warnings; also refuse any reconstruction of a damaged xref table.
    EXPECT_EQ(ReadText(pdf.string() + ".qpdf.txt").find("WARNING"), std::string::npos)
        << ReadText(pdf.string() + ".qpdf.txt");
#endif
}

#ifndef _WIN32
struct Rgb {
    uint8_t r, g, b;
};

// A binary PPM of `width` x `height`: left half `left`, right half `right`.
inline void WriteHalvesPpm(const fs::path& path, int width, int height, Rgb left, Rgb right) {
    std::string data = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Rgb c = x < width / 2 ? left : right;
            data += char(c.r);
            data += char(c.g);
            data += char(c.b);
        }
    }
    lxtest::WriteFile(path, data);
}

// A red-left, blue-right JPEG made by cjpeg with the given extra options ("-progressive",
// "-arithmetic", "-grayscale", ...), or converted to CMYK by ImageMagick for "CMYK".
inline fs::path MakeJpeg(const fs::path& dir, const std::string& name, int width, int height,
                         const std::string& cjpegOptions = "") {
    const fs::path ppm = dir / (name + ".ppm");
    const fs::path jpg = dir / name;
    WriteHalvesPpm(ppm, width, height, {220, 20, 20}, {20, 20, 220});
    const std::string command =
        cjpegOptions == "CMYK"
            ? "convert '" + ppm.string() + "' -colorspace CMYK '" + jpg.string() + "'"
            : "cjpeg -quality 95 " + cjpegOptions + " -outfile '" + jpg.string() + "' '" + ppm.string() + "'";
    EXPECT_EQ(lxtest::Run(command), 0) << command;
    return jpg;
}

struct Raster {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgb;
    Rgb At(int x, int y) const {
        const size_t i = (size_t(y) * width + x) * 3;
        return {rgb[i], rgb[i + 1], rgb[i + 2]};
    }
};

// Renders one page with pdftoppm at 72 dpi (one pixel per point) and reads the PPM back.
inline Raster RenderPage(const fs::path& pdf, int page) {
    const fs::path stem = pdf.string() + "-p" + std::to_string(page);
    const std::string command = "pdftoppm -r 72 -f " + std::to_string(page) + " -l " + std::to_string(page) +
                                " -singlefile '" + pdf.string() + "' '" + stem.string() + "' 2>/dev/null";
    Raster raster;
    if (lxtest::Run(command) != 0) return raster;
    const std::string ppm = ReadText(stem.string() + ".ppm");
    int maxValue = 0;
    int headerLength = 0;
    if (std::sscanf(ppm.c_str(), "P6 %d %d %d%n", &raster.width, &raster.height, &maxValue, &headerLength) != 3 ||
        maxValue != 255) {
        return Raster{};
    }
    raster.rgb.assign(ppm.begin() + headerLength + 1, ppm.end());
    if (raster.rgb.size() != size_t(raster.width) * raster.height * 3) raster = Raster{};
    return raster;
}

inline bool Near(Rgb a, Rgb b, int tolerance) {
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

#endif

}  // namespace pdftest
