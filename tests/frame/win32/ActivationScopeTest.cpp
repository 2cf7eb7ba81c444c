#include "ActivationScope.h"

#include <gtest/gtest.h>

namespace {

// True when the active activation context redirects comctl32.dll to a side-by-side version.
bool CommonControlsRedirected() {
    ACTCTX_SECTION_KEYED_DATA data = {sizeof data};
    return FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_DLL_REDIRECTION, L"comctl32.dll", &data);
}

}  // namespace

TEST(ActivationScope, RedirectsCommonControlsForItsLifetime) {
    EXPECT_FALSE(CommonControlsRedirected());
    {
        lx::ActivationScope scope;
        EXPECT_TRUE(CommonControlsRedirected());
        {
            lx::ActivationScope nested;  // an eight-bit entry calls the wide one
            EXPECT_TRUE(CommonControlsRedirected());
        }
        EXPECT_TRUE(CommonControlsRedirected());
    }
    EXPECT_FALSE(CommonControlsRedirected());
}
