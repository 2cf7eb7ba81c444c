// Reads a whole file into memory in one go. The file is opened for reading only, so other
// programs may keep it open for reading or writing meanwhile.
#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <vector>

namespace lx {

// The file's bytes; nullopt when it cannot be opened or read to its end, when it is larger
// than `maxBytes`, or when memory for it cannot be had.
std::optional<std::vector<uint8_t>> ReadWholeFile(const std::filesystem::path& path,
                                                  uint64_t maxBytes = std::numeric_limits<uint64_t>::max());

}  // namespace lx
