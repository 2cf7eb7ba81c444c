// The view settings record that frames read from the image view (message 1710), keep in the
// registry ("ZoomViewInfo") and hand back (message 1709).
//
// 60 bytes of little-endian 32-bit fields. The caller fills `size` (60) and `mask`, the set of
// fields it wants read or applied; the view touches only those fields and only within `size`
// bytes, so a frame that keeps a shorter record (the viewer keeps only what it needs to carry
// zoom and scroll from one picture to the next) is safe. The zoom sits at byte 48, where
// frames look for it in the stored record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace lx {

enum ZoomViewSettingsMask : uint32_t {
    kSettingsBackground = 1u << 0,
    kSettingsGridColour = 1u << 1,
    kSettingsGridShown = 1u << 2,
    kSettingsTool = 1u << 3,
    kSettingsScroll = 1u << 4,
    kSettingsGridStep = 1u << 5,
    kSettingsOptions = 1u << 6,
    kSettingsZoom = 1u << 7,
    kSettingsSelectionColour = 1u << 8,
};

// The view's mouse tools.
enum ZoomViewTool : int32_t { kToolSelect = 0, kToolHand = 1 };

struct ZoomViewSettings {
    uint32_t size = 60;
    uint32_t mask = 0;
    uint32_t background = 0x464646;  // COLORREF
    uint32_t gridColour = 0x808080;  // COLORREF
    int32_t gridShown = 0;
    int32_t tool = kToolSelect;
    int32_t scrollX = 0;
    int32_t scrollY = 0;
    int32_t gridStep = 16;  // image pixels between grid lines
    uint32_t options = 0;
    uint32_t selectionColour = 0x0000FF;  // COLORREF
    int32_t reserved1 = 0;
    int32_t zoom = 1000;  // tenths of a percent
    int32_t reserved2 = 0;
    int32_t reserved3 = 0;
};

static_assert(sizeof(ZoomViewSettings) == 60);
static_assert(offsetof(ZoomViewSettings, zoom) == 48);
static_assert(offsetof(ZoomViewSettings, scrollX) == 24 && offsetof(ZoomViewSettings, options) == 36);

// Copies into `to` the fields of `from` that `mask` names and that lie wholly within the first
// `size` bytes; `size` and `mask` of `to` are left alone.
void CopySettingsFields(const ZoomViewSettings& from, ZoomViewSettings& to, uint32_t mask, uint32_t size);

// The record as its 60 stored bytes, and back; nullopt unless exactly 60 bytes.
void SettingsToBytes(const ZoomViewSettings& settings, uint8_t (&bytes)[60]);
std::optional<ZoomViewSettings> SettingsFromBytes(std::span<const uint8_t> bytes);

}  // namespace lx
