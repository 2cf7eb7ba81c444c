#include "ConvertRun.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>

#include "AtomicFile.h"
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

bool IsPlainFile(const fs::directory_entry& entry) {
    std::error_code error;
    return entry.symlink_status(error).type() == fs::file_type::regular;
}

// Undoes what a run killed in `folder` left there. Only our own names are touched: a
// temporary file of a cut-short write is removed, and a set-aside picture "NAME.~NN" goes back
// to NAME when that name is free (else it stays; it never replaces a file). A run going on in
// the same folder at the same time loses nothing by this: its write fails or its source is
// back early, and a failed write puts nothing in place of a source.
void RecoverInterruptedWork(const fs::path& folder) {
    std::vector<fs::path> ours;
    std::error_code error;
    for (fs::directory_iterator it(folder, fs::directory_options::skip_permission_denied, error), end;
         !error && it != end; it.increment(error)) {
        const std::wstring name = it->path().filename().wstring();
        if (IsPlainFile(*it) && (IsAtomicTemporaryName(name) || !SetAsideOriginal(name).empty()))
            ours.push_back(it->path());
    }
    std::sort(ours.begin(), ours.end());  // "a.~00" goes back before "a.~01" is looked at
    for (const fs::path& path : ours) {
        const std::wstring name = path.filename().wstring();
        if (IsAtomicTemporaryName(name)) {
            fs::remove(path, error);
            continue;
        }
        // Only pictures: a name like "notes.~01" may be some other program's.
        const fs::path original = path.parent_path() / SetAsideOriginal(name);
        if (ImageTypeFromPath(original.wstring().c_str()) != kImageUnknown && !Exists(original.wstring()))
            fs::rename(path, original, error);
    }
}

// The folders a run touches: those of its sources and the output folder, each once.
std::vector<fs::path> RunFolders(const std::wstring& outputFolder, const std::vector<std::wstring>& files) {
    std::set<fs::path> folders{fs::path(outputFolder)};
    for (const std::wstring& file : files) folders.insert(fs::path(file).parent_path());
    return {folders.begin(), folders.end()};
}

// The sources left alone for another's output name, one a line; ten at most, so that the
// message fits on the screen.
std::wstring SourceList(const std::vector<std::wstring>& sources) {
    constexpr size_t kShown = 10;
    std::wstring list;
    for (size_t i = 0; i < sources.size() && i < kShown; ++i) list += (i ? L"\n" : L"") + sources[i];
    if (sources.size() > kShown) list += L"\n...";
    return list;
}

}  // namespace

ConvertRunResult RunConversion(const ConvertOptions& options, const std::vector<std::wstring>& files,
                               const ConvertTexts& texts, ToolSink& sink) {
    ConvertRunResult result;
    const std::wstring folder = OutputFolder(options);
    const uint64_t total = files.size();
    sink.StartProgress(texts.title, texts.loading);
    sink.SetProgress(0, total);
    for (const fs::path& touched : RunFolders(folder, files)) RecoverInterruptedWork(touched);
    const std::vector<std::wstring> destinations = PlanDestinations(folder, files, options.saveType);
    for (size_t index = 0; index < files.size(); ++index) {
        if (sink.Cancelled()) {
            result.cancelled = true;
            break;
        }
        const std::wstring& source = files[index];
        const std::wstring& destination = destinations[index];
        if (destination.empty()) {
            result.sameDestination.push_back(source);
            ++result.skipped;
            continue;
        }
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
    if (!result.sameDestination.empty())
        sink.Message(kMsgSameDestination, SourceList(result.sameDestination), kMbOk | kMbIconWarning);
    return result;
}

}  // namespace lx
