#include <gtest/gtest.h>

#include <vector>

#include "ConvertOptions.h"
#include "ConvertTestSupport.h"

namespace lx {
namespace {

using lxtest::Fields;

const std::wstring kDefaults = L"2 2 100 1 0 0 '' 0 94 0 1 94 0 0 8 0 0";

TEST(ConvertOptionsTest, BlockOfAnotherSizeOrNoneGivesTheDefaults) {
    EXPECT_EQ(Fields(DefaultConvertOptions()), kDefaults);
    const std::vector<uint8_t> block(1108, 0xff);
    for (size_t size : {size_t(0), size_t(1100), size_t(1103), size_t(1105), size_t(1108)})
        EXPECT_EQ(Fields(ConvertOptionsFromBlock(block.data(), size)), kDefaults) << size;
    EXPECT_EQ(Fields(ConvertOptionsFromBlock(nullptr, 1104)), kDefaults);
}

// The block is what the registry holds: byte offsets are fixed, little-endian words.
TEST(ConvertOptionsTest, StoredBlockIsReadFieldByFieldAtItsOffsets) {
    std::vector<uint8_t> block(1104, 0);
    const std::pair<size_t, uint32_t> words[] = {
        {0, 10}, {4, 0}, {8, 1600}, {12, 1}, {16, 1}, {20, 1},  // PNG by long side 1600, noEnlarge, delete
        {24, 'D'}, {26, ':'}, {28, 0x3000},                     // UTF-16 "D:" and a character beyond ASCII
        {1064, 2}, {1068, 85}, {1072, 30}, {1076, 0}, {1080, 70}, {1092, 16}};
    for (const auto& [offset, value] : words)  // in order: each character's upper zeros are overwritten
        for (int i = 0; i < 4; ++i) block[offset + i] = static_cast<uint8_t>(value >> (8 * i));
    EXPECT_EQ(Fields(ConvertOptionsFromBlock(block.data(), block.size())),
              std::wstring(L"10 0 1600 1 1 1 'D:") + wchar_t(0x3000) + L"' 2 85 30 0 70 0 0 16 0 0");
}

TEST(ConvertOptionsTest, FoldersAreCutInsideTheBuffer) {
    std::vector<uint8_t> block(1104, 0);
    for (size_t i = 0; i < 520; ++i) block[24 + 2 * i] = 'x';  // no terminator
    EXPECT_EQ(OutputFolder(ConvertOptionsFromBlock(block.data(), block.size())), std::wstring(519, L'x'));

    ConvertOptions o = DefaultConvertOptions();
    SetOutputFolder(o, std::wstring(600, L'a'));
    EXPECT_EQ(OutputFolder(o), std::wstring(519, L'a'));
    SetOutputFolder(o, L"C:\\out");
    EXPECT_EQ(o.outputFolder[518], 0) << "the old, longer name must not linger";
    EXPECT_EQ(Fields(o), L"2 2 100 1 0 0 'C:\\out' 0 94 0 1 94 0 0 8 0 0") << "nor spill into the next field";
}

}  // namespace
}  // namespace lx
