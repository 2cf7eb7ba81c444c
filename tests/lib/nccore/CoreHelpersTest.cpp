// The portable helpers every tool shares: whole-file reads and writes, the parallel loop,
// rectangles kept on screen, and tool bar templates.
#include "AtomicFile.h"
#include "FileBytes.h"
#include "ParallelParts.h"
#include "RectClamp.h"
#include "ToolBarTemplate.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <tuple>
#include <vector>

namespace lx {
namespace {

TEST(AtomicFile, ReplacesWholeOrLeavesTheOldFile) {
    lxtest::ScratchDir dir("atomic");
    const auto target = dir / "out.bin";
    const std::vector<uint8_t> first = {1, 2, 3}, second = {4, 5};
    ASSERT_TRUE(WriteFileAtomically(target, first));
    ASSERT_TRUE(WriteFileAtomically(target, second));
    EXPECT_EQ(lxtest::ReadFile(target), second);
    // A folder that does not exist: nothing can be written, nothing is left behind.
    EXPECT_FALSE(WriteFileAtomically(dir / "no" / "such.bin", first));
    // The target is a folder: the rename fails, the temporary file is removed.
    std::filesystem::create_directory(dir / "taken");
    EXPECT_FALSE(WriteFileAtomically(dir / "taken", first));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
    EXPECT_EQ(lxtest::ReadFile(target), second);
}

TEST(ReadWholeFile, ReadsEverythingOrNothing) {
    lxtest::ScratchDir dir("wholefile");
    const std::vector<uint8_t> bytes = {0, 1, 2, 0xff, 0x1a, 0};
    lxtest::WriteFile(dir / "a.bin", bytes);
    lxtest::WriteFile(dir / "empty.bin", std::vector<uint8_t>{});
    EXPECT_EQ(ReadWholeFile(dir / "a.bin"), bytes);
    EXPECT_EQ(ReadWholeFile(dir / "a.bin", 6), bytes);
    EXPECT_FALSE(ReadWholeFile(dir / "a.bin", 5));  // larger than the caller accepts
    EXPECT_EQ(ReadWholeFile(dir / "empty.bin"), std::vector<uint8_t>{});
    EXPECT_FALSE(ReadWholeFile(dir / "missing.bin"));
    EXPECT_FALSE(ReadWholeFile(dir.path()));  // a folder
}

TEST(ForEachPart, RunsEveryPartExactlyOnceOnTheCallersSplit) {
    const std::tuple<int, int, int> kCases[] = {{10, 3, 3}, {7, 16, 7}, {5, 0, 1}, {1000, 2, 2}};  // count, asked, run
    for (const auto& [count, parts, expectedParts] : kCases) {
        std::mutex lock;
        std::vector<std::tuple<int, int, int>> seen;
        std::vector<std::atomic<int>> covered(count);
        EXPECT_EQ(ForEachPart(count, parts,
                              [&](int begin, int end, int part) {
                                  for (int i = begin; i < end; ++i) ++covered[i];
                                  const std::lock_guard<std::mutex> hold(lock);
                                  seen.emplace_back(part, begin, end);
                              }),
                  expectedParts);
        ASSERT_EQ(seen.size(), static_cast<size_t>(expectedParts));
        for (const auto& [part, begin, end] : seen) {
            EXPECT_EQ(begin, static_cast<int>(int64_t{count} * part / expectedParts));
            EXPECT_EQ(end, static_cast<int>(int64_t{count} * (part + 1) / expectedParts));
        }
        for (const auto& c : covered) EXPECT_EQ(c.load(), 1);
    }
    EXPECT_EQ(ForEachPart(0, 4, [](int, int, int) { FAIL(); }), 0);
}

TEST(ForEachPart, HandsAFailureInAnyPartToTheCaller) {
    for (int failing : {0, 7}) {
        EXPECT_THROW(ForEachPart(8, 8, [&](int begin, int, int) { if (begin == failing) throw std::runtime_error("x"); }),
                     std::runtime_error);
    }
}

TEST(RectClamp, KeepsFittingRectanglesAndMovesOrShrinksOthersIntoTheArea) {
    const PlainRect work{0, 0, 1920, 1040}, second{1920, 0, 3200, 1024};
    const struct {
        PlainRect rect, area, expected;
    } cases[] = {
        {{100, 50, 900, 650}, work, {100, 50, 900, 650}},        // fits
        {{2500, 100, 3300, 700}, work, {1120, 100, 1920, 700}},  // on a monitor that is gone, keeps its size
        {{-300, -200, 500, 400}, work, {0, 0, 800, 600}},
        {{-10, -10, 4000, 3000}, work, work},                    // larger than the area
        {{0, 0, 800, 600}, second, {1920, 0, 2720, 600}},        // an area not at the origin
    };
    for (const auto& c : cases) {
        const PlainRect r = ClampRectInto(c.rect, c.area);
        EXPECT_EQ((std::vector<int>{r.left, r.top, r.right, r.bottom}),
                  (std::vector<int>{c.expected.left, c.expected.top, c.expected.right, c.expected.bottom}));
    }
    // An inverted rectangle gets no size.
    const PlainRect r = ClampRectInto({500, 500, 100, 100}, work);
    EXPECT_EQ(r.right - r.left, 0);
    EXPECT_EQ(r.bottom - r.top, 0);
    EXPECT_GE(r.left, 0);
}

std::vector<uint8_t> Words(std::initializer_list<uint16_t> words) {
    std::vector<uint8_t> bytes;
    for (uint16_t w : words) bytes.insert(bytes.end(), {static_cast<uint8_t>(w & 0xff), static_cast<uint8_t>(w >> 8)});
    return bytes;
}

TEST(ToolBarTemplate, ReadsSizeAndCommandsAndRejectsBrokenBlocks) {
    auto padded = Words({1, 24, 24, 1, 7}), halfWord = Words({1, 16, 15, 2, 100});
    padded.insert(padded.end(), {0, 0});  // resource padding
    halfWord.push_back(0x65);             // 2.5 items: the second is not all there
    const struct {
        const char* what;
        std::vector<uint8_t> bytes;
        bool valid;
        int width = 0, height = 0;
        std::vector<uint16_t> commands = {};
    } cases[] = {
        {"separators", Words({1, 16, 15, 5, 2001, 2002, 0, 0x9c41, 2003}), true, 16, 15, {2001, 2002, 0, 0x9c41, 2003}},
        {"padded", padded, true, 24, 24, {7}},
        {"empty bar", Words({1, 16, 16, 0}), true, 16, 16},
        {"wrong version", Words({2, 16, 15, 1, 100}), false},
        {"count too large", Words({1, 16, 15, 3, 100, 101}), false},
        {"half a word", halfWord, false},
        {"zero image width", Words({1, 0, 15, 1, 100}), false},
        {"header only", Words({1, 16, 15}), false},
    };
    for (const auto& c : cases) {
        const auto parsed = ParseToolBarTemplate(c.bytes.data(), c.bytes.size());
        ASSERT_EQ(parsed.has_value(), c.valid) << c.what;
        if (!parsed) continue;
        EXPECT_EQ(parsed->imageWidth, c.width) << c.what;
        EXPECT_EQ(parsed->imageHeight, c.height) << c.what;
        EXPECT_EQ(parsed->commands, c.commands) << c.what;
    }
    EXPECT_EQ(ParseToolBarTemplate(cases[0].bytes.data(), cases[0].bytes.size())->ImageCount(), 4u);  // not the separator
    EXPECT_FALSE(ParseToolBarTemplate(nullptr, 0));
}

}  // namespace
}  // namespace lx
