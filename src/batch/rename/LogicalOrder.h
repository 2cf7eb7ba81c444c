// LogicalOrder: the "natural" order of file names that the Windows shell shows, where runs
// of digits compare by their value (IMG2 before IMG10) and letters compare without regard
// to case. On Windows the dialog uses the shell's own comparison; this portable one gives
// the same answer for ordinary camera file names and keeps the core testable everywhere.
#pragma once

#include <string>

namespace lx {

// Negative, zero or positive as `a` sorts before, with, or after `b`. Digits sort before
// blanks and punctuation, and those before letters (so IMG2 before IMG_0001, as the shell
// has it); a run of digits compares by value, leading zeros ignored.
int CompareLogical(const std::wstring& a, const std::wstring& b);

}  // namespace lx
