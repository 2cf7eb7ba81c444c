// Window and dialog base classes with message maps.
//
// A window class derives from MappedWindow<Self> and lists its messages in a table of
// {message, &Self::OnSomething} that its static member `Messages()` returns (defined beside the
// handlers, so the header need not show the table); each handler is one small member taking
// wParam and lParam. Messages not in the table go to DefWindowProcW.
//
// Ownership: a window created through Window::Create belongs to the caller's object, which
// must outlive the HWND (its destructor destroys a window still open). A control registered
// with RegisterWindowClass and created by class name alone (CreateWindowExW, as frames create
// controls) gets an object made by its factory; that object belongs to the window and is
// deleted when the window is destroyed.
#pragma once

#include <windows.h>

#include <span>

namespace lx {

class Window {
public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    HWND hwnd() const { return hwnd_; }

    // Creates a window of a class registered by RegisterWindowClass, bound to this object.
    HWND Create(const wchar_t* className, const wchar_t* title, DWORD style, DWORD exStyle, int x, int y,
                int width, int height, HWND parent, HMENU menuOrId);

    // The object bound to a window of ours, or null.
    static Window* FromHandle(HWND hwnd);

protected:
    virtual LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) {
        return DefWindowProcW(hwnd_, message, wParam, lParam);
    }

private:
    friend LRESULT CALLBACK WindowProc(HWND, UINT, WPARAM, LPARAM);
    HWND hwnd_ = nullptr;
    bool ownedByWindow_ = false;
};

using WindowFactory = Window* (*)();

// Registers a window class whose procedure dispatches to Window objects. With a factory, a
// window created by class name alone gets its own object from it. Registering a class that
// exists already succeeds. Returns false when the system refuses.
bool RegisterWindowClass(const wchar_t* className, WindowFactory factory, UINT style = CS_DBLCLKS,
                         HCURSOR cursor = nullptr, HBRUSH background = nullptr);

template <class T>
struct MessageEntry {
    UINT message;
    LRESULT (T::*handler)(WPARAM, LPARAM);
};

// Runs the handler that `self`'s table names for `message`; false when there is none.
template <class T>
bool RunMappedHandler(T* self, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    for (const MessageEntry<T>& entry : T::Messages())
        if (entry.message == message) {
            result = (self->*entry.handler)(wParam, lParam);
            return true;
        }
    return false;
}

template <class T>
class MappedWindow : public Window {
protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        LRESULT result = 0;
        return RunMappedHandler(static_cast<T*>(this), message, wParam, lParam, result) ? result
                                                                                         : Default(message, wParam, lParam);
    }
};

// A modal dialog from a template resource with the same kind of message map (`Messages()`
// returning DialogEntry rows); handlers return what DialogProc returns (TRUE: handled).
class Dialog {
public:
    Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    virtual ~Dialog() = default;

    HWND hwnd() const { return hwnd_; }
    // Runs the dialog; returns the value given to EndDialog, or -1 when it could not be made.
    INT_PTR Run(HINSTANCE instance, int templateId, HWND owner);

protected:
    virtual INT_PTR HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) { return FALSE; }

private:
    static INT_PTR CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
    HWND hwnd_ = nullptr;
};

// Dialog handlers return what DialogProc returns, which has LRESULT's type.
template <class T>
using DialogEntry = MessageEntry<T>;

template <class T>
class MappedDialog : public Dialog {
protected:
    INT_PTR HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        LRESULT result = FALSE;
        return RunMappedHandler(static_cast<T*>(this), message, wParam, lParam, result) ? result : FALSE;
    }
};

}  // namespace lx
