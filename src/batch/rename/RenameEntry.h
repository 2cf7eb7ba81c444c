// RenameEntry: one photograph in the rename list, with the time it was taken and the name it
// will get. The list (or whoever runs the rename) owns the entries.
#pragma once

#include <string>

#include "ShootingTime.h"

namespace lx {

struct RenameEntry {
    std::wstring oldPath;  // full path of the file as listed
    std::wstring newPath;  // full path it is to get; empty when the chosen items give no name
    ShootingTime shotTime;
};

}  // namespace lx
