// Helpers shared by the tests: a scratch folder per test, whole-file reads and writes,
// the source tree's location, and running an outside tool (an oracle such as djpeg).
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace lxtest {

inline long ProcessId() {
#ifdef _WIN32
    return static_cast<long>(_getpid());
#else
    return static_cast<long>(getpid());
#endif
}

inline std::filesystem::path SourceDir() {
    const char* dir = std::getenv("LX_SOURCE_DIR");
    return dir ? std::filesystem::path(dir) : std::filesystem::current_path();
}

// A fresh, empty folder for one test, removed again when the object ends.
class ScratchDir {
public:
    explicit ScratchDir(const std::string& name) {
        // Test programs run in parallel: the process id and a per-process count keep their
        // folders apart (an unseeded rand() gave every program the same names).
        static int count = 0;
        path_ = std::filesystem::temp_directory_path() /
                ("lxtest-" + name + "-" + std::to_string(ProcessId()) + "-" + std::to_string(++count));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& leaf) const { return path_ / leaf; }

private:
    std::filesystem::path path_;
};

inline std::vector<uint8_t> ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

inline void WriteFile(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

inline void WriteFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

// Runs a shell command (native builds only); returns its exit status.
inline int Run(const std::string& command) {
    const int status = std::system(command.c_str());
#ifdef _WIN32
    return status;
#else
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

#ifndef _WIN32
// Whether every outside tool named (a shell word list, such as "djpeg cjpeg identify") is on
// the PATH. Set-up installs all of them, so a test uses this only through
// LX_REQUIRE_TOOLS, which fails loudly: a missing oracle is a broken machine, not a skip.
inline bool HaveTools(const std::string& names) {
    return Run("for t in " + names + "; do command -v \"$t\" >/dev/null 2>&1 || exit 1; done") == 0;
}
#define LX_REQUIRE_TOOLS(names) \
    ASSERT_TRUE(lxtest::HaveTools(names)) << "outside tools missing (scripts/setup.sh installs them): " << (names)
#endif

}  // namespace lxtest
