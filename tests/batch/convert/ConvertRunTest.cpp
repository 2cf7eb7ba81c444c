// The run over real files: sizes and formats of the results are read back by ImageMagick's
// identify; the set-aside protocol and the recovery are checked by what is left in the folder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>

#include "ConvertNaming.h"
#include "ConvertRun.h"
#include "ConvertTestSupport.h"
#include "ImageTypes.h"

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
using testing::ElementsAreArray;

const ConvertTexts kTexts{L"title", L"loading", L"converting", L"saving"};

ConvertOptions Options(int saveType, const fs::path& folder, bool deleteSource = false) {
    ConvertOptions options = DefaultConvertOptions();
    options.saveType = saveType;
    options.resize = 0;
    options.deleteSource = deleteSource ? 1 : 0;
    SetOutputFolder(options, folder.wstring());
    return options;
}

ConvertOptions Scaling(ConvertOptions options, int mode, int size, bool noEnlarge = false) {
    options.resize = 1;
    options.resizeMode = mode;
    options.size = size;
    options.noEnlarge = noEnlarge ? 1 : 0;
    return options;
}

ConvertRunResult RunOn(const ConvertOptions& options, const std::vector<fs::path>& files, RecordingSink* sink = nullptr) {
    std::vector<std::wstring> names;
    for (const auto& f : files) names.push_back(f.wstring());
    RecordingSink quiet;
    return RunConversion(options, names, kTexts, sink ? *sink : quiet);
}

TEST(ConvertRunTest, ScalesByTheModeAndNamesByTheFormat) {
    ScratchDir dir("convert-scale");
    WriteBitmapFile(dir / "big.bmp", 3000, 2000);
    WriteBitmapFile(dir / "small.bmp", 800, 600);
    WriteBitmapFile(dir / "odd.bmp", 3, 5);
    WriteBitmapFile(dir / "line.bmp", 4000, 1);
    const struct {
        const char *source, *result, *identified;  // identified "": skipped, nothing written
        int type, mode, size;
        bool noEnlarge;
    } cases[] = {
        {"big.bmp", "big.jpg", "JPEG 1000 667", kImageJpeg, kResizeLongSide, 1000, false},
        {"big.bmp", "big.png", "PNG 1500 1000", kImagePng, kResizeShortSide, 1000, false},
        {"big.bmp", "big.tga", "TGA 450 300", kImageTga, kResizePercent, 15, false},
        {"small.bmp", "small.jpg", "JPEG 800 600", kImageJpeg, kResizeLongSide, 1000, true},
        {"small.bmp", "small.jpg", "JPEG 1000 750", kImageJpeg, kResizeLongSide, 1000, false},
        {"odd.bmp", "odd.ppm", "PPM 3 5", kImagePnm, kResizePercent, 100, false},
        {"line.bmp", "line.bmp", "", kImageBmp, kResizeLongSide, 1000, false},
    };
    int row = 0;
    for (const auto& c : cases) {
        const fs::path out = dir / ("out" + std::to_string(row++));
        fs::create_directory(out);
        const ConvertRunResult r = RunOn(Scaling(Options(c.type, out), c.mode, c.size, c.noEnlarge), {dir / c.source});
        EXPECT_EQ(r.written, *c.identified ? 1 : 0) << row;
        EXPECT_EQ(Identify(out / c.result), c.identified) << row;
    }
}

// One row per folder situation: the files before (a "WxH" bitmap, "folder", or text), the run,
// and the folder after. Results are written into the folder of the sources.
struct FolderCase {
    const char* name;
    std::vector<std::pair<std::string, std::string>> before;
    int type;
    bool deleteSource;
    std::vector<std::string> run;
    int written;
    std::vector<std::string> after;
    const char *checked, *identified;  // one file of `after` and what identify says of it
    const char* leftAlone;             // the source that the closing message names, if any
};

const FolderCase kFolderCases[] = {
    {"a.png to JPEG keeps its source", {{"a.png", "40x30"}}, kImageJpeg, false, {"a.png"}, 1,
     {"a.jpg", "a.png"}, "a.jpg", "JPEG 40 30", nullptr},
    {"a.jpeg to JPEG is replaced safely", {{"a.jpeg", "40x30"}}, kImageJpeg, true, {"a.jpeg"}, 1,
     {"a.jpeg"}, "a.jpeg", "JPEG 40 30", nullptr},
    {"a read-only source is deleted after its result is written", {{"a.bmp", "20x10 read-only"}}, kImageGif, true,
     {"a.bmp"}, 1, {"a.gif"}, "a.gif", "GIF 20 10", nullptr},
    {"unreadable files are skipped", {{"broken.bmp", "BM not a bitmap"}, {"good.bmp", "16x16"}}, kImagePng, true,
     {"missing.bmp", "broken.bmp", "good.bmp"}, 1, {"broken.bmp", "good.png"}, "good.png", "PNG 16 16", nullptr},
    {"an unwritable result puts the source back", {{"a.bmp", "20x10"}, {"a.jpg", "folder"}}, kImageJpeg, true,
     {"a.bmp"}, 0, {"a.bmp", "a.jpg"}, "a.bmp", "BMP3 20 10", nullptr},
    {"a type without writer keeps the source", {{"a.bmp", "20x10"}}, kImageSgi, true, {"a.bmp"}, 0, {"a.bmp"},
     "a.bmp", "BMP3 20 10", nullptr},
    {"the first of two sources for one name wins", {{"x.png", "40x30"}, {"x.bmp", "20x10"}}, kImageJpeg, true,
     {"x.png", "x.bmp"}, 1, {"x.bmp", "x.jpg"}, "x.jpg", "JPEG 40 30", "x.bmp"},
    {"a source keeps its own name", {{"x.png", "40x30"}, {"x.jpg", "20x10"}}, kImageJpeg, false,
     {"x.png", "x.jpg"}, 1, {"x.jpg", "x.png"}, "x.jpg", "JPEG 20 10", "x.png"},
    {"a killed run is undone first",
     {{"a.bmp.~00", "20x10"},            // set aside, its name free: goes back
      {"b.bmp", "8x8"},                  // converted by this run
      {"b.bmp.~00", "older b"},          // its name is taken: stays
      {"c.jpg.~lx12-3.tmp", "partial"},  // a cut-short write: removed
      {"d.bmp.~lx1.tmp", "user's"},      // not quite our pattern: stays
      {"notes.~01", "user's"}},          // not a picture's name: stays
     kImagePng, false, {"b.bmp"}, 1, {"a.bmp", "b.bmp", "b.bmp.~00", "b.png", "d.bmp.~lx1.tmp", "notes.~01"},
     "a.bmp", "BMP3 20 10", nullptr},
};

TEST(ConvertRunTest, LeavesEachFolderAsExpected) {
    for (const FolderCase& c : kFolderCases) {
        ScratchDir dir("convert-folder");
        for (const auto& [name, content] : c.before) {
            int w = 0, h = 0;
            if (content == "folder") fs::create_directories(dir / name);
            else if (std::sscanf(content.c_str(), "%dx%d", &w, &h) == 2) WriteBitmapFile(dir / name, w, h);
            else lxtest::WriteFile(dir / name, content);
            if (content.ends_with(" read-only")) fs::permissions(dir / name, fs::perms::owner_write, fs::perm_options::remove);
        }
        std::vector<fs::path> run;
        for (const auto& name : c.run) run.push_back(dir / name);
        RecordingSink sink;
        const ConvertRunResult r = RunOn(Options(c.type, dir.path(), c.deleteSource), run, &sink);
        EXPECT_EQ(r.written, c.written) << c.name;
        EXPECT_EQ(r.written + r.skipped, static_cast<int>(run.size())) << c.name;
        EXPECT_THAT(Listing(dir.path()), ElementsAreArray(c.after)) << c.name;
        EXPECT_EQ(Identify(dir / c.checked), c.identified) << c.name;
        const std::wstring note = c.leftAlone ? L"message 4161 " + (dir / c.leftAlone).wstring() : L"end";
        EXPECT_EQ(sink.events.back(), note) << c.name;
    }
}

TEST(ConvertRunTest, SetAsideNamesAllTakenLeavesEverythingAlone) {
    ScratchDir dir("convert-alltaken");
    WriteBitmapFile(dir / "a.bmp", 20, 10);
    for (int n = 0; n <= 98; ++n) lxtest::WriteFile(fs::path(SetAsideName((dir / "a.bmp").wstring(), n)), std::to_string(n));
    const ConvertOptions options = Options(kImageBmp, dir.path(), true);
    EXPECT_EQ(RunOn(options, {dir / "a.bmp"}).written, 0);
    EXPECT_EQ(Listing(dir.path()).size(), 100u);
    EXPECT_EQ(lxtest::ReadFile(dir / "a.bmp.~98"), (std::vector<uint8_t>{'9', '8'}));
    EXPECT_EQ(Identify(dir / "a.bmp"), "BMP3 20 10");
}

TEST(ConvertRunTest, ProgressShowsEachStepAndCancelStopsBetweenFiles) {
    ScratchDir dir("convert-progress");
    WriteBitmapFile(dir / "a.bmp", 8, 8);
    lxtest::WriteFile(dir / "b.bmp", std::string("nothing"));
    WriteBitmapFile(dir / "c.bmp", 8, 8);
    const std::vector<fs::path> files{dir / "a.bmp", dir / "b.bmp", dir / "c.bmp"};
    RecordingSink sink;
    RunOn(Scaling(Options(kImagePng, dir.path()), kResizePercent, 50), files, &sink);
    auto shown = [&](const char* name) { return L"line2~ " + (dir / name).wstring(); };
    EXPECT_THAT(sink.events, ElementsAre(L"start title | loading", L"progress 0/3", L"line1 loading", shown("a.bmp"),
                                         L"line1 converting", L"line1 saving", shown("a.png"), L"progress 0/3",
                                         L"line1 loading", shown("b.bmp"), L"line1 loading", shown("c.bmp"),
                                         L"line1 converting", L"line1 saving", shown("c.png"), L"progress 2/3", L"end"));
    EXPECT_THAT(sink.reports, ElementsAre((dir / "a.png").wstring(), (dir / "c.png").wstring()));

    RecordingSink cancelling;
    cancelling.cancelAfterChecks = 1;
    const ConvertRunResult r = RunOn(Options(kImageGif, dir.path()), files, &cancelling);
    EXPECT_TRUE(r.cancelled);
    EXPECT_EQ(r.written, 1);
    EXPECT_TRUE(fs::exists(dir / "a.gif"));
    EXPECT_FALSE(fs::exists(dir / "c.gif"));
    EXPECT_EQ(cancelling.events.back(), L"end");
}

#ifndef _WIN32
// A run killed at any moment leaves each picture whole somewhere, and the next run over the
// folder (here one with no files) puts each back under its own name or leaves its result.
TEST(ConvertRunTest, KilledRunIsUndoneByTheNextRun) {
    constexpr int kFiles = 12;
    auto prepare = [](const ScratchDir& dir) {
        std::vector<fs::path> files;
        for (int i = 0; i < kFiles; ++i) {
            // Even files keep their name (the result replaces them), odd ones get a new one.
            files.push_back(dir / ("p" + std::to_string(i) + (i % 2 ? ".bmp" : ".jpg")));
            WriteBitmapFile(files.back(), 600, 400);
        }
        return files;
    };
    // Kills spread over the time a whole run takes here.
    const auto start = std::chrono::steady_clock::now();
    {
        ScratchDir dir("convert-kill-timing");
        RunOn(Options(kImageJpeg, dir.path(), true), prepare(dir));
    }
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    for (int attempt = 0; attempt < 10; ++attempt) {
        ScratchDir dir("convert-kill" + std::to_string(attempt));
        const std::vector<fs::path> files = prepare(dir);
        const ConvertOptions options = Options(kImageJpeg, dir.path(), true);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            RunOn(options, files);
            _exit(0);
        }
        usleep(static_cast<useconds_t>(whole.count() * (2 * attempt + 1) / 20));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        RunOn(options, {});
        for (int i = 0; i < kFiles; ++i) {
            const fs::path result = dir / ("p" + std::to_string(i) + ".jpg");
            const bool found = !Identify(files[i]).empty() || Identify(result) == "JPEG 600 400";
            EXPECT_TRUE(found) << "attempt " << attempt << " lost " << files[i];
        }
        for (const std::string& name : Listing(dir.path())) {
            const std::wstring original = SetAsideOriginal(fs::path(name).wstring());
            EXPECT_TRUE(name.find(".~lx") == std::string::npos && (original.empty() || fs::exists(dir.path() / original)))
                << "attempt " << attempt << " left " << name;
        }
    }
}
#endif

}  // namespace
}  // namespace lx
