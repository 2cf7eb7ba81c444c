// Our JPEG decoder against djpeg, sample by sample, at full size and at 1/2, 1/4 and 1/8, on
// files made here by cjpeg and ImageMagick from real photographs (scikit-image's sample
// pictures) and a few synthetic ones: every sampling, grey, progressive, restart intervals,
// optimised tables, odd sizes, CMYK and YCCK. Then damaged and hostile files, and the choice of
// reduced size.
#include "JpegReader.h"

#include "JpegDct.h"
#include "JpegIdct.h"
#include "JpegIdctSimd.h"
#include "JpegSimd.h"
#include "JpegTables.h"
#include "PnmReader.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

using lx::PackedDib;
using lx::ReadJpeg;

namespace {

#ifndef _WIN32
const std::filesystem::path kPhotos = "/usr/lib/python3/dist-packages/skimage/data";
// ImageMagick by its installed path: another `convert` may come first on the PATH.
const std::string kConvert = "/usr/bin/convert";

enum class Maker { Cjpeg, MagickYcck, MagickCmyk };

struct CorpusFile {
    const char* name;
    const char* source;   // ImageMagick input and options that make the PPM
    Maker maker;
    const char* options;  // for the encoder
};

std::string Photo(const char* stem) { return (kPhotos / stem).string(); }

const CorpusFile kCorpus[] = {
    {"astronaut-420", "astronaut.png", Maker::Cjpeg, "-quality 90"},
    {"chelsea-444", "chelsea.png", Maker::Cjpeg, "-sample 1x1"},
    {"coffee-422", "coffee.png", Maker::Cjpeg, "-sample 2x1 -quality 80"},
    {"motorcycle-440", "motorcycle_left.png", Maker::Cjpeg, "-sample 1x2"},
    {"rocket-411", "rocket.jpg", Maker::Cjpeg, "-sample 4x1"},
    {"rocket-42", "rocket.jpg", Maker::Cjpeg, "-sample 4x2 -quality 60"},
    {"camera-grey", "camera.png", Maker::Cjpeg, "-grayscale"},
    {"astronaut-progressive", "astronaut.png", Maker::Cjpeg, "-progressive"},
    {"coffee-progressive-444", "coffee.png", Maker::Cjpeg, "-progressive -sample 1x1"},
    {"camera-progressive-grey", "camera.png", Maker::Cjpeg, "-progressive -grayscale -restart 2B"},
    {"chelsea-restart-optimised", "chelsea.png", Maker::Cjpeg, "-restart 1 -optimize"},
    {"rocket-restart-progressive", "rocket.jpg", Maker::Cjpeg, "-restart 5B -progressive -sample 2x1"},
    {"retina-4001x3", "retina.jpg -resize 4001x3!", Maker::Cjpeg, "-sample 2x1"},
    {"motorcycle-17x9", "motorcycle_left.png -crop 17x9+100+100", Maker::Cjpeg, "-sample 2x2"},
    {"motorcycle-1x1", "motorcycle_left.png -crop 1x1+300+200", Maker::Cjpeg, ""},
    {"chelsea-3x37", "chelsea.png -crop 3x37+50+50", Maker::Cjpeg, "-progressive"},
    {"rocket-35x2", "rocket.jpg -crop 35x2+50+50", Maker::Cjpeg, "-sample 1x2"},
    {"plasma", "-size 61x47 -seed 3 plasma:", Maker::Cjpeg, "-quality 95"},
    {"checkerboard", "-size 40x24 pattern:checkerboard", Maker::Cjpeg, "-sample 2x1 -quality 100"},
    {"coffee-ycck", "coffee.png", Maker::MagickYcck, "-quality 85"},
    {"chelsea-ycck-progressive", "chelsea.png", Maker::MagickYcck, "-interlace JPEG"},
    {"astronaut-cmyk", "astronaut.png", Maker::MagickCmyk, "-quality 85"},
};

// The source picture as a PPM file; real photographs come from their package's folder.
std::filesystem::path MakePpm(const CorpusFile& file, const lxtest::ScratchDir& dir) {
    std::string source = file.source;
    if (source[0] != '-') source = Photo(file.source);
    const auto ppm = dir / (std::string(file.name) + ".ppm");
    lxtest::Run(kConvert + " " + source + " +repage -strip -type TrueColor 'ppm:" + ppm.string() + "'");
    return ppm;
}

std::vector<uint8_t> MakeJpeg(const CorpusFile& file, const lxtest::ScratchDir& dir) {
    const auto ppm = MakePpm(file, dir);
    const auto jpeg = dir / (std::string(file.name) + ".jpg");
    if (file.maker == Maker::Cjpeg) {
        lxtest::Run("cjpeg " + std::string(file.options) + " -outfile '" + jpeg.string() + "' '" + ppm.string() + "'");
        return lxtest::ReadFile(jpeg);
    }
    lxtest::Run(kConvert + " '" + ppm.string() + "' -colorspace CMYK " + file.options + " 'jpeg:" + jpeg.string() + "'");
    std::vector<uint8_t> bytes = lxtest::ReadFile(jpeg);
    if (file.maker == Maker::MagickCmyk) {
        // ImageMagick writes YCCK; transform 0 in the Adobe marker makes the same data plain CMYK.
        const std::string adobe = "Adobe";
        const auto at = std::search(bytes.begin(), bytes.end(), adobe.begin(), adobe.end());
        if (at != bytes.end() && bytes.end() - at > 11) at[11] = 0;
    }
    return bytes;
}

std::optional<PackedDib> Djpeg(const std::vector<uint8_t>& jpeg, int denom, const lxtest::ScratchDir& dir) {
    lxtest::WriteFile(dir / "in.jpg", jpeg);
    std::remove((dir / "out.pnm").string().c_str());
    lxtest::Run("djpeg -pnm -scale 1/" + std::to_string(denom) + " -outfile '" + (dir / "out.pnm").string() + "' '" +
                (dir / "in.jpg").string() + "' 2>/dev/null");
    return lx::ReadPnm(lxtest::ReadFile(dir / "out.pnm"));
}

struct Agreement {
    int maxDiff = 0;
    int64_t exact = 0, total = 0;
};

// Sample by sample over two pictures of the same size and depth.
Agreement Compare(const PackedDib& ours, const PackedDib& theirs) {
    Agreement a;
    const size_t rowBytes = static_cast<size_t>(ours.width()) * ours.bitCount() / 8;
    for (int y = 0; y < ours.height(); ++y)
        for (size_t i = 0; i < rowBytes; ++i) {
            const int d = std::abs(ours.row(y)[i] - theirs.row(y)[i]);
            a.maxDiff = std::max(a.maxDiff, d);
            a.exact += d == 0;
            ++a.total;
        }
    return a;
}

class JpegCorpus : public testing::TestWithParam<CorpusFile> {};

TEST_P(JpegCorpus, AgreesWithDjpegAtEveryScale) {
    LX_REQUIRE_TOOLS("cjpeg djpeg " + kConvert);
    ASSERT_TRUE(std::filesystem::exists(Photo("astronaut.png")))
        << "the photographs come with python3-skimage (scripts/setup.sh)";
    const CorpusFile& file = GetParam();
    lxtest::ScratchDir dir("jpegreader");
    const std::vector<uint8_t> jpeg = MakeJpeg(file, dir);
    ASSERT_GT(jpeg.size(), 100u);
    const auto info = lx::ReadJpegInfo(jpeg);
    ASSERT_TRUE(info && info->decodable);
    EXPECT_EQ(info->progressive, std::string(file.options).find("progressive") != std::string::npos ||
                                     std::string(file.options).find("interlace") != std::string::npos);
    for (const int denom : {1, 2, 4, 8}) {
        SCOPED_TRACE("1/" + std::to_string(denom));
        const auto theirs = Djpeg(jpeg, denom, dir);
        ASSERT_TRUE(theirs);
        if (denom == 1) {
            EXPECT_TRUE(info->width == theirs->width() && info->height == theirs->height());
        }
        const auto ours = ReadJpeg(jpeg, denom);
        ASSERT_TRUE(ours);
        ASSERT_EQ(ours->width(), theirs->width());
        ASSERT_EQ(ours->height(), theirs->height());
        ASSERT_EQ(ours->bitCount(), theirs->bitCount());
        const Agreement a = Compare(*ours, *theirs);
        std::printf("%-28s 1/%d  %6.2f%% of %lld samples exact, max difference %d\n", file.name, denom,
                    100.0 * a.exact / a.total, static_cast<long long>(a.total), a.maxDiff);
        EXPECT_LE(a.maxDiff, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, JpegCorpus, testing::ValuesIn(kCorpus),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// A file cut short decodes to its full size; a baseline one exactly as djpeg shows it (the
// rows it has, then mid grey), a progressive one with what its first scans carried.
TEST(JpegReader, TruncatedFilesDecodeWhatTheyHave) {
    LX_REQUIRE_TOOLS("cjpeg djpeg " + kConvert);
    lxtest::ScratchDir dir("jpegtrunc");
    const struct {
        CorpusFile file;
        int percent;
        bool exact;
    } cases[] = {
        {{"astronaut", "astronaut.png", Maker::Cjpeg, "-quality 90"}, 40, true},
        {{"chelsea", "chelsea.png", Maker::Cjpeg, "-restart 2 -sample 1x1"}, 55, true},
        {{"coffee", "coffee.png", Maker::Cjpeg, "-progressive"}, 50, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file.name);
        std::vector<uint8_t> jpeg = MakeJpeg(c.file, dir);
        jpeg.resize(jpeg.size() * c.percent / 100);
        const auto theirs = Djpeg(jpeg, 1, dir);
        const auto ours = ReadJpeg(jpeg);
        ASSERT_TRUE(ours && theirs);
        ASSERT_EQ(ours->width(), theirs->width());
        ASSERT_EQ(ours->height(), theirs->height());
        const Agreement a = Compare(*ours, *theirs);
        if (c.exact) {
            EXPECT_EQ(a.maxDiff, 0);
            // Mid grey past the cut is what a truncated baseline file shows.
            EXPECT_EQ(ours->pixel(ours->width() / 2, ours->height() - 1) & 0xFFFFFF, 0x808080u);
        }
    }
}

#endif

// Hand-made files, one field a line. A grey 8 x 8 frame coded with the example Huffman
// tables (which the decoder supplies when a file has none): one block, DC 0, end of block.
std::vector<uint8_t> TinyJpeg(uint8_t sof, uint8_t precision, uint16_t width, uint16_t height,
                              std::vector<uint8_t> scanData = {0x2B}, uint8_t lastCoefficient = 63) {
    std::vector<uint8_t> f = {
        0xFF, 0xD8,                            // start of image
        0xFF, 0xDB, 0x00, 0x43, 0x00,          // quantisation table 0, 8-bit
    };
    f.insert(f.end(), 64, 1);                  //   all steps 1
    const uint8_t frame[] = {
        0xFF, sof, 0x00, 0x0B, precision,      // frame header
        uint8_t(height >> 8), uint8_t(height), uint8_t(width >> 8), uint8_t(width),
        0x01, 0x01, 0x11, 0x00,                // one component: id 1, 1x1, table 0
        0xFF, 0xDA, 0x00, 0x08, 0x01,          // scan of one component
        0x01, 0x00,                            //   id 1, Huffman tables 0 / 0
        0x00, lastCoefficient, 0x00,           //   coefficients 0..63, no approximation
    };
    f.insert(f.end(), std::begin(frame), std::end(frame));
    f.insert(f.end(), scanData.begin(), scanData.end());  // 00 1010 11: DC 0, end of block
    f.insert(f.end(), {0xFF, 0xD9});
    return f;
}

bool AllGrey128(const PackedDib& dib) {
    for (int y = 0; y < dib.height(); ++y)
        for (int x = 0; x < dib.width(); ++x)
            if (dib.row(y)[x] != 128) return false;
    return true;
}

TEST(JpegReader, HeadersDecideWhatIsDecodedAndWhatIsRefused) {
    std::vector<uint8_t> lengthPastEnd = TinyJpeg(0xC0, 8, 8, 8);
    lengthPastEnd[5] = 0xF0;  // the quantisation segment claims 0xF0 bytes
    const std::vector<uint8_t> huge = TinyJpeg(0xC0, 8, 60000, 60000);
    const struct {
        const char* what;
        std::vector<uint8_t> file;
        bool info, decodable, decoded;
    } cases[] = {
        {"baseline", TinyJpeg(0xC0, 8, 8, 8), true, true, true},
        {"extended", TinyJpeg(0xC1, 8, 8, 8), true, true, true},
        {"arithmetic", TinyJpeg(0xC9, 8, 8, 8), true, false, false},
        {"lossless", TinyJpeg(0xC3, 8, 8, 8), true, false, false},
        {"12-bit", TinyJpeg(0xC1, 12, 8, 8), true, false, false},
        {"no height (DNL)", TinyJpeg(0xC0, 8, 8, 0), true, false, false},
        {"3.6 gigapixels in 100 bytes", huge, true, true, false},
        {"segment past the end", lengthPastEnd, false, false, false},
        {"not a JPEG", {'B', 'M', 0, 0, 0, 0}, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto info = lx::ReadJpegInfo(c.file);
        EXPECT_EQ(info.has_value(), c.info);
        if (info) {
            EXPECT_EQ(info->decodable, c.decodable);
        }
        const auto dib = ReadJpeg(c.file);
        ASSERT_EQ(dib.has_value(), c.decoded);
        if (dib) {
            EXPECT_TRUE(dib->width() == 8 && dib->height() == 8 && dib->bitCount() == 8 && AllGrey128(*dib));
        }
    }
    EXPECT_FALSE(ReadJpeg(TinyJpeg(0xC0, 8, 8, 8), 3));
}

// Scan data that never ends or never stops starting over must still finish: endless fill
// bytes, restart markers out of order (both as djpeg shows them: the block where the data
// broke off decodes from zero bits, the rest of its interval stays mid grey), and a
// progressive file of thousands of scans, each with nothing but DC 0.
TEST(JpegReader, HostileScanDataFinishesAsDjpegShowsIt) {
    std::vector<uint8_t> fill(200000, 0xFF);
    std::vector<uint8_t> restarts;
    for (int i = 0; i < 5000; ++i) restarts.insert(restarts.end(), {0x2B, 0xFF, uint8_t(0xD0 + (i * 5) % 8)});
    std::vector<uint8_t> manyScans = TinyJpeg(0xC2, 8, 2048, 2048, {0x00}, 0);
    manyScans.resize(manyScans.size() - 2);
    for (int i = 0; i < 20000; ++i)  // DC first scans, Ss = Se = 0, each with one byte of data
        manyScans.insert(manyScans.end(), {0xFF, 0xDA, 0x00, 0x08, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00});
    const struct {
        const char* what;
        std::vector<uint8_t> file;
        bool djpegAgrees;  // else: all mid grey
    } cases[] = {
        {"fill bytes", TinyJpeg(0xC0, 8, 2048, 2048, fill), true},
        {"restart markers out of order", [&] {
             auto f = TinyJpeg(0xC0, 8, 1024, 1024, restarts);
             const uint8_t dri[] = {0xFF, 0xDD, 0x00, 0x04, 0x00, 0x01};  // restart every MCU
             f.insert(f.begin() + 2, std::begin(dri), std::end(dri));
             return f;
         }(), true},
        {"many scans", manyScans, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto dib = ReadJpeg(c.file, 1);
        ASSERT_TRUE(dib);
        if (!c.djpegAgrees) {
            EXPECT_TRUE(AllGrey128(*dib));
            continue;
        }
#ifndef _WIN32
        LX_REQUIRE_TOOLS("djpeg");
        lxtest::ScratchDir dir("jpeghostile");
        const auto theirs = Djpeg(c.file, 1, dir);
        ASSERT_TRUE(theirs);
        EXPECT_EQ(Compare(*dib, *theirs).maxDiff, 0);
#endif
    }
}

TEST(JpegReader, ScaleToCoverPicksTheSmallestSufficientDecode) {
    const struct {
        int width, height, wantWidth, wantHeight, denom;
    } cases[] = {
        {6000, 4000, 160, 160, 8},    // thumbnails: 750 x 500 is plenty
        {6000, 4000, 1920, 1080, 2},  // a screen: 1500 x 1000 would be too small
        {12000, 2000, 1920, 1080, 4}, // a panorama fits by its width alone
        {4001, 3, 501, 1, 8},         // rounded up: 501 columns at 1/8
        {4000, 3000, 501, 376, 4},    // 500 x 375 misses on both sides
        {100, 100, 200, 200, 1},      // smaller than wanted: full size
    };
    for (const auto& c : cases)
        EXPECT_EQ(lx::JpegScaleToCover(c.width, c.height, c.wantWidth, c.wantHeight), c.denom)
            << c.width << "x" << c.height << " for " << c.wantWidth << "x" << c.wantHeight;
}

// The vector transforms against the scalar one on blocks as real files hold them: noise,
// hard edges and smooth shading, coded by our encoder's forward DCT at qualities from 1
// (where ringing drives samples past 0 and 255) to 100.
TEST(JpegIdct, VectorTransformsMatchTheScalarOne) {
    struct Variant {
        const char* name;
        lx::IdctFunction idct;
    };
    std::vector<Variant> variants = {{"best", lx::BestIdctIslow8()}};
#ifdef LX_JPEG_X86_SIMD
    variants.push_back({"sse2", lx::IdctIslow8Sse2});
    if (lx::BestJpegSimd() != lx::JpegSimd::Baseline) variants.push_back({"avx2", lx::IdctIslow8Avx2});
    else std::printf("this processor has no AVX2: only the SSE2 transform is compared\n");
#endif
    std::mt19937 rng(5);
    for (const int quality : {1, 10, 50, 75, 90, 100}) {
        const lx::QuantTable quant = lx::ScaledQuantTable(quality & 1, quality);
        const lx::DctQuantizer quantizer = lx::MakeDctQuantizer(quant);
        int mismatches = 0;
        for (int n = 0; n < 3000; ++n) {
            uint8_t samples[64];
            const int kind = n % 3, a = rng() % 256, b = rng() % 256;
            for (int i = 0; i < 64; ++i) {
                const int x = i % 8, y = i / 8;
                samples[i] = static_cast<uint8_t>(kind == 0   ? rng() % 256
                                                  : kind == 1 ? ((x + y) % 2 ? a : b)
                                                              : std::clamp(a + (b - 128) * (x + y) / 14 + int(rng() % 9) - 4, 0, 255));
            }
            int16_t zigzag[64], natural[64];
            lx::ForwardDctQuantize(samples, 8, quantizer, zigzag);
            for (int k = 0; k < 64; ++k) natural[lx::kZigzagToNatural[k]] = zigzag[k];
            uint8_t expected[64], got[64];
            lx::IdctIslow8(natural, quant.data(), expected, 8);
            for (const Variant& v : variants) {
                v.idct(natural, quant.data(), got, 8);
                mismatches += !std::equal(got, got + 64, expected);
            }
        }
        EXPECT_EQ(mismatches, 0) << "quality " << quality;
    }
}

}  // namespace
