// `lxhost contrast --unattended FILE...`: the contrast-resize run as the tool does it (the
// sources to the recycle bin), printing each file written. Exit code 0 when every file was
// written, 1 when some were skipped, 2 for a bad command line.
#include "ContrastResizeTool.h"
#include "HostConsole.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunContrastUnattended(const Args& files) {
    if (files.empty() || files[0].rfind(L"--", 0) == 0) {
        Print(stderr, L"usage: lxhost contrast --unattended FILE...");
        return 2;
    }
    ConsoleSink sink;
    lx::ShellSourceBin bin(nullptr);
    const lx::ContrastRunResult result = lx::RunContrastResize(files, lx::LoadContrastTexts(), sink, bin);
    return result.skipped == 0 ? 0 : 1;
}

const UnattendedTool registration(L"contrast", &RunContrastUnattended);

}  // namespace
}  // namespace lxhost
