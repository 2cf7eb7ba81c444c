#include "DialogFields.h"

#include <commdlg.h>

#include <cerrno>
#include <cwchar>
#include <iterator>
#include <string>

namespace lx {

void RefuseField(HWND dialog, int id) {
    MessageBeep(MB_ICONWARNING);
    HWND control = GetDlgItem(dialog, id);
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    SendMessageW(control, EM_SETSEL, 0, -1);
}

bool ReadNumberField(HWND dialog, int id, int low, int high, int32_t& value) {
    // GetDlgItemInt takes "12abc" for nothing but also wraps large numbers: read the text.
    wchar_t text[32] = {};
    GetDlgItemTextW(dialog, id, text, static_cast<int>(std::size(text)));
    wchar_t* end = nullptr;
    errno = 0;
    const long long number = std::wcstoll(text, &end, 10);
    const bool whole = end != text && *end == L'\0' && errno == 0;
    if (!whole || number < low || number > high) {
        RefuseField(dialog, id);
        return false;
    }
    value = static_cast<int32_t>(number);
    return true;
}

void ColourField::Set(HWND dialog, int swatchId, COLORREF colour) {
    swatch_ = GetDlgItem(dialog, swatchId);
    colour_ = colour & 0xFFFFFF;
    brush_.reset(CreateSolidBrush(colour_));
    InvalidateRect(swatch_, nullptr, TRUE);
}

bool ChooseColour(HWND owner, COLORREF& colour) {
    // The custom colours last for the module's life, as the system dialog expects.
    static COLORREF custom[16] = {};
    CHOOSECOLORW choose{};
    choose.lStructSize = sizeof choose;
    choose.hwndOwner = owner;
    choose.rgbResult = colour;
    choose.lpCustColors = custom;
    choose.Flags = CC_RGBINIT | CC_FULLOPEN;
    if (!ChooseColorW(&choose)) return false;
    colour = choose.rgbResult;
    return true;
}

bool ColourField::Choose(HWND dialog) {
    COLORREF colour = colour_;
    if (!ChooseColour(dialog, colour)) return false;
    Set(dialog, GetDlgCtrlID(swatch_), colour);
    return true;
}

}  // namespace lx
