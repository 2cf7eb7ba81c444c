// Runs work over [0, count) in contiguous parts on several threads, the one parallel loop of
// the module's pixel code (the image class and the JPEG writer).
//
// The split into parts is the caller's choice and is kept exactly: part p covers
// [count * p / parts, count * (p + 1) / parts). A result that depends on the split (bands of
// error diffusion, one bit stream per part) is therefore the same on every machine; only how
// many threads share the parts depends on the cores. An exception thrown by a part (memory
// running out) reaches the caller after every thread has finished, as it would without
// threads; when no thread can be had, the parts run on the calling thread.
#pragma once

#include <functional>

namespace lx {

// Calls fn(begin, end, part) once for every part, `parts` clamped to 1..count.
// Returns the number of parts run (0 when count is 0 or less).
int ForEachPart(int count, int parts, const std::function<void(int begin, int end, int part)>& fn);

// The threads ForEachPart may use: the processor's cores, or at most `limit` of them once
// a limit above 0 is set (benchmarks measure one thread this way; 0 lifts the limit).
int PartThreads();
void LimitPartThreads(int limit);

}  // namespace lx
