#include "Window.h"

#include "ModuleResources.h"

namespace lx {

namespace {

// The factory sits in the class's extra bytes, so a control needs no global table.
constexpr int kFactorySlot = 0;

}  // namespace

LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    Window* window = Window::FromHandle(hwnd);
    if (message == WM_NCCREATE) {
        auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
        auto factory = reinterpret_cast<WindowFactory>(GetClassLongPtrW(hwnd, kFactorySlot));
        bool owned = false;
        if (factory) {
            window = factory();
            owned = true;
        } else {
            window = static_cast<Window*>(create->lpCreateParams);
        }
        if (!window) return DefWindowProcW(hwnd, message, wParam, lParam);
        window->hwnd_ = hwnd;
        window->ownedByWindow_ = owned;
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window));
    }
    if (!window) return DefWindowProcW(hwnd, message, wParam, lParam);
    const LRESULT result = window->HandleMessage(message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
        window->hwnd_ = nullptr;
        if (window->ownedByWindow_) delete window;
    }
    return result;
}

Window::~Window() {
    if (hwnd_ && !ownedByWindow_) {
        // The object goes first: unbind so the window's last messages find no dead object.
        SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
        DestroyWindow(hwnd_);
    }
}

HWND Window::Create(const wchar_t* className, const wchar_t* title, DWORD style, DWORD exStyle, int x, int y,
                    int width, int height, HWND parent, HMENU menuOrId) {
    return CreateWindowExW(exStyle, className, title, style, x, y, width, height, parent, menuOrId,
                           ModuleInstance(), this);
}

Window* Window::FromHandle(HWND hwnd) {
    return reinterpret_cast<Window*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
}

LRESULT Window::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Default(message, wParam, lParam);
}

bool RegisterWindowClass(const wchar_t* className, WindowFactory factory, UINT style, HCURSOR cursor,
                         HBRUSH background) {
    WNDCLASSEXW wc{sizeof(wc)};
    wc.style = style;
    wc.lpfnWndProc = WindowProc;
    wc.cbClsExtra = sizeof(void*);
    // Our classes belong to this module: inside the host the DLL, in a test the program.
    wc.hInstance = ModuleInstance();
    wc.hCursor = cursor ? cursor : LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = background;
    wc.lpszClassName = className;
    // A class left by an earlier load of the module at another address would call a dead
    // procedure: it is replaced.
    WNDCLASSEXW existing{sizeof(existing)};
    if (GetClassInfoExW(wc.hInstance, className, &existing) && existing.lpfnWndProc != WindowProc)
        UnregisterClassW(className, wc.hInstance);
    if (!RegisterClassExW(&wc)) {
        if (GetLastError() != ERROR_CLASS_ALREADY_EXISTS) return false;
        return true;
    }
    // Class bytes can only be written through a window of the class: a message-only window
    // made and destroyed at once carries the factory in.
    HWND probe = CreateWindowExW(0, className, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
    if (probe) {
        SetClassLongPtrW(probe, kFactorySlot, reinterpret_cast<LONG_PTR>(factory));
        DestroyWindow(probe);
    }
    return true;
}

INT_PTR Dialog::Run(HINSTANCE instance, int templateId, HWND owner) {
    return DialogBoxParamW(instance, MAKEINTRESOURCEW(templateId), owner, Proc, reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK Dialog::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(hwnd, DWLP_USER, lParam);
        reinterpret_cast<Dialog*>(lParam)->hwnd_ = hwnd;
    }
    auto* dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(hwnd, DWLP_USER));
    if (!dialog) return FALSE;
    const INT_PTR result = dialog->HandleMessage(message, wParam, lParam);
    if (message == WM_NCDESTROY) dialog->hwnd_ = nullptr;
    return result;
}

}  // namespace lx
