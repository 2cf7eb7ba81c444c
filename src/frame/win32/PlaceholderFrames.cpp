// The stand-in frame of a tool whose own frame window is not built yet.
#include <windows.h>

#include "FrameRunner.h"
#include "ModuleResources.h"

namespace lx {
namespace {

constexpr DWORD kFrameStyle = 0x6CF0000;  // overlapped window, clip children and siblings

class PlainFrame : public TopFrame {
public:
    PlainFrame(const wchar_t* className, UINT captionId) : className_(className), captionId_(captionId) {}

    HWND Create(int showCmd) override {
        WNDCLASSEXW wc = {sizeof wc};
        wc.lpfnWndProc = &PlainFrame::WindowProc;
        wc.hInstance = ModuleInstance();
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
        wc.lpszClassName = className_;
        RegisterClassExW(&wc);  // fails harmlessly when already registered
        const std::wstring caption = LoadResString(captionId_);
        HWND hwnd = CreateWindowExW(0, className_, caption.c_str(), kFrameStyle, CW_USEDEFAULT, CW_USEDEFAULT, 800,
                                    600, nullptr, nullptr, ModuleInstance(), nullptr);
        if (hwnd) {
            ShowWindow(hwnd, showCmd);
            UpdateWindow(hwnd);
        }
        return hwnd;
    }
    void OpenStartup(const std::wstring&) override {}

private:
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
        if (msg == WM_DESTROY) {
            PostQuitMessage(0);
            return 0;
        }
        return DefWindowProcW(hwnd, msg, wParam, lParam);
    }

    const wchar_t* className_;
    UINT captionId_;
};

}  // namespace

std::unique_ptr<TopFrame> MakePlaceholderFrame(const wchar_t* className, UINT captionId) {
    return std::make_unique<PlainFrame>(className, captionId);
}

}  // namespace lx
