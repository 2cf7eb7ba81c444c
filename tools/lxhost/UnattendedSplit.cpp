// `lxhost split --unattended [--portrait yes|no] FILE...`: the split run without the task
// dialog; every portrait image is answered as --portrait says (default yes, split), and each
// half written is printed. Sources go to the recycle bin as in the tool. Exit code 0 when
// every file was split, 1 when some were left, 2 for a bad command line.
#include "FileOperations.h"
#include "HostConsole.h"
#include "SplitImageTool.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunSplitUnattended(const Args& args) {
    int portrait = lx::kIdYes;
    size_t first = 0;
    if (!args.empty() && args[0] == L"--portrait") {
        if (args.size() < 2 || (args[1] != L"yes" && args[1] != L"no")) {
            Print(stderr, L"lxhost split: --portrait takes yes or no");
            return 2;
        }
        portrait = args[1] == L"yes" ? lx::kIdYes : lx::kIdNo;
        first = 2;
    }
    const std::vector<std::wstring> files(args.begin() + static_cast<std::ptrdiff_t>(first), args.end());
    if (files.empty() || files[0].rfind(L"--", 0) == 0) {
        Print(stderr, L"usage: lxhost split --unattended [--portrait yes|no] FILE...");
        return 2;
    }
    lx::SplitServices services;
    services.askPortrait = [portrait](const std::wstring&, int, int) {
        return std::optional<lx::PortraitReply>(lx::PortraitReply{portrait, true});
    };
    services.recycle = [](const std::wstring& path) { return lx::RecycledFile(nullptr, path).Keep(); };
    ConsoleSink sink;
    const lx::SplitRunResult result = lx::RunSplit(files, lx::LoadSplitTexts(), sink, services);
    return result.skipped == 0 ? 0 : 1;
}

const UnattendedTool registration(L"split", &RunSplitUnattended);

}  // namespace
}  // namespace lxhost
