// Command-line handling of the frame tools' entry points.
#pragma once

#include <string>
#include <string_view>

namespace lx {

constexpr size_t kPathChars = 520;  // every path buffer of the module, terminator included

// The viewer's command line with its leading options skipped: while the text starts with
// "/" or "-", move to the next blank and past all blanks; an option with no blank after it
// leaves nothing. The rest is cut to fit a path buffer (quotes are still on it).
std::wstring SkipLeadingOptions(std::wstring_view commandLine);

}  // namespace lx
