// The contrast-resize run, made for scanned text pages: each image turned grey, reduced to at
// most 1600 pixels high (never enlarged), its levels stretched to the full range, and the
// result put in place of the source as JPEG data of quality 75, the source going to the
// recycle bin. When the source cannot be given up, the result goes beside it as
// "<source>.cr.jpg". The output is JPEG data even under a source's other extension.
//
// Nothing is lost on the way: the JPEG is encoded in memory before the source is touched, so
// only the write itself can still fail, and then the source is put back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ImageLoad.h"
#include "PackedDib.h"
#include "ToolSink.h"

namespace lx {

constexpr int kContrastMaxHeight = 1600;

// The source's way to the recycle bin and back.
class SourceBin {
public:
    virtual ~SourceBin() = default;
    // Gives the source up; false when it stays where it is.
    virtual bool Recycle(const std::wstring& path) = 0;
    // After Recycle: the source is back under its own name.
    virtual void PutBack(const std::wstring& path) = 0;
    // After Recycle: the move stands.
    virtual void Keep(const std::wstring& path) = 0;
};

struct ContrastTexts {
    std::wstring loading;  // "読み込んでいます..."
    std::wstring saving;   // "保存しています..."
};

struct ContrastRunResult {
    int replaced = 0;   // written under the source's own name
    int besides = 0;    // written as ".cr.jpg"
    int skipped = 0;
    bool cancelled = false;
};

// The size after the reduction: the height capped at 1600, the width scaled by the same
// factor (truncated).
struct PixelSize {
    int width = 0, height = 0;
};
PixelSize ContrastSize(int width, int height);

// Grey, reduced and normalised, as JPEG bytes of quality 75; empty when that fails. An image
// decoded at a reduced size passes its full size as `full`: the result's size is the one the
// whole image gives.
std::vector<uint8_t> ContrastJpeg(PackedDib image, PictureSize full = {});

// The name of the result when the source stays: "a.png" gives "a.png.cr.jpg".
std::wstring BesideSourcePath(const std::wstring& source);

ContrastRunResult RunContrastResize(const std::vector<std::wstring>& files, const ContrastTexts& texts,
                                    ToolSink& sink, SourceBin& bin);

}  // namespace lx
