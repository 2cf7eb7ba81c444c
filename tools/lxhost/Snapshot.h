// The demo's and the benchmarks' way to look at a frame tool without a person at the screen:
// once a top-level window of this process carries a document title ("name - tool"), wait a
// little for the rest to draw, save the screen as a 24-bit BMP and close the window as a user
// would (WM_CLOSE).
#pragma once

#include <string>
#include <thread>

namespace lxhost {

// Starts watching on a thread of its own; the returned thread ends after the close (or after
// `timeoutMs` without a titled window) and must be joined.
std::thread StartSnapshot(const std::wstring& bmpPath, unsigned settleMs = 3000, unsigned timeoutMs = 120000);

}  // namespace lxhost
