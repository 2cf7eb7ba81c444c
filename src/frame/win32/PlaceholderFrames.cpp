// Stand-in frames for the tools whose own frame windows are not built yet: a plain top-level
// window with the tool's class and caption, so the frame runner's loop and lifetime are real.
// Each is removed from here when its tool's frame lands.
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

std::unique_ptr<TopFrame> MakeEditorFrame() { return std::make_unique<PlainFrame>(L"LXPHOTOEDIT_FRAME", 4); }
std::unique_ptr<TopFrame> MakeSlideFrame() { return std::make_unique<PlainFrame>(L"LXSLIDESHOW_FRAME", 7); }

}  // namespace lx
