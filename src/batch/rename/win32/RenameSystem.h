// The Windows side of renaming after the shooting date: the real file system (a move that
// never replaces a file), the shell's logical name order, the Exif reader, the progress
// texts from the string table, and the run without a dialog.
#pragma once

#include <string>
#include <vector>

#include "RenameRun.h"
#include "ToolSink.h"

namespace lx {

RenameServices WindowsRenameServices();
RenameProgressTexts LoadRenameProgressTexts();

// The rename run on Windows files, without a dialog: `choices` over `files`, the question
// and the progress going to `sink`.
RenameRunResult RunRenameToExifDate(const RenameChoices& choices, const std::vector<std::wstring>& files,
                                    ToolSink& sink);

}  // namespace lx
