// The multi-pane status bar the frames use: panes are named by ids (the string-table ids of
// their sample texts), sized once from those samples in the bar's own font; the first pane
// takes the remaining width. The bar is a child of the frame and dies with it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lx {

struct StatusPane {
    int id;
    std::wstring sample;  // text the pane must hold; empty for the stretching first pane
};

class StatusBar {
public:
    // Creates the status control as child `id` of `parent`.
    bool Create(HWND parent, int id);
    HWND hwnd() const { return hwnd_; }

    void SetPanes(const std::vector<StatusPane>& panes);
    // Call from the frame's WM_SIZE: moves the bar and recomputes the pane edges.
    void Resize();

    bool SetText(int paneId, const std::wstring& text);
    std::wstring Text(int paneId) const;
    // Help for what the pointer or the keyboard is on (a menu item, a tool-bar button): the
    // whole bar shows `text` until EndHelp brings the panes back as they were.
    void ShowHelp(const std::wstring& text);
    void EndHelp();
    // The icon stays the caller's and must outlive its use.
    bool SetIcon(int paneId, HICON icon);

private:
    int IndexOf(int paneId) const;
    HWND hwnd_ = nullptr;
    std::vector<int> ids_;
    std::vector<int> widths_;
};

}  // namespace lx
