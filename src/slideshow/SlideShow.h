// SlideShow: the order of events of a running slide show, apart from any window.
//
// The show steps through its slides without end, one every `interval` milliseconds. A slide
// comes from the cache of prepared slides or from the loader thread; while the slide on show
// is displayed, the next one is already being loaded and prepared, so that the change comes
// on time. The timer is one-shot: it is started only once the next slide is on the screen, so
// a slow load lengthens a gap instead of skipping slides. Previous and next show their slide
// at once (loading it on the spot if needed) and leave the show paused; Advance resumes it.
// A file that cannot be read becomes a slide without picture whose caption says so; it stays
// only briefly, so the show passes over it.
//
// The frame window implements SlideShowHost and calls the operations below for its commands,
// its timer and the loader's results.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PackedDib.h"
#include "SlideCache.h"

namespace lx {

class SlideShowHost {
public:
    virtual ~SlideShowHost() = default;
    // Starts loading `path` in the background (ending any earlier load); the picture, scaled
    // for the screen, comes back through SlideShow::OnLoaded with the same stamp.
    virtual void StartLoad(uint32_t stamp, const std::wstring& path) = 0;
    // Loads and scales `path` at once; nullopt when it cannot be read.
    virtual std::optional<PackedDib> LoadNow(const std::wstring& path) = 0;
    // The file's descriptive text for its caption, or "".
    virtual std::wstring Describe(const std::wstring& path) = 0;
    // A millisecond clock (GetTickCount) for the loads' stamps.
    virtual uint32_t Now() = 0;
    virtual void Show(const Slide& slide) = 0;
    virtual void StartTimer(uint32_t milliseconds) = 0;
    virtual void StopTimer() = 0;
    // Whether the busy animation turns (a slide to show is being loaded).
    virtual void SetBusy(bool busy) = 0;
    // The start/pause button shows the state.
    virtual void SetPaused(bool paused) = 0;
};

// The display times the menu offers, in milliseconds, and the default.
constexpr uint32_t kSlideIntervals[] = {1000, 2000, 3000, 5000, 10000};
constexpr uint32_t kDefaultSlideInterval = 2000;
// A stored interval when it is one of the offered ones, else the default.
uint32_t ValidSlideInterval(uint32_t stored);
// How long a slide without picture stays.
constexpr uint32_t kFailedSlideMs = 500;

class SlideShow {
public:
    // `paths` must not be empty; `start` is the first slide shown. `failedNote` ends the
    // caption of a slide whose file cannot be read.
    SlideShow(SlideShowHost& host, std::vector<std::wstring> paths, int start, std::wstring failedNote);

    // Shows the next slide and resumes a paused show (start, timer, F5).
    void Advance();
    // The timer ran out.
    void OnTimer();
    void TogglePause();
    void Previous();
    void Next();
    // True when a loader result with this stamp is awaited; any other result is stale.
    bool Awaits(uint32_t stamp) const { return pending_.stamp != 0 && pending_.stamp == stamp; }
    // A loader result (nullopt: the file could not be read); a stale one is dropped.
    void OnLoaded(uint32_t stamp, std::optional<PackedDib> picture);

    void SetInterval(uint32_t milliseconds) { interval_ = milliseconds; }
    uint32_t interval() const { return interval_; }
    bool paused() const { return paused_; }
    int nextIndex() const { return next_; }
    int count() const { return static_cast<int>(paths_.size()); }
    const SlideCache& cache() const { return cache_; }
    const SlidePtr& current() const { return current_; }

private:
    struct Load {
        uint32_t stamp = 0;  // 0: none outstanding
        int index = -1;
        bool show = false;  // shown on arrival unless paused; else only cached
    };

    int Wrap(int index) const;
    void Pause();
    void Display(SlidePtr slide);
    void ShowNow();
    void Prefetch();
    void RequestLoad(int index, bool show);
    SlidePtr MakeSlide(int index, std::optional<PackedDib> picture);

    SlideShowHost& host_;
    std::vector<std::wstring> paths_;
    std::wstring failedNote_;
    int next_ = 0;
    bool paused_ = false;
    bool timerRunning_ = false;
    uint32_t interval_ = kDefaultSlideInterval;
    uint32_t lastStamp_ = 0;
    Load pending_;
    SlideCache cache_;
    SlidePtr current_;
};

}  // namespace lx
