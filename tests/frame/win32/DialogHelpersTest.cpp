#include "DialogHelpers.h"

#include "../../lib/nccore/win32/DialogDriver.h"
#include "ImageTypes.h"
#include "TestFiles.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace {

using lxtest::ComboItems;
using lxtest::DialogDriver;
using Items = std::vector<std::wstring>;

// A top-level window to hold controls under test; destroyed with its children.
class HostWindow {
public:
    HostWindow() {
        window_ = CreateWindowExW(0, L"STATIC", L"lx host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                  nullptr, nullptr);
    }
    ~HostWindow() { DestroyWindow(window_); }
    HWND get() const { return window_; }
    HWND Child(const wchar_t* className, DWORD style, int id) const {
        return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 200, 200, window_,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    }

private:
    HWND window_;
};

// The item lists of every combo box in a dialog (the file-type list is one of them).
std::vector<std::vector<std::wstring>> AllComboLists(HWND dialog) {
    std::vector<std::vector<std::wstring>> lists;
    for (HWND child : lxtest::Descendants(dialog)) {
        if (lstrcmpiW(lxtest::WindowClass(child).c_str(), L"ComboBox") == 0) lists.push_back(ComboItems(child));
    }
    return lists;
}

bool HasList(const std::vector<std::vector<std::wstring>>& lists, const std::vector<std::wstring>& wanted) {
    for (const auto& list : lists) {
        if (list == wanted) return true;
    }
    return false;
}

TEST(FillComboFromString, FillsComboBoxesInOrderAndNothingElse) {
    HostWindow host;
    HWND combo = host.Child(L"ComboBox", CBS_DROPDOWNLIST, 100);
    lx::FillComboFromString(combo, 4134);
    lx::FillComboFromString(combo, 31999);  // no such string: nothing more
    EXPECT_EQ(ComboItems(combo), (Items{L"2", L"4", L"8", L"16", L"32", L"64", L"128", L"256"}));
    HWND list = host.Child(L"ListBox", 0, 102);
    lx::FillComboFromString(list, 4134);
    EXPECT_EQ(SendMessageW(list, LB_GETCOUNT, 0, 0), 0);

    INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_USEREX_CLASSES};
    InitCommonControlsEx(&classes);
    HWND extended = host.Child(WC_COMBOBOXEXW, CBS_DROPDOWNLIST, 101);
    ASSERT_NE(extended, nullptr);
    lx::FillComboFromString(extended, 4130);
    lx::FillComboFromString(extended, 4130);  // a second fill appends, it does not insert first
    Items items(static_cast<size_t>(SendMessageW(extended, CB_GETCOUNT, 0, 0)));
    for (size_t i = 0; i < items.size(); ++i) {
        wchar_t text[64] = {};
        COMBOBOXEXITEMW item = {CBEIF_TEXT, static_cast<INT_PTR>(i), text, 64};
        SendMessageW(extended, CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        items[i] = text;
    }
    EXPECT_EQ(items, (Items{L"Jpeg", L"Png", L"GIF", L"Jpeg", L"Png", L"GIF"}));
}

TEST(ShowMessage, FormatsTheTextAndTakesIdsForTexts) {
    std::wstring caption, texts;
    DialogDriver driver(L"Fotolume", [&](HWND box) {
        caption = lxtest::WindowText(box);
        texts = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDNO, BN_CLICKED), 0);
    });
    const int button = lx::ShowMessage(L"'%1' \u3092\u524a\u9664\u3057\u307e\u3059\u304b\uff1f", MAKEINTRESOURCEW(4086),
                                       L"C:\\a b\\x.jpg", MB_YESNO | MB_ICONQUESTION);
    EXPECT_EQ(button, IDNO);
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(texts.find(L"'C:\\a b\\x.jpg' \u3092\u524a\u9664"), std::wstring::npos) << texts;
}

TEST(ShowMessage, TextFormatting) {
    EXPECT_EQ(lx::FormatWithArgument(L"'%1' and '%1'", L"a.jpg"), L"'a.jpg' and 'a.jpg'");
    EXPECT_EQ(lx::FormatWithArgument(L"'%1'", L""), L"'%1'");  // no argument: the text as it is
    EXPECT_EQ(lx::FormatWithArgument(L"100%", L"x"), L"100%");
    EXPECT_EQ(lx::FormatWithArgument(L"%2 %1", L"x"), L"%2 x");
}

// Roots and share names count as existing folders; a deep path is made parent by parent.
TEST(CreateFolderPath, TakesRootsAsExistingAndCreatesEveryMissingParent) {
    for (const wchar_t* path : {L"C:\\", L"Q:", L"\\\\server\\share"}) {
        SetLastError(0);
        EXPECT_TRUE(lx::CreateFolderPath(path)) << path;
        EXPECT_EQ(GetLastError(), 161u) << path;
    }
    lxtest::ScratchDir scratch("createfolder");
    const std::filesystem::path deep = scratch / "a" / "b b" / "c" / "d";
    EXPECT_TRUE(lx::CreateFolderPath(deep.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(deep));
    EXPECT_TRUE(lx::CreateFolderPath(deep.c_str()));  // existing already: fine
}

// A file in the way shows the error naming the path: Cancel gives up, Retry tries again
// (here after the user cleared the way). A file of the folder's own name is not the folder.
TEST(CreateFolderPath, ShowsTheErrorStopsOnCancelAndRetriesOnRetry) {
    lxtest::ScratchDir scratch("createfolder-error");
    const std::filesystem::path blocker = scratch / "file";
    for (int button : {IDCANCEL, IDRETRY}) {
        lxtest::WriteFile(blocker, std::string("not a folder"));
        const std::filesystem::path wanted = button == IDCANCEL ? blocker / "sub" : blocker;
        std::wstring texts;
        int shown = 0;
        DialogDriver driver(L"Fotolume", [&](HWND box) {
            ++shown;
            texts = lxtest::AllChildTexts(box);
            if (button == IDRETRY) std::filesystem::remove(blocker);
            PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
        });
        EXPECT_EQ(lx::CreateFolderPath(wanted.c_str()), button == IDRETRY);
        EXPECT_EQ(shown, 1);
        EXPECT_NE(texts.find(wanted.wstring()), std::wstring::npos) << texts;
        EXPECT_EQ(std::filesystem::is_directory(wanted), button == IDRETRY);
    }
}

// The item dialog and the classic one, each row: the call, open or save, the folder and the
// path handed in, the filter pairs, the button pressed; then the path handed back and the
// filter list the dialog offered.
TEST(FileDialogs, OfferTheirFiltersStartWhereToldAndHandBackThePathOnlyOnOk) {
    EXPECT_EQ(lx::ClassicFilterFromPairs(nullptr, 0), std::wstring(L"All(*.*)\0*.*\0", 13));
    lxtest::ScratchDir scratch("filedialogs");
    lxtest::WriteFile(scratch / "chosen.jpg", std::string("jpeg"));
    const lx::FileFilter pdf[] = {{L"PDF(*.pdf)", L"*.pdf"}, {L"All(*.*)", L"*.*"}};
    const lx::FileFilter shortPdf[] = {{L"PDF", L"*.pdf"}, {L"All", L"*.*"}};
    EXPECT_EQ(lx::ClassicFilterFromPairs(shortPdf, 2), std::wstring(L"PDF\0*.pdf\0All\0*.*\0", 18));
    const std::wstring folder = scratch.path().wstring();
    const struct {
        decltype(&lx::ShowItemFileDialog) show;
        bool open;
        const wchar_t* folder;
        std::filesystem::path path;
        const lx::FileFilter* filters;
        int button;
        std::filesystem::path result;
        Items offered;
    } rows[] = {
        {lx::ShowItemFileDialog, false, nullptr, scratch / "photos.pdf", nullptr, IDCANCEL, scratch / "photos.pdf",
         {L"All(*.*)"}},
        {lx::ShowItemFileDialog, false, folder.c_str(), "album.pdf", pdf, IDOK, scratch / "album.pdf",
         {L"PDF(*.pdf)", L"All(*.*)"}},
        // No folder given: the dialog starts in the folder of the path.
        {lx::ShowItemFileDialog, true, nullptr, scratch / "chosen.jpg", nullptr, IDOK, scratch / "chosen.jpg",
         {L"All(*.*)"}},
        {lx::ShowClassicFileDialog, true, folder.c_str(), "keep.pdf", shortPdf, IDCANCEL, "keep.pdf", {L"PDF", L"All"}},
    };
    for (const auto& row : rows) {
        std::vector<Items> lists;
        DialogDriver driver(L"lx file dialog", [&](HWND dialog) {
            lists = AllComboLists(dialog);
            PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(row.button, BN_CLICKED), 0);
        });
        wchar_t path[lx::kPathChars] = {};
        lstrcpynW(path, row.path.c_str(), lx::kPathChars);
        EXPECT_EQ(row.show(nullptr, row.open, L"lx file dialog", row.folder, path, row.filters, row.filters ? 2 : 0),
                  row.button == IDOK) << row.path;
        EXPECT_TRUE(driver.Found()) << row.path;
        const bool same = std::filesystem::path(path) == row.result ||
                          (std::filesystem::exists(row.result) && std::filesystem::equivalent(path, row.result));
        EXPECT_TRUE(same) << path;
        EXPECT_TRUE(HasList(lists, row.offered)) << row.path;
    }
}

TEST(ShowImageFileDialog, OpensWithTheStringTableFilterAndCancelChangesNothing) {
    std::vector<std::vector<std::wstring>> lists;
    std::wstring caption;
    DialogDriver driver(L"", [&](HWND dialog) {
        caption = lxtest::WindowText(dialog);
        lists = AllComboLists(dialog);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    wchar_t path[lx::kPathChars] = L"Q:\\nowhere\\x.jpg";
    int index = 77;
    EXPECT_FALSE(lx::ShowImageFileDialog(nullptr, 4093, 4092, path, true, &index));
    EXPECT_TRUE(driver.Found());
    EXPECT_EQ(caption, L"\u30a4\u30e1\u30fc\u30b8\u30d5\u30a1\u30a4\u30eb\u306e\u8aad\u307f\u8fbc\u307f");
    EXPECT_STREQ(path, L"Q:\\nowhere\\x.jpg");
    EXPECT_EQ(index, 77);
    bool sawTypes = false;
    for (const auto& list : lists) {
        if (list.size() == 6 && list.back() == L"\u5168\u30d5\u30a1\u30a4\u30eb(*.*)") sawTypes = true;
    }
    EXPECT_TRUE(sawTypes);
}

TEST(ShowImageFileDialog, SaveReturnsThePathAndTheFilterRow) {
    lxtest::ScratchDir scratch("imagedialog-save");
    const std::filesystem::path existing = scratch / "old.png";
    lxtest::WriteFile(existing, std::string("x"));
    size_t typeCount = 0;
    DialogDriver driver(L"\u753b\u50cf\u306e\u4fdd\u5b58", [&](HWND dialog) {
        for (HWND child : lxtest::Descendants(dialog)) {
            if (lstrcmpiW(lxtest::WindowClass(child).c_str(), L"ComboBox") != 0) continue;
            const auto items = ComboItems(child);
            if (items.size() == 12 && items[3] == L"Png(.png)") {
                typeCount = items.size();
                // Choose "Png" the way a user does: select it and tell the dialog.
                SendMessageW(child, CB_SETCURSEL, 3, 0);
                for (WORD code : {CBN_SELCHANGE, CBN_SELENDOK}) {
                    SendMessageW(GetParent(child), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(child), code),
                                 reinterpret_cast<LPARAM>(child));
                }
            }
        }
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    wchar_t path[lx::kPathChars] = {};
    lstrcpynW(path, existing.c_str(), lx::kPathChars);
    int index = -1;
    ASSERT_TRUE(lx::ShowImageFileDialog(nullptr, 4090, 4094, path, false, &index));
    EXPECT_EQ(typeCount, 12u);
    EXPECT_EQ(index, 3);
    ASSERT_NE(lx::SaveFilterTypeAt(index), nullptr);
    EXPECT_EQ(lx::SaveFilterTypeAt(index)->id, 10);
    EXPECT_EQ(std::filesystem::path(path).parent_path(), scratch.path());
}

TEST(RadioGroupSelection, FindsTheFirstCheckedButtonInsideTheRange) {
    HostWindow host;
    for (int id = 201; id <= 204; ++id) host.Child(L"BUTTON", BS_RADIOBUTTON, id);
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 201, 204), 0);
    CheckDlgButton(host.get(), 203, BST_CHECKED);
    CheckDlgButton(host.get(), 204, BST_CHECKED);
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 201, 204), 203);
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 203, 203), 203);
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 201, 202), 0);
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 204, 201), 0);  // reversed range
    EXPECT_EQ(lx::RadioGroupSelection(host.get(), 204, 230), 204);  // ids without a control
}

}  // namespace
