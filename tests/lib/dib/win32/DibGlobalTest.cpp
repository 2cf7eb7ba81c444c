// Hand-overs of DIBs as global memory blocks: the ones that give a DIB up move its block and
// copy nothing; a block that cannot be kept as it is is read into a new DIB and freed.
#include "DibGlobal.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace lx;

namespace {

PackedDib Numbered(int width, int height) {
    PackedDib dib = PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y) std::memset(dib.row(y), y + 1, dib.stride());
    return dib;
}

}  // namespace

TEST(DibGlobal, ReleasedAndAdoptedBlocksAreTheDibsOwnBytes) {
    PackedDib dib = Numbered(7, 5);
    const uint8_t* bytes = dib.bytes().data();
    HGLOBAL block = ReleaseToGlobal(std::move(dib));
    ASSERT_EQ(static_cast<const void*>(block), bytes);
    EXPECT_TRUE(dib.empty());
    EXPECT_EQ(GlobalLock(block), block);  // a fixed block, as the receiver may lock it
    GlobalUnlock(block);

    std::optional<PackedDib> back = AdoptGlobal(block);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bytes().data(), bytes);
    EXPECT_EQ(back->row(4)[0], 5);
}

// Movable blocks (the clipboard's) and top-down ones are copied, upright, and freed.
TEST(DibGlobal, OtherBlocksAreReadUprightAndFreed) {
    const PackedDib dib = Numbered(3, 4);
    for (bool topDown : {false, true}) {
        HGLOBAL block = DibToGlobal(dib);
        auto* p = static_cast<uint8_t*>(GlobalLock(block));
        if (topDown) {
            WriteLe32(p + 8, static_cast<uint32_t>(-4));
            for (int y = 0; y < 4; ++y) std::memcpy(p + dib.bitsOffset() + y * dib.stride(), dib.row(y), dib.stride());
        }
        GlobalUnlock(block);
        std::optional<PackedDib> taken = AdoptGlobal(block);
        ASSERT_TRUE(taken) << topDown;
        EXPECT_EQ(taken->bytes(), dib.bytes()) << topDown;
        EXPECT_EQ(GlobalSize(block), 0u) << topDown;  // freed
    }
}
