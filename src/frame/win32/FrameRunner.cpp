#include "FrameRunner.h"

#include <objidl.h>  // gdiplus.h needs it under WIN32_LEAN_AND_MEAN
#include <gdiplus.h>
#include <shlwapi.h>

#include <algorithm>
#include <mutex>

#include "CommandLine.h"

namespace lx {
namespace {

// The module's table of thread message loops: one entry per running frame tool call.
struct LoopEntry {
    DWORD threadId;
    MessageLoop* loop;
};
std::mutex g_loopsLock;
std::vector<LoopEntry> g_loops;

class RegisteredLoop {
public:
    explicit RegisteredLoop(MessageLoop* loop) : threadId_(GetCurrentThreadId()) {
        std::lock_guard lock(g_loopsLock);
        g_loops.push_back({threadId_, loop});
    }
    ~RegisteredLoop() {
        std::lock_guard lock(g_loopsLock);
        // Remove the newest entry of this thread: calls may nest (a frame opened from a frame).
        auto it = std::find_if(g_loops.rbegin(), g_loops.rend(),
                               [&](const LoopEntry& e) { return e.threadId == threadId_; });
        if (it != g_loops.rend()) g_loops.erase(std::next(it).base());
    }

private:
    DWORD threadId_;
};

class GdiplusSession {
public:
    GdiplusSession() {
        Gdiplus::GdiplusStartupInput input;
        if (Gdiplus::GdiplusStartup(&token_, &input, nullptr) != Gdiplus::Ok) token_ = 0;
    }
    ~GdiplusSession() {
        if (token_) Gdiplus::GdiplusShutdown(token_);
    }

private:
    ULONG_PTR token_ = 0;
};

int RunOneFrame(TopFrame& frame, const std::wstring& commandLine, int showCmd) {
    MessageLoop loop;
    RegisteredLoop registered(&loop);
    if (!frame.Create(showCmd)) return 0;
    frame.OpenStartup(commandLine);
    return loop.Run();
}

}  // namespace

int MessageLoop::Run() {
    constexpr UINT kSystemTimer = 0x0118;  // the caret's blink timer
    MSG msg{};
    bool idle = true;
    for (;;) {
        if (idle && !PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE)) {
            for (auto& handler : idleHandlers_) handler();
            idle = false;
        }
        if (GetMessageW(&msg, nullptr, 0, 0) <= 0) break;
        if (msg.message != WM_PAINT && msg.message != WM_TIMER && msg.message != kSystemTimer) idle = true;
        bool consumed = false;
        for (auto& filter : filters_) {
            if (filter(msg)) {
                consumed = true;
                break;
            }
        }
        if (consumed) continue;
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    return msg.message == WM_QUIT ? static_cast<int>(msg.wParam) : 0;
}

MessageLoop* CurrentMessageLoop() {
    const DWORD thread = GetCurrentThreadId();
    std::lock_guard lock(g_loopsLock);
    for (auto it = g_loops.rbegin(); it != g_loops.rend(); ++it)
        if (it->threadId == thread) return it->loop;
    return nullptr;
}

std::wstring UnquotedPath(const wchar_t* commandLine) {
    std::wstring text = commandLine ? commandLine : L"";
    text.resize(std::min(text.size(), kPathChars - 1));
    text.push_back(L'\0');
    PathUnquoteSpacesW(text.data());
    text.resize(wcslen(text.c_str()));
    return text;
}

std::wstring ViewerPathFromCommandLine(const wchar_t* commandLine) {
    const std::wstring rest = SkipLeadingOptions(commandLine ? commandLine : L"");
    return UnquotedPath(rest.c_str());
}

int RunFrameTool(const std::wstring& commandLine, int showCmd, FrameMode mode, const FrameFactories& frames) {
    GdiplusSession gdiplus;
    // All three frame objects exist for the call; only the one asked for gets a window.
    auto viewer = frames.viewer();
    auto editor = frames.editor();
    auto slide = frames.slide();
    return RunOneFrame(mode == FrameMode::Editor ? *editor : *viewer, commandLine, showCmd);
}

int RunSlideShowTool(const std::wstring& path, int showCmd, FrameFactory makeSlide) {
    GdiplusSession gdiplus;
    auto slide = makeSlide();
    MessageLoop loop;
    RegisteredLoop registered(&loop);
    // The show gathers its files before it has a window: with none it says so and makes none.
    slide->OpenStartup(path);
    if (!slide->Create(showCmd)) return 0;
    return loop.Run();
}

}  // namespace lx
