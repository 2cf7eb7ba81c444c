// Encodes a binary PPM file to JPEG the way cjpeg would be asked to:
//   jpeg_bench [-quality N] [-optimize] [-progressive] [-smooth N] [-threads N] -outfile OUT IN.ppm
// and reports the time spent in the encoder alone on stderr.
#include "JpegWriter.h"
#include "ParallelParts.h"

#include <tmmintrin.h>

#include <chrono>
#include <ctime>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

namespace {

// Red and blue swapped in place, 16 pixels (three vectors) per step: each output vector
// gathers its bytes from the input vectors it overlaps, one byte shuffle each.
__attribute__((target("ssse3"))) void SwapRedBlueSsse3(uint8_t* p, int width) {
    alignas(16) int8_t masks[3][3][16];
    for (int out = 0; out < 3; ++out)
        for (int in = 0; in < 3; ++in)
            for (int k = 0; k < 16; ++k) {
                const int i = 16 * out + k, from = i - i % 3 + 2 - i % 3 - 16 * in;
                masks[out][in][k] = static_cast<int8_t>(from >= 0 && from < 16 ? from : -128);
            }
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        __m128i* at = reinterpret_cast<__m128i*>(p + 3 * x);
        const __m128i in[3] = {_mm_loadu_si128(at), _mm_loadu_si128(at + 1), _mm_loadu_si128(at + 2)};
        for (int out = 0; out < 3; ++out) {
            __m128i v = _mm_setzero_si128();
            for (int i = 0; i < 3; ++i)
                v = _mm_or_si128(v, _mm_shuffle_epi8(in[i], _mm_load_si128(reinterpret_cast<const __m128i*>(masks[out][i]))));
            _mm_storeu_si128(at + out, v);
        }
    }
    for (; x < width; ++x) std::swap(p[3 * x], p[3 * x + 2]);
}

void SwapRedBlue(uint8_t* p, int width) {
    static const bool ssse3 = __builtin_cpu_supports("ssse3");
    if (ssse3) return SwapRedBlueSsse3(p, width);
    for (int x = 0; x < width; ++x) std::swap(p[3 * x], p[3 * x + 2]);
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
    const std::clock_t startCpu = std::clock();
    const std::vector<uint8_t> jpeg = lx::EncodeJpeg(dib, record);
    const double cpu = static_cast<double>(std::clock() - startCpu) / CLOCKS_PER_SEC;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::ofstream(output, std::ios::binary).write(reinterpret_cast<const char*>(jpeg.data()),
                                                  static_cast<std::streamsize>(jpeg.size()));
    // Wall-clock and processor time (all threads) of the encoder alone.
    std::fprintf(stderr, "encode %.4f s %.4f cpu, %zu bytes\n", seconds, cpu, jpeg.size());
    return jpeg.empty() ? 1 : 0;
}
