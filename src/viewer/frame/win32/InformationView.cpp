#include "InformationView.h"

#include <commctrl.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "ExifReader.h"
#include "ViewerRules.h"

namespace lx {
namespace {

std::wstring Widen(std::string_view utf8) {
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring text(length, L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(), length);
    return text;
}

std::wstring FolderOf(const std::wstring& path) {
    const size_t slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

std::wstring LocalTimeText(const FILETIME& utc) {
    FILETIME local;
    SYSTEMTIME time;
    if (!FileTimeToLocalFileTime(&utc, &local) || !FileTimeToSystemTime(&local, &time)) return {};
    wchar_t text[32];
    swprintf(text, std::size(text), L"%04u/%02u/%02u %02u:%02u:%02u", time.wYear, time.wMonth, time.wDay, time.wHour,
             time.wMinute, time.wSecond);
    return text;
}

std::wstring ByteCountText(ULONGLONG bytes) {
    wchar_t text[64];
    StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text, static_cast<UINT>(std::size(text)));
    return text;
}

const wchar_t kNamesHeading[] = L"項目";

// Both columns are as wide as their longest text, so no name or value is cut; the values
// also take any room the pane has left, and a pane narrower than both scrolls sideways.
void FitColumns(HWND list) {
    RECT client{};
    GetClientRect(list, &client);
    // An empty report still shows its heading whole.
    const int heading = ListView_GetStringWidth(list, kNamesHeading) + 16;
    ListView_SetColumnWidth(list, 0, LVSCW_AUTOSIZE_USEHEADER);
    if (ListView_GetColumnWidth(list, 0) < heading) ListView_SetColumnWidth(list, 0, heading);
    ListView_SetColumnWidth(list, 1, LVSCW_AUTOSIZE);
    const int rest = client.right - ListView_GetColumnWidth(list, 0);
    if (ListView_GetColumnWidth(list, 1) < rest) ListView_SetColumnWidth(list, 1, rest);
}

LRESULT CALLBACK FitColumnsOnSize(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    const LRESULT result = DefSubclassProc(list, message, wParam, lParam);
    if (message == WM_SIZE) FitColumns(list);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(list, &FitColumnsOnSize, id);
    return result;
}

}  // namespace

bool ReadDibHeader(HGLOBAL image, BITMAPINFOHEADER& header) {
    if (!image || GlobalSize(image) < sizeof header) return false;
    const void* bytes = GlobalLock(image);
    if (!bytes) return false;
    std::memcpy(&header, bytes, sizeof header);
    GlobalUnlock(image);
    return header.biSize >= sizeof header;
}

bool CInformationView::Create(HWND parent, int id) {
    hwnd_ = CreateWindowExW(0, WC_LISTVIEWW, L"",
                            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | LVS_REPORT | LVS_NOSORTHEADER | LVS_SHOWSELALWAYS,
                            0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                            GetModuleHandleW(nullptr), nullptr);
    if (!hwnd_) return false;
    ListView_SetExtendedListViewStyle(hwnd_, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER);
    SetWindowSubclass(hwnd_, &FitColumnsOnSize, 0, 0);
    const wchar_t* headings[] = {kNamesHeading, L"値"};
    const int widths[] = {80, 160};
    for (int i = 0; i < 2; ++i) {
        LVCOLUMNW column{LVCF_TEXT | LVCF_WIDTH};
        column.pszText = const_cast<wchar_t*>(headings[i]);
        column.cx = widths[i];
        ListView_InsertColumn(hwnd_, i, &column);
    }
    return true;
}

void CInformationView::AddRow(const std::wstring& name, const std::wstring& value) {
    LVITEMW item{LVIF_TEXT};
    item.iItem = ListView_GetItemCount(hwnd_);
    item.pszText = const_cast<wchar_t*>(name.c_str());
    const int row = ListView_InsertItem(hwnd_, &item);
    if (row >= 0) ListView_SetItemText(hwnd_, row, 1, const_cast<wchar_t*>(value.c_str()));
}

void CInformationView::Clear() {
    if (hwnd_) ListView_DeleteAllItems(hwnd_);
}

void CInformationView::Show(const std::wstring& path, HGLOBAL image) {
    if (!hwnd_) return;
    SendMessageW(hwnd_, WM_SETREDRAW, FALSE, 0);
    Clear();
    AddRow(L"ファイル名", TitleFileName(path));
    AddRow(L"フォルダ", FolderOf(path));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) {
        AddRow(L"ファイルサイズ",
               ByteCountText((ULONGLONG(data.nFileSizeHigh) << 32) | data.nFileSizeLow));
        AddRow(L"更新日時", LocalTimeText(data.ftLastWriteTime));
    }
    BITMAPINFOHEADER header;
    if (ReadDibHeader(image, header)) {
        AddRow(L"画像サイズ", ImageSizeText(header.biWidth, std::abs(header.biHeight)));
        AddRow(L"色数", DepthText(header.biBitCount));
    }
    EnumerateExifInfo(std::filesystem::path(path), [this](int, std::string_view name, std::string_view value) {
        // A heading row has no value: it stands alone, in brackets.
        if (value.empty())
            AddRow(L"[" + Widen(name) + L"]", L"");
        else
            AddRow(Widen(name), Widen(value));
        return true;
    });
    FitColumns(hwnd_);
    SendMessageW(hwnd_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(hwnd_, nullptr, TRUE);
}

int CInformationView::RowCount() const { return hwnd_ ? ListView_GetItemCount(hwnd_) : 0; }

std::wstring CInformationView::Cell(int row, int column) const {
    wchar_t text[512] = {};
    ListView_GetItemText(hwnd_, row, column, text, static_cast<int>(std::size(text)));
    return text;
}

}  // namespace lx
