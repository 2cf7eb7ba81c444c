// The batch conversion tool as the host starts it: options from the settings, the dialog,
// the options saved on OK, the output folder made sure of, then the run under the shell's
// progress dialog.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ConvertRun.h"

namespace lx {

// The progress texts from the string table.
ConvertTexts LoadConvertTexts();

// True when the conversion run took place (false: no files, cancelled, folder unusable).
bool ConvertImageFiles(HWND owner, const std::vector<std::wstring>& files);

}  // namespace lx
