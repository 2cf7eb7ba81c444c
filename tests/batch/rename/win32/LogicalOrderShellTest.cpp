// The portable logical order against the shell's own (StrCmpLogicalW), which the dialog uses
// on Windows: both must sort camera file names the same way.
#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "LogicalOrder.h"

namespace {

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(LogicalOrderShell, AgreesWithTheShellOnCameraFileNames) {
    const std::vector<std::wstring> names{
        L"IMG_0001.JPG", L"IMG_0002.jpg", L"img_0010.jpg", L"IMG_10.jpg", L"IMG2.jpg",  L"IMG10.jpg",
        L"DSC00099.JPG", L"DSC00100.JPG", L"DSCN0001.jpg", L"P1000001.JPG", L"_DSC0001.NEF", L"a.jpg",
        L"B.jpg",        L"photo 2.jpg",  L"photo 10.jpg", L"photo.jpg",  L"20240507_1.jpg", L"20240507_10.jpg",
        L"20240507_2.jpg", L"H360507.jpg", L"x1y2.jpg",   L"x1y10.jpg"};
    for (const std::wstring& a : names) {
        for (const std::wstring& b : names) {
            EXPECT_EQ(Sign(lx::CompareLogical(a, b)), Sign(StrCmpLogicalW(a.c_str(), b.c_str())))
                << std::string(a.begin(), a.end()) << " / " << std::string(b.begin(), b.end());
        }
    }
}

}  // namespace
