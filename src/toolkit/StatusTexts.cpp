#include "StatusTexts.h"

#include <cstdio>
#include <iterator>

namespace lx {
namespace {

std::wstring Format(const wchar_t* format, int a, int b = 0, int c = 0, int d = 0) {
    wchar_t text[96];
    const int length = std::swprintf(text, std::size(text), format, a, b, c, d);
    return length > 0 ? std::wstring(text, length) : std::wstring();
}

}  // namespace

std::wstring TitleFileName(const std::wstring& path) {
    const size_t slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

std::wstring ZoomText(int tenths) {
    return tenths % 10 == 0 ? Format(L"%d%%", tenths / 10) : Format(L"%d.%d%%", tenths / 10, tenths % 10);
}
std::wstring CursorText(int x, int y) { return Format(L"X:%d Y:%d", x, y); }
std::wstring CursorSelectionText(int x, int y, int width, int height) {
    return Format(L"X:%d Y:%d W:%d H:%d", x, y, width, height);
}
std::wstring SelectionSizeText(int width, int height) { return Format(L"選択 %d x %d", width, height); }
std::wstring ImageSizeText(int width, int height) { return Format(L"%d x %d", width, height); }
std::wstring DepthText(int bitsPerPixel) { return Format(L"%dbpp", bitsPerPixel); }

}  // namespace lx
