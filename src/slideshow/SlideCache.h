// Slides ready to go on the screen, and the few the show keeps of them.
//
// A Slide is what showing needs: the picture already scaled for the screen (empty when the
// file could not be read) and its caption. Slides are shared read-only between the cache
// and the screen, so the slide on show stays valid when the cache drops it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "PackedDib.h"

namespace lx {

struct Slide {
    std::wstring path;
    PackedDib picture;     // scaled for the screen, 24-bit; empty when the file did not load
    std::wstring caption;  // one or more lines
    bool failed() const { return picture.empty(); }
};

using SlidePtr = std::shared_ptr<const Slide>;

// Up to kCapacity slides keyed by path, oldest first. Putting a slide into a full cache drops
// the oldest; putting one whose path is held already replaces that one, which then counts as
// the newest.
class SlideCache {
public:
    static constexpr size_t kCapacity = 10;

    SlidePtr Find(const std::wstring& path) const;
    void Put(SlidePtr slide);
    void Clear() { slides_.clear(); }
    // Paths held, oldest first.
    std::vector<std::wstring> Paths() const;

private:
    std::vector<SlidePtr> slides_;
};

// The caption of slide `position` (counted from 1) of `count`: "[%d / %d] %s" with the index
// written "%03d" from 100 slides and "%04d" from 1000, then a blank line and `note` (the
// file's descriptive text, or why it is not shown) when there is one.
std::wstring SlideCaption(int position, int count, const std::wstring& fileName, const std::wstring& note);

}  // namespace lx
