// The split run over real bitmap files: which images are cut after which answers, and the
// source given up only when both halves were written. (Sizes, sides and names of the halves
// are checked through the export under Wine.)
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "../SplitContrastSupport.h"
#include "SplitRun.h"

namespace lx {
namespace {

namespace fs = std::filesystem;
using lxtest::ScratchDir;
using lxtest::WriteBitmapFile;

const SplitTexts kTexts{L"loading", L"saving"};

using lxtest::QuietSink;

// A question that answers from a script, file by file, and a recycle bin that only counts.
struct Answers {
    std::map<std::wstring, std::optional<PortraitReply>> byName;
    std::vector<std::wstring> asked, recycled;

    SplitServices Services() {
        SplitServices services;
        services.askPortrait = [this](const std::wstring& name, int, int) {
            asked.push_back(name);
            return byName.at(name);
        };
        services.recycle = [this](const std::wstring& path) {
            recycled.push_back(fs::path(path).filename().wstring());
            return true;
        };
        return services;
    }
};

std::vector<std::wstring> Paths(const ScratchDir& dir, const std::vector<std::string>& names) {
    std::vector<std::wstring> paths;
    for (const auto& name : names) paths.push_back((dir / name).wstring());
    return paths;
}

// No leaves the portrait and a square after it; Yes with the box ticked splits that portrait
// and every later one without asking; a question that cannot be shown ends the run.
TEST(SplitRun, PortraitsFollowTheAnswersAndTheBox) {
    ScratchDir dir("split-answers");
    const std::vector<std::string> names = {"wide.bmp", "tall1.bmp", "square.bmp", "tall2.bmp", "tall3.bmp"};
    for (const auto& name : names) {
        const bool tall = name.rfind("tall", 0) == 0, square = name == "square.bmp";
        WriteBitmapFile(dir / name, tall ? 30 : 40, square ? 40 : (tall ? 40 : 30));
    }
    Answers answers;
    answers.byName[L"tall1.bmp"] = PortraitReply{kIdNo, false};
    answers.byName[L"tall2.bmp"] = PortraitReply{kIdYes, true};
    QuietSink sink;
    const SplitRunResult result = RunSplit(Paths(dir, names), kTexts, sink, answers.Services());
    EXPECT_EQ(answers.asked, (std::vector<std::wstring>{L"tall1.bmp", L"tall2.bmp"}));
    EXPECT_EQ(answers.recycled, (std::vector<std::wstring>{L"wide.bmp", L"tall2.bmp", L"tall3.bmp"}));
    EXPECT_EQ(result.split, 3);
    EXPECT_FALSE(fs::exists(dir / "tall1-1.jpg"));
    EXPECT_FALSE(fs::exists(dir / "square-1.jpg"));

    Answers failing;
    failing.byName[L"tall1.bmp"] = std::nullopt;
    const SplitRunResult stopped = RunSplit(Paths(dir, {"tall1.bmp", "wide.bmp"}), kTexts, sink, failing.Services());
    EXPECT_TRUE(stopped.stopped);
    EXPECT_TRUE(failing.recycled.empty()) << "nothing after a failed question is touched";

    Answers unasked;
    SplitServices noDialog = unasked.Services();
    noDialog.askPortrait = nullptr;
    EXPECT_EQ(RunSplit(Paths(dir, {"tall1.bmp"}), kTexts, sink, noDialog).split, 1) << "without a dialog portraits split";
}

// A half that cannot be written keeps the source; an unreadable file is skipped.
TEST(SplitRun, SourceStaysUnlessBothHalvesWereWritten) {
    ScratchDir dir("split-keep");
    WriteBitmapFile(dir / "page.bmp", 60, 40);
    fs::create_directory(dir / "page-2.jpg");  // the left half cannot take its name
    lxtest::WriteFile(dir / "broken.bmp", std::string("BM not really"));
    Answers answers;
    QuietSink sink;
    const SplitRunResult result = RunSplit(Paths(dir, {"broken.bmp", "page.bmp"}), kTexts, sink, answers.Services());
    EXPECT_EQ(result.skipped, 2);
    EXPECT_EQ(result.split, 0);
    EXPECT_TRUE(answers.recycled.empty());
}

}  // namespace
}  // namespace lx
