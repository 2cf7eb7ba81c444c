#include "FileOperations.h"

#include <shlobj.h>
#include <shlwapi.h>

#include "ComScope.h"

#include "../../nccore/win32/DialogDriver.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using lxtest::DialogDriver;

// Whether the recycle bin lists an item of that name, as the shell shows it.
bool RecycleBinHolds(const std::wstring& name) {
    lx::ComScope com;
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop))) return false;
    PIDLIST_ABSOLUTE binPidl = nullptr;
    IShellFolder* bin = nullptr;
    if (SUCCEEDED(SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, &binPidl)))
        desktop->BindToObject(binPidl, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&bin));
    IEnumIDList* items = nullptr;
    if (bin) bin->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN, &items);
    bool found = false;
    PITEMID_CHILD child = nullptr;
    while (items && !found && items->Next(1, &child, nullptr) == S_OK) {
        STRRET text{};
        wchar_t shown[MAX_PATH] = {};
        if (SUCCEEDED(bin->GetDisplayNameOf(child, SHGDN_NORMAL, &text)) && SUCCEEDED(StrRetToBufW(&text, child, shown, MAX_PATH)))
            found = name == shown || std::wstring(shown) + L".jpg" == name;
        CoTaskMemFree(child);
    }
    if (items) items->Release();
    if (bin) bin->Release();
    CoTaskMemFree(binPidl);
    desktop->Release();
    return found;
}

TEST(RecycleBin, DeletesEveryPathOfAList) {
    lxtest::ScratchDir scratch("shelldelete");
    const auto a = scratch / "a b.jpg";
    const auto b = scratch / "c.jpg";
    lxtest::WriteFile(a, std::string("1"));
    lxtest::WriteFile(b, std::string("2"));
    const std::wstring list = a.wstring() + L'\0' + b.wstring() + L'\0';
    EXPECT_TRUE(lx::ShellDeleteFiles(nullptr, list.c_str(), FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT));
    EXPECT_FALSE(std::filesystem::exists(a));
    EXPECT_FALSE(std::filesystem::exists(b));
    EXPECT_FALSE(lx::ShellDeleteFiles(nullptr, L"", FOF_ALLOWUNDO));
}

TEST(RecycleBin, PathListEndsWithTwoNuls) {
    const std::wstring list = lx::ShellPathList(L"C:\\a.jpg");
    ASSERT_EQ(list.size(), 9u);
    EXPECT_EQ(list[8], L'\0');
    EXPECT_EQ(list.c_str()[9], L'\0');
}

// Del in the viewer: the file leaves its folder for the recycle bin, without a question; its
// neighbours stay.
TEST(RecycleBin, MovesOneFileAwayWithoutAsking) {
    lxtest::ScratchDir scratch("deleteone");
    const std::wstring name = L"lx-deleted-" + std::to_wstring(GetCurrentProcessId()) + L".jpg";
    const auto file = scratch.path() / name, spread = scratch / "spread.png", other = scratch / "keep.png";
    for (const auto& path : {file, spread, other}) lxtest::WriteFile(path, std::string("x"));
    EXPECT_TRUE(lx::MoveToRecycleBin(nullptr, spread.c_str()));
    EXPECT_FALSE(std::filesystem::exists(spread));
    EXPECT_TRUE(lx::DeleteOneFile(file.c_str()));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_TRUE(RecycleBinHolds(name));
    EXPECT_FALSE(lx::DeleteOneFile(file.c_str()));
    EXPECT_FALSE(lx::DeleteOneFile(nullptr));
}

TEST(EnsureOutputFolder, AcceptsOrCreatesAFolderAndShowsWhyAFileCannotBeOne) {
    lxtest::ScratchDir scratch("ensure");
    EXPECT_TRUE(lx::EnsureOutputFolder(nullptr, scratch.path().c_str()));
    const auto deep = scratch / "out" / "web album";
    EXPECT_TRUE(lx::EnsureOutputFolder(nullptr, deep.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(deep));
    const auto file = scratch / "taken";
    lxtest::WriteFile(file, std::string("x"));
    std::wstring texts;
    DialogDriver driver(L"Quarry7", [&](HWND box) {
        texts = lxtest::AllChildTexts(box);
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    EXPECT_FALSE(lx::EnsureOutputFolder(nullptr, file.c_str()));
    EXPECT_TRUE(driver.Found());
    EXPECT_NE(texts.find(file.wstring()), std::wstring::npos) << texts;
}

TEST(DriveCurrentFolder, ReportsTheCurrentFolderOfItsDrive) {
    lxtest::ScratchDir scratch("drivefolder");
    wchar_t previous[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, previous);
    ASSERT_TRUE(SetCurrentDirectoryW(scratch.path().c_str()));
    wchar_t current[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, current);
    wchar_t folder[520] = {};
    const bool found = lx::DriveCurrentFolder(static_cast<wchar_t>(towlower(current[0])), folder);
    SetCurrentDirectoryW(previous);
    ASSERT_TRUE(found);
    EXPECT_STREQ(folder, current);
    EXPECT_FALSE(lx::DriveCurrentFolder(L'1', folder));
    EXPECT_FALSE(lx::DriveCurrentFolder(L'C', nullptr));
}

TEST(BrowseForFolder, StartsAtTheGivenFolderAndReturnsTheChoiceOrLeavesTheBuffer) {
    lxtest::ScratchDir scratch("browse");
    wchar_t folder[520] = {};
    lstrcpynW(folder, scratch.path().c_str(), 520);
    {
        DialogDriver driver(L"", DialogDriver::Press(IDOK));
        ASSERT_TRUE(lx::BrowseForFolder(nullptr, folder));
        EXPECT_TRUE(driver.Found());
        EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(folder), scratch.path())) << folder;
    }
    wchar_t kept[520] = L"C:\\windows";
    DialogDriver driver(L"", DialogDriver::Press(IDCANCEL));
    EXPECT_FALSE(lx::BrowseForFolder(nullptr, kept));
    EXPECT_TRUE(driver.Found());
    EXPECT_STREQ(kept, L"C:\\windows");
}

}  // namespace
