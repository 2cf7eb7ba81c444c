#include "ConvertRun.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "ConvertNaming.h"
#include "ConvertSave.h"
#include "ConvertScaling.h"
#include "ImageLoad.h"
#include "mif.h"

namespace lx {

namespace {

namespace fs = std::filesystem;

bool Exists(const std::wstring& path) {
    std::error_code error;
    return fs::exists(fs::path(path), error);
}

bool IsRegularFile(const std::wstring& path) {
    std::error_code error;
    return fs::is_regular_file(fs::path(path), error);
}

// Scales by the options. nullopt when the image is to be skipped.
std::optional<PackedDib> ScaleForOptions(PackedDib dib, const ConvertOptions& options) {
    const ScaleDecision decision =
        DecideScale(dib.width(), dib.height(), options.resizeMode, options.size, options.noEnlarge != 0);
    if (decision.kind == ScaleDecision::Keep) return dib;
    if (decision.kind == ScaleDecision::Skip) return std::nullopt;
    mif image;
    if (!image.attachdib(std::move(dib))) return std::nullopt;
    if (!image.zoom(decision.width, decision.height, kZoomHighQuality, 0)) return std::nullopt;
    PackedDib scaled = image.createdib();
    if (scaled.empty()) return std::nullopt;
    return scaled;
}

// The source under its set-aside name while its result is written.
class SetAsideSource {
public:
    explicit SetAsideSource(const std::wstring& source) : source_(source) {}

    // False when the source could not be moved aside; then nothing may be written, since the
    // destination might be the source itself.
    bool MoveAside() {
        aside_ = FindSetAsideName(source_, Exists);
        // The last candidate is taken even when in use; never move over a file that is there.
        if (Exists(aside_)) return false;
        std::error_code error;
        fs::rename(fs::path(source_), fs::path(aside_), error);
        return !error;
    }

    // After the write: drop the set-aside copy when the result is there, else put it back.
    void Settle(bool written) {
        std::error_code error;
        if (written) {
            // A read-only source must not survive as a stray set-aside file.
            fs::permissions(fs::path(aside_), fs::perms::owner_read | fs::perms::owner_write,
                            fs::perm_options::add, error);
            fs::remove(fs::path(aside_), error);
        } else {
            fs::rename(fs::path(aside_), fs::path(source_), error);
        }
    }

private:
    std::wstring source_;
    std::wstring aside_;
};

// Writes the result, protecting the source when it is to be deleted. True when written.
bool WriteResult(const std::wstring& source, const std::wstring& destination, const PackedDib& dib,
                 const ConvertOptions& options) {
    if (!options.deleteSource) return SaveConverted(fs::path(destination), dib, options) != 0;
    SetAsideSource aside(source);
    if (!aside.MoveAside()) return false;
    // The codec's word alone is not enough to give up the source: the file must be there.
    const bool written = SaveConverted(fs::path(destination), dib, options) != 0 && IsRegularFile(destination);
    aside.Settle(written);
    return written;
}

}  // namespace

ConvertRunResult RunConversion(const ConvertOptions& options, const std::vector<std::wstring>& files,
                               const ConvertTexts& texts, ToolSink& sink) {
    ConvertRunResult result;
    const std::wstring folder = OutputFolder(options);
    const uint64_t total = files.size();
    sink.StartProgress(texts.title, texts.loading);
    sink.SetProgress(0, total);
    for (size_t index = 0; index < files.size(); ++index) {
        if (sink.Cancelled()) {
            result.cancelled = true;
            break;
        }
        const std::wstring& source = files[index];
        const std::wstring destination = ConvertDestination(folder, source, options.saveType);
        sink.SetLine(1, texts.loading, false);
        sink.SetLine(2, source, true);

        std::optional<PackedDib> dib = LoadImageFile(fs::path(source));
        if (!dib || dib->empty()) {
            ++result.skipped;
            continue;
        }
        if (options.resize) {
            sink.SetLine(1, texts.converting, false);
            dib = ScaleForOptions(std::move(*dib), options);
            if (!dib) {
                ++result.skipped;
                continue;
            }
        }
        sink.SetLine(1, texts.saving, false);
        sink.SetLine(2, destination, true);
        if (WriteResult(source, destination, *dib, options)) {
            ++result.written;
            sink.Report(destination);
        } else {
            ++result.skipped;
        }
        dib.reset();
        sink.SetProgress(index, total);
    }
    sink.EndProgress();
    return result;
}

}  // namespace lx
