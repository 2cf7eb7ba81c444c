// The layout of a tool-bar resource: little-endian 16-bit words, a version (1), the button
// image width and height, the item count, then one command id per item (0 = separator).
// Parsed here without trusting the data: a short or inconsistent block gives no template.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lx {

struct ToolBarTemplate {
    int imageWidth = 0;
    int imageHeight = 0;
    std::vector<uint16_t> commands;  // 0 marks a separator

    // Buttons with an image: the images of the strip are used in this order.
    size_t ImageCount() const;
};

std::optional<ToolBarTemplate> ParseToolBarTemplate(const uint8_t* data, size_t size);

}  // namespace lx
