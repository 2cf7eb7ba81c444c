// The batch conversion's run: every file of the list loaded, scaled and written into the
// output folder by the options, under a progress display, without any dialog. Used by the
// tool after its dialog, by lxhost's unattended form and by the tests.
//
// Files that cannot be read, scaled or written are skipped and the run goes on. With
// deleteSource, a source is moved aside to "NAME.~NN" before its result is written and is
// only deleted once the result exists; otherwise it is moved back. So at every moment, even
// when the process is killed, each source is under its own name or its set-aside name. A run
// starts by undoing what a killed run left in its folders: set-aside sources go back to their
// free names, and the temporary files of cut-short writes are removed.
//
// Two sources never share a result: a source whose destination another source owns (see
// PlanDestinations) is left as it is, and the run ends with message kMsgSameDestination
// naming those sources.
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

// "These files were not converted because another file of the run has their output name".
constexpr unsigned kMsgSameDestination = 4161;

struct ConvertRunResult {
    int written = 0;
    int skipped = 0;  // sameDestination included
    bool cancelled = false;
    std::vector<std::wstring> sameDestination;  // sources left alone for another's output name
};

ConvertRunResult RunConversion(const ConvertOptions& options, const std::vector<std::wstring>& files,
                               const ConvertTexts& texts, ToolSink& sink);

}  // namespace lx
