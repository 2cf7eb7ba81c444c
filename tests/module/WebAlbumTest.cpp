// The web album through its export as a person uses it: the request key, the real dialog
// (fields typed, OK pressed, or refused), the sheets and thumbnails it writes. The test runs
// under a Japanese locale, so the sheets are written in code page 932 as on a Japanese Windows.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "../../src/publish/webalbum/win32/HtmlSheetDlgIds.h"
#include "../lib/nccore/win32/DialogDriver.h"
#include "DropBlock.h"
#include "ImageLoad.h"
#include "ModuleTest.h"
#include "RegistryTestKey.h"
#include "TestFiles.h"

namespace fs = std::filesystem;

namespace {

using namespace lxtest;

const wchar_t kAlbumCaption[] = L"WEBアルバムの作成";

std::wstring FromCodePage(UINT codePage, const std::vector<uint8_t>& bytes) {
    const char* data = reinterpret_cast<const char*>(bytes.data());
    const int length = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, data, int(bytes.size()), nullptr, 0);
    std::wstring text(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, data, int(bytes.size()), text.data(), length);
    return text;
}

class WebAlbumTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Entry<WideEntry>("RunWebAlbumW"), nullptr);
        const fs::path samples = SourceDir() / "samples";
        const char* names[] = {"grey.jpg", "hills.jpg", "mountain.jpg", "tree.jpg"};
        for (int i = 0; i < 12; ++i) {
            const fs::path copy = source_ / ("IMG_" + std::to_string(100 + i) + ".JPG");
            fs::copy_file(samples / names[i % 4], copy);
            files_.push_back(WindowsPath(copy));
        }
        const fs::path japanese = source_ / L"写真&1.jpg";
        fs::copy_file(samples / "tree.jpg", japanese);
        files_.push_back(WindowsPath(japanese));
    }

    // Runs the export with the dialog handled by `act`; true when the dialog showed.
    bool Run(const std::function<void(HWND)>& act) {
        RegistryTestKey key(L"webalbum");
        const auto drop = WideDropBlock(files_);
        key.Set(L"drop", REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
        key.Close();
        DialogDriver driver(kAlbumCaption, act);
        std::wstring line = key.name();
        Entry<WideEntry>("RunWebAlbumW")(nullptr, Dll(), line.data(), SW_SHOWNORMAL);
        return driver.Found();
    }

    // Types the fields the tests care about and presses OK.
    std::function<void(HWND)> Fill(const std::wstring& title, int linkMode) {
        return [this, title, linkMode](HWND dialog) {
            SetDlgItemTextW(dialog, IDC_ALBUM_FOLDER, WindowsPath(out_).c_str());
            SetDlgItemTextW(dialog, IDC_ALBUM_TITLE, title.c_str());
            SetDlgItemInt(dialog, IDC_ALBUM_COLUMNS, 4, FALSE);
            SetDlgItemInt(dialog, IDC_ALBUM_ROWS, 3, FALSE);
            SendDlgItemMessageW(dialog, IDC_ALBUM_LINK, CB_SETCURSEL, linkMode, 0);
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        };
    }

    std::wstring Sheet(int number) {
        return FromCodePage(932, ReadFile(out_ / ("sheet_" + std::to_string(number) + ".html")));
    }

    ScratchDir dir_{"webalbum"};
    const fs::path source_ = dir_.path();
    const fs::path out_ = dir_.path() / L"アルバム" / "out";
    std::vector<std::wstring> files_;
};

}  // namespace

TEST_F(WebAlbumTest, ThirteenPhotosMakeTwoShiftJisSheetsWithThumbnails) {
    ASSERT_EQ(GetACP(), 932u) << "the test runs under LC_ALL=ja_JP.UTF-8 (scripts/setup.sh makes the locale)";
    ASSERT_TRUE(Run(Fill(L"旅行", 2)));
    const std::wstring first = Sheet(1), second = Sheet(2);
    EXPECT_NE(first.find(L"<p>旅行</p>\n"), std::wstring::npos);
    EXPECT_NE(first.find(L"次へ≫></a>"), std::wstring::npos);
    EXPECT_NE(first.find(L"/IMG_100.JPG\"><img border=0 src=\"sh_img_100.jpg\""), std::wstring::npos);
    EXPECT_NE(second.find(L"<br>写真&1.jpg</a></td>\n<td></td>\n<td></td>\n<td></td>\n</tr>\n"), std::wstring::npos);
    // The photograph with a description carries it as the alternative text.
    EXPECT_NE(second.find(L"alt=\"Tree at noon\""), std::wstring::npos);
    const auto thumbnail = lx::LoadImageFile(out_ / "sh_img_100.jpg");
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_LE(thumbnail->height(), 96) << "inside the default 128 x 96 box";
}

TEST_F(WebAlbumTest, OkRefusesAnEmptyFolderAndCountsBelowOneAndTheSettingsComeBack) {
    struct Refusal {
        int box;
        std::wstring folder;
    };
    bool checked = false;
    ASSERT_TRUE(Run([&](HWND dialog) {
        const Refusal refusals[] = {{IDC_ALBUM_FOLDER, L""}, {IDC_ALBUM_WIDTH, WindowsPath(out_)},
                                    {IDC_ALBUM_ROWS, WindowsPath(out_)}};
        for (const Refusal& refusal : refusals) {
            SetDlgItemTextW(dialog, IDC_ALBUM_FOLDER, refusal.folder.c_str());
            SetDlgItemInt(dialog, IDC_ALBUM_WIDTH, refusal.box == IDC_ALBUM_WIDTH ? 0 : 128, FALSE);
            SetDlgItemInt(dialog, IDC_ALBUM_ROWS, refusal.box == IDC_ALBUM_ROWS ? 0 : 3, FALSE);
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
            EXPECT_TRUE(IsWindowVisible(dialog)) << refusal.box;
            // The folder combo box hands its focus to its edit field.
            const HWND box = GetDlgItem(dialog, refusal.box), focus = FocusOf(dialog);
            EXPECT_TRUE(focus == box || IsChild(box, focus)) << refusal.box;
        }
        // Nothing was created or stored by the refused presses.
        EXPECT_FALSE(fs::exists(out_));
        Fill(L"", 1)(dialog);
        checked = true;
    }));
    ASSERT_TRUE(checked);
    EXPECT_TRUE(fs::exists(out_ / "sheet_2.html"));  // the folder was created with its parents
    EXPECT_NE(Sheet(1).find(L"<title>sheet[0]</title>"), std::wstring::npos);

    // The next run shows what OK stored; Cancel writes nothing.
    fs::remove_all(out_);
    std::wstring shownFolder;
    int shownLink = -1;
    ASSERT_TRUE(Run([&](HWND dialog) {
        wchar_t text[520] = {};
        GetDlgItemTextW(dialog, IDC_ALBUM_FOLDER, text, 520);
        shownFolder = text;
        shownLink = static_cast<int>(SendDlgItemMessageW(dialog, IDC_ALBUM_LINK, CB_GETCURSEL, 0, 0));
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    }));
    EXPECT_EQ(shownFolder, WindowsPath(out_));
    EXPECT_EQ(shownLink, 1);
    EXPECT_FALSE(fs::exists(out_));
}
