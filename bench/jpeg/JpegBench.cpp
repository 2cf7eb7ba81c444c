// Encodes a binary PPM file to JPEG the way cjpeg would be asked to:
//   jpeg_bench [-quality N] [-optimize] [-progressive] [-smooth N] -outfile OUT IN.ppm
// and reports the time spent in the encoder alone on stderr.
#include "JpegWriter.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

lx::PackedDib ReadPpm(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::string magic;
    int width = 0, height = 0, maxval = 0;
    in >> magic >> width >> height >> maxval;
    in.get();
    if (magic != "P6" || maxval != 255) return {};
    lx::PackedDib dib = lx::PackedDib::Create(width, height, 24);
    std::vector<uint8_t> row(static_cast<size_t>(width) * 3);
    for (int y = 0; y < height && !dib.empty(); ++y) {
        in.read(reinterpret_cast<char*>(row.data()), static_cast<std::streamsize>(row.size()));
        uint8_t* out = dib.row(y);
        for (int x = 0; x < width; ++x) {
            out[3 * x] = row[3 * x + 2];
            out[3 * x + 1] = row[3 * x + 1];
            out[3 * x + 2] = row[3 * x];
        }
    }
    return in ? std::move(dib) : lx::PackedDib();
}

}  // namespace

int main(int argc, char** argv) {
    lx::JpegSaveRecord record;
    const char* output = nullptr;
    const char* input = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-quality") && i + 1 < argc) record.quality = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-smooth") && i + 1 < argc) record.smoothing = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-optimize")) record.optimizeHuffman = 1;
        else if (!std::strcmp(argv[i], "-progressive")) record.progressive = 1;
        else if (!std::strcmp(argv[i], "-outfile") && i + 1 < argc) output = argv[++i];
        else input = argv[i];
    }
    if (!input || !output) {
        std::fprintf(stderr, "usage: jpeg_bench [-quality N] [-optimize] [-progressive] [-smooth N] -outfile OUT IN.ppm\n");
        return 2;
    }
    const lx::PackedDib dib = ReadPpm(input);
    if (dib.empty()) {
        std::fprintf(stderr, "cannot read %s\n", input);
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    const std::vector<uint8_t> jpeg = lx::EncodeJpeg(dib, record);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::ofstream(output, std::ios::binary).write(reinterpret_cast<const char*>(jpeg.data()),
                                                  static_cast<std::streamsize>(jpeg.size()));
    std::fprintf(stderr, "encode %.3f s, %zu bytes\n", seconds, jpeg.size());
    return jpeg.empty() ? 1 : 0;
}
