#include "StatusBar.h"

#include <commctrl.h>

#include "GdiObjects.h"
#include "PaneLayout.h"

namespace lx {

bool StatusBar::Create(HWND parent, int id) {
    hwnd_ = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, parent,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    return hwnd_ != nullptr;
}

void StatusBar::SetPanes(const std::vector<StatusPane>& panes) {
    ids_.clear();
    widths_.clear();
    WindowDc dc(hwnd_);
    auto* font = reinterpret_cast<HFONT>(SendMessageW(hwnd_, WM_GETFONT, 0, 0));
    SelectScope select(dc.get(), font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT));
    int borders[3] = {};
    SendMessageW(hwnd_, SB_GETBORDERS, 0, reinterpret_cast<LPARAM>(borders));
    // Room for the text, the pane's frame and a small icon beside it.
    const int extra = 2 * borders[2] + 8 + GetSystemMetrics(SM_CXSMICON);
    for (const StatusPane& pane : panes) {
        SIZE size{};
        if (!pane.sample.empty())
            GetTextExtentPoint32W(dc.get(), pane.sample.c_str(), static_cast<int>(pane.sample.size()), &size);
        ids_.push_back(pane.id);
        widths_.push_back(pane.sample.empty() ? 0 : size.cx + extra);
    }
    Resize();
}

void StatusBar::Resize() {
    SendMessageW(hwnd_, WM_SIZE, 0, 0);
    RECT rc{};
    GetClientRect(hwnd_, &rc);
    std::vector<int> edges = StatusPaneEdges(rc.right, widths_);
    if (!edges.empty()) SendMessageW(hwnd_, SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
}

int StatusBar::IndexOf(int paneId) const {
    for (size_t i = 0; i < ids_.size(); ++i)
        if (ids_[i] == paneId) return static_cast<int>(i);
    return -1;
}

bool StatusBar::SetText(int paneId, const std::wstring& text) {
    const int index = IndexOf(paneId);
    return index >= 0 && SendMessageW(hwnd_, SB_SETTEXTW, index, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring StatusBar::Text(int paneId) const {
    const int index = IndexOf(paneId);
    if (index < 0) return {};
    std::wstring text(LOWORD(SendMessageW(hwnd_, SB_GETTEXTLENGTHW, index, 0)) + 1, L'\0');
    SendMessageW(hwnd_, SB_GETTEXTW, index, reinterpret_cast<LPARAM>(text.data()));
    text.resize(wcslen(text.c_str()));
    return text;
}

void StatusBar::ShowHelp(const std::wstring& text) {
    if (!hwnd_) return;
    SendMessageW(hwnd_, SB_SIMPLE, TRUE, 0);
    SendMessageW(hwnd_, SB_SETTEXTW, SB_SIMPLEID, reinterpret_cast<LPARAM>(text.c_str()));
}

void StatusBar::EndHelp() {
    if (hwnd_) SendMessageW(hwnd_, SB_SIMPLE, FALSE, 0);
}

bool StatusBar::SetIcon(int paneId, HICON icon) {
    const int index = IndexOf(paneId);
    return index >= 0 && SendMessageW(hwnd_, SB_SETICON, index, reinterpret_cast<LPARAM>(icon));
}

}  // namespace lx
