#include "LogicalOrder.h"

#include <cwctype>

namespace lx {

namespace {

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Sort class of a character: digits, then blanks and punctuation, then letters.
int ClassOf(wchar_t c) {
    if (IsDigit(c)) return 0;
    return std::iswalpha(static_cast<wint_t>(c)) ? 2 : 1;
}

wchar_t Folded(wchar_t c) { return static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c))); }

// Compares the digit runs starting at a[i] and b[j] by value and moves both indices past
// them. Compared as text without leading zeros so that no run, however long, overflows.
int CompareNumbers(const std::wstring& a, size_t& i, const std::wstring& b, size_t& j) {
    while (i < a.size() && a[i] == L'0') ++i;
    while (j < b.size() && b[j] == L'0') ++j;
    const size_t startA = i, startB = j;
    while (i < a.size() && IsDigit(a[i])) ++i;
    while (j < b.size() && IsDigit(b[j])) ++j;
    const size_t lengthA = i - startA, lengthB = j - startB;
    if (lengthA != lengthB) return lengthA < lengthB ? -1 : 1;
    for (size_t k = 0; k < lengthA; ++k) {
        if (a[startA + k] != b[startB + k]) return a[startA + k] < b[startB + k] ? -1 : 1;
    }
    return 0;
}

}  // namespace

int CompareLogical(const std::wstring& a, const std::wstring& b) {
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        const bool digitA = IsDigit(a[i]), digitB = IsDigit(b[j]);
        if (digitA && digitB) {
            if (const int order = CompareNumbers(a, i, b, j)) return order;
            continue;
        }
        const int classA = ClassOf(a[i]);
        const int classB = ClassOf(b[j]);
        if (classA != classB) return classA < classB ? -1 : 1;
        const wchar_t foldedA = Folded(a[i]), foldedB = Folded(b[j]);
        if (foldedA != foldedB) return foldedA < foldedB ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

}  // namespace lx
