// What the paste dialog asks and keeps: the blend mode, the opacity, the drop shadow and where
// the pasted picture goes. Stored as one 40-byte record under "Edit" / "Paste"; a stored value
// of any other size counts as missing and the defaults below apply.
//
// The blend modes are the seventeen of the image class (MifBlend), listed in the dialog in
// the order of kPasteModes; the code, never the row, is what is stored and passed on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace lx {

struct PasteSettings {
    int32_t mode = 0;             // blend code
    int32_t opacity = 100;        // percent, 0..100
    int32_t shadow = 0;           // drop shadow on: 0 or 1
    int32_t softness = 16;        // 0..50
    int32_t distance = 3;         // pixels, -16..16
    uint32_t shadowColour = 0;    // 0x00BBGGRR
    int32_t byHand = 0;           // 0: by the anchor; otherwise the user places it in the view
    int32_t anchor = 0;           // cell 0..8: row = cell / 3, column = cell % 3
    int32_t offsetX = 0;          // added to the anchored place, pixels
    int32_t offsetY = 0;
};
static_assert(sizeof(PasteSettings) == 40);

constexpr int kMaxSoftness = 50;
constexpr int kMaxShadowDistance = 16;
// The offsets the dialog takes: far beyond any picture the editor holds.
constexpr int kMaxPasteOffset = 100000;

// The record read back from the store (`size` bytes at `data`): the stored values when it is
// exactly 40 bytes, each brought into its range; the defaults otherwise.
PasteSettings PasteSettingsFromStored(const void* data, size_t size);

// One row of the dialog's mode list: the code and the name it shows.
struct PasteMode {
    int code;
    const wchar_t* name;
};
std::span<const PasteMode> PasteModes();
// The list row showing `code`; row 0 ("通常") for a code that is not in the list.
int PasteModeRow(int code);
// The code of list row `row`; 0 for a row outside the list.
int PasteModeCode(int row);

// Where an inner picture of innerWidth x innerHeight goes in an outer one by an anchor cell
// (0 top-left ... 4 centre ... 8 bottom-right): left, centred or right by the column, top,
// centred or bottom by the row, halves truncated. Negative when the inner one is larger.
struct PastePoint {
    int x = 0;
    int y = 0;
};
PastePoint AnchorPosition(int cell, int outerWidth, int outerHeight, int innerWidth, int innerHeight);

}  // namespace lx
