// Decodes a JPEG file to a binary PPM (or PGM) file the way djpeg would be asked to:
//   jpegdecode_bench [-scale 1/N] -outfile OUT IN.jpg
// and reports the time spent in the decoder alone on stderr ("decode SECONDS").
#include "JpegReader.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv) {
    int denom = 1;
    const char* output = nullptr;
    const char* input = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-scale") && i + 1 < argc) std::sscanf(argv[++i], "1/%d", &denom);
        else if (!std::strcmp(argv[i], "-outfile") && i + 1 < argc) output = argv[++i];
        else input = argv[i];
    }
    if (!input || !output) {
        std::fprintf(stderr, "usage: jpegdecode_bench [-scale 1/N] -outfile OUT IN.jpg\n");
        return 2;
    }
    std::ifstream in(input, std::ios::binary);
    const std::vector<uint8_t> file((std::istreambuf_iterator<char>(in)), {});
    const auto start = std::chrono::steady_clock::now();
    const auto dib = lx::ReadJpeg(file, denom);
    const auto end = std::chrono::steady_clock::now();
    if (!dib) {
        std::fprintf(stderr, "cannot decode %s\n", input);
        return 1;
    }
    std::fprintf(stderr, "decode %.4f\n", std::chrono::duration<double>(end - start).count());
    FILE* out = std::fopen(output, "wb");
    if (!out) return 1;
    const bool grey = dib->bitCount() == 8;
    std::fprintf(out, "%s\n%d %d\n255\n", grey ? "P5" : "P6", dib->width(), dib->height());
    std::vector<uint8_t> row(static_cast<size_t>(dib->width()) * 3);
    for (int y = 0; y < dib->height(); ++y) {
        const uint8_t* p = dib->row(y);
        if (grey) {
            std::fwrite(p, 1, static_cast<size_t>(dib->width()), out);
            continue;
        }
        for (int x = 0; x < dib->width(); ++x) {
            row[3 * x] = p[3 * x + 2];
            row[3 * x + 1] = p[3 * x + 1];
            row[3 * x + 2] = p[3 * x];
        }
        std::fwrite(row.data(), 1, row.size(), out);
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
