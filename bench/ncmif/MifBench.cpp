// One operation of the image class on a PPM photograph, as a whole program, so that it can be
// timed the same way as the reference tools (read the file, work, write the file):
//   mif_bench resize   IN.ppm OUT.ppm       mode-10 reduction to 1000 x 667 (a PGM stays grey)
//   mif_bench quantize IN.ppm OUT.ppm       256 colours, error diffusion
//   mif_bench blur     IN.ppm OUT.ppm       Gaussian blur, radius 5, whole image
//   mif_bench multiply IN.ppm OUT.ppm LAYER.ppm   full-image addlayer, multiply
//   mif_bench size-nearest|size-linear|size-cubic IN.ppm OUT.ppm
//                                           the editor's image size to half, by each method
//   mif_bench paste IN.ppm OUT.ppm LAYER.ppm  the editor's paste: LAYER centred with the
//                                           default drop shadow (softness 16, distance 3)
// The wall-clock and processor time of the operation alone go to standard error.
#include <algorithm>
#include <chrono>
#include <ctime>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "ImageOperations.h"
#include "PasteBlend.h"
#include "mif.h"

namespace {

std::optional<lx::PackedDib> ReadPpm(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::string magic;
    int w = 0, h = 0, maxval = 0;
    in >> magic >> w >> h >> maxval;
    in.get();
    const bool grey = magic == "P5";
    if ((!grey && magic != "P6") || maxval != 255 || w <= 0 || h <= 0) return std::nullopt;
    lx::PackedDib dib = lx::PackedDib::Create(w, h, grey ? 8 : 24);
    if (dib.empty()) return std::nullopt;
    if (grey)
        for (int i = 0; i < 256; ++i) dib.palette()[i] = lx::Rgbq{static_cast<uint8_t>(i), static_cast<uint8_t>(i), static_cast<uint8_t>(i), 0};
    const int channels = grey ? 1 : 3;
    std::vector<uint8_t> line(static_cast<size_t>(w) * channels);
    for (int y = 0; y < h; ++y) {
        if (!in.read(reinterpret_cast<char*>(line.data()), static_cast<std::streamsize>(line.size()))) return std::nullopt;
        uint8_t* row = dib.row(y);
        if (grey) std::copy(line.begin(), line.end(), row);
        else
            for (int x = 0; x < w; ++x) row[3 * x] = line[3 * x + 2], row[3 * x + 1] = line[3 * x + 1], row[3 * x + 2] = line[3 * x];
    }
    return dib;
}

bool WritePpm(const char* path, const lx::PackedDib& dib) {
    std::ofstream out(path, std::ios::binary);
    const bool grey = dib.bitCount() == 8;
    out << (grey ? "P5\n" : "P6\n") << dib.width() << " " << dib.height() << "\n255\n";
    const int channels = grey ? 1 : 3;
    std::vector<uint8_t> line(static_cast<size_t>(dib.width()) * channels);
    for (int y = 0; y < dib.height(); ++y) {
        for (int x = 0; x < dib.width(); ++x) {
            const uint32_t c = dib.pixel(x, y);
            if (grey) line[x] = c & 0xff;
            else line[3 * x] = (c >> 16) & 0xff, line[3 * x + 1] = (c >> 8) & 0xff, line[3 * x + 2] = c & 0xff;
        }
        out.write(reinterpret_cast<const char*>(line.data()), static_cast<std::streamsize>(line.size()));
    }
    return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: mif_bench resize|quantize|blur|multiply|size-nearest|size-linear|size-cubic|paste IN.ppm OUT.ppm [LAYER.ppm]\n");
        return 2;
    }
    const std::string op = argv[1];
    auto dib = ReadPpm(argv[2]);
    if (!dib) return 1;
    lx::mif image;
    image.attachdib(std::move(*dib));
    lx::mif layer;
    if (op == "multiply" || op == "paste") {
        auto other = argc > 4 ? ReadPpm(argv[4]) : std::nullopt;
        if (!other) return 1;
        layer.attachdib(std::move(*other));
    }
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t startCpu = std::clock();
    bool ok = false;
    if (op == "resize") ok = image.zoom(1000, 667, lx::kZoomHighQuality, 0);
    else if (op == "quantize") ok = image.quantize(256, lx::kQuantizeDiffusion, nullptr);
    else if (op == "blur") ok = image.blur_gauss_rle(nullptr, 5.0);
    else if (op == "multiply") ok = image.addlayer(&layer, 0, 0, lx::kBlendMultiply, 255);
    else if (op == "size-nearest") ok = lx::ResampleImage(image, image.width() / 2, image.height() / 2, lx::kResampleNearest, 0);
    else if (op == "size-linear") ok = lx::ResampleImage(image, image.width() / 2, image.height() / 2, lx::kResampleLinear, 0);
    else if (op == "size-cubic")
        ok = lx::ResampleImage(image, image.width() / 2, image.height() / 2, lx::kResampleCubic, lx::kDefaultCubicParameter);
    else if (op == "paste") {
        lx::PasteSettings settings;
        settings.shadow = 1;
        const lx::PastePoint at = lx::AnchorPosition(4, image.width(), image.height(), layer.width(), layer.height());
        ok = lx::BlendLayer(image, layer, at.x, at.y, settings);
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double cpu = static_cast<double>(std::clock() - startCpu) / CLOCKS_PER_SEC;
    if (!ok) return 1;
    std::fprintf(stderr, "%s %.4f %.4f\n", op.c_str(), seconds, cpu);
    return WritePpm(argv[3], image.dib()) ? 0 : 1;
}
