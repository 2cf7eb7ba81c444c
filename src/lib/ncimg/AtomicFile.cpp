#include "AtomicFile.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>

namespace lx {
namespace {

// A name beside the target that no other writer in this or another process picks: the
// clock and a per-process counter make collisions practically impossible, and an existing
// file of that name is never reused.
std::filesystem::path TemporaryBeside(const std::filesystem::path& target) {
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::filesystem::path tmp = target;
        tmp += ".~lx" + std::to_string(stamp % 1000000007) + "-" + std::to_string(counter++) + ".tmp";
        std::error_code ec;
        if (!std::filesystem::exists(tmp, ec)) return tmp;
    }
    return {};
}

}  // namespace

bool WriteFileAtomically(const std::filesystem::path& target, std::span<const uint8_t> bytes) {
    if (target.empty() || !target.has_filename()) return false;
    const std::filesystem::path tmp = TemporaryBeside(target);
    if (tmp.empty()) return false;
    {
        std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
        if (!out) return false;
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            std::error_code ec;
            std::filesystem::remove(tmp, ec);
            return false;
        }
    }
    std::error_code ec;
    std::filesystem::rename(tmp, target, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(tmp, ignored);
        return false;
    }
    return true;
}

}  // namespace lx
