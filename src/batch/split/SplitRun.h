// The split run: each image of the list cut into a right half ("-1.jpg") and a left half
// ("-2.jpg") beside it, as for scanned two-page spreads, and the source given up to the
// recycle bin once both halves are written. Used by the tool, by lxhost's unattended form
// and by the tests; the question about portrait images and the recycle bin come in
// SplitServices, so the run itself touches no window.
//
// Landscape images are always split. Before a portrait image the question is asked (when
// there is one to ask, and the user has not ticked "the same for the rest"); Yes splits,
// No and Cancel leave that image. Square images follow the last answer given.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "PackedDib.h"
#include "ToolSink.h"

namespace lx {

// What the user said about one portrait image.
struct PortraitReply {
    int button = kIdNo;      // kIdYes, kIdNo or kIdCancel
    bool sameForRest = false;  // the verification box: ask no more
};

struct SplitServices {
    // Asks about one portrait image (file name, width, height). nullopt when the question
    // could not be shown: the run stops. Empty when there is no way to ask: portraits are
    // split.
    std::function<std::optional<PortraitReply>(const std::wstring& fileName, int width, int height)> askPortrait;
    // Gives the source up to the recycle bin; false when it stays where it is.
    std::function<bool(const std::wstring& path)> recycle;
};

struct SplitTexts {
    std::wstring loading;  // "読み込んでいます..."
    std::wstring saving;   // "保存しています..."
};

struct SplitRunResult {
    int split = 0;     // images whose two halves were written
    int recycled = 0;  // sources that went to the recycle bin
    int skipped = 0;   // unreadable, declined, or a half not written
    bool stopped = false;  // cancelled, or the question failed
};

// The output name of a half: the source without its extension, then "-1.jpg" (right, half
// 1) or "-2.jpg" (left, half 2).
std::wstring SplitHalfPath(const std::wstring& source, int half);

// The right half (columns width / 2 to width, so one wider for an odd width) and the left
// half; both empty when the image cannot be cut.
struct SplitHalves {
    PackedDib right, left;
};
SplitHalves CutInHalves(const PackedDib& image);

SplitRunResult RunSplit(const std::vector<std::wstring>& files, const SplitTexts& texts, ToolSink& sink,
                        const SplitServices& services);

}  // namespace lx
