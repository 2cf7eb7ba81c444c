#include "SlideShow.h"

#include <algorithm>

#include "PathNames.h"

namespace lx {

uint32_t ValidSlideInterval(uint32_t stored) {
    return std::find(std::begin(kSlideIntervals), std::end(kSlideIntervals), stored) != std::end(kSlideIntervals)
               ? stored
               : kDefaultSlideInterval;
}

SlideShow::SlideShow(SlideShowHost& host, std::vector<std::wstring> paths, int start, std::wstring failedNote)
    : host_(host), paths_(std::move(paths)), failedNote_(std::move(failedNote)) {
    next_ = Wrap(start);
}

int SlideShow::Wrap(int index) const {
    const int n = count();
    if (n == 0) return 0;
    return ((index % n) + n) % n;
}

void SlideShow::Advance() {
    if (paths_.empty()) return;
    if (paused_) {
        paused_ = false;
        host_.SetPaused(false);
    }
    if (SlidePtr slide = cache_.Find(paths_[next_])) {
        Display(std::move(slide));
        return;
    }
    // The slide is on its way already when the load ahead was for it.
    if (pending_.stamp != 0 && pending_.index == next_)
        pending_.show = true;
    else
        RequestLoad(next_, true);
    host_.SetBusy(true);
}

void SlideShow::OnTimer() {
    host_.StopTimer();
    timerRunning_ = false;
    Advance();
}

void SlideShow::Pause() {
    if (!paused_) {
        paused_ = true;
        host_.SetPaused(true);
    }
    host_.StopTimer();
    timerRunning_ = false;
    // A slide on its way is kept but no longer shown when it comes.
    pending_.show = false;
    host_.SetBusy(false);
}

void SlideShow::TogglePause() {
    if (paused_)
        Advance();
    else
        Pause();
}

void SlideShow::Previous() {
    if (paths_.empty()) return;
    Pause();
    // One step back to the slide on show, one more to the slide before it.
    next_ = Wrap(next_ - 2);
    ShowNow();
}

void SlideShow::Next() {
    if (paths_.empty()) return;
    Pause();
    ShowNow();
}

void SlideShow::ShowNow() {
    SlidePtr slide = cache_.Find(paths_[next_]);
    if (!slide) {
        host_.SetBusy(true);  // turns on its own thread while this one decodes
        slide = MakeSlide(next_, host_.LoadNow(paths_[next_]));
        cache_.Put(slide);
    }
    Display(std::move(slide));
}

// Puts `slide` (the one at next_) on the screen, moves on, and starts the timer and the load
// of the slide after it.
void SlideShow::Display(SlidePtr slide) {
    current_ = std::move(slide);
    host_.SetBusy(false);
    host_.Show(*current_);
    next_ = Wrap(next_ + 1);
    if (!paused_ && !timerRunning_) {
        host_.StartTimer(current_->failed() ? std::min(interval_, kFailedSlideMs) : interval_);
        timerRunning_ = true;
    }
    Prefetch();
}

void SlideShow::Prefetch() {
    if (cache_.Find(paths_[next_])) return;
    if (pending_.stamp != 0 && pending_.index == next_) return;
    RequestLoad(next_, false);
}

void SlideShow::RequestLoad(int index, bool show) {
    // Stamps only grow, so a result of an earlier request never matches a later one, even
    // within one tick of the clock. 0 means "none".
    uint32_t stamp = host_.Now();
    if (static_cast<int32_t>(stamp - lastStamp_) <= 0) stamp = lastStamp_ + 1;
    if (stamp == 0) stamp = 1;
    lastStamp_ = stamp;
    pending_ = {stamp, index, show};
    host_.StartLoad(stamp, paths_[index]);
}

void SlideShow::OnLoaded(uint32_t stamp, std::optional<PackedDib> picture) {
    if (!Awaits(stamp)) return;
    const Load load = pending_;
    pending_ = {};
    SlidePtr slide = MakeSlide(load.index, std::move(picture));
    cache_.Put(slide);
    if (load.show && !paused_ && load.index == next_)
        Display(std::move(slide));
    else if (load.show)
        host_.SetBusy(false);
}

SlidePtr SlideShow::MakeSlide(int index, std::optional<PackedDib> picture) {
    auto slide = std::make_shared<Slide>();
    slide->path = paths_[index];
    if (picture) slide->picture = std::move(*picture);
    const std::wstring note = slide->failed() ? failedNote_ : host_.Describe(slide->path);
    slide->caption = SlideCaption(index + 1, count(), FileNameOf(slide->path), note);
    return slide;
}

}  // namespace lx
