#include "LoaderThread.h"

#include "DibGlobal.h"
#include "ImageCodecs.h"

namespace lx {
namespace {

class Locked {
public:
    explicit Locked(CRITICAL_SECTION& lock) : lock_(lock) { EnterCriticalSection(&lock_); }
    ~Locked() { LeaveCriticalSection(&lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    CRITICAL_SECTION& lock_;
};

}  // namespace

CLoaderThread::CLoaderThread() { InitializeCriticalSectionAndSpinCount(&lock_, 4096); }

CLoaderThread::~CLoaderThread() {
    Stop();
    DeleteCriticalSection(&lock_);
}

void CLoaderThread::Bind(HWND target, UINT completionMessage) {
    Locked lock(lock_);
    target_ = target;
    message_ = completionMessage;
}

bool CLoaderThread::SetPath(const std::wstring& path) {
    path_ = path;
    return true;
}

void CLoaderThread::ClearPath() { std::wstring().swap(path_); }

HGLOBAL CLoaderThread::Decode(const std::wstring& path) {
    std::optional<PackedDib> dib = LoadImageFile(path);
    return dib ? ReleaseToGlobal(std::move(*dib)) : nullptr;
}

void CLoaderThread::Run() {
    Locked lock(lock_);
    HGLOBAL image = path_.empty() ? nullptr : Decode(path_);
    // The frame may have closed while the file was decoded; then nobody would free the block.
    if (!(target_ && IsWindow(target_) && PostMessageW(target_, message_, stamp_, reinterpret_cast<LPARAM>(image))))
        if (image) GlobalFree(image);
}

DWORD WINAPI CLoaderThread::ThreadMain(void* self) {
    static_cast<CLoaderThread*>(self)->Run();
    return 0;
}

bool CLoaderThread::Start(DWORD stamp, const std::wstring& path) {
    Stop();
    HANDLE thread = CreateThread(nullptr, 0, &ThreadMain, this, CREATE_SUSPENDED, nullptr);
    if (!thread) return false;
    SetThreadPriority(thread, THREAD_PRIORITY_BELOW_NORMAL);
    bool pathTaken;
    {
        Locked lock(lock_);
        thread_ = thread;
        cancel_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        stamp_ = stamp;
        pathTaken = SetPath(path);
    }
    if (!pathTaken) {
        // The suspended thread never ran and holds nothing; end it so Stop finds it finished.
        TerminateThread(thread, DWORD(-1));
        WaitForSingleObject(thread, INFINITE);
        Stop();
        return false;
    }
    ResumeThread(thread);
    return true;
}

// The thread and event handles are written only by the user-interface thread (Start, Stop), so
// it reads them without the lock, which a running decode holds.
bool CLoaderThread::IsRunning() const {
    DWORD code = 0;
    return thread_ && GetExitCodeThread(thread_, &code) && code == STILL_ACTIVE;
}

void CLoaderThread::Stop() {
    if (thread_) {
        DWORD code = 0;
        if (GetExitCodeThread(thread_, &code) && code == STILL_ACTIVE && cancel_) SetEvent(cancel_);
        if (WaitForSingleObject(thread_, kStopWaitMs) != WAIT_OBJECT_0) {
            TerminateThread(thread_, DWORD(-1));
            // The dead thread still owns the lock; nobody else uses it, so it is made anew.
            DeleteCriticalSection(&lock_);
            InitializeCriticalSectionAndSpinCount(&lock_, 4096);
        }
        CloseHandle(thread_);
    }
    if (cancel_) CloseHandle(cancel_);
    Locked lock(lock_);
    thread_ = nullptr;
    cancel_ = nullptr;
    stamp_ = 0;
    ClearPath();
}

}  // namespace lx
