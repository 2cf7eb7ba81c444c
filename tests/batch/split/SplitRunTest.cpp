// The split run over real bitmap files: which images are cut after which answers, and the
// source given up only when both halves were written. (The dialog's No, Yes with the box and
// Cancel, and the halves themselves, are checked through the export under Wine.)
#include <gtest/gtest.h>

#include <filesystem>

#include "../SplitContrastSupport.h"
#include "SplitRun.h"

namespace lx {
namespace {

namespace fs = std::filesystem;
using lxtest::ScratchDir;
using lxtest::WriteBitmapFile;

const SplitTexts kTexts{L"loading", L"saving"};

// Runs split over `names` in `dir`, answering every portrait question with `reply`; the names
// given to the recycle bin.
std::vector<std::wstring> Split(const ScratchDir& dir, const std::vector<std::string>& names,
                                std::function<std::optional<PortraitReply>()> reply, SplitRunResult* result = nullptr) {
    std::vector<std::wstring> paths, recycled;
    for (const auto& name : names) paths.push_back((dir / name).wstring());
    SplitServices services;
    if (reply) services.askPortrait = [&](const std::wstring&, int, int) { return reply(); };
    services.recycle = [&](const std::wstring& path) {
        recycled.push_back(fs::path(path).filename().wstring());
        return true;
    };
    lxtest::QuietSink sink;
    const SplitRunResult run = RunSplit(paths, kTexts, sink, services);
    if (result) *result = run;
    return recycled;
}

// No leaves the portrait and a square after it; a question that cannot be shown ends the run;
// without a dialog portraits split.
TEST(SplitRun, PortraitsAndSquaresFollowTheQuestion) {
    ScratchDir dir("split-answers");
    WriteBitmapFile(dir / "tall.bmp", 30, 40);
    WriteBitmapFile(dir / "square.bmp", 40, 40);
    WriteBitmapFile(dir / "wide.bmp", 40, 30);
    int asked = 0;
    const auto no = [&] { return ++asked, std::optional(PortraitReply{kIdNo, false}); };
    EXPECT_EQ(Split(dir, {"tall.bmp", "square.bmp", "wide.bmp"}, no), std::vector<std::wstring>{L"wide.bmp"});
    EXPECT_EQ(asked, 1) << "only the portrait is asked about";
    SplitRunResult result;
    EXPECT_TRUE(Split(dir, {"tall.bmp", "wide.bmp"}, [] { return std::nullopt; }, &result).empty());
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(Split(dir, {"tall.bmp"}, nullptr), std::vector<std::wstring>{L"tall.bmp"});
}

// A half that cannot be written keeps the source; an unreadable file is skipped.
TEST(SplitRun, SourceStaysUnlessBothHalvesWereWritten) {
    ScratchDir dir("split-keep");
    WriteBitmapFile(dir / "page.bmp", 60, 40);
    fs::create_directory(dir / "page-2.jpg");  // the left half cannot take its name
    lxtest::WriteFile(dir / "broken.bmp", std::string("BM not really"));
    SplitRunResult result;
    EXPECT_TRUE(Split(dir, {"broken.bmp", "page.bmp"}, nullptr, &result).empty());
    EXPECT_EQ(result.skipped, 2);
    EXPECT_EQ(result.split, 0);
}

}  // namespace
}  // namespace lx
