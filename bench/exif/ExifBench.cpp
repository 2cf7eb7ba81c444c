// Reads the shooting time of every file named on the command line (or listed in the
// folders named there) and reports the count and the time taken. With --print it also
// prints "name YYYY:MM:DD HH:MM:SS" per file, to compare with another reader's output.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "ExifReader.h"

int main(int argc, char** argv) {
    bool print = false;
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--print") == 0) {
            print = true;
        } else if (std::filesystem::is_directory(argv[i])) {
            for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry.path());
        } else {
            files.emplace_back(argv[i]);
        }
    }
    std::sort(files.begin(), files.end());
    const auto start = std::chrono::steady_clock::now();
    int found = 0;
    for (const auto& file : files) {
        auto t = lx::ReadShootingTime(file);
        if (t) ++found;
        if (print && t)
            std::printf("%s %04u:%02u:%02u %02u:%02u:%02u\n", file.filename().string().c_str(), t->year, t->month,
                        t->day, t->hour, t->minute, t->second);
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::fprintf(stderr, "%zu files, %d with a shooting time, %.4f s, %.0f files/s\n", files.size(), found, seconds,
                 seconds > 0 ? files.size() / seconds : 0.0);
    if (!print) std::printf("%.6f\n", seconds);
    return 0;
}
