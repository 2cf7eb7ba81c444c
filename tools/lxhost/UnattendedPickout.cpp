// `lxhost pickout --unattended --output DIR [--smallest] FILE...`: the thumbnail pickout
// without its dialog, reading and writing no setting; the folder is made when missing and
// each thumbnail file written is printed. Exit code 0 when every file gave one, 1 when some
// did not (no thumbnail, or the name was taken), 2 for a bad command line or folder.
#include <filesystem>
#include <system_error>

#include "HostConsole.h"
#include "PickoutThumbnailTool.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunPickoutUnattended(const Args& args) {
    lx::PickoutOptions options;
    size_t i = 0;
    for (; i < args.size() && args[i].rfind(L"--", 0) == 0; ++i) {
        if (args[i] == L"--output" && i + 1 < args.size()) {
            options.folder = args[++i];
        } else if (args[i] == L"--smallest") {
            options.takeLargest = false;
        } else {
            Print(stderr, L"lxhost pickout: unknown option " + args[i]);
            return 2;
        }
    }
    const std::vector<std::wstring> files(args.begin() + static_cast<std::ptrdiff_t>(i), args.end());
    if (options.folder.empty() || files.empty()) {
        Print(stderr, L"usage: lxhost pickout --unattended --output DIR [--smallest] FILE...");
        return 2;
    }
    std::error_code failure;
    std::filesystem::create_directories(options.folder, failure);
    if (!std::filesystem::is_directory(options.folder, failure)) {
        Print(stderr, L"lxhost pickout: the output folder cannot be used: " + options.folder);
        return 2;
    }
    ConsoleSink sink;
    const int written = lx::RunPickout(options, files, lx::WriteNewFile, sink);
    return written == static_cast<int>(files.size()) ? 0 : 1;
}

const UnattendedTool registration(L"pickout", &RunPickoutUnattended);

}  // namespace
}  // namespace lxhost
