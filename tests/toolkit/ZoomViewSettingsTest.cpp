#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ZoomViewSettings.h"

using namespace lx;

namespace {

ZoomViewSettings Distinct() {
    ZoomViewSettings s;
    uint32_t words[15];
    for (uint32_t i = 0; i < 15; ++i) words[i] = 0x11111111u * (i + 1);
    std::memcpy(&s, words, sizeof(words));
    return s;
}

}  // namespace

TEST(ZoomViewSettings, StoredBytesPutTheZoomAtByte48AndRoundTrip) {
    ZoomViewSettings s;
    s.zoom = 1250;
    s.scrollX = -3;
    uint8_t bytes[60];
    SettingsToBytes(s, bytes);
    EXPECT_EQ(bytes[0], 60);
    EXPECT_EQ(bytes[48], 1250 & 0xff);
    EXPECT_EQ(bytes[49], 1250 >> 8);
    EXPECT_EQ(bytes[24], 0xfd);
    EXPECT_EQ(bytes[27], 0xff);
    auto back = SettingsFromBytes(bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(std::memcmp(&*back, &s, sizeof(s)), 0);
    // Any other length counts as absent.
    EXPECT_FALSE(SettingsFromBytes(std::span<const uint8_t>(bytes, 59)));
    std::vector<uint8_t> longer(bytes, bytes + 60);
    longer.push_back(0);
    EXPECT_FALSE(SettingsFromBytes(longer));
}

TEST(ZoomViewSettings, CopyTakesOnlyTheMaskedFieldsWithinTheSize) {
    const ZoomViewSettings from = Distinct();
    ZoomViewSettings to;
    const ZoomViewSettings before = to;
    CopySettingsFields(from, to, kSettingsZoom | kSettingsScroll, 60);
    EXPECT_EQ(to.zoom, from.zoom);
    EXPECT_EQ(to.scrollX, from.scrollX);
    EXPECT_EQ(to.scrollY, from.scrollY);
    EXPECT_EQ(to.background, before.background);
    EXPECT_EQ(to.options, before.options);
    EXPECT_EQ(to.size, before.size);
    EXPECT_EQ(to.mask, before.mask);

    // A 48-byte record has no room for the zoom: it is left out, the rest comes.
    ZoomViewSettings shortRecord;
    CopySettingsFields(from, shortRecord, 0xffffffffu, 48);
    EXPECT_EQ(shortRecord.zoom, 1000);
    EXPECT_EQ(shortRecord.selectionColour, from.selectionColour);  // ends at byte 44
    // A scroll pair cut in half is not copied half.
    ZoomViewSettings cut;
    CopySettingsFields(from, cut, kSettingsScroll, 28);
    EXPECT_EQ(cut.scrollX, 0);
    EXPECT_EQ(cut.scrollY, 0);
    // The mask the editor's setup asks with covers its fields and not the zoom.
    ZoomViewSettings editor;
    CopySettingsFields(from, editor, 99, 60);
    EXPECT_EQ(editor.background, from.background);
    EXPECT_EQ(editor.gridStep, from.gridStep);
    EXPECT_EQ(editor.zoom, 1000);
}
