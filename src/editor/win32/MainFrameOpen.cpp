// Opening documents: a file, the clipboard, the recent list and the folder's neighbours.
#include <shlwapi.h>

#include <algorithm>
#include <filesystem>

#include "CoreServices.h"
#include "DialogHelpers.h"
#include "DibGlobal.h"
#include "ImageCodecs.h"
#include "ImageTypes.h"
#include "MainFrame.h"
#include "ModuleResources.h"
#include "SettingsStore.h"
#include "ZoomView.h"
#include "mif.h"

namespace lx {
namespace {

constexpr wchar_t kRecentSection[] = L"Recent Document List";
constexpr wchar_t kRecentCount[] = L"DocumentCount";
constexpr wchar_t kRecentMenuText[] = L"最近開いたファイル(&F)";

std::wstring RecentValueName(size_t index) { return L"Document" + std::to_wstring(index + 1); }

bool IsExistingFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace

int CMainFrame::Open(const std::wstring& argument) {
    if (!AskToSave(true)) return 0;
    document_.ClearUndo();
    path_.clear();
    if (argument.empty()) return 0;
    const std::wstring unquoted = UnquotedPath(argument.c_str());
    if (IsClipboardArgument(unquoted)) return OpenClipboard() ? 1 : 0;
    return OpenFile(unquoted) ? 1 : 0;
}

bool CMainFrame::OpenFile(const std::wstring& path) {
    if (!IsExistingFile(path)) return false;
    const ImageType type = ImageTypeFromPath(path.c_str());
    if (type == kImageUnknown || !LoadForDisplay(path)) return false;
    fileType_ = type;
    path_ = path;
    SetTitle(path_);
    recent_.Add(path_);
    RebuildRecentMenu();
    return true;
}

bool CMainFrame::OpenClipboard() {
    if (!IsClipboardFormatAvailable(CF_DIB) || !::OpenClipboard(hwnd())) return false;
    std::optional<PackedDib> dib;
    if (HGLOBAL data = GetClipboardData(CF_DIB)) dib = DibFromGlobal(data);
    CloseClipboard();
    if (!dib || !EditableSize(dib->width(), dib->height())) return false;
    HGLOBAL image = DibToGlobal(*dib);
    if (!image) return false;
    fileType_ = kImageBmp;
    ShowLoaded(image);
    SetWindowTextW(hwnd(), DocumentTitle(LoadResString(4170), LoadResString(4)).c_str());
    return true;
}

bool CMainFrame::LoadForDisplay(const std::wstring& path) {
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    std::optional<PackedDib> dib = LoadImageFile(std::filesystem::path(path));
    SetCursor(previous);
    if (!dib || !EditableSize(dib->width(), dib->height())) {
        // A file of a known format that does not load is worth a word; anything else (a text
        // file, a folder) leaves the frame quietly empty.
        if (ProbeImageType(std::filesystem::path(path)) != kImageUnknown) Ask(4171, path, MB_OK | MB_ICONERROR);
        return false;
    }
    HDC screen = GetDC(nullptr);
    const int displayBits = GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES);
    ReleaseDC(nullptr, screen);
    if (displayBits < 9 && displayBits < dib->bitCount()) {
        SetWindowTextW(hwnd(), LoadResString(4173).c_str());
        mif reduced;
        if (reduced.attachdib(std::move(*dib)) && reduced.quantize(256, kQuantizeDiffusion, nullptr))
            dib = reduced.createdib();
        if (!dib || dib->empty()) return false;
    }
    HGLOBAL image = DibToGlobal(*dib);
    if (!image) return false;
    ShowLoaded(image);
    return true;
}

void CMainFrame::ShowLoaded(HGLOBAL image) {
    if (!IsWindowVisible(hwnd())) ShowWindow(hwnd(), SW_SHOWNORMAL);
    SetSelection({});
    if (auto* previous = reinterpret_cast<HGLOBAL>(SendMessageW(zoomView_, kZvSetImage, 1, 0))) GlobalFree(previous);
    SendMessageW(zoomView_, kZvSetZoom, kZoomFull, 0);
    document_.SetImage(image);
    statusBar_.SetText(1004, L"");
    statusBar_.SetText(1006, L"");
    const ImageFacts& facts = document_.Facts();
    RECT client{};
    GetClientRect(zoomView_, &client);
    switch (ChooseStartupZoom(options_, facts.width, facts.height, client.right, client.bottom)) {
    case StartupZoom::Original: break;
    case StartupZoom::WholeImage: SendMessageW(zoomView_, kZvZoomCommand, kZoomWhole, 0); break;
    case StartupZoom::Saved: SendMessageW(zoomView_, kZvSetZoom, static_cast<WPARAM>(savedZoom_), 0); break;
    }
    UpdateZoomPane();
}

bool CMainFrame::AskToSave(bool withCancel) {
    if (!document_.Modified()) return true;
    const int answer = Ask(4096, L"", (withCancel ? MB_YESNOCANCEL : MB_YESNO) | MB_ICONQUESTION);
    if (answer == IDCANCEL) return false;
    // A save that did not happen (its dialog cancelled, the write failed) keeps the document.
    return answer != IDYES || Save();
}

int CMainFrame::Ask(UINT textId, const std::wstring& argument, UINT flags) {
    const std::wstring text = FormatWithArgument(LoadResString(textId), argument);
    const std::wstring caption = LoadResString(4);
    return MessageBoxW(hwnd(), text.c_str(), caption.c_str(), flags);
}

void CMainFrame::OpenWithDialog() {
    wchar_t path[kPathChars] = {};
    lstrcpynW(path, path_.c_str(), kPathChars);
    if (ShowImageFileDialog(hwnd(), 4093, 4092, path, true)) Open(path);
}

void CMainFrame::OpenClipboardCommand() {
    if (!ViewImage()) {
        Open(L"/clip");
        return;
    }
    // This document stays; the clipboard's picture gets an editor of its own.
    if (!RunThisModule(hwnd(), L"pxfRun", L"/clip", L"/image")) MessageBeep(MB_ICONWARNING);
}

void CMainFrame::OpenRecent(size_t index) {
    if (index >= recent_.Paths().size()) return;
    const std::wstring path = recent_.Paths()[index];
    if (!IsExistingFile(path)) {
        recent_.Remove(index);
        RebuildRecentMenu();
        return;
    }
    Open(path);
}

// The previous or next picture of the document's folder, in the shell's natural order of
// names, going round at either end.
void CMainFrame::StepInFolder(bool forward) {
    if (path_.empty()) return;
    std::error_code error;
    const std::filesystem::path current(path_);
    std::vector<std::wstring> names;
    for (const auto& entry : std::filesystem::directory_iterator(current.parent_path(), error)) {
        if (!entry.is_regular_file(error)) continue;
        std::wstring name = entry.path().filename().wstring();
        if (ImageTypeFromPath(name.c_str()) != kImageUnknown) names.push_back(std::move(name));
    }
    if (names.size() < 2) return;
    std::sort(names.begin(), names.end(),
              [](const std::wstring& a, const std::wstring& b) { return StrCmpLogicalW(a.c_str(), b.c_str()) < 0; });
    const std::wstring own = current.filename().wstring();
    auto it = std::find_if(names.begin(), names.end(),
                           [&](const std::wstring& n) { return _wcsicmp(n.c_str(), own.c_str()) == 0; });
    size_t index = 0;
    if (it == names.end()) {
        index = forward ? 0 : names.size() - 1;
    } else {
        const size_t at = static_cast<size_t>(it - names.begin());
        index = forward ? (at + 1) % names.size() : (at + names.size() - 1) % names.size();
    }
    Open((current.parent_path() / names[index]).wstring());
}

void CMainFrame::LoadRecentDocuments() {
    SettingsStore settings;
    const DWORD count = std::min<DWORD>(settings.ReadNumber(kRecentSection, kRecentCount, 0),
                                        RecentDocuments::kMaxEntries);
    std::vector<std::wstring> paths;
    for (size_t i = 0; i < count; ++i) {
        wchar_t path[kPathChars] = {};
        if (settings.ReadText(kRecentSection, RecentValueName(i).c_str(), path, sizeof path) > 0) paths.emplace_back(path);
    }
    recent_.Assign(paths);
    RebuildRecentMenu();
}

void CMainFrame::SaveRecentDocuments() {
    SettingsStore settings;
    const auto& paths = recent_.Paths();
    settings.WriteNumber(kRecentSection, kRecentCount, static_cast<DWORD>(paths.size()));
    for (size_t i = 0; i < RecentDocuments::kMaxEntries; ++i)
        settings.WriteText(kRecentSection, RecentValueName(i).c_str(), i < paths.size() ? paths[i].c_str() : nullptr);
}

void CMainFrame::RebuildRecentMenu() {
    HMENU file = GetSubMenu(commandBar_.Menu(), 0);
    HMENU recent = nullptr;
    for (int i = 0; file && i < GetMenuItemCount(file) && !recent; ++i) {
        wchar_t text[64] = {};
        GetMenuStringW(file, static_cast<UINT>(i), text, 64, MF_BYPOSITION);
        if (wcscmp(text, kRecentMenuText) == 0) recent = GetSubMenu(file, i);
    }
    if (!recent) return;
    while (GetMenuItemCount(recent) > 0) DeleteMenu(recent, 0, MF_BYPOSITION);
    const auto& paths = recent_.Paths();
    if (paths.empty()) AppendMenuW(recent, MF_STRING | MF_GRAYED, 0, L"（なし）");
    for (size_t i = 0; i < paths.size(); ++i)
        AppendMenuW(recent, MF_STRING, RecentDocuments::CommandOf(i), RecentDocuments::MenuText(i, paths[i]).c_str());
}

}  // namespace lx
