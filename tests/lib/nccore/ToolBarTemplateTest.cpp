#include "ToolBarTemplate.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<uint8_t> Words(std::initializer_list<uint16_t> words) {
    std::vector<uint8_t> bytes;
    for (uint16_t w : words) {
        bytes.push_back(static_cast<uint8_t>(w & 0xff));
        bytes.push_back(static_cast<uint8_t>(w >> 8));
    }
    return bytes;
}

TEST(ToolBarTemplate, ReadsSizeAndCommandsWithSeparators) {
    const auto bytes = Words({1, 16, 15, 5, 2001, 2002, 0, 0x9c41, 2003});
    const auto parsed = lx::ParseToolBarTemplate(bytes.data(), bytes.size());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->imageWidth, 16);
    EXPECT_EQ(parsed->imageHeight, 15);
    EXPECT_EQ(parsed->commands, (std::vector<uint16_t>{2001, 2002, 0, 0x9c41, 2003}));
    EXPECT_EQ(parsed->ImageCount(), 4u);
}

TEST(ToolBarTemplate, AcceptsResourcePaddingAndAnEmptyBar) {
    auto bytes = Words({1, 24, 24, 1, 7});
    bytes.push_back(0);
    bytes.push_back(0);
    const auto padded = lx::ParseToolBarTemplate(bytes.data(), bytes.size());
    ASSERT_TRUE(padded);
    EXPECT_EQ(padded->commands.size(), 1u);

    const auto empty = Words({1, 16, 16, 0});
    const auto parsed = lx::ParseToolBarTemplate(empty.data(), empty.size());
    ASSERT_TRUE(parsed);
    EXPECT_TRUE(parsed->commands.empty());
}

TEST(ToolBarTemplate, RejectsBrokenBlocks) {
    auto halfWord = Words({1, 16, 15, 2, 100});
    halfWord.push_back(0x65);  // 2.5 items: the second is not all there
    for (const auto& bytes : {Words({2, 16, 15, 1, 100}),        // wrong version
                              Words({1, 16, 15, 3, 100, 101}),   // count too large
                              halfWord, Words({1, 0, 15, 1, 100}),  // zero image width
                              Words({1, 16, 15})})                 // header only
        EXPECT_FALSE(lx::ParseToolBarTemplate(bytes.data(), bytes.size()));
    EXPECT_FALSE(lx::ParseToolBarTemplate(nullptr, 0));
}

}  // namespace
