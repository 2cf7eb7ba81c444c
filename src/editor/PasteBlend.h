// Laying a pasted picture over the document: the opacity scale, the soft drop shadow and the
// blend itself, on the image class. Portable; the paste command gathers the pictures and the
// settings and commits what comes out.
#pragma once

#include "PasteSettings.h"
#include "mif.h"

namespace lx {

// The layer alpha of an opacity in percent: opacity x 255 / 100, truncated (50 % gives 127,
// 1 % gives 2).
int OpacityAlpha(int opacityPercent);

// How far the shadow's blur may spread beyond the layer: (softness + 10) / 5 for a softness of
// 1 or more, else 0.
int ShadowMargin(int softness);

// The shadow of a layerWidth x layerHeight layer as a 32-bit alpha source in the shadow
// colour: a white rectangle at (m, m) on black, blurred with radius softness / 10, the place
// the layer itself will cover cut away (black), its brightness made the alpha. Lay it at
// (x + distance - m, y + distance - m) for a layer at (x, y). Empty when it cannot be made.
mif MakeShadow(int layerWidth, int layerHeight, const PasteSettings& settings);

// Lays `layer` over `target` with its top-left at (x, y) of the target's pixels, with the
// settings' mode, opacity and shadow. Both pictures become 24 bits first, so a palette or a
// 32-bit layer is taken for its colours alone. False, with the target as it was, for opacity 0
// or a missing picture; a layer partly or wholly outside the target is cut to it.
bool BlendLayer(mif& target, mif& layer, int x, int y, const PasteSettings& settings);

}  // namespace lx
