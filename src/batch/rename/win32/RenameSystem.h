// The Windows side of renaming after the shooting date: the real file system (a move that
// never replaces a file), the shell's logical name order, the Exif reader, the progress
// texts from the string table, and the run without a dialog that lxhost offers as
//   lxhost rename --unattended --items A,B,C [--reset R] FILE...
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

// Parses `args` (see RenameArguments.h) and runs the rename over the files with `sink`
// answering the question and receiving one report line per renamed file. Returns 0 when
// the run went through (including "no file has a shooting time", which the sink receives
// as message 4108), 2 with `error` set when the arguments are wrong.
int RunRenameUnattended(const std::vector<std::wstring>& args, ToolSink& sink, std::wstring& error);

}  // namespace lx
