// The names the thumbnails take. (The extracted bytes are compared with exiftool's through
// lxhost under Wine, tests/module/unattended-batch.sh; the dialog and CREATE_NEW through the
// export.)
#include <gtest/gtest.h>

#include <filesystem>

#include "PickoutRun.h"

namespace lx {
namespace {

namespace fs = std::filesystem;

TEST(PickoutNaming, ExtensionComesFromTheFirstTwoBytes) {
    const struct {
        std::vector<uint8_t> bytes;
        const wchar_t* extension;
    } cases[] = {{{'B', 'M', 0, 0}, L".bmp"}, {{0xFF, 0xD8, 0xFF}, L".jpg"}, {{'I', 'I', 42, 0}, L".thumb"},
                 {{0xFF}, L".thumb"},         {{}, L".thumb"}};
    for (const auto& c : cases) EXPECT_EQ(ThumbnailExtension(c.bytes), c.extension);
    const std::vector<uint8_t> jpeg = {0xFF, 0xD8};
    EXPECT_EQ(fs::path(ThumbnailPath({L"out", false}, L"raw/IMG_0001.CR2", jpeg)).filename(), "IMG_0001.thm(S).jpg");
    EXPECT_EQ(fs::path(ThumbnailPath({L"out", true}, L"a.b.nef", jpeg)).filename(), "a.b.thm(L).jpg");
}

}  // namespace
}  // namespace lx
