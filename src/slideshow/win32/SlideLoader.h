// The slide show's loader: the viewer's loader thread, but what it hands back is already
// prepared for the screen (decoded, turned upright, scaled down to fit, 24-bit), so that the
// user-interface thread only copies it out. LoadSlidePicture does the same on the calling
// thread, for a slide the user steps to that is not prepared yet.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "LoaderThread.h"
#include "PackedDib.h"

namespace lx {

std::optional<PackedDib> LoadSlidePicture(const std::wstring& path, SIZE screen);

class CSlideLoader : public CLoaderThread {
public:
    ~CSlideLoader() override { Stop(); }
    // The screen the pictures are prepared for; set before the first load.
    void SetScreen(SIZE screen) { screen_ = screen; }

protected:
    HGLOBAL Decode(const std::wstring& path) override;

private:
    SIZE screen_{};
};

}  // namespace lx
