#include "ModuleResources.h"

#include <gtest/gtest.h>

TEST(ModuleResources, LoadsJapaneseTextsFromTheStringTable) {
    EXPECT_EQ(lx::LoadResString(4), L"\u30d5\u30a9\u30c8 \u30ec\u30bf\u30c3\u30c1");
    EXPECT_EQ(lx::LoadResString(4401), L"MainViewer");
    EXPECT_EQ(lx::LoadResString(65000), L"");
}

TEST(ModuleResources, TellsIdsFromTexts) {
    EXPECT_EQ(lx::TextOrResString(MAKEINTRESOURCEW(4612)), L"Status");
    EXPECT_EQ(lx::TextOrResString(L"plain"), L"plain");
    EXPECT_EQ(lx::TextOrResString(nullptr), L"");
}
