// The contrast-resize size rule, and the run over real bitmap files with a recycle bin that
// moves sources into a folder of its own: the source is never lost. (Sizes, grey form and
// names of the results are checked through the export under Wine.)
#include <gtest/gtest.h>

#include <filesystem>

#include "../SplitContrastSupport.h"
#include "ContrastRun.h"
#include "ImageLoad.h"
#include "JpegWriter.h"

namespace lx {
namespace {

namespace fs = std::filesystem;
using lxtest::ScratchDir;

// Moves sources into `folder` and puts a folder where the result should go, so that its
// write fails.
class FolderBin : public SourceBin {
public:
    explicit FolderBin(fs::path folder) : folder_(std::move(folder)) { fs::create_directories(folder_); }
    bool Recycle(const std::wstring& path) override {
        ++recycles;
        fs::rename(path, folder_ / fs::path(path).filename());
        fs::create_directory(path);
        return true;
    }
    void PutBack(const std::wstring& path) override {
        fs::remove(path);
        fs::rename(folder_ / fs::path(path).filename(), path);
    }
    void Keep(const std::wstring&) override {}

    int recycles = 0;

private:
    fs::path folder_;
};

TEST(ContrastSize, OnlyTallImagesAreReducedToSixteenHundred) {
    const struct {
        int width, height, expectWidth, expectHeight;
    } cases[] = {{2480, 3508, 1131, 1600}, {1200, 1600, 1200, 1600}, {3000, 1601, 2998, 1600},
                 {5, 40000, 1, 1600}, {300, 200, 300, 200}};
    for (const auto& c : cases) {
        const PixelSize size = ContrastSize(c.width, c.height);
        EXPECT_EQ(std::pair(size.width, size.height), std::pair(c.expectWidth, c.expectHeight)) << c.width;
    }
}

// The image is made before the source is touched, and a write that fails puts the source back.
TEST(ContrastRun, NothingIsLostWhenLoadingOrWritingFails) {
    ScratchDir dir("contrast-safe");
    lxtest::WriteBitmapFile(dir / "page.bmp", 200, 300);
    lxtest::WriteFile(dir / "broken.bmp", std::string("BM no pixels"));
    const auto before = lxtest::ReadFile(dir / "page.bmp");
    FolderBin bin(dir / "bin");
    lxtest::QuietSink sink;
    const ContrastRunResult result =
        RunContrastResize({(dir / "broken.bmp").wstring(), (dir / "page.bmp").wstring()}, {L"loading", L"saving"}, sink, bin);
    EXPECT_EQ(result.skipped, 2);
    EXPECT_EQ(bin.recycles, 1) << "an unreadable file is never given up";
    EXPECT_EQ(lxtest::ReadFile(dir / "page.bmp"), before);
    EXPECT_TRUE(fs::exists(dir / "broken.bmp"));
}

// A large JPEG is decoded at half size (1201 x 1601), yet the page comes out as the whole
// picture gives it: 2401 x 3202 makes 1199 x 1600, where the half-size picture would make 1200.
TEST(ContrastRun, AReducedDecodeKeepsTheFullSizeRule) {
    struct KeepingBin : SourceBin {
        bool Recycle(const std::wstring&) override { return false; }
        void PutBack(const std::wstring&) override {}
        void Keep(const std::wstring&) override {}
    } bin;
    ScratchDir dir("contrast-jpeg");
    lxtest::WriteFile(dir / "page.jpg", EncodeJpeg(PackedDib::Create(2401, 3202, 24), JpegSaveRecord{}));
    lxtest::QuietSink sink;
    const ContrastRunResult result = RunContrastResize({(dir / "page.jpg").wstring()}, {L"loading", L"saving"}, sink, bin);
    ASSERT_EQ(result.besides, 1);
    const auto page = LoadImageFile(dir / "page.jpg.cr.jpg");
    ASSERT_TRUE(page);
    EXPECT_EQ(std::pair(page->width(), page->height()), std::pair(1199, 1600));
}

}  // namespace
}  // namespace lx
