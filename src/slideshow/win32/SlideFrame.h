// CSlideFrame: the slide show's window ("LXSLIDESHOW_FRAME"), a borderless top-most window
// over the whole primary screen.
//
// The frame gathers the folder's pictures before it has a window (BuildFileSet; with none it
// says so and no window is made), then runs a SlideShow over them: it is the show's host,
// loading pictures on its loader thread (results come back as "wm_imageloaded", matched by
// stamp), drawing each slide once into an off-screen copy of the screen, and keeping timer
// 1001. Four buttons at the top right (start/pause, previous, next, close) and the mouse
// cursor hide after a moment without mouse movement. The right mouse button opens menu 7,
// which also sets the display time (kept in the settings store).
//
// The window text is the caption of the slide on show, so that it can be read out.
#pragma once

#include <windows.h>

#include <memory>
#include <span>
#include <string>

#include "BusyAnimation.h"
#include "FrameRunner.h"
#include "GdiObjects.h"
#include "SlideButtons.h"
#include "SlideLoader.h"
#include "SlideShow.h"
#include "Window.h"

namespace lx {

class CSlideFrame : public TopFrame, public MappedWindow<CSlideFrame>, private SlideShowHost {
public:
    static std::span<const MessageEntry<CSlideFrame>> Messages();
    static constexpr wchar_t kClassName[] = L"LXSLIDESHOW_FRAME";

    CSlideFrame();
    ~CSlideFrame() override;

    // Builds the file set from the path given at start-up; Create then makes the window only
    // when it found a slide.
    void OpenStartup(const std::wstring& path) override;
    HWND Create(int showCmd) override;

    // The viewable files of `path`'s folder (or of `path` itself when it is one), starting at
    // `path` when it is a file. False, after telling the user, when there are none.
    bool BuildFileSet(const std::wstring& path);

    static UINT ImageLoadedMessage();

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    LRESULT OnCreate(WPARAM, LPARAM);
    LRESULT OnPaint(WPARAM, LPARAM);
    LRESULT OnEraseBackground(WPARAM, LPARAM) { return 1; }
    LRESULT OnCommand(WPARAM, LPARAM);
    LRESULT OnTimer(WPARAM, LPARAM);
    LRESULT OnContextMenu(WPARAM, LPARAM);
    LRESULT OnMouseMove(WPARAM, LPARAM);
    LRESULT OnSetCursor(WPARAM, LPARAM);
    LRESULT OnDestroy(WPARAM, LPARAM);
    LRESULT OnImageLoaded(WPARAM, LPARAM);
    void CreateButtons();
    void ShowControls(bool shown);
    void ChooseInterval(uint32_t milliseconds);

    // SlideShowHost
    void StartLoad(uint32_t stamp, const std::wstring& path) override;
    std::optional<PackedDib> LoadNow(const std::wstring& path) override;
    std::wstring Describe(const std::wstring& path) override;
    uint32_t Now() override { return GetTickCount(); }
    void Show(const Slide& slide) override;
    void StartTimer(uint32_t milliseconds) override;
    void StopTimer() override;
    void SetBusy(bool busy) override;
    void SetPaused(bool paused) override { startButton_.SetPaused(paused); }

    // Drawing (SlideScreen.cpp): the slide into the off-screen copy of the screen.
    void Compose(const Slide& slide);

    bool ready_ = false;
    std::unique_ptr<SlideShow> show_;
    SIZE screen_{};
    Bitmap offscreen_;
    Font captionFont_;
    CSlideLoader loader_;
    std::unique_ptr<BusyAnimation> busyAnimation_;
    CStartButtonWnd startButton_;
    CImageButtonWnd imageButtons_[3];
    HACCEL accelerators_ = nullptr;
    bool controlsShown_ = true;
    POINT lastMouse_{-1, -1};
};

std::unique_ptr<TopFrame> MakeSlideFrame();

}  // namespace lx
