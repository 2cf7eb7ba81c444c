#include "BusyAnimation.h"

#include "CoreServices.h"

namespace lx {

BusyAnimation::~BusyAnimation() {
    if (thread_) {
        SetEvent(stopEvent_);
        WaitForSingleObject(thread_, INFINITE);
        CloseHandle(thread_);
    }
    if (drawEvent_) CloseHandle(drawEvent_);
    if (stopEvent_) CloseHandle(stopEvent_);
}

bool BusyAnimation::Create(HWND view, HINSTANCE instance) {
    if (thread_ || !view) return false;
    frames_ = ImageList(LoadImageListStrip(instance, kFrameSize, kBitmapId, 0, 0xFF00FF));
    if (!frames_) return false;
    frameCount_ = ImageList_GetImageCount(frames_.get());
    {
        WindowDc screen(nullptr);
        background_.reset(CreateCompatibleBitmap(screen.get(), kFrameSize, kFrameSize));
        offscreen_.reset(CreateCompatibleBitmap(screen.get(), kFrameSize, kFrameSize));
    }
    if (frameCount_ <= 0 || !background_ || !offscreen_) return false;
    view_ = view;
    drawEvent_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    stopEvent_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!drawEvent_ || !stopEvent_) return false;
    thread_ = CreateThread(nullptr, 0, ThreadMain, this, CREATE_SUSPENDED, nullptr);
    if (!thread_) return false;
    ResumeThread(thread_);
    return true;
}

void BusyAnimation::Start(POINT centre) {
    if (!thread_) return;
    std::lock_guard<std::mutex> hold(lock_);
    centre_ = centre;
    if (paused_) {
        saveBackground_ = true;
        frame_ = 0;
        SetEvent(drawEvent_);
    }
    paused_ = false;
}

void BusyAnimation::Pause() {
    if (!thread_) return;
    std::lock_guard<std::mutex> hold(lock_);
    if (!paused_) ResetEvent(drawEvent_);
    paused_ = true;
}

bool BusyAnimation::paused() const {
    std::lock_guard<std::mutex> hold(lock_);
    return paused_;
}

DWORD WINAPI BusyAnimation::ThreadMain(void* param) {
    auto* self = static_cast<BusyAnimation*>(param);
    const HANDLE events[2] = {self->stopEvent_, self->drawEvent_};
    for (;;) {
        if (WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0 + 1) break;
        self->DrawFrame();
        GdiFlush();
        if (WaitForSingleObject(self->stopEvent_, kFrameMilliseconds) != WAIT_TIMEOUT) break;
    }
    return 0;
}

void BusyAnimation::DrawFrame() {
    if (!IsWindowVisible(view_)) return;
    std::lock_guard<std::mutex> hold(lock_);
    if (paused_) return;  // paused between the wait and here
    const int left = centre_.x - kFrameSize / 2, top = centre_.y - kFrameSize / 2;
    WindowDc screen(view_);
    MemoryDc saved(screen.get()), composed(screen.get());
    SelectScope useSaved(saved.get(), background_.get()), useComposed(composed.get(), offscreen_.get());
    if (saveBackground_) {
        BitBlt(saved.get(), 0, 0, kFrameSize, kFrameSize, screen.get(), left, top, SRCCOPY);
        saveBackground_ = false;
    }
    BitBlt(composed.get(), 0, 0, kFrameSize, kFrameSize, saved.get(), 0, 0, SRCCOPY);
    ImageList_Draw(frames_.get(), frame_, composed.get(), 0, 0, ILD_TRANSPARENT);
    BitBlt(screen.get(), left, top, kFrameSize, kFrameSize, composed.get(), 0, 0, SRCCOPY);
    frame_ = (frame_ + 1) % frameCount_;
}

}  // namespace lx
