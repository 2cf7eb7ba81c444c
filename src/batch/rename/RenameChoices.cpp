#include "RenameChoices.h"

namespace lx {

namespace {

int SignedByte(uint32_t packed, int shift) {
    return static_cast<int8_t>(static_cast<uint8_t>(packed >> shift));
}

int Clamp(int value, int highest) {
    if (value < 0) return 0;
    return value > highest ? highest : value;
}

}  // namespace

uint32_t PackRenameChoices(const RenameChoices& choices) {
    return (static_cast<uint32_t>(choices.item1) & 0xFF) | ((static_cast<uint32_t>(choices.item2) & 0xFF) << 8) |
           ((static_cast<uint32_t>(choices.item3) & 0xFF) << 16) |
           ((static_cast<uint32_t>(choices.resetRule) & 0xFF) << 24);
}

RenameChoices UnpackRenameChoices(uint32_t packed) {
    RenameChoices choices;
    if (packed == 0) return choices;
    // Items are restored up to the last counter item only: the old-name item is never
    // brought back from the setting.
    choices.item1 = Clamp(SignedByte(packed, 0), kItemCounter4);
    choices.item2 = Clamp(SignedByte(packed, 8), kItemCounter4);
    choices.item3 = Clamp(SignedByte(packed, 16), kItemCounter4);
    choices.resetRule = Clamp(SignedByte(packed, 24), kResetOnYear);
    return choices;
}

}  // namespace lx
