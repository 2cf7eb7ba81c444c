#include "ContrastRun.h"

#include <filesystem>
#include <limits>

#include "AtomicFile.h"
#include "ImageLoad.h"
#include "JpegWriter.h"
#include "mif.h"

namespace lx {

PixelSize ContrastSize(int width, int height) {
    if (height <= kContrastMaxHeight) return {width, height};
    const int64_t scaled = static_cast<int64_t>(width) * kContrastMaxHeight / height;
    return {scaled < 1 ? 1 : static_cast<int>(scaled), kContrastMaxHeight};
}

std::vector<uint8_t> ContrastJpeg(PackedDib image, PictureSize full) {
    if (full.width <= 0 || full.height <= 0) full = {image.width(), image.height()};
    mif picture;
    if (!picture.attachdib(std::move(image)) || !picture.grayscale()) return {};
    const PixelSize size = ContrastSize(full.width, full.height);
    if ((size.width != picture.width() || size.height != picture.height()) &&
        !picture.zoom(size.width, size.height, kZoomHighQuality, 0))
        return {};
    if (!picture.normalize(nullptr)) return {};
    // Quality 75, standard form, no smoothing: the record's defaults.
    return EncodeJpeg(picture.dib(), JpegSaveRecord{});
}

std::wstring BesideSourcePath(const std::wstring& source) { return source + L".cr.jpg"; }

ContrastRunResult RunContrastResize(const std::vector<std::wstring>& files, const ContrastTexts& texts,
                                    ToolSink& sink, SourceBin& bin) {
    ContrastRunResult result;
    const uint64_t total = files.size();
    sink.StartProgress(std::wstring(), texts.loading);
    sink.SetProgress(0, total);
    for (size_t index = 0; index < files.size(); ++index) {
        if (sink.Cancelled()) {
            result.cancelled = true;
            break;
        }
        const std::wstring& source = files[index];
        sink.SetLine(1, texts.loading, false);
        sink.SetLine(2, source, true);
        // Only the height is bounded: a large JPEG is decoded at the smallest size that is
        // still at least that tall.
        PictureSize full;
        std::optional<PackedDib> image =
            LoadImageFileToCover(std::filesystem::path(source), std::numeric_limits<int>::max(), kContrastMaxHeight, &full);
        const std::vector<uint8_t> jpeg =
            image && !image->empty() ? ContrastJpeg(std::move(*image), full) : std::vector<uint8_t>();
        image.reset();
        if (jpeg.empty()) {
            ++result.skipped;
            sink.SetProgress(index + 1, total);
            continue;
        }
        const bool recycled = bin.Recycle(source);
        const std::wstring output = recycled ? source : BesideSourcePath(source);
        sink.SetLine(1, texts.saving, false);
        sink.SetLine(2, output, true);
        const bool written = WriteFileAtomically(std::filesystem::path(output), jpeg);
        if (recycled) {
            if (written) bin.Keep(source);
            else bin.PutBack(source);
        }
        if (written) {
            ++(recycled ? result.replaced : result.besides);
            sink.Report(output);
        } else {
            ++result.skipped;
        }
        sink.SetProgress(index + 1, total);
    }
    sink.EndProgress();
    return result;
}

}  // namespace lx
