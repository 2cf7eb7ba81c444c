// The contrast-resize tool as the host starts it: no dialog, the run over the request's files
// under the shell's progress dialog, each source given up to the recycle bin (safely, see
// RecycledFile) for its result. The list stays owned by the caller.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "ContrastRun.h"
#include "FileOperations.h"

namespace lx {

// The recycle bin of the shell, each source kept at hand until its result is written.
class ShellSourceBin : public SourceBin {
public:
    explicit ShellSourceBin(HWND owner) : owner_(owner) {}
    bool Recycle(const std::wstring& path) override;
    void PutBack(const std::wstring& path) override;
    void Keep(const std::wstring& path) override;

private:
    HWND owner_;
    std::unique_ptr<RecycledFile> current_;
};

ContrastTexts LoadContrastTexts();

void RunContrastResizeTool(HWND owner, const std::vector<std::wstring>& files);

}  // namespace lx
