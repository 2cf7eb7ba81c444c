#include <gtest/gtest.h>

#include <set>

#include "ConvertNaming.h"

namespace lx {
namespace {

TEST(ConvertNamingTest, DestinationTakesTheSaveTypesExtensionUnlessTheNameAlreadyFits) {
    EXPECT_EQ(ConvertDestination(L"C:\\out", L"C:\\in\\a.png", kImageJpeg), L"C:\\out\\a.jpg");
    EXPECT_EQ(ConvertDestination(L"C:\\out\\", L"C:\\in\\a.jpeg", kImageJpeg), L"C:\\out\\a.jpeg");
    EXPECT_EQ(ConvertDestination(L"C:\\in\\", L"C:\\in\\a.JPE", kImageJpeg), L"C:\\in\\a.JPE");
    EXPECT_EQ(ConvertDestination(L"/out", L"/in/b.bmp", kImagePnm), L"/out/b.ppm");
    EXPECT_EQ(ConvertDestination(L"/out", L"/in/b.dib", kImageBmp), L"/out/b.dib");
    EXPECT_EQ(ConvertDestination(L"/out", L"/in/noext", kImagePng), L"/out/noext.png");
    // Sun raster has no forced extension: the name is kept as it is.
    EXPECT_EQ(ConvertDestination(L"/out", L"/in/c.bmp", kImageRas), L"/out/c.bmp");
}

TEST(ConvertNamingTest, SetAsideNamesCountFromZeroWithTwoDigits) {
    EXPECT_EQ(SetAsideName(L"C:\\in\\a.jpeg", 0), L"C:\\in\\a.jpeg.~00");
    EXPECT_EQ(SetAsideName(L"a", 7), L"a.~07");
    EXPECT_EQ(SetAsideName(L"a", 98), L"a.~98");
}

TEST(ConvertNamingTest, FirstFreeSetAsideNameIsTaken) {
    std::set<std::wstring> taken{L"a.~00", L"a.~01", L"a.~03"};
    auto exists = [&](const std::wstring& n) { return taken.count(n) > 0; };
    EXPECT_EQ(FindSetAsideName(L"a", exists), L"a.~02");
    taken.insert(L"a.~02");
    EXPECT_EQ(FindSetAsideName(L"a", exists), L"a.~04");
}

TEST(ConvertNamingTest, SearchStopsAtNinetyEightEvenWhenItIsTaken) {
    int asked = 0;
    auto everything = [&](const std::wstring&) { ++asked; return true; };
    EXPECT_EQ(FindSetAsideName(L"a", everything), L"a.~98");
    EXPECT_EQ(asked, 98) << "0 to 97 are asked about; 98 is taken without asking";
    auto allButLast = [](const std::wstring& n) { return n != L"a.~97"; };
    EXPECT_EQ(FindSetAsideName(L"a", allButLast), L"a.~97");
}

}  // namespace
}  // namespace lx
