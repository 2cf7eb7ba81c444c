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

TEST(CreateFolderPath, TakesRootsAndShortPathsAsExisting) {
    for (const wchar_t* path : {L"C:\\", L"Q:", L"\\\\server\\share"}) {
        SetLastError(0);
        EXPECT_TRUE(lx::CreateFolderPath(path)) << path;
        EXPECT_EQ(GetLastError(), 161u) << path;
    }
}

TEST(CreateFolderPath, CreatesEveryMissingParent) {
    lxtest::ScratchDir scratch("createfolder");
    const std::filesystem::path deep = scratch / "a" / "b b" / "c" / "d";
    EXPECT_TRUE(lx::CreateFolderPath(deep.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(deep));
    EXPECT_TRUE(lx::CreateFolderPath(deep.c_str()));  // existing already: fine
}

TEST(CreateFolderPath, ShowsTheErrorAndStopsOnCancel) {
    lxtest::ScratchDir scratch("createfolder-cancel");
    const std::filesystem::path blocker = scratch / "file";
    lxtest::WriteFile(blocker, std::string("not a folder"));
    const std::filesystem::path impossible = blocker / "sub";
    std::wstring texts;
    DialogDriver driver(L"Fotolume", [&](HWND box) {
        texts = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    EXPECT_FALSE(lx::CreateFolderPath(impossible.c_str()));
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(texts.find(impossible.wstring()), std::wstring::npos) << texts;
}

TEST(CreateFolderPath, RetriesUntilTheFolderCanBeMade) {
    lxtest::ScratchDir scratch("createfolder-retry");
    const std::filesystem::path blocker = scratch / "out";
    lxtest::WriteFile(blocker, std::string("in the way"));
    int shown = 0;
    DialogDriver driver(L"Fotolume", [&](HWND box) {
        ++shown;
        std::filesystem::remove(blocker);  // the user clears the way, then retries
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDRETRY, BN_CLICKED), 0);
    });
    // A file holding the folder's own name must not be mistaken for the folder.
    EXPECT_TRUE(lx::CreateFolderPath(blocker.c_str()));
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(std::filesystem::is_directory(blocker));
}

TEST(ShowItemFileDialog, WithoutATableOffersAllFilesAndCancelLeavesThePath) {
    lxtest::ScratchDir scratch("itemdialog");
    std::vector<std::vector<std::wstring>> lists;
    DialogDriver driver(L"lx item dialog", [&](HWND dialog) {
        lists = AllComboLists(dialog);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    wchar_t path[lx::kPathChars] = {};
    const std::wstring before = (scratch / "photos.pdf").wstring();
    lstrcpynW(path, before.c_str(), lx::kPathChars);
    EXPECT_FALSE(lx::ShowItemFileDialog(nullptr, false, L"lx item dialog", nullptr, path, nullptr, 0));
    EXPECT_TRUE(driver.Found());
    EXPECT_EQ(std::wstring(path), before);
    EXPECT_TRUE(HasList(lists, {L"All(*.*)"})) << lists.size();
}

TEST(ShowItemFileDialog, OkStoresTheChosenPath) {
    lxtest::ScratchDir scratch("itemdialog-ok");
    std::vector<std::vector<std::wstring>> lists;
    DialogDriver driver(L"lx save pdf", [&](HWND dialog) {
        lists = AllComboLists(dialog);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    const lx::FileFilter filters[] = {{L"PDF(*.pdf)", L"*.pdf"}, {L"All(*.*)", L"*.*"}};
    wchar_t path[lx::kPathChars] = L"album.pdf";
    const std::wstring folder = scratch.path().wstring();
    ASSERT_TRUE(lx::ShowItemFileDialog(nullptr, false, L"lx save pdf", folder.c_str(), path, filters, 2));
    EXPECT_EQ(std::filesystem::path(path), scratch / "album.pdf");
    EXPECT_TRUE(HasList(lists, {L"PDF(*.pdf)", L"All(*.*)"}));
}

TEST(ShowItemFileDialog, StartsInTheFolderOfThePathWhenNoneIsGiven) {
    lxtest::ScratchDir scratch("itemdialog-pathfolder");
    DialogDriver driver(L"lx open", DialogDriver::Press(IDOK));
    const auto existing = scratch / "chosen.jpg";
    lxtest::WriteFile(existing, std::string("jpeg"));
    wchar_t path[lx::kPathChars] = {};
    lstrcpynW(path, existing.c_str(), lx::kPathChars);
    ASSERT_TRUE(lx::ShowItemFileDialog(nullptr, true, L"lx open", nullptr, path, nullptr, 0));
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(path), existing)) << path;
}

TEST(ShowClassicFileDialog, BuildsItsFilterFromThePairs) {
    const lx::FileFilter filters[] = {{L"PDF", L"*.pdf"}, {L"All", L"*.*"}};
    EXPECT_EQ(lx::ClassicFilterFromPairs(filters, 2), std::wstring(L"PDF\0*.pdf\0All\0*.*\0", 18));
    EXPECT_EQ(lx::ClassicFilterFromPairs(nullptr, 0), std::wstring(L"All(*.*)\0*.*\0", 13));

    lxtest::ScratchDir scratch("classicdialog");
    std::vector<std::vector<std::wstring>> lists;
    DialogDriver driver(L"lx classic", [&](HWND dialog) {
        lists = AllComboLists(dialog);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    wchar_t path[lx::kPathChars] = L"keep.pdf";
    EXPECT_FALSE(lx::ShowClassicFileDialog(nullptr, true, L"lx classic", scratch.path().c_str(), path, filters, 2));
    EXPECT_TRUE(driver.Found());
    EXPECT_STREQ(path, L"keep.pdf");
    EXPECT_TRUE(HasList(lists, {L"PDF", L"All"}));
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
