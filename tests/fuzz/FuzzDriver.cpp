// A small stand-in for libFuzzer so every fuzz target also runs as an ordinary test:
// it feeds each file of the corpus folders given on the command line, then --runs=N
// deterministic mutations of them (bit flips, byte sets, truncations, insertions).
// Built with -DLX_LIBFUZZER=ON the real libFuzzer is linked instead and this file is unused.
#include <cstdint>
#include <cstdio>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    long runs = 1000;
    std::vector<std::vector<uint8_t>> corpus;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--runs=", 7) == 0) {
            runs = std::atol(argv[i] + 7);
            continue;
        }
        std::error_code ec;
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(argv[i], ec)) {
            for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
                if (entry.is_regular_file()) files.push_back(entry.path());
        } else if (std::filesystem::is_regular_file(argv[i], ec)) {
            files.push_back(argv[i]);
        }
        std::sort(files.begin(), files.end());
        for (const auto& f : files) {
            std::ifstream in(f, std::ios::binary);
            corpus.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        }
    }
    if (corpus.empty()) corpus.push_back({});
    for (const auto& input : corpus) LLVMFuzzerTestOneInput(input.data(), input.size());

    std::mt19937 rng(12345);
    for (long run = 0; run < runs; ++run) {
        std::vector<uint8_t> data = corpus[rng() % corpus.size()];
        const int edits = 1 + static_cast<int>(rng() % 8);
        for (int e = 0; e < edits; ++e) {
            const unsigned kind = rng() % 5;
            if (data.empty() || kind == 4) {
                data.insert(data.begin() + (data.empty() ? 0 : rng() % data.size()), static_cast<uint8_t>(rng()));
            } else if (kind == 0) {
                data[rng() % data.size()] ^= static_cast<uint8_t>(1u << (rng() % 8));
            } else if (kind == 1) {
                static const uint8_t interesting[] = {0, 1, 0x7f, 0x80, 0xff, 0xfe, 0x10, 0x40};
                data[rng() % data.size()] = interesting[rng() % sizeof interesting];
            } else if (kind == 2) {
                data.resize(rng() % data.size());
            } else {
                const size_t at = rng() % data.size();
                for (size_t k = at; k < std::min(data.size(), at + 4); ++k) data[k] = static_cast<uint8_t>(rng());
            }
        }
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    std::printf("fuzz: %zu corpus inputs and %ld mutations, no fault\n", corpus.size(), runs);
    return 0;
}
