#include "DropListPaths.h"

#include "DropList.h"

namespace lx {
namespace {

std::wstring AnsiToWide(const std::string& name) {
    const int chars = MultiByteToWideChar(CP_ACP, 0, name.data(), static_cast<int>(name.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(chars > 0 ? chars : 0), L'\0');
    if (chars > 0) MultiByteToWideChar(CP_ACP, 0, name.data(), static_cast<int>(name.size()), wide.data(), chars);
    return wide;
}

}  // namespace

std::vector<std::wstring> DropListPaths(HGLOBAL drop) {
    if (drop == nullptr) return {};
    const void* block = GlobalLock(drop);
    if (block == nullptr) return {};
    auto paths = DropListNames(static_cast<const uint8_t*>(block), GlobalSize(drop), &AnsiToWide);
    GlobalUnlock(drop);
    return paths;
}

}  // namespace lx
