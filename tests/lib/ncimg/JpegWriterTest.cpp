#include "JpegWriter.h"

#include "JpegTestImages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>

using namespace jpegtest;
using lx::EncodeJpeg;
using lx::JpegSaveRecord;
using lx::PackedDib;

namespace {

JpegSaveRecord Record(int quality, int form = 0, int smoothing = 0) {
    JpegSaveRecord r;
    r.quality = quality;
    r.smoothing = smoothing;
    r.progressive = form == 2;
    r.optimizeHuffman = form == 1;
    return r;
}

const char* kFormOptions[] = {"", "-optimize", "-progressive"};

// cjpeg lets tables exceed 255 at low qualities unless told to stay baseline, as we do.
std::string QualityOption(int quality) { return "-baseline -quality " + std::to_string(quality) + " "; }

// Tall enough that the encoder splits its work into several parts.
const PackedDib& Photo() {
    static const PackedDib dib = MakePhoto(320, 272);
    return dib;
}
const PackedDib& GreyPhoto() {
    static const PackedDib dib = MakeGreyPhoto(320, 272);
    return dib;
}

std::map<int, std::vector<uint8_t>> PayloadsByFirstByte(const std::vector<Segment>& segments, uint8_t marker) {
    std::map<int, std::vector<uint8_t>> tables;
    for (const Segment& s : segments)
        if (s.marker == marker && !s.payload.empty()) tables[s.payload[0]] = s.payload;
    return tables;
}

}  // namespace

TEST(JpegSaveRecord, IsEightIntegersInTheCallersOrder) {
    EXPECT_EQ(sizeof(JpegSaveRecord), 32u);
    EXPECT_EQ(offsetof(JpegSaveRecord, quality), 0u);
    EXPECT_EQ(offsetof(JpegSaveRecord, smoothing), 8u);
    EXPECT_EQ(offsetof(JpegSaveRecord, progressive), 12u);
    EXPECT_EQ(offsetof(JpegSaveRecord, optimizeHuffman), 16u);
}

#ifndef _WIN32
TEST(JpegWriter, QuantisationAndStandardHuffmanTablesMatchCjpeg) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-dqt");
    const Raster raster = ToRaster(Photo());
    for (int quality : {1, 7, 25, 49, 50, 51, 75, 94, 100}) {
        SCOPED_TRACE(quality);
        const auto ours = PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(quality))), 0xdb);
        const auto theirs = PayloadsByFirstByte(Segments(Cjpeg(raster, QualityOption(quality), dir)), 0xdb);
        ASSERT_EQ(theirs.size(), 2u);
        EXPECT_EQ(ours, theirs);
    }
    // The example Huffman tables of the standard form.
    const auto ours = PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(75))), 0xc4);
    const auto theirs = PayloadsByFirstByte(Segments(Cjpeg(ToRaster(Photo()), QualityOption(75), dir)), 0xc4);
    ASSERT_EQ(theirs.size(), 4u);
    EXPECT_EQ(ours, theirs);
}
#endif

TEST(JpegWriter, FileIsJfifWithTheExpectedFrame) {
    const auto segments = Segments(EncodeJpeg(Photo(), Record(80)));
    ASSERT_GE(segments.size(), 3u);
    EXPECT_EQ(segments[0].marker, 0xe0);
    EXPECT_EQ(std::string(segments[0].payload.begin(), segments[0].payload.begin() + 5), std::string("JFIF\0", 5));
    EXPECT_EQ(segments.back().marker, 0xd9);
    EXPECT_EQ(CountMarker(segments, 0xdd), 0);  // no restart interval
    const Segment* sof = FindMarker(segments, 0xc0);
    ASSERT_NE(sof, nullptr);
    // 8-bit, 272 x 320, Y 2x2 with table 0, Cb and Cr 1x1 with table 1.
    const std::vector<uint8_t> expected = {8, 1, 16, 1, 64, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
    EXPECT_EQ(sof->payload, expected);
}

#ifndef _WIN32
// Every form decodes with djpeg to the picture's size, no worse than cjpeg with the same
// settings; the forms differ only in entropy coding, so they decode to the very same pixels.
// Odd sizes leave partial blocks; flat areas give progressive scans runs of empty blocks
// longer than one EOB run can hold and refinement scans long queues of correction bits;
// extreme contrast gives the largest DC differences and AC values.
TEST(JpegWriter, EveryFormDecodesTheSameAndAsWellAsCjpeg) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-decode");
    struct Case {
        std::string name;
        PackedDib dib;
        int quality, smoothing;
        double floor, slack;  // the least PSNR, and how far below cjpeg's it may be
    };
    std::vector<Case> cases;
    for (int smoothing : {0, 30}) {
        cases.push_back({"photo", Photo(), 90, smoothing, smoothing ? 26.0 : 29.0, 0.2});
        cases.push_back({"grey photo", GreyPhoto(), 90, smoothing, smoothing ? 26.0 : 29.0, 0.2});
    }
    const std::pair<int, int> sizes[] = {{1, 1}, {17, 9}, {9, 17}, {4001, 3}, {3, 300}, {33, 31}};
    for (auto [w, h] : sizes)
        for (bool grey : {false, true})
            cases.push_back({std::to_string(w) + "x" + std::to_string(h) + (grey ? " grey" : ""),
                             grey ? MakeGreyPhoto(w, h, w + h) : MakePhoto(w, h, w + h), 92, 20, 0, 0.3});
    PackedDib flat = PackedDib::Create(1600, 1400, 8);  // 35000 blocks, specks in the corners only
    for (int y = 0; y < 1400; ++y) std::fill(flat.row(y), flat.row(y) + 1600, uint8_t{90});
    flat.row(3)[5] = 250;
    flat.row(1396)[1590] = 10;
    PackedDib blocks = PackedDib::Create(64, 48, 24);  // black and white 8x8 squares
    PackedDib pixels = PackedDib::Create(64, 48, 24);  // black and white single pixels
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64 * 3; ++x) {
            blocks.row(y)[x] = ((x / 3 / 8 + y / 8) % 2) ? 255 : 0;
            pixels.row(y)[x] = ((x / 3 + y) % 2) ? 255 : 0;
        }
    for (int quality : {1, 50, 100}) {
        cases.push_back({"flat", flat, quality, 0, 0, 0.3});
        cases.push_back({"blocks", blocks, quality, 0, 0, 0.3});
        cases.push_back({"pixels", pixels, quality, 0, 0, 0.3});
    }
    for (const Case& c : cases) {
        const Raster source = ToRaster(c.dib);
        Raster first;
        for (int form = 0; form < 3; ++form) {
            SCOPED_TRACE(c.name + " quality " + std::to_string(c.quality) + " smoothing " + std::to_string(c.smoothing) +
                         " form " + std::to_string(form));
            const Raster decoded = Djpeg(EncodeJpeg(c.dib, Record(c.quality, form, c.smoothing)), dir);
            ASSERT_EQ(decoded.width, source.width);
            ASSERT_EQ(decoded.height, source.height);
            ASSERT_EQ(decoded.channels, source.channels);
            std::string options = QualityOption(c.quality) + kFormOptions[form];
            if (c.smoothing) options += " -smooth " + std::to_string(c.smoothing);
            if (source.channels == 1) options += " -grayscale";
            const double ours = Psnr(source, decoded);
            EXPECT_GT(ours, c.floor);
            EXPECT_GT(ours, Psnr(source, Djpeg(Cjpeg(source, options, dir), dir)) - c.slack);
            if (form == 0) first = decoded;
            else EXPECT_EQ(decoded.samples, first.samples);
        }
    }
}


TEST(JpegWriter, SmoothingFollowsTheUsualFilter) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-smooth");
    const Raster source = ToRaster(Photo());
    size_t previous = EncodeJpeg(Photo(), Record(85)).size();
    for (int smoothing : {10, 50, 100}) {
        SCOPED_TRACE(smoothing);
        const auto ours = EncodeJpeg(Photo(), Record(85, 0, smoothing));
        const auto theirs = Cjpeg(source, QualityOption(85) + "-dct float -smooth " + std::to_string(smoothing), dir);
        // Smoothing strips noise, so files shrink as it grows.
        EXPECT_LT(ours.size(), previous);
        previous = ours.size();
        EXPECT_NEAR(static_cast<double>(ours.size()) / theirs.size(), 1.0, 0.01);
        // Both decode to nearly the same picture.
        EXPECT_GT(Psnr(Djpeg(ours, dir), Djpeg(theirs, dir)), 45.0);
    }
}

TEST(JpegWriter, ProgressiveFramesHaveTheUsualScans) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-progressive");
    for (const PackedDib* dib : {&Photo(), &GreyPhoto()}) {
        const auto jpeg = EncodeJpeg(*dib, Record(75, 2));
        const auto segments = Segments(jpeg);
        const bool grey = dib == &GreyPhoto();
        EXPECT_EQ(CountMarker(segments, 0xc2), 1);
        EXPECT_EQ(CountMarker(segments, 0xc0), 0);
        EXPECT_EQ(CountMarker(segments, 0xda), grey ? 6 : 10);
        EXPECT_EQ(segments.back().marker, 0xd9);
        lxtest::WriteFile(dir / "p.jpg", jpeg);
        EXPECT_EQ(lxtest::Run("identify -format '%[interlace]' '" + (dir / "p.jpg").string() + "' > '" +
                              (dir / "i.txt").string() + "'"), 0);
        const auto text = lxtest::ReadFile(dir / "i.txt");
        EXPECT_EQ(std::string(text.begin(), text.end()), "JPEG");
    }
    for (int form : {0, 1}) {
        const auto segments = Segments(EncodeJpeg(Photo(), Record(75, form)));
        EXPECT_EQ(CountMarker(segments, 0xc0), 1);
        EXPECT_EQ(CountMarker(segments, 0xda), 1);
    }
}
#endif

TEST(JpegWriter, OptimisedTablesMakeSmallerFiles) {
    for (int quality : {30, 75, 95}) {
        SCOPED_TRACE(quality);
        const size_t standard = EncodeJpeg(Photo(), Record(quality, 0)).size();
        const size_t optimised = EncodeJpeg(Photo(), Record(quality, 1)).size();
        const size_t progressive = EncodeJpeg(Photo(), Record(quality, 2)).size();
        EXPECT_LT(optimised, standard);
        EXPECT_LT(progressive, standard);
        EXPECT_NE(PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(quality, 1))), 0xc4),
                  PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(quality, 0))), 0xc4));
    }
}

#ifndef _WIN32
TEST(JpegWriter, SizeGrowsWithQualityAndTracksCjpeg) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-quality");
    const Raster source = ToRaster(Photo());
    size_t previous = 0;
    for (int quality : {1, 10, 30, 50, 75, 90, 100}) {
        for (int form = 0; form < 3; ++form) {
            SCOPED_TRACE(std::to_string(quality) + " form " + std::to_string(form));
            const size_t ours = EncodeJpeg(Photo(), Record(quality, form)).size();
            const size_t theirs = Cjpeg(source, QualityOption(quality) + kFormOptions[form], dir).size();
            EXPECT_NEAR(static_cast<double>(ours) / theirs, 1.0, 0.03);
            if (form == 0) {
                EXPECT_GT(ours, previous);
                previous = ours;
            }
        }
    }
}

// Grey palettes make one-component files; any other palette is colour.
TEST(JpegWriter, GreyPalettesGiveOneComponent) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-grey");
    PackedDib twoLevel = PackedDib::Create(40, 30, 1);
    for (int y = 0; y < 30; ++y) twoLevel.row(y)[y % 5] = 0xf0;
    PackedDib tinted = PackedDib::Create(40, 30, 8);
    tinted.palette()[200] = lx::Rgbq{10, 200, 30, 0};
    for (int y = 0; y < 30; ++y) tinted.row(y)[y] = 200;
    struct Case {
        const PackedDib* dib;
        int components;
        const char* colourspace;
    } cases[] = {{&GreyPhoto(), 1, "Gray"}, {&twoLevel, 1, "Gray"}, {&tinted, 3, "sRGB"}, {&Photo(), 3, "sRGB"}};
    for (const Case& c : cases) {
        const auto jpeg = EncodeJpeg(*c.dib, Record(75));
        const auto segments = Segments(jpeg);
        const Segment* sof = FindMarker(segments, 0xc0);
        ASSERT_NE(sof, nullptr);
        EXPECT_EQ(sof->payload[5], c.components);
        lxtest::WriteFile(dir / "g.jpg", jpeg);
        lxtest::Run("identify -format '%[colorspace]' '" + (dir / "g.jpg").string() + "' > '" + (dir / "c.txt").string() + "'");
        const auto text = lxtest::ReadFile(dir / "c.txt");
        EXPECT_EQ(std::string(text.begin(), text.end()), c.colourspace);
    }
}
#endif

// Every depth is read as the 24-bit image of the same colours would be.
TEST(JpegWriter, OtherDepthsEncodeLikeTheir24BitEquivalent) {
    const PackedDib& photo = Photo();
    PackedDib rgb32 = PackedDib::Create(photo.width(), photo.height(), 32);
    PackedDib rgb16 = PackedDib::Create(photo.width(), photo.height(), 16);
    PackedDib colour8 = PackedDib::Create(photo.width(), photo.height(), 8);
    PackedDib colour4 = PackedDib::Create(photo.width(), photo.height(), 4);
    for (int i = 0; i < 256; ++i) colour8.palette()[i] = lx::Rgbq{uint8_t(i), uint8_t(255 - i), uint8_t(i * 7), 0};
    for (int i = 0; i < 16; ++i) colour4.palette()[i] = lx::Rgbq{uint8_t(i * 16), 40, uint8_t(255 - i * 9), 0};
    for (int y = 0; y < photo.height(); ++y) {
        for (int x = 0; x < photo.width(); ++x) {
            const uint8_t* p = photo.row(y) + 3 * x;
            uint8_t* q = rgb32.row(y) + 4 * x;
            q[0] = p[0], q[1] = p[1], q[2] = p[2], q[3] = 0x55;  // alpha plays no part
            lx::WriteLe16(rgb16.row(y) + 2 * x, static_cast<uint16_t>((p[2] >> 3) << 10 | (p[1] >> 3) << 5 | p[0] >> 3));
            colour8.row(y)[x] = p[1];
            colour4.row(y)[x / 2] |= static_cast<uint8_t>((p[0] >> 4) << (x % 2 ? 0 : 4));
        }
    }
    for (const PackedDib* dib : {&rgb32, &rgb16, &colour8, &colour4}) {
        SCOPED_TRACE(dib->bitCount());
        PackedDib same = PackedDib::Create(dib->width(), dib->height(), 24);
        for (int y = 0; y < dib->height(); ++y)
            for (int x = 0; x < dib->width(); ++x) {
                const uint32_t p = dib->pixel(x, y);
                uint8_t* q = same.row(y) + 3 * x;
                q[0] = uint8_t(p), q[1] = uint8_t(p >> 8), q[2] = uint8_t(p >> 16);
            }
        for (int form = 0; form < 3; ++form)
            EXPECT_EQ(EncodeJpeg(*dib, Record(70, form, form * 20)), EncodeJpeg(same, Record(70, form, form * 20)));
    }
}

TEST(JpegWriter, RefusesWhatJpegCannotHold) {
    EXPECT_TRUE(EncodeJpeg(PackedDib(), Record(75)).empty());
    EXPECT_TRUE(EncodeJpeg(PackedDib::Create(65536, 1, 8), Record(75)).empty());
    EXPECT_FALSE(EncodeJpeg(PackedDib::Create(65535, 1, 8), Record(75)).empty());
}

TEST(JpegWriter, OutOfRangeSettingsAreClamped) {
    const PackedDib dib = MakePhoto(48, 40);
    EXPECT_EQ(EncodeJpeg(dib, Record(0)), EncodeJpeg(dib, Record(1)));
    EXPECT_EQ(EncodeJpeg(dib, Record(250)), EncodeJpeg(dib, Record(100)));
    EXPECT_EQ(EncodeJpeg(dib, Record(60, 0, 500)), EncodeJpeg(dib, Record(60, 0, 100)));
    EXPECT_EQ(EncodeJpeg(dib, Record(60, 0, -3)), EncodeJpeg(dib, Record(60, 0, 0)));
}

