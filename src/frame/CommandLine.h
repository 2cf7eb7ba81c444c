// Command-line handling of the entry points: the viewer's options, and the request key
// name that the batch and publishing tools are given.
#pragma once

#include <string>
#include <string_view>

namespace lx {

constexpr size_t kPathChars = 520;  // every path buffer of the module, terminator included

// The viewer's command line with its leading options skipped: while the text starts with
// "/" or "-", move to the next blank and past all blanks; an option with no blank after it
// leaves nothing. The rest is cut to fit a path buffer (quotes are still on it).
std::wstring SkipLeadingOptions(std::wstring_view commandLine);

// The longest request key name taken: the registry's limit for one key name, and far more
// than the host's short-lived request keys need.
constexpr size_t kMaxRequestKeyChars = 255;

// True when `name` is a plain key name relative to HKEY_CURRENT_USER: one or more parts
// joined by single backslashes, none empty, blank, "." or "..", no control character, at
// most kMaxRequestKeyChars long. Anything else is refused before the registry is touched:
// the name "" opens the root itself, and the request, once read, is deleted with all it
// holds.
bool IsRequestKeyName(std::wstring_view name);

}  // namespace lx
