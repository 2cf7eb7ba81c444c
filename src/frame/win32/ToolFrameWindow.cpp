#include "ToolFrameWindow.h"

#include "FrameRunner.h"
#include "ModuleResources.h"
#include "ZoomView.h"

namespace lx {

bool CreateToolFrameWindow(Window& frame, const wchar_t* className, UINT resourceId, CommandBar& bar,
                           HACCEL& accelerators) {
    if (!RegisterZoomViewClass() ||
        !RegisterWindowClass(className, nullptr, CS_DBLCLKS, LoadCursorW(nullptr, IDC_ARROW),
                             reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1)))
        return false;
    const std::wstring title = LoadResString(resourceId);
    if (!frame.Create(className, title.c_str(), 0x06CF0000, 0x00040100, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                      CW_USEDEFAULT, nullptr, nullptr))
        return false;
    accelerators = LoadAcceleratorsW(ModuleInstance(), MAKEINTRESOURCEW(resourceId));
    if (MessageLoop* loop = CurrentMessageLoop()) {
        loop->AddFilter([&frame, &bar](MSG& msg) { return frame.hwnd() && bar.PreTranslate(msg); });
        loop->AddFilter([&frame, &accelerators](MSG& msg) {
            const HWND window = frame.hwnd();
            return window && accelerators && (msg.hwnd == window || IsChild(window, msg.hwnd)) &&
                   TranslateAcceleratorW(window, accelerators, &msg);
        });
    }
    return true;
}

}  // namespace lx
