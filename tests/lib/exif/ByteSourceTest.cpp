#include "ByteSource.h"

#include <gtest/gtest.h>

#include <random>

#include "TestFiles.h"

using lxtest::ScratchDir;

namespace {

std::vector<uint8_t> Pattern(size_t size) {
    std::vector<uint8_t> bytes(size);
    std::mt19937 rng(7);
    for (auto& b : bytes) b = static_cast<uint8_t>(rng());
    return bytes;
}

// Reads `count` bytes at `offset` from both sources and checks each against the bytes.
void ExpectRange(lx::ByteSource& file, lx::ByteSource& memory, const std::vector<uint8_t>& bytes, uint64_t offset,
                 size_t count) {
    const bool inside = offset <= bytes.size() && count <= bytes.size() - offset;
    for (lx::ByteSource* source : {&file, &memory}) {
        std::vector<uint8_t> out(count, 0xAA);
        EXPECT_EQ(source->read(offset, count, out.data()), inside) << offset << "+" << count;
        if (inside) {
            EXPECT_TRUE(std::equal(out.begin(), out.end(), bytes.begin() + static_cast<long>(offset)))
                << offset << "+" << count;
        } else {
            EXPECT_EQ(out, std::vector<uint8_t>(count, 0xAA)) << "a failed read leaves the buffer alone";
        }
    }
}

}  // namespace

TEST(ByteSource, FileReadsAgreeWithTheBytesAcrossWindowsAndAtTheEnd) {
    ScratchDir dir("source");
    const std::vector<uint8_t> bytes = Pattern(300 * 1024 + 17);
    lxtest::WriteFile(dir / "data.bin", bytes);
    lx::FileSource file(dir / "data.bin");
    lx::MemorySource memory(bytes);
    ASSERT_TRUE(file.isOpen());
    ASSERT_EQ(file.size(), bytes.size());

    const uint64_t size = bytes.size();
    const uint64_t window = 64 * 1024;
    // Within the first window, across its end, far away and back, a large block, the tail.
    for (auto [offset, count] : std::vector<std::pair<uint64_t, size_t>>{
             {0, 16}, {100, 4}, {window - 3, 8}, {window + 5, 2}, {250000, 100}, {10, 10}, {1000, 200000},
             {size - 4, 4}, {size, 0}, {size - 4, 5}, {size, 1}, {size + 10, 0}, {UINT64_MAX - 1, 4}})
        ExpectRange(file, memory, bytes, offset, count);
    // Random ranges, in and out of the file.
    std::mt19937 rng(3);
    for (int i = 0; i < 500; ++i) {
        const uint64_t offset = rng() % (size + 100);
        const size_t count = rng() % (i % 10 == 0 ? 2 * window : 64);
        ExpectRange(file, memory, bytes, offset, count);
    }
}

TEST(ByteSource, MissingFilesAndFoldersDoNotOpen) {
    ScratchDir dir("missing");
    lx::FileSource missing(dir / "nothing.bin");
    EXPECT_FALSE(missing.isOpen());
    EXPECT_EQ(missing.size(), 0u);
    uint8_t b;
    EXPECT_FALSE(missing.read(0, 1, &b));
    EXPECT_FALSE(lx::FileSource(dir.path()).isOpen());
    EXPECT_TRUE(missing.readVector(0, 0).empty());
}
