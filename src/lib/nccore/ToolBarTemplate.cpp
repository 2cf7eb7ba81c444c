#include "ToolBarTemplate.h"

namespace lx {

namespace {

constexpr uint16_t kVersion = 1;
constexpr size_t kHeaderWords = 4;

uint16_t WordAt(const uint8_t* data, size_t index) {
    return static_cast<uint16_t>(data[2 * index] | (data[2 * index + 1] << 8));
}

}  // namespace

size_t ToolBarTemplate::ImageCount() const {
    size_t count = 0;
    for (uint16_t command : commands) count += command != 0;
    return count;
}

std::optional<ToolBarTemplate> ParseToolBarTemplate(const uint8_t* data, size_t size) {
    if (data == nullptr || size < 2 * kHeaderWords) return std::nullopt;
    if (WordAt(data, 0) != kVersion) return std::nullopt;
    ToolBarTemplate result;
    result.imageWidth = WordAt(data, 1);
    result.imageHeight = WordAt(data, 2);
    const size_t count = WordAt(data, 3);
    if (result.imageWidth == 0 || result.imageHeight == 0) return std::nullopt;
    // Resources are padded to a multiple of four bytes, so trailing bytes are allowed.
    if (size / 2 < kHeaderWords + count) return std::nullopt;
    result.commands.reserve(count);
    for (size_t i = 0; i < count; ++i) result.commands.push_back(WordAt(data, kHeaderWords + i));
    return result;
}

}  // namespace lx
