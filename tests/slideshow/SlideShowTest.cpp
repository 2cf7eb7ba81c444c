#include "SlideShow.h"

#include <gtest/gtest.h>

#include <set>

namespace lx {
namespace {

// Records what the show asks of its window; loads answer when the test says so.
class FakeHost : public SlideShowHost {
public:
    void StartLoad(uint32_t stamp, const std::wstring& path) override {
        loads.push_back({stamp, path});
        log += L"load " + path + L";";
    }
    std::optional<PackedDib> LoadNow(const std::wstring& path) override {
        log += L"now " + path + L";";
        return Picture(path);
    }
    std::wstring Describe(const std::wstring& path) override { return path == L"d.jpg" ? L"about d" : L""; }
    uint32_t Now() override { return clock; }
    void Show(const Slide& slide) override {
        shown = slide.caption;
        log += L"show " + slide.path + L";";
    }
    void StartTimer(uint32_t ms) override {
        timer = ms;
        log += L"timer;";
    }
    void StopTimer() override { timer = 0; }
    void SetBusy(bool on) override { busy = on; }
    void SetPaused(bool on) override { paused = on; }

    std::optional<PackedDib> Picture(const std::wstring& path) const {
        if (broken.count(path)) return std::nullopt;
        return PackedDib::Create(4, 3, 24);
    }
    // Answers the newest load.
    void Deliver(SlideShow& show) {
        ASSERT_FALSE(loads.empty());
        show.OnLoaded(loads.back().first, Picture(loads.back().second));
    }
    std::wstring TakeLog() { return std::exchange(log, L""); }

    std::vector<std::pair<uint32_t, std::wstring>> loads;
    std::set<std::wstring> broken;
    std::wstring log, shown;
    uint32_t clock = 1000, timer = 0;
    bool busy = false, paused = false;
};

std::vector<std::wstring> Names(int count) {
    std::vector<std::wstring> names;
    for (int i = 0; i < count; ++i) names.push_back(std::wstring(1, static_cast<wchar_t>(L'a' + i)) + L".jpg");
    return names;
}

TEST(SlideShow, OneImageRestartsTheSameSlideFromTheCacheOnEveryTick) {
    FakeHost host;
    SlideShow show(host, Names(1), 0, L"broken");
    show.Advance();
    EXPECT_TRUE(host.busy);
    host.Deliver(show);
    EXPECT_EQ(host.TakeLog(), L"load a.jpg;show a.jpg;timer;");
    EXPECT_EQ(host.shown, L"[1 / 1] a.jpg");
    EXPECT_FALSE(host.busy);
    for (int tick = 0; tick < 3; ++tick) {
        show.OnTimer();
        EXPECT_EQ(host.TakeLog(), L"show a.jpg;timer;");
    }
}

TEST(SlideShow, TheNextSlideLoadsWhileOneShowsAndTheTimerWaitsForItsArrival) {
    FakeHost host;
    SlideShow show(host, Names(3), 2, L"broken");  // the last file chosen
    show.Advance();
    host.Deliver(show);
    EXPECT_EQ(host.TakeLog(), L"load c.jpg;show c.jpg;timer;load a.jpg;");
    EXPECT_EQ(host.timer, kDefaultSlideInterval);
    // The tick comes before the picture ahead: no timer until it is on the screen.
    show.OnTimer();
    EXPECT_EQ(host.timer, 0u);
    EXPECT_TRUE(host.busy);
    host.Deliver(show);
    EXPECT_EQ(host.TakeLog(), L"show a.jpg;timer;load b.jpg;");  // after the last, the first
    host.Deliver(show);
    show.SetInterval(5000);
    show.OnTimer();
    EXPECT_EQ(host.TakeLog(), L"show b.jpg;timer;");  // ready in time: shown from the cache
    EXPECT_EQ(host.timer, 5000u);
}

TEST(SlideShow, PreviousAndNextShowAtOnceAndLeaveTheShowPaused) {
    const struct {
        int start;
        const wchar_t* previous;
    } cases[] = {{1, L"now a.jpg;show a.jpg;"}, {0, L"now c.jpg;show c.jpg;"}};
    for (const auto& c : cases) {
        FakeHost host;
        SlideShow show(host, Names(3), c.start, L"broken");
        show.Advance();
        host.Deliver(show);
        host.TakeLog();
        show.Previous();
        EXPECT_EQ(host.TakeLog(), c.previous);
        EXPECT_TRUE(show.paused());
        EXPECT_TRUE(host.paused);
        EXPECT_EQ(host.timer, 0u);
        show.Next();  // the one chosen at the start, still cached
        EXPECT_EQ(host.TakeLog(), std::wstring(L"show ") + Names(3)[c.start] + L";");
        EXPECT_TRUE(show.paused());
        show.TogglePause();  // resumes with the next slide, loaded ahead already
        host.Deliver(show);
        EXPECT_FALSE(host.paused);
        EXPECT_NE(host.timer, 0u);
    }
}

TEST(SlideShow, APausedShowOnlyCachesWhatArrives) {
    FakeHost host;
    SlideShow show(host, Names(3), 0, L"broken");
    show.Advance();
    show.TogglePause();
    host.Deliver(show);
    EXPECT_EQ(host.TakeLog(), L"load a.jpg;");
    EXPECT_FALSE(host.busy);
    show.TogglePause();
    EXPECT_EQ(host.TakeLog(), L"show a.jpg;timer;load b.jpg;");
}

TEST(SlideShow, AnEleventhSlideDropsTheFirstAndSteppingBackLoadsItAgain) {
    FakeHost host;
    SlideShow show(host, Names(12), 0, L"broken");
    show.Advance();
    host.Deliver(show);  // a
    for (int i = 1; i < 10; ++i) {
        host.Deliver(show);  // the slide ahead
        show.OnTimer();
    }
    EXPECT_EQ(show.cache().Paths().size(), 10u);
    EXPECT_EQ(show.cache().Paths().front(), L"a.jpg");
    host.Deliver(show);  // k, the eleventh
    EXPECT_EQ(show.cache().Paths().size(), SlideCache::kCapacity);
    EXPECT_EQ(show.cache().Paths().front(), L"b.jpg");
    host.TakeLog();
    for (int i = 0; i < 8; ++i) show.Previous();  // i back to b: all cached
    EXPECT_EQ(host.TakeLog().find(L"now"), std::wstring::npos);
    show.Previous();
    // a comes back in the place of the oldest, b, which is then loaded ahead again.
    EXPECT_EQ(host.TakeLog(), L"now a.jpg;show a.jpg;load b.jpg;");
}

TEST(SlideShow, ABrokenFileIsPassedOverWithItsCaptionSayingSo) {
    FakeHost host;
    host.broken = {L"b.jpg"};
    SlideShow show(host, Names(4), 0, L"broken");
    show.Advance();
    host.Deliver(show);
    host.Deliver(show);  // b, ahead
    show.OnTimer();
    EXPECT_EQ(host.shown, L"[2 / 4] b.jpg\n\nbroken");
    EXPECT_EQ(host.timer, kFailedSlideMs);
    host.Deliver(show);
    show.OnTimer();
    EXPECT_EQ(host.shown, L"[3 / 4] c.jpg");
    host.Deliver(show);
    show.OnTimer();
    EXPECT_EQ(host.shown, L"[4 / 4] d.jpg\n\nabout d");  // the file's description
}

TEST(SlideShow, OnlyTheNewestRequestsResultIsTaken) {
    FakeHost host;
    SlideShow show(host, Names(3), 0, L"broken");
    show.Advance();
    const uint32_t first = host.loads.back().first;
    show.Previous();  // shown on the spot; the load ahead is for another slide
    ASSERT_EQ(host.loads.size(), 2u);
    const uint32_t second = host.loads.back().first;
    EXPECT_NE(first, second);  // the clock did not move, the stamps differ
    EXPECT_FALSE(show.Awaits(first));
    host.TakeLog();
    show.OnLoaded(first, PackedDib::Create(4, 3, 24));
    EXPECT_EQ(host.TakeLog(), L"");
    EXPECT_EQ(show.cache().Paths().size(), 1u);
}

TEST(SlideShow, CaptionsWidenTheIndexFromOneHundredAndOneThousandSlides) {
    const struct {
        int position, count;
        const wchar_t* note;
        const wchar_t* caption;
    } cases[] = {
        {7, 99, L"", L"[7 / 99] x.jpg"},
        {7, 100, L"", L"[007 / 100] x.jpg"},
        {100, 999, L"", L"[100 / 999] x.jpg"},
        {7, 1000, L"", L"[0007 / 1000] x.jpg"},
        {12345, 12345, L"", L"[12345 / 12345] x.jpg"},
        {1, 2, L"夕焼け", L"[1 / 2] x.jpg\n\n夕焼け"},
    };
    for (const auto& c : cases) EXPECT_EQ(SlideCaption(c.position, c.count, L"x.jpg", c.note), c.caption);
    EXPECT_EQ(ValidSlideInterval(5000), 5000u);
    EXPECT_EQ(ValidSlideInterval(0), kDefaultSlideInterval);
    EXPECT_EQ(ValidSlideInterval(4000), kDefaultSlideInterval);
}

}  // namespace
}  // namespace lx
