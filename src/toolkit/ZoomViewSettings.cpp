#include "ZoomViewSettings.h"

#include <cstring>

namespace lx {

namespace {

struct Field {
    uint32_t bit;
    size_t offset;
    size_t length;
};

constexpr Field kFields[] = {
    {kSettingsBackground, offsetof(ZoomViewSettings, background), 4},
    {kSettingsGridColour, offsetof(ZoomViewSettings, gridColour), 4},
    {kSettingsGridShown, offsetof(ZoomViewSettings, gridShown), 4},
    {kSettingsTool, offsetof(ZoomViewSettings, tool), 4},
    {kSettingsScroll, offsetof(ZoomViewSettings, scrollX), 8},
    {kSettingsGridStep, offsetof(ZoomViewSettings, gridStep), 4},
    {kSettingsOptions, offsetof(ZoomViewSettings, options), 4},
    {kSettingsZoom, offsetof(ZoomViewSettings, zoom), 4},
    {kSettingsSelectionColour, offsetof(ZoomViewSettings, selectionColour), 4},
};

}  // namespace

void CopySettingsFields(const ZoomViewSettings& from, ZoomViewSettings& to, uint32_t mask, uint32_t size) {
    for (const Field& field : kFields) {
        if (!(mask & field.bit) || field.offset + field.length > size) continue;
        std::memcpy(reinterpret_cast<uint8_t*>(&to) + field.offset,
                    reinterpret_cast<const uint8_t*>(&from) + field.offset, field.length);
    }
}

// The module only runs on little-endian machines, but the stored form is defined byte by byte.
void SettingsToBytes(const ZoomViewSettings& settings, uint8_t (&bytes)[60]) {
    uint32_t words[15];
    std::memcpy(words, &settings, sizeof(words));
    for (int i = 0; i < 15; ++i)
        for (int b = 0; b < 4; ++b) bytes[i * 4 + b] = static_cast<uint8_t>(words[i] >> (8 * b));
}

std::optional<ZoomViewSettings> SettingsFromBytes(std::span<const uint8_t> bytes) {
    if (bytes.size() != sizeof(ZoomViewSettings)) return std::nullopt;
    uint32_t words[15];
    for (int i = 0; i < 15; ++i) {
        words[i] = 0;
        for (int b = 0; b < 4; ++b) words[i] |= uint32_t{bytes[i * 4 + b]} << (8 * b);
    }
    ZoomViewSettings settings;
    std::memcpy(&settings, words, sizeof(words));
    return settings;
}

}  // namespace lx
