// Reads a whole file into memory in one go. The file is opened for reading only, so other
// programs may keep it open for reading or writing meanwhile.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lx {

// Files of 4 GiB or more are refused, as is any file that cannot be opened or read to its end.
// `bytes` is set only on success.
bool ReadWholeFile(const std::filesystem::path& path, std::vector<uint8_t>& bytes);

}  // namespace lx
