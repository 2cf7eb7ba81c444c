// The viewer's image loader: decodes the one file the user asked for on a worker thread of
// below-normal priority and posts the result to the frame window as a registered message
// (wParam = the request's stamp, lParam = the image as a global memory block holding a packed
// DIB, or null when the file could not be read). The receiver owns and frees the block. When
// the window is gone by then, the loader frees the block itself.
//
// One load at a time: Start ends the previous one first. The decode runs inside the loader's
// lock, so Stop (from the user-interface thread) waits for a running decode to finish, at
// most 6 seconds, after which the thread is terminated and its result never arrives.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

class CLoaderThread {
public:
    CLoaderThread();
    virtual ~CLoaderThread();
    CLoaderThread(const CLoaderThread&) = delete;
    CLoaderThread& operator=(const CLoaderThread&) = delete;

    // Where results go.
    void Bind(HWND target, UINT completionMessage);

    virtual bool SetPath(const std::wstring& path);
    virtual void ClearPath();
    // The thread body.
    virtual void Run();

    bool Start(DWORD stamp, const std::wstring& path);
    void Stop();
    // True while a load's thread has not ended.
    bool IsRunning() const;

protected:
    // What a load hands back for `path`, on the loader thread: the decoded picture as a
    // block for the receiver, or null. A loader that prepares pictures further (the slide
    // show scales them for the screen) does it here.
    virtual HGLOBAL Decode(const std::wstring& path);

    static constexpr DWORD kStopWaitMs = 6000;

private:
    static DWORD WINAPI ThreadMain(void* self);

    HWND target_ = nullptr;
    UINT message_ = 0;
    DWORD stamp_ = 0;
    HANDLE thread_ = nullptr;
    HANDLE cancel_ = nullptr;
    mutable CRITICAL_SECTION lock_;
    std::wstring path_;
};

}  // namespace lx
