// The splitter window: two panes side by side (a vertical bar) or one above the other (a
// horizontal bar), with a bar the user drags. The panes are child windows of the splitter,
// created by the owner and handed in; the splitter only places them. One pane may be shown
// alone (the other is hidden and gets no room).
#pragma once

#include <windows.h>

#include <span>

#include "Window.h"

namespace lx {

class Splitter : public MappedWindow<Splitter> {
public:
    static std::span<const MessageEntry<Splitter>> Messages();

    enum class Bar { Vertical, Horizontal };

    // Creates the splitter as child `id` of `parent`.
    bool Create(HWND parent, int id, Bar bar, COLORREF barColour = 0xBBBBBB, int barWidth = 4);
    void SetPanes(HWND first, HWND second);
    HWND Pane(int index) const { return panes_[index]; }
    void SetMinimums(int first, int second);
    // The bar's position: the first pane's width (vertical bar) or height (horizontal).
    void SetPosition(int position);
    int Position() const;
    // From this call on the second pane keeps `size` pixels as the splitter grows or shrinks
    // (a list beside a picture), and the first pane takes every change; dragging the bar sets
    // a new size. Without it the first pane keeps its size.
    void SetSecondSize(int size);
    // The size the second pane keeps; the position asked for, not clamped to the window.
    int SecondSize() const { return keepSecond_ ? kept_ : Extent() - kept_ - barWidth_; }
    // -1: both panes; 0 or 1: only that pane.
    void ShowOnly(int index);
    int ShownOnly() const { return only_; }

private:
    bool Vertical() const { return bar_ == Bar::Vertical; }
    int Extent() const;
    int Along(LPARAM lParam) const;
    // Where the bar is drawn: the position clamped to the panes' minimums.
    int BarAt() const;
    bool OnBar(int at) const;
    void Layout();

    LRESULT OnSize(WPARAM, LPARAM);
    LRESULT OnPaint(WPARAM, LPARAM);
    LRESULT OnLButtonDown(WPARAM, LPARAM);
    LRESULT OnMouseMove(WPARAM, LPARAM);
    LRESULT OnLButtonUp(WPARAM, LPARAM);
    LRESULT OnSetCursor(WPARAM, LPARAM);
    LRESULT OnNotify(WPARAM, LPARAM);
    LRESULT OnCommand(WPARAM, LPARAM);

    Bar bar_ = Bar::Vertical;
    COLORREF barColour_ = 0xBBBBBB;
    int barWidth_ = 4;
    HWND panes_[2] = {};
    int minimums_[2] = {};
    int kept_ = 100;           // the size of the pane that keeps its size
    bool keepSecond_ = false;  // which pane that is
    int only_ = -1;
    bool dragging_ = false;
    int grabOffset_ = 0;
};

}  // namespace lx
