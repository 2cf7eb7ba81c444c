// The JPEG encoder against the reference tools: cjpeg's tables and sizes for the same
// settings, djpeg's decoding, ImageMagick's reading of the frame; plus what holds without
// them (structure, depths, clamping). Then its parts on their own: Huffman tables and the bit
// stream (which the reference decoder would forgive going wrong in some ways), and colour
// conversion, alone and with 4:2:0 downsampling, where the vector path (groups of eight
// pixels) and the scalar one (the rest of a row) must agree exactly and both follow the JFIF
// equations.
#include "JpegWriter.h"

#include "JpegCoefficients.h"
#include "JpegHuffman.h"
#include "JpegSampling.h"
#include "PnmReader.h"
#include "PnmWriter.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <map>
#include <queue>
#include <random>
#include <optional>
#include <string>
#include <vector>

using lx::EncodeJpeg;
using lx::JpegSaveRecord;
using lx::PackedDib;

namespace {

// Smooth shading, a few textures and hard edges, plus mild deterministic noise: enough
// like a photograph that the encoder's choices show up in size and error.
PackedDib MakePhoto(int width, int height, uint32_t seed = 1) {
    PackedDib dib = PackedDib::Create(width, height, 24);
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
PackedDib MakeGreyPhoto(int width, int height, uint32_t seed = 1) {
    const PackedDib colour = MakePhoto(width, height, seed);
    PackedDib grey = PackedDib::Create(width, height, 8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint8_t* p = colour.row(y) + 3 * x;
            grey.row(y)[x] = static_cast<uint8_t>((p[0] * 29 + p[1] * 150 + p[2] * 77) >> 8);
        }
    return grey;
}

// Decodes with djpeg; nothing when djpeg refuses the data.
std::optional<PackedDib> Djpeg(const std::vector<uint8_t>& jpeg, const lxtest::ScratchDir& dir) {
    lxtest::WriteFile(dir / "in.jpg", jpeg);
    std::remove((dir / "out.pnm").string().c_str());
    if (lxtest::Run("djpeg -pnm -outfile '" + (dir / "out.pnm").string() + "' '" + (dir / "in.jpg").string() +
                    "' 2>/dev/null") != 0)
        return std::nullopt;
    return lx::ReadPnm(lxtest::ReadFile(dir / "out.pnm"));
}

// Encodes the picture with cjpeg and the given options; grey-palette pictures go in as
// grey maps.
std::vector<uint8_t> Cjpeg(const PackedDib& dib, const std::string& options, const lxtest::ScratchDir& dir) {
    lxtest::WriteFile(dir / "ref.pnm", lx::EncodePnm(dib));
    const auto out = dir / "ref.jpg";
    std::remove(out.string().c_str());
    lxtest::Run("cjpeg " + options + " -outfile '" + out.string() + "' '" + (dir / "ref.pnm").string() + "'");
    return lxtest::ReadFile(out);
}

// Over the samples: one per pixel for 8-bit grey pictures, three for colour.
double Psnr(const PackedDib& a, const std::optional<PackedDib>& b) {
    if (!b || a.width() != b->width() || a.height() != b->height() || a.empty()) return 0;
    const int channels = a.bitCount() == 8 ? 1 : 3;
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            for (int c = 0; c < channels; ++c) {
                const double d = static_cast<double>((a.pixel(x, y) >> (8 * c)) & 0xff) - ((b->pixel(x, y) >> (8 * c)) & 0xff);
                sum += d * d;
            }
    if (sum == 0) return 99;
    return 10 * std::log10(255.0 * 255.0 * a.width() * a.height() * channels / sum);
}

struct Segment {
    uint8_t marker = 0;
    std::vector<uint8_t> payload;  // without the length field
};

// The marker segments up to EOI; entropy-coded data is skipped. A malformed file ends
// the list early with marker 0.
std::vector<Segment> Segments(const std::vector<uint8_t>& jpeg) {
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

int CountMarker(const std::vector<Segment>& segments, uint8_t marker) {
    int n = 0;
    for (const Segment& s : segments) n += s.marker == marker;
    return n;
}

const Segment* FindMarker(const std::vector<Segment>& segments, uint8_t marker) {
    for (const Segment& s : segments)
        if (s.marker == marker) return &s;
    return nullptr;
}

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
    EXPECT_EQ((std::vector<size_t>{offsetof(JpegSaveRecord, quality), offsetof(JpegSaveRecord, smoothing),
                                   offsetof(JpegSaveRecord, progressive), offsetof(JpegSaveRecord, optimizeHuffman)}),
              (std::vector<size_t>{0, 8, 12, 16}));
}

#ifndef _WIN32
TEST(JpegWriter, QuantisationAndStandardHuffmanTablesMatchCjpeg) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-dqt");
    for (int quality : {1, 7, 25, 49, 50, 51, 75, 94, 100}) {
        SCOPED_TRACE(quality);
        const auto ours = PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(quality))), 0xdb);
        const auto theirs = PayloadsByFirstByte(Segments(Cjpeg(Photo(), QualityOption(quality), dir)), 0xdb);
        ASSERT_EQ(theirs.size(), 2u);
        EXPECT_EQ(ours, theirs);
    }
    // The example Huffman tables of the standard form.
    const auto ours = PayloadsByFirstByte(Segments(EncodeJpeg(Photo(), Record(75))), 0xc4);
    const auto theirs = PayloadsByFirstByte(Segments(Cjpeg(Photo(), QualityOption(75), dir)), 0xc4);
    ASSERT_EQ(theirs.size(), 4u);
    EXPECT_EQ(ours, theirs);
}
#endif

// JFIF first, EOI last, no restart interval; a baseline or progressive frame with the usual
// scans; one component for grey palettes and three for any other palette.
TEST(JpegWriter, FramesAndScansFollowTheFormAndThePalette) {
    PackedDib twoLevel = PackedDib::Create(40, 30, 1), tinted = PackedDib::Create(40, 30, 8);
    tinted.palette()[200] = lx::Rgbq{10, 200, 30, 0};
    for (int y = 0; y < 30; ++y) twoLevel.row(y)[y % 5] = 0xf0, tinted.row(y)[y] = 200;
    const struct {
        const char* what;
        const PackedDib* dib;
        int form;
        uint8_t frame;
        int components, scans;
        const char* interlace;  // as ImageMagick's identify reports it
        const char* colourspace;
    } cases[] = {
        {"photo", &Photo(), 0, 0xc0, 3, 1, "None", "sRGB"},
        {"optimised", &Photo(), 1, 0xc0, 3, 1, "None", "sRGB"},
        {"progressive", &Photo(), 2, 0xc2, 3, 10, "JPEG", "sRGB"},
        {"grey", &GreyPhoto(), 0, 0xc0, 1, 1, "None", "Gray"},
        {"grey progressive", &GreyPhoto(), 2, 0xc2, 1, 6, "JPEG", "Gray"},
        {"two-level", &twoLevel, 0, 0xc0, 1, 1, "None", "Gray"},
        {"tinted palette", &tinted, 0, 0xc0, 3, 1, "None", "sRGB"},
    };
#ifndef _WIN32
    LX_REQUIRE_TOOLS("identify");
    lxtest::ScratchDir dir("jpeg-frames");
#endif
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const std::vector<uint8_t> jpeg = EncodeJpeg(*c.dib, Record(75, c.form));
        const auto segments = Segments(jpeg);
        ASSERT_GE(segments.size(), 3u);
        EXPECT_EQ(segments[0].marker, 0xe0);
        EXPECT_EQ(std::string(segments[0].payload.begin(), segments[0].payload.begin() + 5), std::string("JFIF\0", 5));
        EXPECT_EQ(segments.back().marker, 0xd9);
        EXPECT_EQ(CountMarker(segments, 0xdd), 0);
        EXPECT_EQ(CountMarker(segments, 0xc0) + CountMarker(segments, 0xc2), 1);
        EXPECT_EQ(CountMarker(segments, 0xda), c.scans);
        const Segment* frame = FindMarker(segments, c.frame);
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(frame->payload[5], c.components);
#ifndef _WIN32
        lxtest::WriteFile(dir / "a.jpg", jpeg);
        lxtest::Run("identify -format '%[interlace] %[colorspace]' '" + (dir / "a.jpg").string() + "' > '" +
                    (dir / "a.txt").string() + "'");
        const auto text = lxtest::ReadFile(dir / "a.txt");
        EXPECT_EQ(std::string(text.begin(), text.end()), std::string(c.interlace) + " " + c.colourspace);
#endif
    }
    // 8-bit, 272 x 320, Y 2x2 with table 0, Cb and Cr 1x1 with table 1.
    const std::vector<uint8_t> expected = {8, 1, 16, 1, 64, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
    EXPECT_EQ(FindMarker(Segments(EncodeJpeg(Photo(), Record(80))), 0xc0)->payload, expected);
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
        const bool grey = c.dib.bitCount() == 8;
        std::optional<PackedDib> first;
        for (int form = 0; form < 3; ++form) {
            SCOPED_TRACE(c.name + " quality " + std::to_string(c.quality) + " smoothing " + std::to_string(c.smoothing) +
                         " form " + std::to_string(form));
            const auto decoded = Djpeg(EncodeJpeg(c.dib, Record(c.quality, form, c.smoothing)), dir);
            ASSERT_TRUE(decoded);
            ASSERT_EQ(decoded->width(), c.dib.width());
            ASSERT_EQ(decoded->height(), c.dib.height());
            ASSERT_EQ(decoded->bitCount() == 8, grey);
            std::string options = QualityOption(c.quality) + kFormOptions[form];
            if (c.smoothing) options += " -smooth " + std::to_string(c.smoothing);
            if (grey) options += " -grayscale";
            const double ours = Psnr(c.dib, decoded);
            EXPECT_GT(ours, c.floor);
            EXPECT_GT(ours, Psnr(c.dib, Djpeg(Cjpeg(c.dib, options, dir), dir)) - c.slack);
            if (form == 0) first = decoded;
            else EXPECT_EQ(decoded->bytes(), first->bytes());
        }
    }
}


TEST(JpegWriter, SmoothingFollowsTheUsualFilter) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-smooth");
    size_t previous = EncodeJpeg(Photo(), Record(85)).size();
    for (int smoothing : {10, 50, 100}) {
        SCOPED_TRACE(smoothing);
        const auto ours = EncodeJpeg(Photo(), Record(85, 0, smoothing));
        const auto theirs = Cjpeg(Photo(), QualityOption(85) + "-dct float -smooth " + std::to_string(smoothing), dir);
        // Smoothing strips noise, so files shrink as it grows.
        EXPECT_LT(ours.size(), previous);
        previous = ours.size();
        EXPECT_NEAR(static_cast<double>(ours.size()) / theirs.size(), 1.0, 0.01);
        // Both decode to nearly the same picture.
        EXPECT_GT(Psnr(Djpeg(ours, dir).value_or(PackedDib()), Djpeg(theirs, dir)), 45.0);
    }
}

TEST(JpegWriter, SizeGrowsWithQualityAndTracksCjpeg) {
    LX_REQUIRE_TOOLS("djpeg cjpeg identify");
    lxtest::ScratchDir dir("jpeg-quality");
    size_t previous = 0;
    for (int quality : {1, 10, 30, 50, 75, 90, 100}) {
        for (int form = 0; form < 3; ++form) {
            SCOPED_TRACE(std::to_string(quality) + " form " + std::to_string(form));
            const size_t ours = EncodeJpeg(Photo(), Record(quality, form)).size();
            const size_t theirs = Cjpeg(Photo(), QualityOption(quality) + kFormOptions[form], dir).size();
            EXPECT_NEAR(static_cast<double>(ours) / theirs, 1.0, 0.03);
            if (form == 0) {
                EXPECT_GT(ours, previous);
                previous = ours;
            }
        }
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

TEST(JpegWriter, OutOfRangeSettingsAreClampedAndSizesBeyondJpegRefused) {
    EXPECT_TRUE(EncodeJpeg(PackedDib(), Record(75)).empty());
    EXPECT_TRUE(EncodeJpeg(PackedDib::Create(65536, 1, 8), Record(75)).empty());
    EXPECT_FALSE(EncodeJpeg(PackedDib::Create(65535, 1, 8), Record(75)).empty());
    const PackedDib dib = MakePhoto(48, 40);
    EXPECT_EQ(EncodeJpeg(dib, Record(0)), EncodeJpeg(dib, Record(1)));
    EXPECT_EQ(EncodeJpeg(dib, Record(250)), EncodeJpeg(dib, Record(100)));
    EXPECT_EQ(EncodeJpeg(dib, Record(60, 0, 500)), EncodeJpeg(dib, Record(60, 0, 100)));
    EXPECT_EQ(EncodeJpeg(dib, Record(60, 0, -3)), EncodeJpeg(dib, Record(60, 0, 0)));
}

using lx::BitStream;
using lx::HuffmanSpec;
using lx::SymbolCounts;

namespace {

std::vector<uint8_t> Stuffed(const BitStream& bits) {
    std::vector<uint8_t> out;
    bits.appendStuffed(out);
    return out;
}

// Sum over the code lengths of 2^-length, scaled by 2^16: a prefix code needs at most
// 65536; JPEG also keeps the all-ones code free, so strictly less.
uint32_t KraftSum(const HuffmanSpec& spec) {
    uint32_t sum = 0;
    for (int length = 1; length <= 16; ++length) sum += spec.counts[length - 1] << (16 - length);
    return sum;
}

uint64_t CodedBits(const HuffmanSpec& spec, const SymbolCounts& counts) {
    const lx::HuffmanCodes codes = lx::MakeCodes(spec);
    uint64_t bits = 0;
    for (int s = 0; s < 256; ++s) bits += static_cast<uint64_t>(counts[s]) * codes.length[s];
    return bits;
}

// Cost of a textbook Huffman code over the counts plus one reserved symbol of count 1,
// when no code gets longer than 16 bits.
uint64_t TextbookBits(const SymbolCounts& counts) {
    std::priority_queue<uint64_t, std::vector<uint64_t>, std::greater<>> queue;
    uint64_t reserved = 1, total = 0;
    queue.push(reserved);
    for (uint32_t c : counts)
        if (c) queue.push(c);
    while (queue.size() > 1) {
        const uint64_t a = queue.top();
        queue.pop();
        const uint64_t b = queue.top();
        queue.pop();
        total += a + b;  // every merge adds one bit to each symbol below it
        queue.push(a + b);
    }
    return total;
}

}  // namespace

// Optimised tables are counted while the image is transformed, in parts that each start
// without the DC values before them: they must still be the tables of the whole scan. Black
// above flat grey: every DC difference after the edge is zero, and only a part that counted
// its first one from zero would find a DC size of its own.
TEST(JpegWriter, OptimisedTablesAreThoseOfTheWholeScansSymbols) {
    PackedDib dib = PackedDib::Create(96, 400, 24);  // 25 MCU rows: several parts
    for (int y = 16; y < dib.height(); ++y) std::fill(dib.row(y), dib.row(y) + 3 * dib.width(), uint8_t{200});
    lx::JpegFrame frame = lx::PlanFrame(dib.width(), dib.height(), false, true);
    const lx::DctQuantizer quantizers[2] = {lx::MakeDctQuantizer(lx::ScaledQuantTable(0, 75)),
                                            lx::MakeDctQuantizer(lx::ScaledQuantTable(1, 75))};
    lx::CoefficientMaker maker(dib, frame, quantizers, 0);
    for (int row = 0; row < frame.mcusDown; ++row) maker.make(row);
    lx::ScanCounts counts;
    lx::DcPredictors predictors;
    lx::CountSequential(frame, 0, frame.mcusDown, predictors, counts);
    std::map<int, std::vector<uint8_t>> expected;
    for (int slot = 0; slot < 2; ++slot)
        for (int ac = 0; ac < 2; ++ac) {
            const HuffmanSpec table = lx::OptimalSpec(ac ? counts.ac[slot] : counts.dc[slot]);
            std::vector<uint8_t> payload{static_cast<uint8_t>(ac << 4 | slot)};
            payload.insert(payload.end(), table.counts.begin(), table.counts.end());
            payload.insert(payload.end(), table.symbols.begin(), table.symbols.begin() + table.symbolCount());
            expected[payload[0]] = payload;
        }
    EXPECT_EQ(PayloadsByFirstByte(Segments(EncodeJpeg(dib, Record(75, 1))), 0xc4), expected);
}

TEST(JpegHuffman, OptimalTablesCostNoMoreThanTextbookHuffman) {
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        SymbolCounts counts{};
        const int used = 1 + static_cast<int>(random() % 60);
        for (int i = 0; i < used; ++i) counts[random() % 256] += 1 + random() % 1000;
        const HuffmanSpec spec = lx::OptimalSpec(counts);
        EXPECT_LT(KraftSum(spec), 65536u);
        // Dropping the reserved symbol can only save bits.
        EXPECT_LE(CodedBits(spec, counts), TextbookBits(counts)) << round;
        const lx::HuffmanCodes codes = lx::MakeCodes(spec);
        for (int s = 0; s < 256; ++s) EXPECT_EQ(codes.length[s] != 0, counts[s] != 0) << s;
    }
}

TEST(JpegHuffman, LongCodesAreLimitedToSixteenBits) {
    // Fibonacci counts make the textbook tree as deep as there are symbols.
    SymbolCounts counts{};
    uint32_t a = 1, b = 1;
    for (int s = 0; s < 30; ++s) {
        counts[s] = a;
        const uint32_t next = a + b;
        a = b;
        b = next;
    }
    const HuffmanSpec spec = lx::OptimalSpec(counts);
    EXPECT_EQ(spec.symbolCount(), 30);
    EXPECT_LT(KraftSum(spec), 65536u);
    const lx::HuffmanCodes codes = lx::MakeCodes(spec);
    for (int s = 2; s < 30; ++s) EXPECT_LE(codes.length[s], codes.length[s - 1]) << s;  // commoner, shorter
}

TEST(JpegHuffman, DegenerateCountsStillGiveAUsableTable) {
    SymbolCounts none{};
    EXPECT_EQ(lx::OptimalSpec(none).symbolCount(), 1);
    SymbolCounts one{};
    one[0x37] = 99;
    const HuffmanSpec spec = lx::OptimalSpec(one);
    ASSERT_EQ(spec.symbolCount(), 1);
    EXPECT_EQ(spec.counts[0], 1);  // one bit, "0": the all-ones code stays unused
    EXPECT_EQ(spec.symbols[0], 0x37);
}

TEST(JpegHuffman, StuffingFollowsEveryFfAndPaddingIsOnes) {
    BitStream bits;
    bits.put(0xff, 8);
    bits.put(1, 1);
    EXPECT_EQ(Stuffed(bits), (std::vector<uint8_t>{0xff, 0x00, 0xff, 0x00}));
    BitStream zeros;
    zeros.put(0, 3);
    EXPECT_EQ(Stuffed(zeros), (std::vector<uint8_t>{0x1f}));
    BitStream words;
    for (int i = 0; i < 5; ++i) words.put(0xffffffffu, 32);
    words.put(0x12, 8);
    const auto out = Stuffed(words);
    ASSERT_EQ(out.size(), 41u);
    EXPECT_EQ(out[39], 0x00);
    EXPECT_EQ(out.back(), 0x12);
}

TEST(JpegHuffman, StreamsJoinAtAnyBitPosition) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        BitStream whole, first, second;
        const int n = static_cast<int>(random() % 300);
        const int split = n ? static_cast<int>(random() % n) : 0;
        for (int i = 0; i < n; ++i) {
            const int count = 1 + static_cast<int>(random() % 32);
            const uint32_t value = static_cast<uint32_t>(random()) & (count == 32 ? ~0u : (1u << count) - 1);
            whole.put(value, count);
            (i < split ? first : second).put(value, count);
        }
        // Whole words of the first part may already have gone out, stuffed.
        std::vector<uint8_t> joined;
        if (round % 2) first.drainStuffed(joined);
        first.append(second);
        EXPECT_EQ(first.bitCount(), whole.bitCount());
        first.appendStuffed(joined);
        EXPECT_EQ(joined, Stuffed(whole)) << round;
    }
}

namespace {

using Row = std::vector<uint8_t>;

struct Ycc {
    double y, cb, cr;
};

// The JFIF equations for one pixel stored blue, green, red.
Ycc Jfif(const uint8_t* p) {
    const double b = p[0], g = p[1], r = p[2];
    return {0.299 * r + 0.587 * g + 0.114 * b, 128 - 0.168736 * r - 0.331264 * g + 0.5 * b,
            128 + 0.5 * r - 0.418688 * g - 0.081312 * b};
}

// A row of random colours that starts with white and black (when it is that long).
Row RandomRow(int width, int pixelBytes, unsigned seed) {
    std::mt19937 random(seed);
    Row row(static_cast<size_t>(width) * pixelBytes);
    for (auto& b : row) b = static_cast<uint8_t>(random());
    for (int c = 0; c < 3 && width >= 2; ++c) row[c] = 255, row[pixelBytes + c] = 0;
    return row;
}

// Luma of the top and bottom rows, then the subsampled chroma (or, from Convert, the plain
// chroma in the last two).
struct Planes {
    Row yTop, yBottom, cb, cr;
};

// The plain path and each wider one the processor has.
std::vector<lx::JpegSimd> SimdLevels() {
    std::vector<lx::JpegSimd> levels;
    for (int l = 0; l <= static_cast<int>(lx::BestJpegSimd()); ++l) levels.push_back(static_cast<lx::JpegSimd>(l));
    return levels;
}

Planes Convert(const Row& pixels, int pixelBytes, int width, int paddedWidth,
               lx::JpegSimd simd = lx::JpegSimd::Baseline) {
    Planes out{Row(paddedWidth), {}, Row(paddedWidth), Row(paddedWidth)};
    lx::ConvertRowToYcc(pixels.data(), pixelBytes, width, paddedWidth, out.yTop.data(), out.cb.data(), out.cr.data(),
                        simd);
    return out;
}

Planes Convert420(const Row& top, const Row& bottom, int pixelBytes, int width, int paddedWidth,
                  lx::JpegSimd simd = lx::JpegSimd::Baseline) {
    Planes out{Row(paddedWidth), Row(paddedWidth), Row(paddedWidth / 2), Row(paddedWidth / 2)};
    lx::ConvertRowPairTo420(top.data(), bottom.data(), pixelBytes, width, paddedWidth, out.yTop.data(),
                            out.yBottom.data(), out.cb.data(), out.cr.data(), simd);
    return out;
}

TEST(JpegSampling, RowsConvertByTheJfifEquationsAndAsSinglePixelsDo) {
    for (lx::JpegSimd simd : SimdLevels())
    for (int pixelBytes : {3, 4})
        for (int width : {1, 9, 10, 17, 37, 64, 203}) {
            SCOPED_TRACE(std::to_string(pixelBytes) + " bytes, width " + std::to_string(width) + ", level " +
                         std::to_string(static_cast<int>(simd)));
            const Row row = RandomRow(width, pixelBytes, static_cast<unsigned>(width * pixelBytes));
            const Planes whole = Convert(row, pixelBytes, width, width + 5, simd);
            for (int x = 0; x < width; ++x) {
                const Row one(row.begin() + x * pixelBytes, row.begin() + (x + 1) * pixelBytes);
                const Planes single = Convert(one, pixelBytes, 1, 1);
                ASSERT_EQ(whole.yTop[x], single.yTop[0]) << x;
                ASSERT_EQ(whole.cb[x], single.cb[0]) << x;
                ASSERT_EQ(whole.cr[x], single.cr[0]) << x;
                const Ycc exact = Jfif(&row[x * pixelBytes]);
                EXPECT_NEAR(whole.yTop[x], exact.y, 0.51) << x;
                EXPECT_NEAR(whole.cb[x], exact.cb, 0.51) << x;
                EXPECT_NEAR(whole.cr[x], exact.cr, 0.51) << x;
            }
            // White stays 255 and grey, black 0, and the padding repeats the last sample.
            if (width >= 2) {
                EXPECT_EQ((Row{whole.yTop[0], whole.cb[0], whole.cr[0], whole.yTop[1]}), (Row{255, 128, 128, 0}));
            }
            for (int x = width; x < width + 5; ++x) {
                EXPECT_EQ(whole.yTop[x], whole.yTop[width - 1]);
                EXPECT_EQ(whole.cr[x], whole.cr[width - 1]);
            }
        }
}

TEST(JpegSampling, SubsampledChromaIsTheMeanOfItsSquareAsSquaresAloneGiveIt) {
    for (lx::JpegSimd simd : SimdLevels())
    for (int pixelBytes : {3, 4})
        for (int width : {2, 9, 10, 17, 37, 38, 203}) {  // odd: the last square is one column twice
            SCOPED_TRACE(std::to_string(pixelBytes) + " bytes, width " + std::to_string(width) + ", level " +
                         std::to_string(static_cast<int>(simd)));
            const Row top = RandomRow(width, pixelBytes, static_cast<unsigned>(width));
            const Row bottom = RandomRow(width, pixelBytes, static_cast<unsigned>(width + 1000));
            const int padded = (width + 15) / 16 * 16;
            const Planes whole = Convert420(top, bottom, pixelBytes, width, padded, simd);
            // Luma is the plain conversion of each row.
            EXPECT_EQ(whole.yTop, Convert(top, pixelBytes, width, padded).yTop);
            EXPECT_EQ(whole.yBottom, Convert(bottom, pixelBytes, width, padded).yTop);
            for (int i = 0; i < (width + 1) / 2; ++i) {
                const int x0 = 2 * i, x1 = std::min(2 * i + 1, width - 1);
                double cb = 0, cr = 0;
                for (int x : {x0, x1})
                    for (const Row* row : {&top, &bottom}) {
                        cb += Jfif(&(*row)[x * pixelBytes]).cb / 4;
                        cr += Jfif(&(*row)[x * pixelBytes]).cr / 4;
                    }
                EXPECT_NEAR(whole.cb[i], cb, 0.51) << i;
                EXPECT_NEAR(whole.cr[i], cr, 0.51) << i;
                if (x1 == x0) continue;
                const auto square = [&](const Row& row) { return Row(row.begin() + x0 * pixelBytes, row.begin() + (x1 + 1) * pixelBytes); };
                const Planes alone = Convert420(square(top), square(bottom), pixelBytes, 2, 2);
                ASSERT_EQ(whole.cb[i], alone.cb[0]) << "square " << i;
                ASSERT_EQ(whole.cr[i], alone.cr[0]) << "square " << i;
            }
            for (int i = (width + 1) / 2; i < padded / 2; ++i) {
                EXPECT_EQ(whole.cb[i], whole.cb[(width - 1) / 2]);
                EXPECT_EQ(whole.cr[i], whole.cr[(width - 1) / 2]);
            }
            EXPECT_EQ(whole.yTop[padded - 1], whole.yTop[width - 1]);
        }
}

}  // namespace
