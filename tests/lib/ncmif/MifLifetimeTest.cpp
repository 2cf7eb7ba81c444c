#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "MifTestImages.h"
#include "mif.h"

using lx::mif;
using lx::MifRect;
using lx::PackedDib;
using namespace miftest;

TEST(MifLifetime, ConstructAttachCopyDestroy) {
    const PackedDib original = Pattern(5, 3, {24, false});
    mif copy(original);
    EXPECT_EQ(copy.createdib().bytes(), original.bytes());

    mif taken;
    EXPECT_TRUE(taken.empty());
    EXPECT_EQ(taken.width(), 0);
    EXPECT_TRUE(taken.createdib().empty());
    PackedDib moved = original;
    ASSERT_TRUE(taken.attachdib(std::move(moved)));
    EXPECT_EQ(taken.width(), 5);
    EXPECT_EQ(taken.height(), 3);
    EXPECT_FALSE(taken.attachdib(PackedDib{}));
    EXPECT_EQ(taken.width(), 5);  // a refused attach keeps the image
    taken.destroy();
    EXPECT_TRUE(taken.empty());

    const mif made(4, 2, 8);
    EXPECT_EQ(made.depth(), 8);
    EXPECT_EQ(made.palette().size(), 256u);
    EXPECT_TRUE(mif(0, 2, 24).empty());
    EXPECT_TRUE(mif(2, 2, 12).empty());
}

TEST(MifLifetime, ValidateRectClipsToTheImage) {
    const mif image(10, 6, 24);
    MifRect out;
    ASSERT_TRUE(image.validaterect(nullptr, &out));
    EXPECT_EQ(out.right, 10);
    EXPECT_EQ(out.bottom, 6);
    const MifRect over{-5, 2, 50, 4};
    ASSERT_TRUE(image.validaterect(&over, &out));
    EXPECT_EQ(out.left, 0);
    EXPECT_EQ(out.top, 2);
    EXPECT_EQ(out.right, 10);
    EXPECT_EQ(out.bottom, 4);
    const MifRect empty{3, 3, 3, 5}, beyond{10, 0, 12, 6}, extreme{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    EXPECT_FALSE(image.validaterect(&empty, &out));
    EXPECT_EQ(out.right, 0);
    EXPECT_FALSE(image.validaterect(&beyond, &out));
    EXPECT_TRUE(image.validaterect(&extreme, &out));
}

TEST(MifLifetime, PaletteAllocationAndReplacement) {
    mif image(Pattern(6, 2, {4, false}));
    const std::vector<lx::Rgbq> before(image.palette().begin(), image.palette().end());
    ASSERT_TRUE(image.alloccmap(4));
    ASSERT_EQ(image.palette().size(), 4u);
    EXPECT_EQ(image.palette()[3], before[3]);
    EXPECT_TRUE(WellFormed(image.dib()));
    ASSERT_TRUE(image.alloccmap(16));
    EXPECT_EQ(image.palette()[10], lx::Rgbq{});  // new entries are black
    EXPECT_FALSE(image.alloccmap(17));
    EXPECT_FALSE(image.alloccmap(0));

    const std::vector<lx::Rgbq> red(2, lx::Rgbq{0, 0, 255, 0});
    ASSERT_TRUE(image.replace_palette(red));
    EXPECT_EQ(image.palette().size(), 2u);
    EXPECT_EQ(image.dib().pixel(0, 0) & 0xffffff, image.dib().bitCount() == 4 && (image.dib().row(0)[0] >> 4) < 2 ? 0xff0000u : 0u);
    EXPECT_FALSE(image.replace_palette(std::vector<lx::Rgbq>(17)));
    mif deep(2, 2, 24);
    EXPECT_FALSE(deep.alloccmap(2));
    EXPECT_FALSE(deep.replace_palette(red));
}

class MifDepth : public ::testing::TestWithParam<Format> {};

TEST_P(MifDepth, SetDepthKeepsThePictureWhereTheTargetCanHoldIt) {
    const PackedDib original = Pattern(9, 4, GetParam());
    for (int target : {24, 32}) {
        mif image(original);
        ASSERT_TRUE(image.setdepth(target));
        EXPECT_EQ(image.depth(), target);
        EXPECT_EQ(image.dib().compression(), lx::kBiRgb);
        EXPECT_TRUE(SameColours(image.dib(), original)) << target;
    }
    mif small(original);
    ASSERT_TRUE(small.setdepth(16));
    EXPECT_EQ(small.depth(), 16);
    for (int x = 0; x < 9; ++x) {
        const uint32_t a = original.pixel(x, 2), b = small.dib().pixel(x, 2);
        for (int s = 0; s < 24; s += 8) EXPECT_LE(std::abs(int((a >> s) & 0xff) - int((b >> s) & 0xff)), 5);
    }
    for (int target : {1, 4, 8}) {
        mif image(original);
        ASSERT_TRUE(image.setdepth(target));
        EXPECT_EQ(image.depth(), target);
        EXPECT_LE(image.countcolors(), 1 << target);
        EXPECT_TRUE(WellFormed(image.dib()));
    }
    mif image(original);
    EXPECT_FALSE(image.setdepth(12));
}

TEST_P(MifDepth, CountColorsAgreesWithAPlainCount) {
    for (auto [w, h] : {std::pair{1, 1}, {7, 3}, {40, 30}}) {
        const PackedDib dib = Pattern(w, h, GetParam());
        std::set<uint32_t> colours;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) colours.insert(dib.pixel(x, y) & 0xffffff);
        EXPECT_EQ(mif(dib).countcolors(), static_cast<int>(colours.size())) << w << "x" << h;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, MifDepth, ::testing::ValuesIn(AllFormats()),
                         [](const auto& info) { return "bits" + info.param.name(); });

TEST(MifDepthGrey, GreyImagesStayGreyAtPaletteDepths) {
    mif image(Pattern(16, 2, {24, false}));
    ASSERT_TRUE(image.grayscale());
    ASSERT_TRUE(image.setdepth(4));
    EXPECT_EQ(image.depth(), 4);
    EXPECT_TRUE(image.dib().hasGreyPalette());
    ASSERT_TRUE(image.setdepth(1));
    EXPECT_TRUE(image.dib().hasGreyPalette());
    EXPECT_EQ(image.palette()[1], (lx::Rgbq{255, 255, 255, 0}));
}

// Each member once on each format and on the smallest and oddest shapes, checking what it
// promises of its result: under the address sanitizer this is where a row or palette read
// past its end would show. On an empty image every member fails.
TEST(MifEveryMember, TinyAndOddImagesOfEveryFormatComeOutWellFormed) {
    const MifRect inner{0, 0, 2, 2};
    const auto resampled = [](const Format& f) { return f.bits == 32 ? 32 : 24; };
    const auto members = std::vector<std::pair<const char*, std::function<bool(mif&, const Format&)>>>{
        {"crop", [&](mif& m, const Format&) { return m.crop(&inner); }},
        {"zoom", [&](mif& m, const Format& f) { return m.zoom(3, 2, 10, 0) && m.depth() == resampled(f) && m.zoom(1, 1, 4, 0); }},
        {"zoom_linear", [&](mif& m, const Format& f) { return m.zoom_linear(2, 5) && m.depth() == resampled(f); }},
        {"zoom_near", [](mif& m, const Format&) { return m.zoom_near(5, 1); }},
        {"rotate", [](mif& m, const Format&) { return m.rotate(0) && m.rotate(1) && m.rotate(2); }},
        {"flip", [](mif& m, const Format&) { return m.flip(0, 0, 0, 0) && m.flip(0, 0, 1, 1); }},
        {"mirror", [](mif& m, const Format&) { return m.mirror(0, 0, 0, 0) && m.mirror(0, 0, 1, 1); }},
        {"grayscale", [](mif& m, const Format&) {
             const uint32_t c = m.dib().pixel(0, 0);
             const double grey = 0.299 * ((c >> 16) & 0xff) + 0.587 * ((c >> 8) & 0xff) + 0.114 * (c & 0xff);
             return m.grayscale() && m.depth() == 8 && std::abs((m.dib().pixel(0, 0) & 0xff) - grey) <= 0.51;
         }},
        {"normalize", [&](mif& m, const Format&) { return m.normalize(&inner); }},
        {"quantize", [](mif& m, const Format&) {
             for (int method = 0; method <= 3; ++method) {
                 mif copy(m.dib());
                 if (!copy.quantize(4, method, nullptr) || copy.countcolors() > 4 || copy.palette().size() > 4 ||
                     !WellFormed(copy.dib()))
                     return false;
             }
             return m.quantize(2, 1, nullptr);
         }},
        {"blur", [&](mif& m, const Format&) { return m.blur_gauss_rle(&inner, 1.5); }},
        // Filled whole, every format takes the nearest colour it can hold: black.
        {"solidfill", [](mif& m, const Format& f) {
             return m.solidfill(0, 0, 1, 1, 0x808080, 128, 1) && m.solidfill(nullptr, 0, 255, 0) && m.depth() == f.bits &&
                    m.countcolors() == 1 && (f.bits <= 8 || (m.dib().pixel(0, 0) & 0xffffff) == 0);
         }},
        {"blt", [](mif& m, const Format&) { return m.blt(0, 0, 1, 1, &m, m.width() - 1, m.height() - 1); }},
        {"addlayer", [](mif& m, const Format&) { const mif top(m.dib()); return m.addlayer(&top, 0, 0, 12, 100); }},
        {"settoalpha", [](mif& m, const Format&) { return m.settoalpha(); }},
        {"setdepth", [](mif& m, const Format&) { return m.setdepth(4) && m.setdepth(16); }},
    };
    mif none;
    EXPECT_EQ((std::vector<bool>{none.crop(&inner), none.zoom(2, 2, 10, 0), none.rotate(0), none.flip(0, 0, 0, 0),
                                 none.grayscale(), none.normalize(nullptr), none.quantize(16, 0, nullptr),
                                 none.blur_gauss_rle(nullptr, 2), none.solidfill(nullptr, 0, 255, 0), none.settoalpha(),
                                 none.setdepth(24), none.validaterect(nullptr, nullptr), none.countcolors() != 0}),
              std::vector<bool>(13, false));
    for (const auto& [name, run] : members) {
        EXPECT_FALSE(run(none, {24, false})) << name << " on an empty image";
        for (const Format& f : AllFormats())
            for (auto [w, h] : {std::pair{1, 1}, {3, 1}, {1, 3}, {17, 5}}) {
                mif image(Pattern(w, h, f));
                EXPECT_TRUE(run(image, f)) << name << " " << f.name() << " " << w << "x" << h;
                EXPECT_TRUE(WellFormed(image.dib())) << name << " " << f.name() << " " << w << "x" << h;
                EXPECT_GE(image.countcolors(), 1);
            }
    }
}
