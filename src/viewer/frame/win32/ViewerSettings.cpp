// The viewer's recent files: kept in the settings store and shown in the first menu.
#include <shlwapi.h>

#include "SettingsStore.h"
#include "ViewFrame.h"

namespace lx {
namespace {

constexpr wchar_t kRecentSection[] = L"Recent File List";
constexpr UINT kFirstRecent = 0xE110;
constexpr int kRecentSubmenu = 5;

std::wstring RecentValueName(size_t index) { return L"File" + std::to_wstring(index + 1); }

}  // namespace

void CViewFrame::LoadRecentFiles() {
    SettingsStore settings;
    std::vector<std::wstring> paths;
    for (size_t i = 0; i < RecentFiles::kMaxRecent; ++i) {
        wchar_t path[kPathChars] = {};
        if (settings.ReadText(kRecentSection, RecentValueName(i).c_str(), path, sizeof path) > 0)
            paths.emplace_back(path);
    }
    recentFiles_.Assign(std::move(paths));
    RebuildRecentMenu();
}

void CViewFrame::SaveRecentFiles() {
    SettingsStore settings;
    const auto& paths = recentFiles_.Paths();
    for (size_t i = 0; i < RecentFiles::kMaxRecent; ++i)
        settings.WriteText(kRecentSection, RecentValueName(i).c_str(), i < paths.size() ? paths[i].c_str() : nullptr);
}

void CViewFrame::RebuildRecentMenu() {
    HMENU file = GetSubMenu(commandBar_.Menu(), 0);
    HMENU recent = file ? GetSubMenu(file, kRecentSubmenu) : nullptr;
    if (!recent) return;
    while (GetMenuItemCount(recent) > 0) DeleteMenu(recent, 0, MF_BYPOSITION);
    const auto& paths = recentFiles_.Paths();
    if (paths.empty()) AppendMenuW(recent, MF_STRING | MF_GRAYED, 0, L"（なし）");
    for (size_t i = 0; i < paths.size(); ++i) {
        wchar_t compact[MAX_PATH] = {};
        PathCompactPathExW(compact, paths[i].c_str(), 60, 0);
        const std::wstring text = (i < 9 ? L"&" : L"") + std::to_wstring(i + 1) + L" " + compact;
        AppendMenuW(recent, MF_STRING, kFirstRecent + i, text.c_str());
    }
}

LRESULT CViewFrame::OnInitMenuPopup(WPARAM, LPARAM) {
    UpdateCommandStates();
    CheckMenuItem(commandBar_.Menu(), 2105, MF_BYCOMMAND | (ImageArea().ShownOnly() < 0 ? MF_CHECKED : MF_UNCHECKED));
    CheckMenuItem(commandBar_.Menu(), 5511, MF_BYCOMMAND | (outerSplitter_.ShownOnly() < 0 ? MF_CHECKED : MF_UNCHECKED));
    return 0;
}

}  // namespace lx
