// The split tool as the host starts it: the run over the request's files under the shell's
// progress dialog, portrait images asked about through the task dialog, sources given up to
// the recycle bin. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "SplitRun.h"

namespace lx {

// The progress lines from the string table.
SplitTexts LoadSplitTexts();

// The question about a portrait image through TaskDialogIndirect, looked up in comctl32.dll
// at run time; empty when the system has none (portraits are then split).
std::function<std::optional<PortraitReply>(const std::wstring&, int, int)> TaskDialogPortraitQuestion(HWND owner);

void RunSplitImageTool(HWND owner, const std::vector<std::wstring>& files);

}  // namespace lx
