#include "PasteBlend.h"

#include <algorithm>

namespace lx {

int OpacityAlpha(int opacityPercent) { return std::clamp(opacityPercent, 0, 100) * 255 / 100; }

int ShadowMargin(int softness) { return softness >= 1 ? (softness + 10) / 5 : 0; }

mif MakeShadow(int layerWidth, int layerHeight, const PasteSettings& settings) {
    const int softness = std::clamp(settings.softness, 0, kMaxSoftness);
    const int m = ShadowMargin(softness);
    const int distance = std::clamp(settings.distance, -kMaxShadowDistance, kMaxShadowDistance);
    mif shadow(layerWidth + 2 * m, layerHeight + 2 * m, 24);
    if (shadow.empty()) return shadow;
    // Black around a white rectangle of the layer's size: blurred, the white spills over the
    // edges and becomes the soft rim.
    shadow.solidfill(m, m, layerWidth, layerHeight, 0xFFFFFF, 255, 0);
    if (softness > 0) shadow.blur_gauss_rle(nullptr, softness / 10.0);
    // Where the layer will lie nothing of the shadow is left: the layer may be translucent and
    // must not show its own shadow through itself.
    const MifRect under{m - distance, m - distance, m - distance + layerWidth, m - distance + layerHeight};
    MifRect cut;
    if (shadow.validaterect(&under, &cut)) shadow.solidfill(&cut, 0x000000, 255, 0);
    shadow.settoalpha();
    shadow.solidfill(nullptr, settings.shadowColour & 0xFFFFFF, 255, 1);
    return shadow;
}

bool BlendLayer(mif& target, mif& layer, int x, int y, const PasteSettings& settings) {
    if (settings.opacity <= 0 || target.empty() || layer.empty()) return false;
    if (PasteModeCode(PasteModeRow(settings.mode)) != settings.mode) return false;
    const int alpha = OpacityAlpha(settings.opacity);
    // 24 bits on both sides: the target's depth is what the paste makes of it, and a 32-bit
    // layer's fourth bytes are no alpha the user chose.
    if (!target.setdepth(24) || !layer.setdepth(24)) return false;
    if (settings.shadow) {
        const mif shadow = MakeShadow(layer.width(), layer.height(), settings);
        if (shadow.empty()) return false;
        const int m = ShadowMargin(std::clamp(settings.softness, 0, kMaxSoftness));
        const int distance = std::clamp(settings.distance, -kMaxShadowDistance, kMaxShadowDistance);
        if (!target.addlayer(&shadow, x + distance - m, y + distance - m, kBlendNormal, alpha)) return false;
    }
    return target.addlayer(&layer, x, y, settings.mode, alpha);
}

}  // namespace lx
