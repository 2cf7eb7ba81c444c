// Camera raw files fall back to their largest embedded image. Natively only the bitmap
// thumbnail decodes (JPEG needs the system's decoder, checked under Wine), but which image
// is chosen, its bytes and the orientation to apply are the same everywhere.
#include "ImageLoad.h"
#include "ImageLoadOrientation.h"
#include "ImageLoadTestSupport.h"
#include "JpegWriter.h"
#include "RawPreview.h"
#include "RawTestFiles.h"

#include <gtest/gtest.h>

using lx::PackedDib;

namespace {

std::vector<uint8_t> PreviewJpeg() { return lx::EncodeJpeg(lxtest::SyntheticRgb(40, 24), lx::JpegSaveRecord{}); }

std::optional<lx::RawPreview> Find(const std::vector<uint8_t>& file) {
    lx::MemorySource source(file);
    return lx::FindRawPreview(source);
}

TEST(RawPreview, TheLargestImageIsChosenAsStoredWithTheRawOrientation) {
    const std::vector<uint8_t> jpeg = PreviewJpeg();
    ASSERT_FALSE(jpeg.empty());
    const auto preview = Find(lxtest::MakeRawLikeFile({jpeg, lxtest::SyntheticRgb(16, 12), 6}));
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->format, lx::EmbeddedFormat::Jpeg);
    EXPECT_EQ(preview->bytes, jpeg);
    EXPECT_EQ(preview->orientation, 6);

    // A thumbnail larger than the JPEG wins over it.
    const auto bigThumb = Find(lxtest::MakeRawLikeFile({jpeg, lxtest::SyntheticRgb(48, 30), 0}));
    ASSERT_TRUE(bigThumb);
    EXPECT_EQ(bigThumb->format, lx::EmbeddedFormat::Bmp);
    EXPECT_EQ(bigThumb->orientation, 0);
}

TEST(RawPreview, ThumbnailLoadsUprightFromFileAndMemory) {
    const PackedDib thumb = lxtest::SyntheticRgb(16, 12);
    lxtest::ScratchDir dir("raw-preview");
    for (int orientation : {0, 1, 3, 6, 8}) {
        PackedDib upright = thumb;
        ASSERT_TRUE(lx::OrientUpright(upright, orientation));
        const std::vector<uint8_t> file = lxtest::MakeRawLikeFile({{}, thumb, orientation});
        for (const char* leaf : {"a.nef", "b.dng", "c.cr2"}) {
            lxtest::WriteFile(dir / leaf, file);
            const auto dib = lx::LoadImageFile(dir / leaf);
            ASSERT_TRUE(dib) << leaf << " orientation " << orientation;
            EXPECT_EQ(dib->bitCount(), 24);
            EXPECT_TRUE(lxtest::SamePixels(*dib, lxtest::PixelsOf(upright))) << leaf << " orientation " << orientation;
        }
        const auto fromMemory = lx::LoadImageBytes(file, "d.arw");
        ASSERT_TRUE(fromMemory);
        EXPECT_TRUE(lxtest::SamePixels(*fromMemory, lxtest::PixelsOf(upright))) << "memory, orientation " << orientation;
    }
    // The turn is the one the orientation names: 6 puts the top-left corner at the top right.
    const auto turned = lx::LoadImageBytes(lxtest::MakeRawLikeFile({{}, thumb, 6}), "e.nef");
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->width(), 12);
    EXPECT_EQ(turned->height(), 16);
    EXPECT_EQ(turned->pixel(11, 0), thumb.pixel(0, 0));
}

TEST(RawPreview, OnlyRawKindsFallBackAndDamagedFilesFail) {
    const std::vector<uint8_t> file = lxtest::MakeRawLikeFile({{}, lxtest::SyntheticRgb(16, 12), 0});
    // The same structure as a TIFF is the TIFF codec's business, not a preview.
    EXPECT_FALSE(lx::LoadImageBytes(file, "a.tif"));
    EXPECT_FALSE(Find(lxtest::MakeRawLikeFile({{}, {}, 6})));
    EXPECT_FALSE(lx::LoadImageBytes(lxtest::MakeRawLikeFile({{}, {}, 6}), "a.nef"));
    for (size_t cut : {size_t{0}, size_t{8}, file.size() / 3, file.size() - 40}) {
        const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_FALSE(lx::LoadImageBytes(part, "a.nef")) << cut;
    }
    lxtest::ScratchDir dir("raw-missing");
    EXPECT_FALSE(lx::LoadRawPreview(dir / "missing.nef"));
}

}  // namespace
