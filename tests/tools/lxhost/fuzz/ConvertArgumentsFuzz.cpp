// Command lines and stored option blocks come from outside: any bytes must give either a
// refusal or a request whose options hold a writable type, sane sizes and a terminated folder.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "ConvertArguments.h"
#include "ConvertNaming.h"
#include "ConvertOptions.h"
#include "ConvertScaling.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

// Arguments are split at 0 bytes; each byte is one character.
std::vector<std::wstring> SplitArguments(const uint8_t* data, size_t size) {
    std::vector<std::wstring> args(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0) args.emplace_back();
        else args.back().push_back(static_cast<wchar_t>(data[i]));
    }
    return args;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const lx::ConvertOptions stored = lx::ConvertOptionsFromBlock(data, size);
    Check(lx::OutputFolder(stored).size() < lx::kConvertFolderChars);
    lx::DecideScale(stored.size, stored.jp2Ratio, stored.resizeMode, stored.jpegQuality, stored.noEnlarge != 0);

    std::wstring error;
    const auto request = lx::ParseConvertArguments(SplitArguments(data, size), error);
    if (!request) {
        Check(!error.empty());
        return 0;
    }
    const lx::ConvertOptions& o = request->options;
    Check(lx::IsConvertSaveType(o.saveType));
    Check(!request->files.empty());
    Check(o.resize == 0 || (o.resizeMode >= 0 && o.resizeMode <= 2 && o.size >= 1));
    Check(o.jpegQuality >= 1 && o.jpegQuality <= 100);
    const std::wstring folder = lx::OutputFolder(o);
    Check(!folder.empty());
    for (const auto& file : request->files) {
        const lx::ScaleDecision d = lx::DecideScale(file.size() + 1, 7, o.resizeMode, o.size, o.noEnlarge != 0);
        Check(d.kind != lx::ScaleDecision::Scale || (d.width > 0 && d.height > 0));
        const std::wstring destination = lx::ConvertDestination(folder, file, o.saveType);
        Check(destination.compare(0, folder.size(), folder) == 0);
    }
    return 0;
}
