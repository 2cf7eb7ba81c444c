// Stored view settings come from the registry: any bytes, any size and mask.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ZoomGeometry.h"
#include "ZoomViewSettings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto settings = lx::SettingsFromBytes(std::span<const uint8_t>(data, size < 60 ? size : 60));
    if (!settings) return 0;
    lx::ZoomViewSettings view;
    lx::CopySettingsFields(*settings, view, settings->mask, settings->size);
    // Whatever came in, the geometry it drives stays in range.
    const int zoom = lx::ClampZoom(view.zoom);
    const lx::ViewMapping map = lx::MapView(view.gridStep, static_cast<int>(view.options), view.zoom,
                                            static_cast<int>(view.background & 0xffff), 300, view.scrollX, view.scrollY);
    if (map.zoom != zoom || map.scrollX < 0 || map.scrollY < 0) __builtin_trap();
    (void)map.ToImageX(view.scrollY);
    (void)lx::ClipSelection({view.scrollX, view.scrollY, view.tool, view.gridShown}, view.gridStep, 40);
    (void)lx::FitZoom(static_cast<lx::ZoomCommand>(view.tool & 7), view.gridStep, view.scrollY,
                      static_cast<int>(view.gridColour & 0xffff), 200, 16, 16, true);
    return 0;
}
