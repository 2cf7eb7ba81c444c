// Encodes a binary PPM file to JPEG the way cjpeg would be asked to:
//   jpeg_bench [-quality N] [-optimize] [-progressive] [-smooth N] [-threads N] -outfile OUT IN.ppm
// and reports the time spent in the encoder alone on stderr.
#include "JpegWriter.h"
#include "ParallelParts.h"

#include <tmmintrin.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

namespace {

// Red and blue swapped in place, five pixels (15 bytes) per step: the sixteenth byte of
// each load is written back unchanged and read again by the next step.
__attribute__((target("ssse3"))) void SwapRedBlue(uint8_t* p, int width) {
    const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
    int x = 0;
    for (; x + 6 <= width; x += 5) {
        __m128i* at = reinterpret_cast<__m128i*>(p + 3 * x);
        _mm_storeu_si128(at, _mm_shuffle_epi8(_mm_loadu_si128(at), order));
    }
    for (; x < width; ++x) std::swap(p[3 * x], p[3 * x + 2]);
}

// The whole program's share, kept as small as cjpeg's own reading: rows go straight into
// the DIB, which wants blue first.
lx::PackedDib ReadPpm(const char* path) {
    std::FILE* in = std::fopen(path, "rb");
    if (!in) return {};
    int width = 0, height = 0, maxval = 0;
    const bool header = std::fscanf(in, "P6 %d %d %d", &width, &height, &maxval) == 3 && std::fgetc(in) != EOF;
    lx::PackedDib dib;
    if (header && maxval == 255 && width > 0 && height > 0) dib = lx::PackedDib::Create(width, height, 24);
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    for (int y = 0; y < height && !dib.empty(); ++y) {
        if (std::fread(dib.row(y), 1, rowBytes, in) != rowBytes) dib = lx::PackedDib();
        else SwapRedBlue(dib.row(y), width);
    }
    std::fclose(in);
    return dib;
}

}  // namespace

int main(int argc, char** argv) {
    lx::JpegSaveRecord record;
    const char* output = nullptr;
    const char* input = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-quality") && i + 1 < argc) record.quality = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-smooth") && i + 1 < argc) record.smoothing = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-threads") && i + 1 < argc) lx::LimitPartThreads(std::atoi(argv[++i]));
        else if (!std::strcmp(argv[i], "-optimize")) record.optimizeHuffman = 1;
        else if (!std::strcmp(argv[i], "-progressive")) record.progressive = 1;
        else if (!std::strcmp(argv[i], "-outfile") && i + 1 < argc) output = argv[++i];
        else input = argv[i];
    }
    if (!input || !output) {
        std::fprintf(stderr, "usage: jpeg_bench [-quality N] [-optimize] [-progressive] [-smooth N] [-threads N] -outfile OUT IN.ppm\n");
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
