// Writes a whole file so that the target name only ever holds a complete file: the bytes
// go to a temporary name in the same folder, which is then renamed over the target. A
// failed write leaves any earlier file under the target name untouched and removes the
// temporary one. Paths are std::filesystem::path, so wide (e.g. Japanese) names work on
// Windows.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace lx {

bool WriteFileAtomically(const std::filesystem::path& target, std::span<const uint8_t> bytes);

// True for a file name ("a.jpg.~lx123-4.tmp") of the form WriteFileAtomically gives its
// temporary files: what a write cut short by a killed process leaves behind.
bool IsAtomicTemporaryName(const std::wstring& fileName);

}  // namespace lx
