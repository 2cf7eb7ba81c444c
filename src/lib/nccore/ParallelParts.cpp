#include "ParallelParts.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace lx {
namespace {
std::atomic<int> threadLimit{0};
}  // namespace

int PartThreads() {
    const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    const int limit = threadLimit.load();
    return limit > 0 ? std::min(limit, cores) : cores;
}

void LimitPartThreads(int limit) { threadLimit = std::max(limit, 0); }

int ForEachPart(int count, int parts, const std::function<void(int, int, int)>& fn) {
    if (count <= 0) return 0;
    parts = std::clamp(parts, 1, count);
    std::atomic<int> next{0};
    std::mutex failureLock;
    std::exception_ptr failure;
    // Each thread takes the next part whenever it finishes one, so a core that falls behind
    // holds up little. After a failure the remaining parts are left undone.
    auto work = [&] {
        for (int p = next++; p < parts; p = next++) {
            try {
                fn(static_cast<int>(int64_t{count} * p / parts), static_cast<int>(int64_t{count} * (p + 1) / parts), p);
            } catch (...) {
                const std::lock_guard<std::mutex> hold(failureLock);
                if (!failure) failure = std::current_exception();
                next = parts;
            }
        }
    };
    const int cores = PartThreads();
    std::vector<std::thread> helpers;
    for (int t = 1; t < std::min(cores, parts); ++t) {
        try {
            helpers.emplace_back(work);
        } catch (...) {
            break;  // no more threads to be had: those there are (at least this one) do the rest
        }
    }
    work();
    for (auto& helper : helpers) helper.join();
    if (failure) std::rethrow_exception(failure);
    return parts;
}

}  // namespace lx
