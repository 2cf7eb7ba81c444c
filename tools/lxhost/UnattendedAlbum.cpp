// `lxhost webalbum --unattended [--output DIR] FILE...`: the web album run with the settings
// the dialog last stored, into DIR when given. Prints the sheets and thumbnails written; exit
// code 0 when at least one sheet was written, 1 otherwise.
#include "HostConsole.h"
#include "Unattended.h"
#include "WebAlbumTool.h"

namespace lxhost {
namespace {

int RunAlbum(const Args& args) {
    std::wstring output;
    std::vector<std::wstring> files;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == L"--output" && i + 1 < args.size()) output = args[++i];
        else files.push_back(args[i]);
    }
    if (files.empty()) {
        Print(stderr, L"usage: lxhost webalbum --unattended [--output DIR] FILE...");
        return 2;
    }
    ConsoleSink sink;
    const lx::WebAlbumResult result = lx::RunWebAlbumFiles(output, files, sink);
    Print(stdout, L"sheets " + std::to_wstring(result.sheets) + L", thumbnails " + std::to_wstring(result.thumbnails));
    return result.sheets > 0 ? 0 : 1;
}

const UnattendedTool registration(L"webalbum", &RunAlbum);

}  // namespace
}  // namespace lxhost
