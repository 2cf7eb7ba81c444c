#include "ActivationScope.h"

#include "ModuleResources.h"

namespace lx {

ActivationScope::ActivationScope() {
    ACTCTXW actctx = {sizeof actctx};
    actctx.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    actctx.hModule = ModuleInstance();
    actctx.lpResourceName = MAKEINTRESOURCEW(2);
    context_ = CreateActCtxW(&actctx);
    if (context_ != INVALID_HANDLE_VALUE && !ActivateActCtx(context_, &cookie_)) {
        ReleaseActCtx(context_);
        context_ = INVALID_HANDLE_VALUE;
    }
}

ActivationScope::~ActivationScope() {
    if (context_ == INVALID_HANDLE_VALUE) return;
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
}

}  // namespace lx
