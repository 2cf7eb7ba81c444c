// The unattended forms of the tools (no dialog; messages printed with their string id) and
// the Exif report. Each tool's runner lives in its own Unattended<Tool>.cpp.
#pragma once

#include <string>
#include <vector>

namespace lxhost {

using Args = std::vector<std::wstring>;

// Dispatches `lxhost TOOL --unattended ARGS...`; 2 for a tool without an unattended form.
int RunUnattended(const std::wstring& tool, const Args& args);
int RunExifReport(const Args& files);

}  // namespace lxhost
