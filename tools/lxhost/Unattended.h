// The unattended forms of the tools (no dialog; messages printed with their string id) and
// the Exif report. Each tool's form lives in its own Unattended<Tool>.cpp and registers itself
// with a static UnattendedTool object:
//
//   static const lxhost::UnattendedTool registration(L"pdf", &RunPdf);
//
// where RunPdf(const Args& args) parses the tool's options and files and returns the exit code.
#pragma once

#include <string>
#include <vector>

namespace lxhost {

using Args = std::vector<std::wstring>;
using UnattendedRunner = int (*)(const Args& args);

class UnattendedTool {
public:
    UnattendedTool(const wchar_t* name, UnattendedRunner runner);
};

// Dispatches `lxhost TOOL --unattended ARGS...` (and `lxhost exif ...`, registered as "exif");
// 2 for a tool without an unattended form.
int RunUnattended(const std::wstring& tool, const Args& args);

}  // namespace lxhost
