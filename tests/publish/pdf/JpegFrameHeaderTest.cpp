#include "JpegFrameHeader.h"

#include <gtest/gtest.h>

#include <vector>

#include "PdfTestSupport.h"
#include "TestFiles.h"

namespace {

using Bytes = std::vector<uint8_t>;

// SOI, a JFIF-like APP0 segment of 16 bytes, then a frame header with `marker`.
Bytes JpegWithFrame(uint8_t marker, uint16_t width, uint16_t height, uint8_t components) {
    Bytes b = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
    const Bytes frame = {0xFF, marker, 0x00, 0x11, 8, uint8_t(height >> 8), uint8_t(height), uint8_t(width >> 8),
                         uint8_t(width), components, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
    b.insert(b.end(), frame.begin(), frame.end());
    const Bytes scanStart = {0xFF, 0xDA, 0x00, 0x0C};
    b.insert(b.end(), scanStart.begin(), scanStart.end());
    return b;
}

std::optional<lx::JpegFrameHeader> Find(const Bytes& b) { return lx::FindJpegFrameHeader(b.data(), b.size()); }

// Each row changes one byte of a good file (at `at`, to `value`; at < 0: no change) or cuts it.
TEST(JpegFrameHeader, FindsSequentialAndProgressiveFramesAndRefusesTheRest) {
    const struct {
        uint8_t marker;
        int at, value;
        size_t size;  // 0: the whole file
        bool found;
    } cases[] = {
        {0xC0, -1, 0, 0, true}, {0xC1, -1, 0, 0, true}, {0xC2, -1, 0, 0, true}, {0xC3, -1, 0, 0, true},
        // Arithmetic and other frame kinds; 0xC4 (Huffman tables) and 0xCC (arithmetic
        // conditioning) are ordinary segments: the scan steps over them and finds no frame.
        {0xC4, -1, 0, 0, false}, {0xC5, -1, 0, 0, false}, {0xC6, -1, 0, 0, false}, {0xC7, -1, 0, 0, false},
        {0xC9, -1, 0, 0, false}, {0xCA, -1, 0, 0, false}, {0xCB, -1, 0, 0, false}, {0xCC, -1, 0, 0, false},
        {0xCD, -1, 0, 0, false}, {0xCE, -1, 0, 0, false}, {0xCF, -1, 0, 0, false},
        {0xC0, 0, 'X', 0, true},      // the start-of-image bytes are not checked
        {0xC0, 2, 0x00, 0, false},    // byte 2 must already be a marker
        {0xC0, 5, 0x12, 0, false},    // the APP0 length now lands inside the frame header
        {0xC0, 5, 0x00, 0, false},    // a length of 0 steps onto the length bytes (0x00): stop
        {0xC0, -1, 0, 30, true},      // the frame header's fields end at byte 30
        {0xC0, -1, 0, 29, false}, {0xC0, -1, 0, 22, false}, {0xC0, -1, 0, 3, false}, {0xC0, -1, 0, 1, false},
    };
    for (const auto& c : cases) {
        Bytes b = JpegWithFrame(c.marker, 0x1234, 0xABCD, 4);  // sizes are read high byte first
        if (c.at >= 0) b[size_t(c.at)] = uint8_t(c.value);
        if (c.size) b.resize(c.size);
        const auto frame = Find(b);
        ASSERT_EQ(bool(frame), c.found) << std::hex << int(c.marker) << " " << c.at << " " << c.size;
        if (!frame) continue;
        EXPECT_EQ(frame->width, 0x1234u);
        EXPECT_EQ(frame->height, 0xABCDu);
        EXPECT_EQ(frame->components, 4);
    }
    EXPECT_FALSE(Find({}));
}

#ifndef _WIN32
TEST(JpegFrameHeader, FindsTheFrameOfFilesMadeByCjpeg) {
    LX_REQUIRE_TOOLS("cjpeg convert");
    lxtest::ScratchDir dir("jpegframe");
    struct Case {
        const char* options;
        int components;
        bool found;
    } cases[] = {{"", 3, true}, {"-progressive", 3, true}, {"-grayscale", 1, true}, {"CMYK", 4, true},
                 {"-arithmetic", 0, false}};
    for (const Case& c : cases) {
        const auto path = pdftest::MakeJpeg(dir.path(), "f.jpg", 123, 45, c.options);
        const auto bytes = lxtest::ReadFile(path);
        const auto frame = lx::FindJpegFrameHeader(bytes.data(), bytes.size());
        ASSERT_EQ(bool(frame), c.found) << c.options;
        if (!frame) continue;
        EXPECT_EQ(frame->width, 123u) << c.options;
        EXPECT_EQ(frame->height, 45u) << c.options;
        EXPECT_EQ(frame->components, c.components) << c.options;
    }
}
#endif

}  // namespace
