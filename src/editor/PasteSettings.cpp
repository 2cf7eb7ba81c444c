#include "PasteSettings.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace lx {
namespace {

// The dialog's list, top to bottom. 5 and 9 are no modes.
constexpr PasteMode kPasteModes[] = {
    {0, L"通常"},          {1, L"比較（暗）"},     {2, L"比較（明）"},   {3, L"色相"},
    {4, L"彩度"},          {6, L"明度"},           {7, L"乗算"},         {8, L"スクリーン"},
    {10, L"オーバーレイ"}, {11, L"ハードライト"},  {12, L"ソフトライト"}, {13, L"差の絶対値"},
    {14, L"除外"},         {15, L"覆い焼きカラー"}, {16, L"焼き込みカラー"}, {17, L"加算"},
    {18, L"減算"},
};

}  // namespace

PasteSettings PasteSettingsFromStored(const void* data, size_t size) {
    PasteSettings s;
    if (data == nullptr || size != sizeof s) return s;
    std::memcpy(&s, data, sizeof s);
    s.mode = PasteModeCode(PasteModeRow(s.mode));
    s.opacity = std::clamp(s.opacity, 0, 100);
    s.shadow = s.shadow ? 1 : 0;
    s.softness = std::clamp(s.softness, 0, kMaxSoftness);
    s.distance = std::clamp(s.distance, -kMaxShadowDistance, kMaxShadowDistance);
    s.shadowColour &= 0xFFFFFF;
    s.anchor = std::clamp(s.anchor, 0, 8);
    s.offsetX = std::clamp(s.offsetX, -kMaxPasteOffset, kMaxPasteOffset);
    s.offsetY = std::clamp(s.offsetY, -kMaxPasteOffset, kMaxPasteOffset);
    return s;
}

std::span<const PasteMode> PasteModes() { return kPasteModes; }

int PasteModeRow(int code) {
    for (size_t row = 0; row < std::size(kPasteModes); ++row)
        if (kPasteModes[row].code == code) return static_cast<int>(row);
    return 0;
}

int PasteModeCode(int row) {
    return row >= 0 && row < static_cast<int>(std::size(kPasteModes)) ? kPasteModes[row].code : 0;
}

PastePoint AnchorPosition(int cell, int outerWidth, int outerHeight, int innerWidth, int innerHeight) {
    cell = std::clamp(cell, 0, 8);
    const auto place = [](int part, int outer, int inner) {
        const int64_t room = int64_t{outer} - inner;
        return static_cast<int>(part == 0 ? 0 : part == 1 ? room / 2 : room);
    };
    return {place(cell % 3, outerWidth, innerWidth), place(cell / 3, outerHeight, innerHeight)};
}

}  // namespace lx
