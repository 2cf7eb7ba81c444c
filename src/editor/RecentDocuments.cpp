#include "RecentDocuments.h"

#include <algorithm>
#include <cwctype>

namespace lx {
namespace {

bool SameIgnoringCase(const std::wstring& a, const std::wstring& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return std::towlower(x) == std::towlower(y); });
}

}  // namespace

void RecentDocuments::Add(const std::wstring& path) {
    if (path.empty() || path.size() > kMaxPathChars) return;
    std::erase_if(paths_, [&](const std::wstring& p) { return SameIgnoringCase(p, path); });
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > kMaxEntries) paths_.resize(kMaxEntries);
}

void RecentDocuments::Remove(size_t index) {
    if (index < paths_.size()) paths_.erase(paths_.begin() + static_cast<std::ptrdiff_t>(index));
}

void RecentDocuments::Assign(const std::vector<std::wstring>& paths) {
    paths_.clear();
    for (auto it = paths.rbegin(); it != paths.rend(); ++it) Add(*it);
}

std::optional<size_t> RecentDocuments::IndexOfCommand(unsigned command) const {
    if (command > kFirstCommand || kFirstCommand - command >= paths_.size()) return std::nullopt;
    return kFirstCommand - command;
}

std::wstring RecentDocuments::MenuText(size_t index, const std::wstring& path) {
    return L"&" + std::to_wstring(index + 1) + L" " + path;
}

}  // namespace lx
