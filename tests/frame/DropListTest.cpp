#include "DropList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DropBlock.h"

using lx::DropListNames;
using Names = std::vector<std::wstring>;

namespace {

// Eight-bit names as the test spells them: one byte, one character.
std::wstring Latin1(const std::string& name) { return std::wstring(name.begin(), name.end()); }

Names Read(const std::vector<uint8_t>& block) { return DropListNames(block.data(), block.size(), &Latin1); }

std::vector<uint8_t> Bytes(std::initializer_list<uint8_t> header, const std::string& rest = {}) {
    std::vector<uint8_t> block(header);
    block.insert(block.end(), rest.begin(), rest.end());
    return block;
}

}  // namespace

TEST(DropList, ReadsWideAndEightBitNamesInListOrder) {
    const Names wide = {L"C:\\b\\2.jpg", L"C:\\a\\1.jpg", L"D:\\\u5199\u771f\\3.jpg"};
    EXPECT_EQ(Read(lxtest::WideDropBlock(wide)), wide);
    const auto narrow = Bytes({24, 0, 0, 0, /* pFiles */ 0, 0, 0, 0, 0, 0, 0, 0, /* pt */ 0, 0, 0, 0, /* fNC */
                               0, 0, 0, 0, /* fWide: no */ 9, 9, 9, 9 /* gap before the names */},
                              std::string("C:\\a.jpg\0C:\\b.jpg\0\0", 19));
    EXPECT_EQ(Read(narrow), (Names{L"C:\\a.jpg", L"C:\\b.jpg"}));
}

TEST(DropList, EmptyOrRunawayListsGiveNoName) {
    auto unclosed = lxtest::WideDropBlock({L"C:\\a.jpg"});
    unclosed.resize(unclosed.size() - 2);  // no closing empty name
    auto halfUnit = lxtest::WideDropBlock({L"C:\\a.jpg"});
    halfUnit.pop_back();  // one byte of the closing NUL
    auto badOffset = lxtest::WideDropBlock({});
    badOffset[0] = 200;  // names would start past the block
    auto insideHeader = lxtest::WideDropBlock({L"C:\\a.jpg"});
    insideHeader[0] = 4;
    const std::vector<uint8_t> blocks[] = {
        lxtest::WideDropBlock({}),  // the header and the closing NUL only
        unclosed, halfUnit, badOffset, insideHeader,
        std::vector<uint8_t>(3),
    };
    for (const auto& block : blocks) EXPECT_EQ(Read(block), Names{}) << testing::PrintToString(block);
    EXPECT_EQ(DropListNames(nullptr, 0, &Latin1), Names{});
}
