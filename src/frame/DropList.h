// Checks a shell drop block (a DROPFILES header and its NUL-terminated names, closed by a
// further NUL) before anything walks it: the block comes from the registry, written by
// another program, and the shell's own readers trust its offsets.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

constexpr size_t kDropFilesHeaderBytes = 20;  // pFiles, pt.x, pt.y, fNC, fWide

// True when the name list starts inside the block and ends, with its closing empty name,
// before the block does (wide or eight-bit names, as the header says).
bool IsWellFormedDropList(const uint8_t* block, size_t size);

}  // namespace lx
