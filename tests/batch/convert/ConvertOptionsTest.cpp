#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ConvertOptions.h"

namespace lx {
namespace {

TEST(ConvertOptionsTest, DefaultsAreJpegAtFullSizeWithEverythingElseZero) {
    const ConvertOptions o = DefaultConvertOptions();
    EXPECT_EQ(o.saveType, 2);
    EXPECT_EQ(o.resizeMode, kResizePercent);
    EXPECT_EQ(o.size, 100);
    EXPECT_EQ(o.resize, 1);
    EXPECT_EQ(o.noEnlarge, 0);
    EXPECT_EQ(o.deleteSource, 0);
    EXPECT_EQ(OutputFolder(o), L"");
    EXPECT_EQ(o.jpegForm, 0);
    EXPECT_EQ(o.jpegQuality, 94);
    EXPECT_EQ(o.jpegSmoothing, 0);
    EXPECT_EQ(o.fpxUseJpeg, 1);
    EXPECT_EQ(o.fpxQuality, 94);
    EXPECT_EQ(o.jp2Ratio, 8);
    EXPECT_EQ(o.reserved0 | o.reserved1 | o.reserved2[0] | o.reserved2[1], 0);
}

// The block is what the registry holds: byte offsets are fixed, little-endian words.
TEST(ConvertOptionsTest, StoredBlockIsReadFieldByFieldAtItsOffsets) {
    std::vector<uint8_t> block(1104, 0);
    auto put = [&](size_t offset, uint32_t value) {
        for (int i = 0; i < 4; ++i) block[offset + i] = static_cast<uint8_t>(value >> (8 * i));
    };
    put(0, 10);     // PNG
    put(4, 0);      // long side
    put(8, 1600);
    put(12, 1);
    put(16, 1);
    put(20, 1);
    block[24] = 'D';
    block[26] = ':';
    block[28] = 0x00;
    block[29] = 0x30;  // U+3000, beyond ASCII
    put(1064, 2);
    put(1068, 85);
    put(1072, 30);
    put(1076, 0);
    put(1080, 70);
    put(1092, 16);
    const ConvertOptions o = ConvertOptionsFromBlock(block.data(), block.size());
    EXPECT_EQ(o.saveType, 10);
    EXPECT_EQ(o.resizeMode, 0);
    EXPECT_EQ(o.size, 1600);
    EXPECT_EQ(o.noEnlarge, 1);
    EXPECT_EQ(o.deleteSource, 1);
    EXPECT_EQ(OutputFolder(o), std::wstring(L"D:") + wchar_t(0x3000));
    EXPECT_EQ(o.jpegForm, 2);
    EXPECT_EQ(o.jpegQuality, 85);
    EXPECT_EQ(o.jpegSmoothing, 30);
    EXPECT_EQ(o.fpxUseJpeg, 0);
    EXPECT_EQ(o.fpxQuality, 70);
    EXPECT_EQ(o.jp2Ratio, 16);
}

TEST(ConvertOptionsTest, BlockOfAnotherSizeOrNoneGivesTheDefaults) {
    std::vector<uint8_t> block(1108, 0xff);
    const ConvertOptions defaults = DefaultConvertOptions();
    for (size_t size : {size_t(0), size_t(1100), size_t(1103), size_t(1105), size_t(1108)}) {
        const ConvertOptions o = ConvertOptionsFromBlock(block.data(), size);
        EXPECT_EQ(std::memcmp(&o, &defaults, sizeof o), 0) << size;
    }
    const ConvertOptions none = ConvertOptionsFromBlock(nullptr, 1104);
    EXPECT_EQ(std::memcmp(&none, &defaults, sizeof none), 0);
}

TEST(ConvertOptionsTest, FolderWithoutTerminatorIsCutInsideTheBuffer) {
    std::vector<uint8_t> block(1104, 0);
    for (size_t i = 0; i < 520; ++i) block[24 + 2 * i] = 'x';
    const ConvertOptions o = ConvertOptionsFromBlock(block.data(), block.size());
    EXPECT_EQ(OutputFolder(o), std::wstring(519, L'x'));
}

TEST(ConvertOptionsTest, SetOutputFolderReplacesAndCutsToTheBuffer) {
    ConvertOptions o = DefaultConvertOptions();
    SetOutputFolder(o, std::wstring(600, L'a'));
    EXPECT_EQ(OutputFolder(o), std::wstring(519, L'a'));
    SetOutputFolder(o, L"C:\\out");
    EXPECT_EQ(OutputFolder(o), L"C:\\out");
    EXPECT_EQ(o.outputFolder[7], 0);
    EXPECT_EQ(o.outputFolder[518], 0) << "the old, longer name must not linger";
    EXPECT_EQ(o.jpegForm, 0) << "the folder must not spill into the next field";
}

}  // namespace
}  // namespace lx
