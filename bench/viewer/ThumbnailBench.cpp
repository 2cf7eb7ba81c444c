// Makes the list thumbnail of every file named on the command line, as the listing thread
// does, and prints how many were made and how long it took.
//   thumbnail_bench BOX FILE...
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "ThumbnailMaker.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: thumbnail_bench BOX FILE...\n");
        return 2;
    }
    const int box = std::atoi(argv[1]);
    const auto start = std::chrono::steady_clock::now();
    int made = 0;
    for (int i = 2; i < argc; ++i) made += lx::MakeThumbnailDib(argv[i], box).has_value();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%d %d %.3f\n", made, argc - 2, seconds);
    return made == argc - 2 ? 0 : 1;
}
