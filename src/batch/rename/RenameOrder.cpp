#include "RenameOrder.h"

#include <algorithm>
#include <tuple>

#include "RenameNaming.h"

namespace lx {

int CompareShotTimes(const ShootingTime& a, const ShootingTime& b) {
    // The day of the week is derived from the date and takes no part.
    const auto key = [](const ShootingTime& t) {
        return std::tie(t.year, t.month, t.day, t.hour, t.minute, t.second, t.milliseconds);
    };
    if (key(a) < key(b)) return -1;
    return key(b) < key(a) ? 1 : 0;
}

void SortRenameEntries(std::vector<RenameEntry>& entries, const NameComparison& compareNames) {
    std::stable_sort(entries.begin(), entries.end(), [&](const RenameEntry& a, const RenameEntry& b) {
        if (const int order = CompareShotTimes(a.shotTime, b.shotTime)) return order < 0;
        return compareNames(FileNameOf(a.oldPath), FileNameOf(b.oldPath)) < 0;
    });
}

int RenameGroupId(const ShootingTime& time) { return (time.year * 10 + time.month) * 100 + time.day; }

}  // namespace lx
