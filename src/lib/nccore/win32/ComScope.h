// COM for the lifetime of one object on the calling thread. Tools run on the host's thread,
// which may or may not have COM already; a thread in another apartment mode still works for
// the shell objects the tools use, so that failure is not treated as fatal.
#pragma once

#include <objbase.h>

namespace lx {

class ComScope {
public:
    ComScope() : initialised_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~ComScope() {
        if (initialised_) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool initialised_;
};

}  // namespace lx
