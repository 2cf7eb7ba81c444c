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

TEST(JpegFrameHeader, AcceptsTheFourSequentialAndProgressiveFrameKinds) {
    for (uint8_t marker : {0xC0, 0xC1, 0xC2, 0xC3}) {
        // Sizes are read high byte first.
        const auto frame = Find(JpegWithFrame(marker, 0x1234, 0xABCD, 4));
        ASSERT_TRUE(frame) << std::hex << int(marker);
        EXPECT_EQ(frame->width, 0x1234u);
        EXPECT_EQ(frame->height, 0xABCDu);
        EXPECT_EQ(frame->components, 4);
    }
}

TEST(JpegFrameHeader, RefusesArithmeticAndOtherFrameKinds) {
    // 0xC4 (Huffman tables) and 0xCC (arithmetic conditioning) are ordinary segments: the scan
    // steps over them and then finds no frame.
    for (uint8_t marker : {0xC5, 0xC6, 0xC7, 0xC9, 0xCA, 0xCB, 0xCD, 0xCE, 0xCF}) {
        EXPECT_FALSE(Find(JpegWithFrame(marker, 640, 480, 3))) << std::hex << int(marker);
    }
}

TEST(JpegFrameHeader, StopsAtTheFirstByteThatIsNotAMarker) {
    Bytes b = JpegWithFrame(0xC0, 10, 10, 1);
    b[2] = 0x00;  // byte 2 must already be a marker
    EXPECT_FALSE(Find(b));

    b = JpegWithFrame(0xC0, 10, 10, 1);
    b[5] = 0x12;  // APP0 length now lands inside the frame header
    EXPECT_FALSE(Find(b));
}

TEST(JpegFrameHeader, DoesNotCheckTheStartOfImageBytes) {
    Bytes b = JpegWithFrame(0xC0, 33, 44, 3);
    b[0] = 'X';
    b[1] = 'Y';
    const auto frame = Find(b);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->width, 33u);
}

TEST(JpegFrameHeader, TruncatedFilesYieldNothing) {
    const Bytes whole = JpegWithFrame(0xC0, 640, 480, 3);
    // The frame header's fields end at byte 30; every shorter prefix must be refused cleanly.
    for (size_t size = 0; size < 30; ++size) {
        const Bytes prefix(whole.begin(), whole.begin() + std::ptrdiff_t(size));
        EXPECT_FALSE(Find(prefix)) << size;
    }
    EXPECT_TRUE(Find(Bytes(whole.begin(), whole.begin() + 30)));
}

TEST(JpegFrameHeader, ZeroLengthSegmentsStillMoveForward) {
    // A length of 0 steps two bytes ahead, onto the length bytes themselves (0x00): stop.
    const Bytes b = {0xFF, 0xD8, 0xFF, 0xE1, 0x00, 0x00, 0xFF, 0xC0, 0, 0x11, 8, 0, 1, 0, 1, 3};
    EXPECT_FALSE(Find(b));
}

#ifndef _WIN32
TEST(JpegFrameHeader, FindsTheFrameOfFilesMadeByCjpeg) {
    LX_REQUIRE_TOOLS("cjpeg convert");
    lxtest::ScratchDir dir("jpegframe");
    struct Case {
        const char* options;
        int components;
        bool found;
    } cases[] = {{"", 3, true}, {"-progressive", 3, true}, {"-grayscale", 1, true}, {"-arithmetic", 0, false}};
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
    const auto cmyk = pdftest::MakeCmykJpeg(dir.path(), "cmyk.jpg", 20, 10);
    const auto bytes = lxtest::ReadFile(cmyk);
    const auto frame = lx::FindJpegFrameHeader(bytes.data(), bytes.size());
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->components, 4);
}
#endif

}  // namespace
