#include "ExifDateDlg.h"

#include <commctrl.h>
#include <shellapi.h>

#include <cstring>
#include <utility>

#include "DialogHelpers.h"
#include "ExifDateDlgIds.h"
#include "ModuleResources.h"
#include "ProgressSink.h"
#include "RenameNaming.h"
#include "RenameSystem.h"
#include "SettingsStore.h"

namespace lx {

namespace {

constexpr UINT kFirstItemLabel = 4112;  // "（なし）" ... "ドキュメントの名前", one per name item
constexpr UINT kResetRuleList = 4139;
constexpr UINT kColumnOldName = 4124, kColumnShotTime = 4125, kColumnNewName = 4126;
constexpr int kOldNameWidth = 200, kShotTimeWidth = 130, kNewNameWidth = 200;
const wchar_t* const kSettingsSection = MAKEINTRESOURCEW(4407);  // "Exif"
const wchar_t* const kRenameValue = MAKEINTRESOURCEW(4616);      // "Rename"
constexpr int kItemCombos[] = {IDC_EXIFDATE_ITEM1, IDC_EXIFDATE_ITEM2, IDC_EXIFDATE_ITEM3};

SYSTEMTIME AsSystemTime(const ShootingTime& time) {
    static_assert(sizeof(SYSTEMTIME) == sizeof(ShootingTime));
    SYSTEMTIME st;
    std::memcpy(&st, &time, sizeof st);
    return st;
}

std::wstring LongDate(const SYSTEMTIME& st) {
    wchar_t text[128] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_LONGDATE, &st, nullptr, text, 128);
    return text;
}

std::wstring TimeOfDay(const SYSTEMTIME& st) {
    wchar_t text[64] = {};
    GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &st, nullptr, text, 64);
    return text;
}

int CALLBACK CompareGroupIds(int group1, int group2, void*) { return group1 < group2 ? -1 : group1 > group2; }

}  // namespace

CExifDateDlg::CExifDateDlg(std::vector<std::wstring> files, RenameServices services)
    : files_(std::move(files)), services_(std::move(services)) {}

INT_PTR CExifDateDlg::DoModal(HWND owner) {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    return DialogBoxParamW(ModuleInstance(), MAKEINTRESOURCEW(IDD_EXIFDATE), owner, DialogProc,
                           reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK CExifDateDlg::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<CExifDateDlg*>(lParam);
        self->dialog_ = dialog;
        return self->OnInitDialog();
    }
    auto* self = reinterpret_cast<CExifDateDlg*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self) return FALSE;
    switch (message) {
        case WM_COMMAND:
            self->OnCommand(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_NOTIFY:
            self->OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
            return FALSE;
        case WM_DESTROY:
            self->OnDestroy();
            return FALSE;
        default:
            return FALSE;
    }
}

BOOL CExifDateDlg::OnInitDialog() {
    list_ = GetDlgItem(dialog_, IDC_EXIFDATE_LIST);
    if (files_.empty()) {
        EndDialog(dialog_, IDCANCEL);
        return TRUE;
    }
    CentreDialog(dialog_);
    ListView_EnableGroupView(list_, TRUE);
    FillCombos();
    SHFILEINFOW info{};
    const auto systemIcons = reinterpret_cast<HIMAGELIST>(
        SHGetFileInfoW(files_.front().c_str(), 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
    if (systemIcons) ListView_SetImageList(list_, systemIcons, LVSIL_SMALL);
    AddColumns();

    std::vector<RenameEntry> entries = CollectRenameEntries(files_, services_);
    if (entries.empty()) {
        ShowMessage(MAKEINTRESOURCEW(kMsgNoShotTime), MAKEINTRESOURCEW(kMsgRenameTitle), nullptr,
                    MB_OK | MB_ICONINFORMATION);
        EndDialog(dialog_, IDCANCEL);
        return TRUE;
    }
    AddEntries(std::move(entries));
    ListView_SortGroups(list_, CompareGroupIds, nullptr);
    ListView_SetColumnWidth(list_, 0, LVSCW_AUTOSIZE);
    ListView_SetColumnWidth(list_, 1, LVSCW_AUTOSIZE);

    SettingsStore settings;
    SelectChoices(UnpackRenameChoices(settings.ReadNumber(kSettingsSection, kRenameValue, 0)));
    UpdatePreview();
    return TRUE;
}

void CExifDateDlg::FillCombos() {
    for (int id : kItemCombos) {
        HWND combo = GetDlgItem(dialog_, id);
        for (int item = 0; item < kNameItemCount; ++item) {
            const std::wstring label = LoadResString(kFirstItemLabel + static_cast<UINT>(item));
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(label.c_str()));
        }
    }
    FillComboFromString(GetDlgItem(dialog_, IDC_EXIFDATE_RESET), kResetRuleList);
}

void CExifDateDlg::AddColumns() {
    const struct {
        UINT title;
        int width;
    } columns[] = {{kColumnOldName, kOldNameWidth}, {kColumnShotTime, kShotTimeWidth}, {kColumnNewName, kNewNameWidth}};
    int index = 0;
    for (const auto& column : columns) {
        std::wstring title = LoadResString(column.title);
        LVCOLUMNW lvc{};
        lvc.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        lvc.pszText = title.data();
        lvc.cx = column.width;
        lvc.iSubItem = index;
        ListView_InsertColumn(list_, index, &lvc);
        ++index;
    }
}

void CExifDateDlg::AddGroupOnce(int groupId, const std::wstring& header) {
    if (!groups_.insert(groupId).second) return;
    std::wstring text = header;
    LVGROUP group{};
    group.cbSize = sizeof group;
    group.mask = LVGF_HEADER | LVGF_GROUPID;
    group.pszHeader = text.data();
    group.iGroupId = groupId;
    ListView_InsertGroup(list_, -1, &group);
}

void CExifDateDlg::AddEntries(std::vector<RenameEntry> entries) {
    // The entries arrive in list order, so each goes to the end.
    for (RenameEntry& entry : entries) {
        const SYSTEMTIME st = AsSystemTime(entry.shotTime);
        const std::wstring date = LongDate(st);
        const int groupId = RenameGroupId(entry.shotTime);
        AddGroupOnce(groupId, date);

        SHFILEINFOW info{};
        SHGetFileInfoW(entry.oldPath.c_str(), 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
        std::wstring name = FileNameOf(entry.oldPath);
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM | LVIF_GROUPID;
        item.iItem = ListView_GetItemCount(list_);
        item.pszText = name.data();
        item.iImage = info.iIcon;
        item.iGroupId = groupId;
        auto* owned = new RenameEntry(std::move(entry));
        item.lParam = reinterpret_cast<LPARAM>(owned);
        const int index = ListView_InsertItem(list_, &item);
        if (index < 0) {
            delete owned;
            continue;
        }
        std::wstring when = date + L" " + TimeOfDay(st);
        ListView_SetItemText(list_, index, 1, when.data());
    }
}

void CExifDateDlg::SelectChoices(const RenameChoices& choices) {
    const int items[] = {choices.item1, choices.item2, choices.item3};
    for (int i = 0; i < 3; ++i) SendDlgItemMessageW(dialog_, kItemCombos[i], CB_SETCURSEL, items[i], 0);
    SendDlgItemMessageW(dialog_, IDC_EXIFDATE_RESET, CB_SETCURSEL, choices.resetRule, 0);
}

RenameChoices CExifDateDlg::SelectedChoices() const {
    const auto selection = [&](int id) {
        const LRESULT index = SendDlgItemMessageW(dialog_, id, CB_GETCURSEL, 0, 0);
        return index == CB_ERR ? 0 : static_cast<int>(index);
    };
    return {selection(IDC_EXIFDATE_ITEM1), selection(IDC_EXIFDATE_ITEM2), selection(IDC_EXIFDATE_ITEM3),
            selection(IDC_EXIFDATE_RESET)};
}

std::vector<RenameEntry*> CExifDateDlg::ListedEntries() const {
    std::vector<RenameEntry*> entries;
    const int count = ListView_GetItemCount(list_);
    for (int i = 0; i < count; ++i) {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        item.iItem = i;
        if (ListView_GetItem(list_, &item) && item.lParam) entries.push_back(reinterpret_cast<RenameEntry*>(item.lParam));
    }
    return entries;
}

void CExifDateDlg::UpdatePreview() {
    const std::vector<RenameEntry*> entries = ListedEntries();
    BuildPreview(entries, SelectedChoices());
    for (size_t i = 0; i < entries.size(); ++i) {
        std::wstring name = entries[i]->newPath.empty() ? std::wstring() : FileNameOf(entries[i]->newPath);
        ListView_SetItemText(list_, static_cast<int>(i), 2, name.data());
    }
}

void CExifDateDlg::OnCommand(int id, int code) {
    switch (id) {
        case IDC_EXIFDATE_ITEM1:
        case IDC_EXIFDATE_ITEM2:
        case IDC_EXIFDATE_ITEM3:
        case IDC_EXIFDATE_RESET:
            if (code == CBN_SELCHANGE) UpdatePreview();
            break;
        case IDOK:
            OnOk();
            break;
        case IDCANCEL:
            EndDialog(dialog_, IDCANCEL);
            break;
        default:
            break;
    }
}

void CExifDateDlg::OnOk() {
    const RenameChoices choices = SelectedChoices();
    if (!choices.HasAnyItem()) {
        MessageBeep(MB_OK);
        SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog_, IDC_EXIFDATE_ITEM1)), TRUE);
        return;
    }
    UpdatePreview();
    std::vector<const RenameEntry*> order;
    for (RenameEntry* entry : ListedEntries()) order.push_back(entry);
    ProgressSink sink(dialog_, MAKEINTRESOURCEW(kMsgRenameTitle));
    if (!RenameListedEntries(order, sink, services_.fileSystem, LoadRenameProgressTexts())) return;
    SettingsStore settings;
    settings.WriteNumber(kSettingsSection, kRenameValue, PackRenameChoices(choices));
    EndDialog(dialog_, IDOK);
}

void CExifDateDlg::OnNotify(const NMHDR& header) {
    if (header.hwndFrom == list_ && header.code == LVN_DELETEITEM) {
        const auto& removed = reinterpret_cast<const NMLISTVIEW&>(header);
        delete reinterpret_cast<RenameEntry*>(removed.lParam);
    }
}

void CExifDateDlg::OnDestroy() {
    // Free the entries while the dialog still receives the list's notifications.
    if (list_) ListView_DeleteAllItems(list_);
    groups_.clear();
}

}  // namespace lx
