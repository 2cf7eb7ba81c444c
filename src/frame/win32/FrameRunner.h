// The shared start routine of the frame tools (editor, viewer, slide show).
//
// RunFrameTool starts GDI+ for its own lifetime, registers a message loop for the calling
// thread in the module's table, creates the one frame window asked for, hands it the command
// line, and pumps messages until that frame is destroyed. It returns on the calling thread.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lx {

enum class FrameMode { Editor = 0, Viewer = 1 };

// A top-level frame as the runner sees it. The editor, viewer and slide-show frames derive
// from it; until one is built, a plain window with the right class and caption stands in.
class TopFrame {
public:
    virtual ~TopFrame() = default;
    // Creates the window; null when it could not be created.
    virtual HWND Create(int showCmd) = 0;
    // The command line or path handed over at start-up.
    virtual void OpenStartup(const std::wstring& commandLine) = 0;
};

// A message loop of one thread. Frames may add filters that see each message before it is
// dispatched (accelerators, modeless dialogs); a filter returning true consumes it. Idle
// handlers run once each time the queue runs empty after a message that may have changed
// something (paint and timer messages do not count), as frames enable their commands then.
class MessageLoop {
public:
    using Filter = std::function<bool(MSG&)>;
    using IdleHandler = std::function<void()>;
    void AddFilter(Filter filter) { filters_.push_back(std::move(filter)); }
    void AddIdleHandler(IdleHandler handler) { idleHandlers_.push_back(std::move(handler)); }
    // Pumps until WM_QUIT; returns its exit code.
    int Run();

private:
    std::vector<Filter> filters_;
    std::vector<IdleHandler> idleHandlers_;
};

// The loop registered for the calling thread, or null.
MessageLoop* CurrentMessageLoop();

// The path that imgRunW hands to the viewer: leading options skipped, cut to a path buffer,
// enclosing quotes removed (PathUnquoteSpacesW).
std::wstring ViewerPathFromCommandLine(const wchar_t* commandLine);
// A command line as one path: cut to a path buffer, enclosing quotes removed.
std::wstring UnquotedPath(const wchar_t* commandLine);

// The frames a call may build. The tools own their frames; the module hands their factories
// in, so this runner knows no tool.
using FrameFactory = std::unique_ptr<TopFrame> (*)();
struct FrameFactories {
    FrameFactory editor;
    FrameFactory viewer;
    FrameFactory slide;
};

int RunFrameTool(const std::wstring& commandLine, int showCmd, FrameMode mode, const FrameFactories& frames);
// The slide show's start: its frame is handed the path first (it gathers its files) and
// then asked for its window, which it declines when it found nothing to show.
int RunSlideShowTool(const std::wstring& path, int showCmd, FrameFactory slide);

}  // namespace lx
