// BusyAnimation: the turning ring shown over the image view while an image loads.
//
// Its own thread draws straight onto the view's device context, 20 frames a second, so the
// animation keeps turning while the user-interface thread is busy. On the first frame after
// a start it saves the view's pixels under the frame; each frame is then the saved
// background with the ring image over it, composed off screen and copied in one blit.
// Start places it and sets it going; Pause stops the drawing (the caller repaints the view).
// The destructor ends the thread and frees the image list and bitmaps.
#pragma once

#include <windows.h>

#include <mutex>

#include "GdiObjects.h"
#include "ImageStrip.h"

namespace lx {

class BusyAnimation {
public:
    static constexpr int kFrameSize = 48;
    static constexpr int kBitmapId = 420;
    static constexpr DWORD kFrameMilliseconds = 50;

    BusyAnimation() = default;
    ~BusyAnimation();
    BusyAnimation(const BusyAnimation&) = delete;
    BusyAnimation& operator=(const BusyAnimation&) = delete;

    // Loads the frames (bitmap 420 of `instance`) and starts the paused drawing thread for
    // `view`. False when the frames are missing or the thread cannot be made.
    bool Create(HWND view, HINSTANCE instance);
    bool created() const { return thread_ != nullptr; }

    // Draws centred on `centre` (view client coordinates) from the first frame.
    void Start(POINT centre);
    void Pause();
    bool paused() const;
    int frameCount() const { return frameCount_; }

private:
    static DWORD WINAPI ThreadMain(void* self);
    void DrawFrame();

    HWND view_ = nullptr;
    ImageList frames_;
    int frameCount_ = 0;
    Bitmap background_;  // what lay under the frame when it started
    Bitmap offscreen_;   // one frame composed before it goes to the screen
    HANDLE drawEvent_ = nullptr;
    HANDLE stopEvent_ = nullptr;
    HANDLE thread_ = nullptr;
    // Guards the fields below, which Start and Pause change while the thread draws.
    mutable std::mutex lock_;
    POINT centre_{};
    int frame_ = 0;
    bool saveBackground_ = true;
    bool paused_ = true;
};

}  // namespace lx
