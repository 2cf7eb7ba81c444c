#include "PickoutThumbnailTool.h"

#include <algorithm>

#include "ComScope.h"
#include "DialogHelpers.h"
#include "PickoutDlg.h"

namespace lx {

namespace {

// No progress to show: the wait cursor stands for it.
class SilentSink : public ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned, const std::wstring&, unsigned) override { return kIdOk; }
};

}  // namespace

bool WriteNewFile(const std::wstring& path, std::span<const uint8_t> bytes) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    bool ok = true;
    for (size_t done = 0; ok && done < bytes.size();) {
        const DWORD chunk = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1u << 24));
        DWORD wrote = 0;
        ok = WriteFile(file, bytes.data() + done, chunk, &wrote, nullptr) && wrote == chunk;
        done += wrote;
    }
    ok = CloseHandle(file) && ok;
    if (!ok) DeleteFileW(path.c_str());
    return ok;
}

int RunPickoutThumbnailTool(HWND owner, const std::vector<std::wstring>& files, const std::wstring& hostFolder) {
    if (files.empty()) return 0;
    ComScope com;  // the folder chooser and the auto-completion are shell COM objects
    CPickoutDlg dialog(files, hostFolder);
    if (dialog.DoModal(owner) != IDOK) return -1;
    if (!CreateFolderPath(dialog.options().folder.c_str())) return -1;
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    SilentSink sink;
    const int written = RunPickout(dialog.options(), files, WriteNewFile, sink);
    SetCursor(previous);
    return written;
}

}  // namespace lx
