#include "Unattended.h"

#include <map>

#include "HostConsole.h"

namespace lxhost {
namespace {

std::map<std::wstring, UnattendedRunner>& Registry() {
    static std::map<std::wstring, UnattendedRunner> tools;
    return tools;
}

}  // namespace

UnattendedTool::UnattendedTool(const wchar_t* name, UnattendedRunner runner) { Registry()[name] = runner; }

int RunUnattended(const std::wstring& tool, const Args& args) {
    const auto it = Registry().find(tool);
    if (it == Registry().end()) {
        Print(stderr, L"lxhost: " + tool + L" has no unattended form");
        return 2;
    }
    return it->second(args);
}

}  // namespace lxhost
