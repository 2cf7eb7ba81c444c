#include "DropList.h"

#include <gtest/gtest.h>

#include <vector>

using lx::IsWellFormedDropList;

namespace {

std::vector<uint8_t> Header(uint32_t offset, bool wide) {
    std::vector<uint8_t> h(20, 0);
    h[0] = static_cast<uint8_t>(offset);
    h[16] = wide ? 1 : 0;
    return h;
}

void AddWide(std::vector<uint8_t>& b, const char16_t* text) {
    for (const char16_t* p = text;; ++p) {
        b.push_back(static_cast<uint8_t>(*p & 0xff));
        b.push_back(static_cast<uint8_t>(*p >> 8));
        if (!*p) break;
    }
}

}  // namespace

TEST(DropList, AcceptsWideAndEightBitLists) {
    auto wide = Header(20, true);
    AddWide(wide, u"C:\\a.jpg");
    AddWide(wide, u"C:\\\u5199.jpg");
    AddWide(wide, u"");
    EXPECT_TRUE(IsWellFormedDropList(wide.data(), wide.size()));

    auto narrow = Header(20, false);
    for (char c : std::string("C:\\a.jpg")) narrow.push_back(static_cast<uint8_t>(c));
    narrow.insert(narrow.end(), {0, 0});
    EXPECT_TRUE(IsWellFormedDropList(narrow.data(), narrow.size()));

    auto empty = Header(20, true);
    empty.insert(empty.end(), {0, 0});
    EXPECT_TRUE(IsWellFormedDropList(empty.data(), empty.size()));
}

TEST(DropList, RefusesListsThatRunOffTheBlock) {
    auto unclosed = Header(20, true);
    AddWide(unclosed, u"C:\\a.jpg");  // no closing empty name
    EXPECT_FALSE(IsWellFormedDropList(unclosed.data(), unclosed.size()));

    auto halfUnit = Header(20, true);
    AddWide(halfUnit, u"C:\\a.jpg");
    halfUnit.push_back(0);  // one byte of the closing NUL
    EXPECT_FALSE(IsWellFormedDropList(halfUnit.data(), halfUnit.size()));

    auto badOffset = Header(200, true);
    badOffset.insert(badOffset.end(), {0, 0});
    EXPECT_FALSE(IsWellFormedDropList(badOffset.data(), badOffset.size()));

    auto insideHeader = Header(4, true);
    insideHeader.insert(insideHeader.end(), {0, 0});
    EXPECT_FALSE(IsWellFormedDropList(insideHeader.data(), insideHeader.size()));

    EXPECT_FALSE(IsWellFormedDropList(nullptr, 0));
    const uint8_t tiny[3] = {};
    EXPECT_FALSE(IsWellFormedDropList(tiny, sizeof tiny));
}
