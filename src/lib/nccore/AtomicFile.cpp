#include "AtomicFile.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <string_view>

namespace lx {
namespace {

// A temporary name is the target's name + kTemporaryMark + DIGITS "-" DIGITS + kTemporaryEnd.
constexpr std::string_view kTemporaryMark = ".~lx";
constexpr std::string_view kTemporaryEnd = ".tmp";

// A name beside the target that no other writer in this or another process picks: the
// clock and a per-process counter make collisions practically impossible, and an existing
// file of that name is never reused.
std::filesystem::path TemporaryBeside(const std::filesystem::path& target) {
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::filesystem::path tmp = target;
        tmp += std::string(kTemporaryMark) + std::to_string(stamp % 1000000007) + "-" + std::to_string(counter++) +
               std::string(kTemporaryEnd);
        std::error_code ec;
        if (!std::filesystem::exists(tmp, ec)) return tmp;
    }
    return {};
}

// Digits from `at` up to the first character that is not one; npos when there are none.
size_t SkipDigits(const std::wstring& text, size_t at) {
    const size_t end = text.find_first_not_of(L"0123456789", at);
    return end == at ? std::wstring::npos : end;
}

}  // namespace

bool IsAtomicTemporaryName(const std::wstring& fileName) {
    const std::wstring mark(kTemporaryMark.begin(), kTemporaryMark.end());
    const std::wstring end(kTemporaryEnd.begin(), kTemporaryEnd.end());
    const size_t at = fileName.rfind(mark);
    if (at == std::wstring::npos || at == 0) return false;  // a temporary name has a target before its mark
    const size_t dash = SkipDigits(fileName, at + mark.size());
    if (dash == std::wstring::npos || fileName[dash] != L'-') return false;
    const size_t tail = SkipDigits(fileName, dash + 1);
    return tail != std::wstring::npos && fileName.compare(tail, std::wstring::npos, end) == 0;
}

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
