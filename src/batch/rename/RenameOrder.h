// RenameOrder: the order in which the rename list shows, numbers and renames photographs,
// and the day groups it shows them in.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "RenameEntry.h"

namespace lx {

// Compares two file names: negative, zero or positive.
using NameComparison = std::function<int(const std::wstring&, const std::wstring&)>;

// Negative, zero or positive as `a` was taken before, with, or after `b`, to the millisecond.
int CompareShotTimes(const ShootingTime& a, const ShootingTime& b);

// Sorts by shooting time, earliest first; photographs of the same millisecond by their
// file names under `compareNames`; entries equal in both keep their list order.
void SortRenameEntries(std::vector<RenameEntry>& entries, const NameComparison& compareNames);

// The day group a photograph is shown in: (year * 10 + month) * 100 + day. Different
// dates can share a group (2024-11-05 and 2025-01-05 both give 2025105); the list has
// always grouped them so and users know those headers.
int RenameGroupId(const ShootingTime& time);

}  // namespace lx
