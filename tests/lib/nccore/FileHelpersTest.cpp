// The portable file helpers and the parallel loop every tool shares.
#include "AtomicFile.h"
#include "FileBytes.h"
#include "ParallelParts.h"
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

}  // namespace
}  // namespace lx
