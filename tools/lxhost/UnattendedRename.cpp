// `lxhost rename --unattended --items A,B,C [--reset R] FILE...`: the rename run with those
// choices and no dialog; the question before renaming is answered Yes, and each old and new
// name is printed.
#include "HostConsole.h"
#include "RenameSystem.h"
#include "Unattended.h"

namespace lxhost {
namespace {

int RunRename(const Args& args) {
    ConsoleSink sink;
    std::wstring error;
    const int status = lx::RunRenameUnattended(args, sink, error);
    if (!error.empty()) Print(stderr, L"lxhost rename: " + error);
    return status;
}

const UnattendedTool registration(L"rename", &RunRename);

}  // namespace
}  // namespace lxhost
