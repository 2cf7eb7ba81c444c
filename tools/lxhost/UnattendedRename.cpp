// `lxhost rename --unattended --items A,B,C [--reset R] FILE...`: the rename run with those
// choices and no dialog; the question before renaming is answered Yes, and each old and new
// name is printed. Exit code 0 when the run went through (including "no file has a shooting
// time", printed as message 4108), 2 for a bad command line.
#include "HostConsole.h"
#include "RenameArguments.h"
#include "RenameSystem.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunRename(const Args& args) {
    std::wstring error;
    const auto parsed = lx::ParseRenameArguments(args, error);
    if (!parsed) {
        Print(stderr, L"lxhost rename: " + error);
        return 2;
    }
    ConsoleSink sink;
    lx::RunRenameToExifDate(parsed->choices, parsed->files, sink);
    return 0;
}

const UnattendedTool registration(L"rename", &RunRename);

}  // namespace
}  // namespace lxhost
