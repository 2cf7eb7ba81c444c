#include "SlideSet.h"

#include <gtest/gtest.h>

#include <cwctype>

namespace lx {
namespace {

// Stand-ins for the shell's rules: names ordered by their number where they have one (as
// the logical order does), paths compared without case.
SlideNameRules TestRules() {
    auto fold = [](std::wstring s) {
        for (wchar_t& c : s) c = static_cast<wchar_t>(std::towlower(c));
        return s;
    };
    return {[](const std::wstring& a, const std::wstring& b) {
                const int na = std::stoi(a.substr(1)), nb = std::stoi(b.substr(1));
                return na < nb ? -1 : na > nb ? 1 : 0;
            },
            [fold](const std::wstring& a, const std::wstring& b) { return fold(a) == fold(b); }};
}

TEST(SlideSet, TheFolderOfAFileOrOfAFolder) {
    EXPECT_EQ(SlideFolder(L"C:\\photos\\a.jpg", false), L"C:\\photos\\");
    EXPECT_EQ(SlideFolder(L"C:\\photos", true), L"C:\\photos\\");
    EXPECT_EQ(SlideFolder(L"C:\\photos\\", true), L"C:\\photos\\");
    EXPECT_EQ(SlideFolder(L"D:\\", true), L"D:\\");
}

TEST(SlideSet, ViewableFilesInNameOrderStartingAtTheChosenOne) {
    const std::vector<std::wstring> names = {L"p10.jpg", L"p9.JPG", L"p2.txt", L"p1.bmp", L"p3.jpg.bak", L"p4"};
    const struct {
        const wchar_t* chosen;
        int start;
    } cases[] = {
        {L"", 0},                      // a folder: from the first
        {L"C:\\f\\P9.jpg", 1},         // the chosen file, whatever its case
        {L"C:\\f\\p10.jpg", 2},        // the last
        {L"C:\\f\\p2.txt", 0},         // not a slide: from the first
        {L"C:\\other\\p9.jpg", 0},     // another folder's file of the same name
    };
    for (const auto& c : cases) {
        const SlideSet set = MakeSlideSet(L"C:\\f\\", names, c.chosen, TestRules());
        EXPECT_EQ(set.paths, (std::vector<std::wstring>{L"C:\\f\\p1.bmp", L"C:\\f\\p9.JPG", L"C:\\f\\p10.jpg"}));
        EXPECT_EQ(set.start, c.start) << testing::PrintToString(std::wstring(c.chosen));
    }
    EXPECT_TRUE(MakeSlideSet(L"C:\\f\\", {L"p1.txt", L"p2"}, L"", TestRules()).paths.empty());
}

}  // namespace
}  // namespace lx
