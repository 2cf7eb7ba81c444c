// The loader thread against real files and a real window: what it posts, with which stamp,
// and that stopping and restarting it is safe.
#include <windows.h>
#include <psapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "DibGlobal.h"
#include "ImageCodecs.h"
#include "LoaderThread.h"
#include "TestFiles.h"

using namespace lx;
using lxtest::ScratchDir;
using lxtest::WriteFile;

namespace {

const UINT kDone = RegisterWindowMessageW(L"wm_gmil_loadimagecompleted");

struct Result {
    bool arrived = false;
    DWORD stamp = 0;
    HGLOBAL image = nullptr;
};

class LoaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        window_ = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_TRUE(window_);
        loader_.Bind(window_, kDone);
    }
    void TearDown() override {
        loader_.Stop();
        DestroyWindow(window_);
    }

    // Pumps until the completion message arrives or `ms` pass.
    Result Wait(DWORD ms = 10000) {
        Result result;
        const DWORD start = GetTickCount();
        while (GetTickCount() - start < ms) {
            MSG msg;
            if (PeekMessageW(&msg, window_, kDone, kDone, PM_REMOVE)) {
                result = {true, static_cast<DWORD>(msg.wParam), reinterpret_cast<HGLOBAL>(msg.lParam)};
                return result;
            }
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLPOSTMESSAGE);
        }
        return result;
    }

    std::filesystem::path Picture(const std::string& name, int width, int height) {
        PackedDib dib = PackedDib::Create(width, height, 24);
        for (int y = 0; y < height; ++y) std::memset(dib.row(y), y * 3, static_cast<size_t>(width) * 3);
        const auto path = dir_ / name;
        EXPECT_NE(SaveBmpFile(path, dib), 0);
        return path;
    }

    ScratchDir dir_{"loader"};
    HWND window_ = nullptr;
    CLoaderThread loader_;
};

TEST_F(LoaderTest, PostsWhatTheFileGaveWithTheRequestStamp) {
    Picture("a.bmp", 123, 45);
    WriteFile(dir_ / "broken.jpg", std::string("\xFF\xD8\xFF\xE0 not really a jpeg"));
    const struct {
        const char* name;
        DWORD stamp;
        int width, height;  // 0: no image
    } cases[] = {{"a.bmp", 4242, 123, 45}, {"broken.jpg", 7, 0, 0}, {"missing.png", 8, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(loader_.Start(c.stamp, (dir_ / c.name).wstring()));
        const Result result = Wait();
        ASSERT_TRUE(result.arrived);
        EXPECT_EQ(result.stamp, c.stamp);
        const std::optional<PackedDib> dib = DibFromGlobal(result.image);
        EXPECT_EQ(dib ? std::pair(dib->width(), dib->height()) : std::pair(0, 0), std::pair(c.width, c.height));
        if (result.image) GlobalFree(result.image);
    }
    // The thread has ended by itself once the result is out; stopping clears the request.
    loader_.Stop();
    EXPECT_FALSE(loader_.IsRunning());
}

TEST_F(LoaderTest, EachStartEndsThePreviousLoad) {
    const auto a = Picture("a.bmp", 2000, 1500);
    const auto b = Picture("b.bmp", 20, 10);
    ASSERT_TRUE(loader_.Start(1, a.wstring()));
    ASSERT_TRUE(loader_.Start(2, b.wstring()));  // waits for the first decode, then starts over
    // Both results arrive in order (the first was posted before its thread ended); the
    // receiver tells them apart by the stamp.
    std::vector<DWORD> stamps;
    for (Result r = Wait(); r.arrived; r = Wait(1500)) {
        stamps.push_back(r.stamp);
        if (r.image) GlobalFree(r.image);
    }
    ASSERT_FALSE(stamps.empty());
    EXPECT_EQ(stamps.back(), 2u);
}

TEST_F(LoaderTest, AGoneWindowGetsNothingAndTheLoaderFreesTheImage) {
    const auto path = Picture("a.bmp", 64, 64);
    HWND gone = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    loader_.Bind(gone, kDone);
    DestroyWindow(gone);
    ASSERT_TRUE(loader_.Start(3, path.wstring()));
    loader_.Stop();
    EXPECT_FALSE(loader_.IsRunning());
    MSG msg;
    EXPECT_FALSE(PeekMessageW(&msg, nullptr, kDone, kDone, PM_REMOVE));
}

TEST_F(LoaderTest, ManyLoadsKeepMemoryFlat) {
    const auto path = Picture("a.bmp", 800, 600);
    auto cycle = [&] {
        for (int i = 0; i < 20; ++i) {
            ASSERT_TRUE(loader_.Start(100 + i, path.wstring()));
            const Result r = Wait();
            ASSERT_TRUE(r.arrived);
            if (r.image) GlobalFree(r.image);
        }
        loader_.Stop();
    };
    cycle();
    PROCESS_MEMORY_COUNTERS before{sizeof before}, after{sizeof after};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &before, sizeof before);
    for (int round = 0; round < 5; ++round) cycle();
    K32GetProcessMemoryInfo(GetCurrentProcess(), &after, sizeof after);
    // Each image is 1.4 MB; a leak of one per load would add 140 MB.
    EXPECT_LT(static_cast<long long>(after.PagefileUsage) - static_cast<long long>(before.PagefileUsage),
              20LL << 20);
}

}  // namespace
