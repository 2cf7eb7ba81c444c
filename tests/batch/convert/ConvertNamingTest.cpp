#include <gtest/gtest.h>

#include <set>

#include "ConvertNaming.h"

namespace lx {
namespace {

TEST(ConvertNamingTest, DestinationTakesTheSaveTypesExtensionUnlessTheNameAlreadyFits) {
    const struct { const wchar_t *folder, *source; ImageType type; const wchar_t* expected; } cases[] = {
        {L"C:\\out", L"C:\\in\\a.png", kImageJpeg, L"C:\\out\\a.jpg"},
        {L"C:\\out\\", L"C:\\in\\a.jpeg", kImageJpeg, L"C:\\out\\a.jpeg"},
        {L"C:\\in\\", L"C:\\in\\a.JPE", kImageJpeg, L"C:\\in\\a.JPE"},
        {L"/out", L"/in/b.bmp", kImagePnm, L"/out/b.ppm"},
        {L"/out", L"/in/b.dib", kImageBmp, L"/out/b.dib"},
        {L"/out", L"/in/noext", kImagePng, L"/out/noext.png"},
        {L"/out", L"/in/c.bmp", kImageRas, L"/out/c.bmp"},  // Sun raster forces no extension
        // A dot in a folder name typed with "/" is not the file's extension.
        {L"C:/Users/me/photos.2024", L"D:\\scan\\IMG0001", kImageJpeg, L"C:/Users/me/photos.2024/IMG0001.jpg"},
        {L"C:\\my.photos/out", L"D:\\scan\\IMG0001", kImageJpeg, L"C:\\my.photos/out/IMG0001.jpg"},
    };
    for (const auto& c : cases) EXPECT_EQ(ConvertDestination(c.folder, c.source, c.type), c.expected) << c.source;
}

TEST(ConvertNamingTest, SetAsideNameIsTheFirstFreeTwoDigitNumberUpToNinetyEight) {
    EXPECT_EQ(SetAsideName(L"C:\\in\\a.jpeg", 7), L"C:\\in\\a.jpeg.~07");
    std::set<std::wstring> taken{L"a.~00", L"a.~01", L"a.~03"};
    EXPECT_EQ(FindSetAsideName(L"a", [&](const std::wstring& n) { return taken.count(n) > 0; }), L"a.~02");
    int asked = 0;
    EXPECT_EQ(FindSetAsideName(L"a", [&](const std::wstring&) { return ++asked > 0; }), L"a.~98");
    EXPECT_EQ(asked, 98) << "0 to 97 are asked about; 98 is taken without asking";
}

}  // namespace
}  // namespace lx
