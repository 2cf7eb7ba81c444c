#include "SplitRun.h"

#include <filesystem>

#include "ImageLoad.h"
#include "ImageSave.h"
#include "PathNames.h"
#include "mif.h"

namespace lx {

namespace {

PackedDib CutColumns(const PackedDib& image, int left, int right) {
    mif part(image);
    const MifRect rect{left, 0, right, image.height()};
    if (part.empty() || !part.crop(&rect)) return {};
    return part.createdib();
}

// Whether this image is split, asking when it is a portrait one. Keeps the last answer and
// the "ask no more" box across images; false in `stop` when the question failed.
class PortraitDecision {
public:
    explicit PortraitDecision(const SplitServices& services) : services_(services) {}

    bool Split(const std::wstring& path, int width, int height, bool& stop) {
        if (height > width && services_.askPortrait && !askNoMore_) {
            const std::optional<PortraitReply> reply = services_.askPortrait(FileNameOf(path), width, height);
            if (!reply) {
                stop = true;
                return false;
            }
            splitAnswer_ = reply->button == kIdYes;
            askNoMore_ = reply->sameForRest;
        }
        return width > height || splitAnswer_;
    }

private:
    const SplitServices& services_;
    bool splitAnswer_ = true;
    bool askNoMore_ = false;
};

}  // namespace

std::wstring SplitHalfPath(const std::wstring& source, int half) {
    return WithoutExtension(source) + (half == 1 ? L"-1.jpg" : L"-2.jpg");
}

SplitHalves CutInHalves(const PackedDib& image) {
    const int width = image.width();
    if (width < 2) return {};
    SplitHalves halves{CutColumns(image, width / 2, width), CutColumns(image, 0, width / 2)};
    if (halves.right.empty() || halves.left.empty()) return {};
    return halves;
}

SplitRunResult RunSplit(const std::vector<std::wstring>& files, const SplitTexts& texts, ToolSink& sink,
                        const SplitServices& services) {
    SplitRunResult result;
    PortraitDecision decision(services);
    const uint64_t total = files.size();
    sink.StartProgress(std::wstring(), texts.loading);
    sink.SetProgress(0, total);
    for (size_t index = 0; index < files.size(); ++index) {
        if (sink.Cancelled()) {
            result.stopped = true;
            break;
        }
        const std::wstring& source = files[index];
        sink.SetLine(1, texts.loading, false);
        sink.SetLine(2, source, true);
        std::optional<PackedDib> image = LoadImageFile(std::filesystem::path(source));
        if (!image || image->empty()) {
            ++result.skipped;
            sink.SetProgress(index + 1, total);
            continue;
        }
        bool stop = false;
        const bool split = decision.Split(source, image->width(), image->height(), stop);
        if (stop) {
            result.stopped = true;
            break;
        }
        bool written = false;
        if (split) {
            const SplitHalves halves = CutInHalves(*image);
            image.reset();
            written = !halves.right.empty();
            for (int half = 1; half <= 2 && written; ++half) {
                const std::wstring output = SplitHalfPath(source, half);
                sink.SetLine(1, texts.saving, false);
                sink.SetLine(2, output, true);
                // Quality 75, standard form, no smoothing: the record's defaults.
                written = SaveJpegFile(std::filesystem::path(output), half == 1 ? halves.right : halves.left,
                                       JpegSaveRecord{}) != 0;
                if (written) sink.Report(output);
            }
        }
        if (written) {
            ++result.split;
            if (services.recycle && services.recycle(source)) ++result.recycled;
        } else {
            ++result.skipped;
        }
        sink.SetProgress(index + 1, total);
    }
    sink.EndProgress();
    return result;
}

}  // namespace lx
