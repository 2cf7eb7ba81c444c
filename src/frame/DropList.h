// Reads a shell drop block (a DROPFILES header and its NUL-terminated names, closed by a
// further NUL) without trusting it: the block comes from the registry, written by another
// program, and the shell's own readers follow its offsets wherever they point.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lx {

constexpr size_t kDropFilesHeaderBytes = 20;  // pFiles, pt.x, pt.y, fNC, fWide

// Turns one eight-bit name into wide text (the ANSI code page on Windows).
using NarrowToWide = std::wstring (*)(const std::string& name);

// The names of the block in list order. Empty when the list starts outside the block, when
// a name or the closing empty name runs past its end, or when it holds no name at all.
// Wide names are taken unit by unit; eight-bit names go through `widen`.
std::vector<std::wstring> DropListNames(const uint8_t* block, size_t size, NarrowToWide widen);

}  // namespace lx
