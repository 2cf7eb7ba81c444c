#include "PickoutRun.h"

#include <filesystem>

#include "ExifReader.h"
#include "PathNames.h"

namespace lx {

std::wstring ThumbnailExtension(std::span<const uint8_t> bytes) {
    if (bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M') return L".bmp";
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xD8) return L".jpg";
    return L".thumb";
}

std::wstring ThumbnailPath(const PickoutOptions& options, const std::wstring& source, std::span<const uint8_t> bytes) {
    const std::wstring name = WithoutExtension(FileNameOf(source)) + (options.takeLargest ? L".thm(L)" : L".thm(S)") +
                              ThumbnailExtension(bytes);
    return (std::filesystem::path(options.folder) / name).wstring();
}

int RunPickout(const PickoutOptions& options, const std::vector<std::wstring>& files, const NewFileWriter& writeNew,
               ToolSink& sink) {
    int written = 0;
    const EmbeddedChoice choice = options.takeLargest ? EmbeddedChoice::Largest : EmbeddedChoice::Smallest;
    for (const std::wstring& source : files) {
        const std::optional<EmbeddedImage> image = ReadEmbeddedImage(std::filesystem::path(source), choice);
        if (!image || image->bytes.empty()) continue;
        const std::wstring output = ThumbnailPath(options, source, image->bytes);
        if (!writeNew(output, image->bytes)) continue;
        ++written;
        sink.Report(output);
    }
    return written;
}

}  // namespace lx
