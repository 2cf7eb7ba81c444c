// Activates the module's own manifest (common controls version 6) on the calling thread for
// the lifetime of the object, so the tools' windows get the current controls whatever the
// host process was built with. Every exported entry point holds one.
#pragma once

#include <windows.h>

namespace lx {

class ActivationScope {
public:
    ActivationScope();
    ~ActivationScope();
    ActivationScope(const ActivationScope&) = delete;
    ActivationScope& operator=(const ActivationScope&) = delete;

private:
    HANDLE context_ = INVALID_HANDLE_VALUE;
    ULONG_PTR cookie_ = 0;
};

}  // namespace lx
