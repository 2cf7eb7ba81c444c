#include "WebAlbumTool.h"

#include <commctrl.h>

#include "HtmlSheetDlg.h"
#include "ModuleResources.h"
#include "ProgressSink.h"
#include "SettingsStore.h"
#include "Win32AlbumFiles.h"

namespace lx {

namespace {

constexpr UINT kSectionWebAlbum = 4408;
constexpr UINT kValueStatus = 4612;
constexpr UINT kProgressLoading = 4144;
constexpr UINT kProgressSaving = 4145;
constexpr UINT kProgressConverting = 4146;

WebAlbumSettings ReadAlbumSettings(SettingsStore& store) {
    WebAlbumSettings stored = DefaultWebAlbumSettings();
    const int read =
        store.ReadBlock(MAKEINTRESOURCEW(kSectionWebAlbum), MAKEINTRESOURCEW(kValueStatus), &stored, sizeof stored);
    return WebAlbumSettingsFromBlock(&stored, static_cast<size_t>(read < 0 ? 0 : read));
}

WebAlbumTexts LoadAlbumTexts() {
    return {L"", LoadResString(kProgressLoading), LoadResString(kProgressSaving), LoadResString(kProgressConverting)};
}

}  // namespace

void RunWebAlbumTool(HWND owner, const std::vector<std::wstring>& files) {
    if (files.empty()) return;
    SettingsStore store;
    WebAlbumSettings settings = ReadAlbumSettings(store);
    if (CHtmlSheetDlg(settings, store).DoModal(owner) != IDOK) return;
    store.WriteBlock(MAKEINTRESOURCEW(kSectionWebAlbum), MAKEINTRESOURCEW(kValueStatus), &settings, sizeof settings);
    ProgressSink sink(owner, nullptr, PROGDLG_AUTOTIME | PROGDLG_NOMINIMIZE);
    Win32AlbumFiles albumFiles;
    BuildWebAlbum(settings, files, LoadAlbumTexts(), albumFiles, sink);
}

WebAlbumResult RunWebAlbumFiles(const std::wstring& folder, const std::vector<std::wstring>& files, ToolSink& sink) {
    SettingsStore store;
    WebAlbumSettings settings = ReadAlbumSettings(store);
    if (!folder.empty()) SetAlbumFolder(settings, folder);
    Win32AlbumFiles albumFiles;
    return BuildWebAlbum(settings, files, LoadAlbumTexts(), albumFiles, sink);
}

}  // namespace lx
