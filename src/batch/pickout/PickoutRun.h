// The thumbnail pickout run: the thumbnail or preview that each file embeds (the smallest or
// the largest one, see ReadEmbeddedImage) written byte for byte into a file of its own in the
// output folder, named "<name>.thm(L)" or "<name>.thm(S)" plus an extension told by the
// data's first bytes. An existing file is never replaced: that thumbnail is skipped.
//
// Creating a file only when its name is free is the system's part (NewFileWriter), so the
// run stays portable.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ToolSink.h"

namespace lx {

struct PickoutOptions {
    std::wstring folder;
    bool takeLargest = true;
};

// Creates `path` only when no file has that name, and writes all of `bytes`; false otherwise
// (and then no partial file is left).
using NewFileWriter = std::function<bool(const std::wstring& path, std::span<const uint8_t> bytes)>;

// ".bmp" for data starting "BM", ".jpg" for the JPEG start-of-image bytes, else ".thumb".
std::wstring ThumbnailExtension(std::span<const uint8_t> bytes);

// The output path for the thumbnail `bytes` of `source`.
std::wstring ThumbnailPath(const PickoutOptions& options, const std::wstring& source, std::span<const uint8_t> bytes);

// The number of thumbnail files written.
int RunPickout(const PickoutOptions& options, const std::vector<std::wstring>& files, const NewFileWriter& writeNew,
               ToolSink& sink);

}  // namespace lx
