// The batch conversion's run: every file of the list loaded, scaled and written into the
// output folder by the options, under a progress display, without any dialog. Used by the
// tool after its dialog, by lxhost's unattended form and by the tests.
//
// Files that cannot be read, scaled or written are skipped and the run goes on. With
// deleteSource, a source is moved aside to "NAME.~NN" before its result is written and is
// only deleted once the result exists; otherwise it is moved back. So at every moment, even
// when the process is killed, each source is under its own name or its set-aside name.
#pragma once

#include <string>
#include <vector>

#include "ConvertOptions.h"
#include "ToolSink.h"

namespace lx {

// The texts of the progress display (from the string table on Windows).
struct ConvertTexts {
    std::wstring title;
    std::wstring loading;     // "読み込んでいます..."
    std::wstring converting;  // "変換しています..."
    std::wstring saving;      // "保存しています..."
};

struct ConvertRunResult {
    int written = 0;
    int skipped = 0;
    bool cancelled = false;
};

ConvertRunResult RunConversion(const ConvertOptions& options, const std::vector<std::wstring>& files,
                               const ConvertTexts& texts, ToolSink& sink);

}  // namespace lx
