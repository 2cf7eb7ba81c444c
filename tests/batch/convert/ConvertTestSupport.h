// What the conversion tests share: small real image files (the batch tools' gradient
// bitmaps), the recording sink, and ImageMagick's identify as the independent reader of the
// results.
#pragma once

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ConvertOptions.h"
#include "ImageLoad.h"
#include "ImageProbe.h"
#include "ImageSave.h"
#include "ImageTypes.h"
#include "PackedDib.h"
#include "RecordingSink.h"
#include "TestFiles.h"
#include "../SplitContrastSupport.h"

namespace lxtest {

// identify's "%m %w %h" of a file ("JPEG 1000 667"), empty when it cannot read it. Under Wine
// the Linux tool cannot be started, so there the file is read back by the codec library and
// named the way identify names it; the Wine run of lxhost is checked by identify instead.
inline std::string Identify(const std::filesystem::path& file) {
#ifdef _WIN32
    static const std::map<int, std::string> kNames = {{1, "BMP3"}, {2, "JPEG"}, {3, "GIF"}, {5, "TGA"},
                                                      {10, "PNG"}, {17, "PPM"}};
    const auto dib = lx::LoadImageFile(file);
    // Targa has no signature: its type comes from the name, as the loader's does.
    int type = lx::ProbeImageType(file);
    if (type == 0) type = lx::ImageTypeFromPath(file.wstring().c_str());
    const auto name = kNames.find(type);
    if (!dib || name == kNames.end()) return {};
    return name->second + " " + std::to_string(dib->width()) + " " + std::to_string(dib->height());
#else
    if (!HaveTools("identify")) ADD_FAILURE() << "identify is missing (scripts/setup.sh installs it)";
    const std::filesystem::path out = file.string() + ".identify";
    const int status = Run("identify -format '%m %w %h' '" + file.string() + "' > '" + out.string() + "' 2>/dev/null");
    std::string text;
    if (status == 0) {
        const auto bytes = ReadFile(out);
        text.assign(bytes.begin(), bytes.end());
    }
    std::filesystem::remove(out);
    return text;
#endif
}

// Every field of a conversion record in stored order, the folder quoted: one line to compare.
inline std::wstring Fields(const lx::ConvertOptions& o) {
    std::wstring line;
    for (int32_t v : {o.saveType, o.resizeMode, o.size, o.resize, o.noEnlarge, o.deleteSource}) line += std::to_wstring(v) + L" ";
    line += L"'" + OutputFolder(o) + L"'";
    for (int32_t v : {o.jpegForm, o.jpegQuality, o.jpegSmoothing, o.fpxUseJpeg, o.fpxQuality, o.reserved0, o.reserved1,
                      o.jp2Ratio, o.reserved2[0], o.reserved2[1]})
        line += L" " + std::to_wstring(v);
    return line;
}

inline std::vector<std::string> Listing(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace lxtest
