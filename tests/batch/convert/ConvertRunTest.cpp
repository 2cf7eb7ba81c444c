// The run over real files: sizes and formats of the results are read back by ImageMagick's
// identify; the set-aside protocol is checked by what is left in the folders.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "ConvertNaming.h"
#include "ConvertRun.h"
#include "ImageTypes.h"
#include "ConvertTestSupport.h"

#ifndef _WIN32
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace lx {
namespace {

namespace fs = std::filesystem;
using lxtest::Identify;
using lxtest::Listing;
using lxtest::RecordingSink;
using lxtest::ScratchDir;
using lxtest::WriteBitmapFile;
using testing::ElementsAre;

const ConvertTexts kTexts{L"title", L"loading", L"converting", L"saving"};

ConvertOptions Options(int saveType, const fs::path& folder) {
    ConvertOptions options = DefaultConvertOptions();
    options.saveType = saveType;
    SetOutputFolder(options, folder.wstring());
    return options;
}

ConvertRunResult RunOn(const ConvertOptions& options, const std::vector<fs::path>& files, RecordingSink& sink) {
    std::vector<std::wstring> names;
    for (const auto& f : files) names.push_back(f.wstring());
    return RunConversion(options, names, kTexts, sink);
}

ConvertRunResult RunOn(const ConvertOptions& options, const std::vector<fs::path>& files) {
    RecordingSink sink;
    return RunOn(options, files, sink);
}

ConvertOptions Scaling(ConvertOptions options, int mode, int size, bool noEnlarge = false) {
    options.resize = 1;
    options.resizeMode = mode;
    options.size = size;
    options.noEnlarge = noEnlarge ? 1 : 0;
    return options;
}

TEST(ConvertRunTest, ScalesByLongSideShortSideAndPercent) {
    ScratchDir dir("convert-scale");
    WriteBitmapFile(dir / "big.bmp", 3000, 2000);
    fs::create_directories(dir / "long");
    fs::create_directories(dir / "short");
    fs::create_directories(dir / "half");

    EXPECT_EQ(RunOn(Scaling(Options(kImageJpeg, dir / "long"), kResizeLongSide, 1000), {dir / "big.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "long" / "big.jpg"), "JPEG 1000 667");
    EXPECT_EQ(RunOn(Scaling(Options(kImagePng, dir / "short"), kResizeShortSide, 1000), {dir / "big.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "short" / "big.png"), "PNG 1500 1000");
    EXPECT_EQ(RunOn(Scaling(Options(kImageTga, dir / "half"), kResizePercent, 15), {dir / "big.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "half" / "big.tga"), "TGA 450 300");
}

TEST(ConvertRunTest, NoEnlargeAndHundredPercentWriteUnscaled) {
    ScratchDir dir("convert-unscaled");
    WriteBitmapFile(dir / "small.bmp", 800, 600);
    WriteBitmapFile(dir / "odd.bmp", 3, 5);
    fs::create_directories(dir / "kept");
    fs::create_directories(dir / "grown");

    EXPECT_EQ(RunOn(Scaling(Options(kImageJpeg, dir / "kept"), kResizeLongSide, 1000, true), {dir / "small.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "kept" / "small.jpg"), "JPEG 800 600");
    EXPECT_EQ(RunOn(Scaling(Options(kImageJpeg, dir / "grown"), kResizeLongSide, 1000), {dir / "small.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "grown" / "small.jpg"), "JPEG 1000 750");
    EXPECT_EQ(RunOn(Scaling(Options(kImagePnm, dir / "kept"), kResizePercent, 100), {dir / "odd.bmp"}).written, 1);
    EXPECT_EQ(Identify(dir / "kept" / "odd.ppm"), "PPM 3 5");
}

TEST(ConvertRunTest, ScalingToNothingSkipsTheFile) {
    ScratchDir dir("convert-nothing");
    WriteBitmapFile(dir / "line.bmp", 4000, 1);
    const ConvertRunResult r = RunOn(Scaling(Options(kImageBmp, dir.path() / "out"), kResizeLongSide, 1000), {dir / "line.bmp"});
    EXPECT_EQ(r.written, 0);
    EXPECT_EQ(r.skipped, 1);
    EXPECT_FALSE(fs::exists(dir / "out"));
}

TEST(ConvertRunTest, ConvertingIntoTheSourceFolderRenamesOrKeepsTheName) {
    ScratchDir dir("convert-samefolder");
    // The loader goes by content, so bitmap bytes stand in for the named formats.
    WriteBitmapFile(dir / "a.png", 40, 30);
    EXPECT_EQ(RunOn(Options(kImageJpeg, dir.path()), {dir / "a.png"}).written, 1);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("a.jpg", "a.png"));
    EXPECT_EQ(Identify(dir / "a.jpg"), "JPEG 40 30");
}

TEST(ConvertRunTest, DeleteSourceReplacesASameNamedSourceSafely) {
    ScratchDir dir("convert-replace");
    WriteBitmapFile(dir / "a.jpeg", 40, 30);
    ConvertOptions options = Options(kImageJpeg, dir.path());
    options.deleteSource = 1;
    EXPECT_EQ(RunOn(options, {dir / "a.jpeg"}).written, 1);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("a.jpeg"));
    EXPECT_EQ(Identify(dir / "a.jpeg"), "JPEG 40 30");
}

TEST(ConvertRunTest, DeleteSourceRemovesTheSourceOnlyAfterItsResultIsWritten) {
    ScratchDir dir("convert-delete");
    WriteBitmapFile(dir / "a.bmp", 20, 10);
    fs::permissions(dir / "a.bmp", fs::perms::owner_write, fs::perm_options::remove);
    ConvertOptions options = Options(kImageGif, dir.path() / "out");
    fs::create_directories(dir / "out");
    options.deleteSource = 1;
    EXPECT_EQ(RunOn(options, {dir / "a.bmp"}).written, 1);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("out"));
    EXPECT_THAT(Listing(dir / "out"), ElementsAre("a.gif"));
    EXPECT_EQ(Identify(dir / "out" / "a.gif"), "GIF 20 10");
}

TEST(ConvertRunTest, UnreadableFileIsSkippedAndTheRunGoesOn) {
    ScratchDir dir("convert-unreadable");
    lxtest::WriteFile(dir / "broken.bmp", std::string("BM this is not a bitmap"));
    WriteBitmapFile(dir / "good.bmp", 16, 16);
    ConvertOptions options = Options(kImagePng, dir.path());
    options.deleteSource = 1;
    const ConvertRunResult r = RunOn(options, {dir / "missing.bmp", dir / "broken.bmp", dir / "good.bmp"});
    EXPECT_EQ(r.written, 1);
    EXPECT_EQ(r.skipped, 2);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("broken.bmp", "good.png"));
}

TEST(ConvertRunTest, UnwritableDestinationPutsTheSourceBack) {
    ScratchDir dir("convert-unwritable");
    WriteBitmapFile(dir / "a.bmp", 20, 10);
    const auto original = lxtest::ReadFile(dir / "a.bmp");
    // A folder under the destination's name: no writer can put a file there.
    fs::create_directories(dir / "out" / "a.jpg");
    ConvertOptions options = Options(kImageJpeg, dir / "out");
    options.deleteSource = 1;
    const ConvertRunResult r = RunOn(options, {dir / "a.bmp"});
    EXPECT_EQ(r.written, 0);
    EXPECT_EQ(r.skipped, 1);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("a.bmp", "out"));
    EXPECT_EQ(lxtest::ReadFile(dir / "a.bmp"), original);
}

TEST(ConvertRunTest, FormatWithoutWriterKeepsTheSource) {
    ScratchDir dir("convert-nowriter");
    WriteBitmapFile(dir / "a.bmp", 20, 10);
    for (int type : {kImageFpx, kImageSgi}) {
        ConvertOptions options = Options(type, dir.path());
        options.deleteSource = 1;
        EXPECT_EQ(RunOn(options, {dir / "a.bmp"}).written, 0) << type;
        EXPECT_THAT(Listing(dir.path()), ElementsAre("a.bmp")) << type;
    }
}

TEST(ConvertRunTest, SetAsideNamesAllTakenLeavesEverythingAlone) {
    ScratchDir dir("convert-alltaken");
    WriteBitmapFile(dir / "a.bmp", 20, 10);
    for (int n = 0; n <= 98; ++n) lxtest::WriteFile(fs::path(SetAsideName((dir / "a.bmp").wstring(), n)), std::to_string(n));
    ConvertOptions options = Options(kImageBmp, dir.path());
    options.deleteSource = 1;
    EXPECT_EQ(RunOn(options, {dir / "a.bmp"}).written, 0);
    EXPECT_EQ(Listing(dir.path()).size(), 100u);
    EXPECT_EQ(lxtest::ReadFile(dir / "a.bmp.~98"), (std::vector<uint8_t>{'9', '8'}));
    EXPECT_EQ(Identify(dir / "a.bmp"), "BMP3 20 10");

    // With one free name the set-aside goes there and is gone afterwards.
    fs::remove(dir / "a.bmp.~42");
    EXPECT_EQ(RunOn(options, {dir / "a.bmp"}).written, 1);
    EXPECT_FALSE(fs::exists(dir / "a.bmp.~42"));
    EXPECT_EQ(Listing(dir.path()).size(), 99u);
}

TEST(ConvertRunTest, ProgressShowsEachStepAndTheFileIndex) {
    ScratchDir dir("convert-progress");
    WriteBitmapFile(dir / "a.bmp", 8, 8);
    lxtest::WriteFile(dir / "b.bmp", std::string("nothing"));
    WriteBitmapFile(dir / "c.bmp", 8, 8);
    RecordingSink sink;
    RunOn(Scaling(Options(kImagePng, dir.path()), kResizePercent, 50), {dir / "a.bmp", dir / "b.bmp", dir / "c.bmp"}, sink);
    const std::wstring a = (dir / "a.bmp").wstring(), b = (dir / "b.bmp").wstring(), c = (dir / "c.bmp").wstring();
    EXPECT_THAT(sink.events,
                ElementsAre(L"start title | loading", L"progress 0/3",
                            L"line1 loading", L"line2~ " + a, L"line1 converting", L"line1 saving",
                            L"line2~ " + (dir / "a.png").wstring(), L"progress 0/3",
                            L"line1 loading", L"line2~ " + b,
                            L"line1 loading", L"line2~ " + c, L"line1 converting", L"line1 saving",
                            L"line2~ " + (dir / "c.png").wstring(), L"progress 2/3", L"end"));
    EXPECT_THAT(sink.reports, ElementsAre((dir / "a.png").wstring(), (dir / "c.png").wstring()));
}

TEST(ConvertRunTest, CancelStopsBetweenFiles) {
    ScratchDir dir("convert-cancel");
    WriteBitmapFile(dir / "a.bmp", 8, 8);
    WriteBitmapFile(dir / "b.bmp", 8, 8);
    RecordingSink sink;
    sink.cancelAfterChecks = 1;
    const ConvertRunResult r = RunOn(Options(kImagePng, dir.path()), {dir / "a.bmp", dir / "b.bmp"}, sink);
    EXPECT_TRUE(r.cancelled);
    EXPECT_EQ(r.written, 1);
    EXPECT_THAT(Listing(dir.path()), ElementsAre("a.bmp", "a.png", "b.bmp"));
    EXPECT_EQ(sink.events.back(), L"end");
}

#ifndef _WIN32
// A run killed at any moment leaves each picture whole somewhere: as its source, as its
// set-aside copy, or (once converted) as its result.
TEST(ConvertRunTest, KilledRunLeavesEverySourceFindable) {
    constexpr int kFiles = 12;
    for (int attempt = 0; attempt < 10; ++attempt) {
        ScratchDir dir("convert-kill" + std::to_string(attempt));
        std::vector<fs::path> files;
        for (int i = 0; i < kFiles; ++i) {
            // Even files keep their name (the result replaces them), odd ones get a new one.
            files.push_back(dir / ("p" + std::to_string(i) + (i % 2 ? ".bmp" : ".jpg")));
            WriteBitmapFile(files.back(), 300, 200);
        }
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ConvertOptions options = Scaling(Options(kImageJpeg, dir.path()), kResizePercent, 90);
            options.deleteSource = 1;
            RunOn(options, files);
            _exit(0);
        }
        usleep(static_cast<useconds_t>(3000 + attempt * 9000));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        for (int i = 0; i < kFiles; ++i) {
            const fs::path& source = files[i];
            const fs::path result = dir / ("p" + std::to_string(i) + ".jpg");
            bool found = fs::exists(source) && !Identify(source).empty();
            for (int n = 0; n <= 98 && !found; ++n) found = fs::exists(SetAsideName(source.wstring(), n));
            found = found || Identify(result) == "JPEG 270 180";
            EXPECT_TRUE(found) << "attempt " << attempt << " lost " << source;
        }
    }
}
#endif

}  // namespace
}  // namespace lx
