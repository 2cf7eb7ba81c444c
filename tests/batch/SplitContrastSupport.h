// What the batch tool tests share: a bitmap file with a gradient (so that a cut, a reduction
// or a scaling has something to keep), whatever its name's extension says, and a sink that
// shows nothing.
#pragma once

#include <filesystem>
#include <stdexcept>

#include "ImageSave.h"
#include "PackedDib.h"
#include "TestFiles.h"
#include "ToolSink.h"

namespace lxtest {

inline void WriteBitmapFile(const std::filesystem::path& path, int width, int height) {
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < 3 * width; ++x) dib.row(y)[x] = static_cast<uint8_t>((x * 255 / (3 * width)) ^ (y & 0x3f));
    if (!lx::SaveBmpFile(path, dib)) throw std::runtime_error("cannot write test bitmap");
}

class QuietSink : public lx::ToolSink {
public:
    void StartProgress(const std::wstring&, const std::wstring&) override {}
    void SetLine(int, const std::wstring&, bool) override {}
    void SetProgress(uint64_t, uint64_t) override {}
    bool Cancelled() override { return false; }
    void EndProgress() override {}
    int Message(unsigned, const std::wstring&, unsigned) override { return lx::kIdOk; }
};

}  // namespace lxtest
