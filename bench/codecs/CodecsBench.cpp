// codecs_bench decode IN OUT.ppm   reads IN with LoadImageFile, writes a binary PPM
// codecs_bench encode IN.ppm OUT   reads the PPM, writes OUT in the format of its extension
// Both directions do the same work as "convert IN OUT", so run.sh can time them side by side.
#include "ImageLoad.h"
#include "ImageFormats.h"
#include "ImageSave.h"
#include "PnmWriter.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: codecs_bench decode|encode IN OUT\n");
        return 2;
    }
    const auto image = lx::LoadImageFile(argv[2]);
    if (!image) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 1;
    }
    if (std::strcmp(argv[1], "decode") == 0) {
        const auto ppm = lx::EncodePnm(*image);
        std::ofstream(argv[3], std::ios::binary).write(reinterpret_cast<const char*>(ppm.data()), static_cast<std::streamsize>(ppm.size()));
        return 0;
    }
    return lx::SaveImageByType(argv[3], *image, lx::ImageTypeFromName(argv[3])) ? 0 : 1;
}
