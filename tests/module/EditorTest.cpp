// The photo editor as the host starts it: pxfRunW of lxpicture.dll on a thread of its own,
// driven from the test through its real windows (commands, questions, the save dialog, the
// status bar, the clipboard), against real files and the real registry.
#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "../lib/exif/ExifTestSupport.h"
#include "../lib/nccore/win32/DialogDriver.h"
#include "DropBlock.h"
#include "ImageCodecs.h"
#include "EditorDriver.h"
#include "FrameOnThread.h"
#include "ModuleTest.h"
#include "TestFiles.h"

using namespace lx;
using lxtest::Dll;
using lxtest::ScratchDir;
using lxtest::WaitFor;
using namespace lxtest;

namespace {

std::vector<uint8_t> Bytes(const std::filesystem::path& path) { return lxtest::ReadFile(path); }

class EditorTest : public EditorFixture {
protected:
    EditorTest() : EditorFixture("editor") {}
};

TEST_F(EditorTest, OpensThePhotographAndStoresItsPlacesOnClose) {
    WriteBitmap(dir_ / "a.bmp", 64, 48);
    {
        Editor editor(dir_ / "a.bmp");
        ASSERT_TRUE(editor.frame());
        ASSERT_TRUE(WaitFor([&] { return editor.Title() == L"a.bmp - " + kCaption; }));
        EXPECT_EQ(editor.StatusText(4), L"64 x 48");
        EXPECT_EQ(editor.StatusText(5), L"24bpp");
        for (const auto& [zoom, text] : {std::pair{1250, L"125%"}, {333, L"33.3%"}}) {
            SendMessageW(editor.View(), kSetZoom, zoom, 0);
            editor.Idle();
            EXPECT_EQ(editor.StatusText(2), text);
        }
        EXPECT_FALSE(editor.ToolEnabled(2008));  // clean: nothing to save
        editor.Command(2001);
        EXPECT_TRUE(editor.WaitEnded());
    }
    for (const auto& [name, bytes] : {std::pair{L"ZoomViewInfo", 60u}, {L"WndPos", 44u}, {L"NaviPos", 48u}}) {
        uint8_t value[64] = {};
        DWORD size = sizeof value;
        EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, kSettingsKey, name, RRF_RT_ANY, nullptr, value, &size), 0) << name;
        EXPECT_EQ(size, bytes) << name;
        if (bytes == 60u) EXPECT_EQ(value[48] | value[49] << 8, 333);  // the zoom
    }
}

TEST_F(EditorTest, WhatNoReaderTakesLeavesTheFrameEmpty) {
    lxtest::WriteFile(dir_ / "text.jpg", std::string("not a picture"));
    std::filesystem::create_directory(dir_ / "folder.bmp");
    for (const std::filesystem::path& path : {dir_ / "text.jpg", dir_ / "folder.bmp", dir_ / "missing.bmp"}) {
        Editor editor(path);
        ASSERT_TRUE(editor.frame()) << path;
        Sleep(300);
        EXPECT_FALSE(editor.HasImage()) << path;
        EXPECT_EQ(editor.Title(), kEditorCaption) << path;
        EXPECT_TRUE(editor.Quiet(0)) << path;
    }
}

TEST_F(EditorTest, ClipInAnyCaseOpensTheClipboardImageAndNothingWithoutOne) {
    PutOnClipboard(PackedDib::Create(30, 20, 24));
    {
        Editor editor{std::wstring(L"\"/Clip\"")};
        ASSERT_TRUE(WaitFor([&] { return editor.Title() == L"クリップボード - " + kEditorCaption; }));
        EXPECT_EQ(editor.StatusText(4), L"30 x 20");
        EXPECT_FALSE(editor.ToolEnabled(2008));
    }
    PutOnClipboard(std::span<const uint8_t>{});
    Editor editor{std::wstring(L"/clip")};
    Sleep(300);
    EXPECT_FALSE(editor.HasImage());
}

TEST_F(EditorTest, UndoRestoresTheSelectionAndTheCleanState) {
    auto editor = Open(Filled(40, 30, 24, 128), "r.bmp");
    const DWORD gdiBefore = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int edit = 1; edit <= 17; ++edit) {
        editor->Select({0, 0, edit, edit});  // rotating drops the selection
        editor->CommandNow(2081);
    }
    EXPECT_EQ(editor->StatusText(4), L"30 x 40");
    for (int undo = 1; undo <= 16; ++undo) editor->CommandNow(2036);
    EXPECT_EQ(editor->Selection().right, 2);  // the one made before the second edit
    EXPECT_FALSE(editor->ToolEnabled(2036));
    EXPECT_FALSE(editor->ToolEnabled(2008));  // every step undone: clean again
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiBefore + 5);
    editor->Command(2001);
    EXPECT_TRUE(editor->WaitEnded(5000));  // nothing asked
}

TEST_F(EditorTest, SaveWritesOnlyAModifiedDocumentAndClosingAsksFirst) {
    WriteBitmap(dir_ / "s.bmp", 40, 30);
    const auto before = Bytes(dir_ / "s.bmp");
    Editor editor(dir_ / "s.bmp");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    editor.CommandNow(2008);  // clean: nothing happens
    EXPECT_EQ(Bytes(dir_ / "s.bmp"), before);
    editor.CommandNow(2081);
    EXPECT_TRUE(editor.ToolEnabled(2008));
    // Closing with changes asks; Cancel keeps the editor and its changes.
    editor.Command(2001);
    EXPECT_NE(editor.Answer(IDCANCEL).find(L"画像は修正されています。保存しますか？"), std::wstring::npos);
    EXPECT_FALSE(editor.ended());
    EXPECT_TRUE(editor.ToolEnabled(2008));
    editor.CommandNow(2008);
    EXPECT_NE(Bytes(dir_ / "s.bmp"), before);
    EXPECT_FALSE(editor.ToolEnabled(2008));
    editor.Command(2001);
    EXPECT_TRUE(editor.WaitEnded(5000));
}

TEST_F(EditorTest, SaveAsOfACleanDocumentWritesAndAnExistingFileIsAskedAbout) {
    WriteBitmap(dir_ / "c.bmp", 40, 30);
    ASSERT_NE(SaveImageByType(dir_ / "other.jpg", PackedDib::Create(8, 8, 24), kImageJpeg), 0);
    const auto other = Bytes(dir_ / "other.jpg");
    Editor editor(dir_ / "c.bmp");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    // New names: written without a question as the chosen type, named after it; the
    // document takes the name.
    for (const auto& [typed, written] : {std::pair{L"copy.png", L"copy.jpg"}, {L"copy2.jpeg", L"copy2.jpeg"}}) {
        editor.Command(2002);
        ASSERT_TRUE(editor.SaveDialog(dir_.path() / typed));
        EXPECT_TRUE(WaitFor([&] { return editor.Title() == std::wstring(written) + L" - " + kCaption; })) << typed;
        EXPECT_EQ(ProbeImageType(dir_.path() / written), kImageJpeg);
    }
    EXPECT_FALSE(std::filesystem::exists(dir_ / "copy.png"));
    // An existing one: No keeps it, Yes replaces it.
    for (const int answer : {IDNO, IDYES}) {
        editor.Command(2002);
        ASSERT_TRUE(editor.SaveDialog(dir_ / "other.jpg"));
        EXPECT_NE(editor.Answer(answer).find(L"このファイルは既に存在します。"), std::wstring::npos);
        EXPECT_TRUE(editor.Quiet());
        EXPECT_EQ(Bytes(dir_ / "other.jpg") == other, answer == IDNO) << answer;
    }
}

// Saving over a read-only file or over a photograph's shooting information asks first: No
// keeps the file and the changes, Yes writes.
TEST_F(EditorTest, ARiskyOverwriteIsAskedFirst) {
    ASSERT_NE(SaveImageByType(dir_ / "plain.jpg", PackedDib::Create(40, 30, 24), kImageJpeg), 0);
    lxtest::WriteFile(dir_ / "shot.jpg",
                      lxtest::JpegWithExif(lxtest::TiffWithDate("2020:01:02 03:04:05"), Bytes(dir_ / "plain.jpg")));
    WriteBitmap(dir_ / "ro.bmp", 40, 30);
    SetFileAttributesW((dir_ / "ro.bmp").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const auto& [name, question] : {std::pair{"ro.bmp", L"読み取り専用です。"}, {"shot.jpg", L"各種撮影情報が含まれています。"}}) {
        const auto before = Bytes(dir_ / name);
        Editor editor(dir_ / name);
        ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
        editor.CommandNow(2081);
        editor.Command(2008);
        EXPECT_NE(editor.Answer(IDNO).find(question), std::wstring::npos) << name;
        EXPECT_TRUE(editor.Quiet());
        EXPECT_EQ(Bytes(dir_ / name), before) << name;
        EXPECT_TRUE(editor.ToolEnabled(2008));
        editor.Command(2008);
        editor.Answer(IDYES);
        EXPECT_TRUE(WaitFor([&] { return !editor.ToolEnabled(2008); })) << name;
        EXPECT_NE(Bytes(dir_ / name), before) << name;
    }
    EXPECT_FALSE(GetFileAttributesW((dir_ / "ro.bmp").c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(HasShootingInfo(dir_ / "shot.jpg"));
}

// A picture whose name says FlashPix, a type the codecs cannot write: the write fails.
TEST_F(EditorTest, AFailedWriteKeepsTheFileAndTheChanges) {
    WriteBitmap(dir_ / "f.fpx", 40, 30);
    const auto before = Bytes(dir_ / "f.fpx");
    Editor editor(dir_ / "f.fpx");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    editor.CommandNow(2083);
    editor.Command(2008);
    EXPECT_NE(editor.Answer(IDOK).find(L"ファイルを保存できません。"), std::wstring::npos);
    EXPECT_EQ(Bytes(dir_ / "f.fpx"), before);
    EXPECT_TRUE(editor.ToolEnabled(2008));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.path()), {}), 1);  // no temporary left
}

TEST_F(EditorTest, ToRgbTurnsAPalettePictureIntoAnUndoableStep) {
    auto editor = Open(Filled(16, 16, 8, 3), "p.bmp");
    EXPECT_EQ(editor->StatusText(5), L"8bpp");
    editor->CommandNow(2051);
    EXPECT_EQ(editor->StatusText(5), L"24bpp");
    EXPECT_TRUE(editor->ToolEnabled(2036));
}

TEST_F(EditorTest, CopyPutsTheSelectionOnTheClipboardInThreeForms) {
    auto editor = Open(Filled(40, 30, 24, 128), "k.bmp");
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    CloseClipboard();
    editor->CommandNow(2031);  // no selection: copy is not offered
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    editor->Select({5, 5, 25, 15});
    editor->CommandNow(2031);
    for (const UINT format : {CF_DIB, CF_PALETTE, CF_BITMAP}) EXPECT_TRUE(IsClipboardFormatAvailable(format)) << format;
    ASSERT_TRUE(OpenClipboard(nullptr));
    const auto* header = static_cast<const BITMAPINFOHEADER*>(GlobalLock(GetClipboardData(CF_DIB)));
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->biWidth, 20);
    EXPECT_EQ(header->biHeight, 10);
    GlobalUnlock(GetClipboardData(CF_DIB));
    CloseClipboard();
}

TEST_F(EditorTest, ANewImageTooLargeToEditIsRefusedWithAMessage) {
    Editor editor{std::wstring(L"")};
    ASSERT_TRUE(editor.frame());
    for (const auto& [side, made] : {std::pair{30000, false}, {300, true}}) {
        // Visible: the dialog has set its own values by then and does not overwrite ours.
        HWND dialog = editor.Dialog(2010, L"新規作成");
        ASSERT_NE(dialog, nullptr);
        SetDlgItemInt(dialog, 1211, side, FALSE);
        SetDlgItemInt(dialog, 1212, side, FALSE);
        SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
        if (!made) EXPECT_NE(editor.Answer(IDOK).find(L"この大きさの画像は作れません。"), std::wstring::npos);
        EXPECT_TRUE(WaitFor([&] { return editor.HasImage() == made; })) << side;
    }
    EXPECT_EQ(editor.StatusText(4), L"300 x 300");
}

// From the keyboard the view's context menu (the image menu) opens at the view's corner.
TEST_F(EditorTest, TheKeyboardsContextMenuOpensAtTheViewsCorner) {
    auto editor = Open(Filled(40, 30, 24, 128), "m.bmp");
    PostMessageW(editor->frame(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(editor->View()), -1);
    HWND menu = nullptr;
    auto shownMenu = [] {
        for (HWND w = FindWindowExW(nullptr, nullptr, L"#32768", nullptr); w; w = FindWindowExW(nullptr, w, L"#32768", nullptr))
            if (IsWindowVisible(w)) return w;
        return HWND{};
    };
    ASSERT_TRUE(WaitFor([&] { return (menu = shownMenu()) != nullptr; }));
    RECT popup{}, view{};
    GetWindowRect(menu, &popup);
    GetWindowRect(editor->View(), &view);
    EXPECT_NEAR(popup.left, view.left, 4);
    EXPECT_NEAR(popup.top, view.top, 4);
    SendMessageW(editor->frame(), WM_CANCELMODE, 0, 0);
    EXPECT_TRUE(WaitFor([&] { return !IsWindowVisible(menu); }));
}

void DropFile(HWND frame, const std::filesystem::path& path) {
    PostMessageW(frame, WM_DROPFILES, reinterpret_cast<WPARAM>(GlobalCopy(lxtest::WideDropBlock({path.wstring()}))), 0);
}

TEST_F(EditorTest, OpeningOverChangesAsksAndCancelKeepsTheDocument) {
    WriteBitmap(dir_ / "a.bmp", 40, 30);
    WriteBitmap(dir_ / "b.bmp", 20, 20);
    Editor editor(dir_ / "a.bmp");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    editor.CommandNow(2081);
    DropFile(editor.frame(), dir_ / "b.bmp");
    EXPECT_NE(editor.Answer(IDCANCEL).find(L"画像は修正されています。"), std::wstring::npos);
    EXPECT_EQ(editor.Title(), L"a.bmp - " + kCaption);
    EXPECT_TRUE(editor.ToolEnabled(2008));
    DropFile(editor.frame(), dir_ / "b.bmp");
    editor.Answer(IDNO);
    EXPECT_TRUE(WaitFor([&] { return editor.Title() == L"b.bmp - " + kCaption; }));
    // The tool bar follows on the frame's next idle pass.
    EXPECT_TRUE(WaitFor([&] { return !editor.ToolEnabled(2008); }));
}

// Alt+Left and Alt+Right step through the folder's pictures in the shell's order of names.
TEST_F(EditorTest, PreviousAndNextGoRoundTheFolderInNaturalOrder) {
    for (const char* name : {"a10.bmp", "a9.bmp", "A1.bmp"}) WriteBitmap(dir_ / name, 20, 20);
    lxtest::WriteFile(dir_ / "notes.txt", std::string("not a picture"));
    Editor editor(dir_ / "a9.bmp");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    for (const auto& [command, title] : {std::pair{2015, L"a10.bmp"}, {2015, L"A1.bmp"}, {2014, L"a10.bmp"}, {2014, L"a9.bmp"}}) {
        editor.Command(command);
        EXPECT_TRUE(WaitFor([&] { return editor.Title() == std::wstring(title) + L" - " + kCaption; })) << title;
    }
}

// How many files the list keeps and in which order is RecentDocuments' (EditorRulesTest);
// here the dropped files reach it and the registry.
TEST_F(EditorTest, DroppedFilesAreStoredNewestFirstInTheRecentList) {
    {
        Editor editor(std::wstring(L""));
        for (const wchar_t* name : {L"d0.bmp", L"d1.bmp"}) {
            WriteBitmap(dir_.path() / name, 20, 20);
            DropFile(editor.frame(), dir_.path() / name);
            ASSERT_TRUE(WaitFor([&] { return editor.Title() == std::wstring(name) + L" - " + kCaption; })) << name;
        }
        editor.Command(2001);
        ASSERT_TRUE(editor.WaitEnded());
    }
    DWORD count = 0, size = sizeof count;
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, kRecentKey, L"DocumentCount", RRF_RT_REG_DWORD, nullptr, &count, &size), 0);
    EXPECT_EQ(count, 2u);
    for (const auto& [value, name] : {std::pair{L"Document1", L"d1.bmp"}, {L"Document2", L"d0.bmp"}}) {
        wchar_t path[520] = {};
        size = sizeof path;
        RegGetValueW(HKEY_CURRENT_USER, kRecentKey, value, RRF_RT_ANY, nullptr, path, &size);
        EXPECT_EQ(std::wstring(path), (dir_.path() / name).wstring()) << value;
    }
}

TEST_F(EditorTest, SetupChangesTheZoomRuleAndKeepsItInTheDisplayStatus) {
    WriteBitmap(dir_ / "big.bmp", 3000, 2000);
    {
        Editor editor(dir_ / "big.bmp");
        ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }, 30000));
        EXPECT_LT(SendMessageW(editor.View(), 1698, 0, 0), 1000);  // default rule: larger pictures fit
        HWND setup = editor.Dialog(2110, L"動作環境の設定");
        ASSERT_NE(setup, nullptr);
        SendMessageW(GetDlgItem(setup, 1201), BM_CLICK, 0, 0);  // original size
        SendMessageW(GetDlgItem(setup, IDOK), BM_CLICK, 0, 0);
        ASSERT_TRUE(WaitFor([&] { return !IsWindow(setup); }));
        editor.Command(2001);
        ASSERT_TRUE(editor.WaitEnded());
    }
    DWORD options = 0, size = sizeof options;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, kSettingsKey, L"DisplayStatus", RRF_RT_REG_DWORD, nullptr, &options, &size), 0);
    EXPECT_EQ(options >> 16, 0u);
    Editor editor(dir_ / "big.bmp");
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }, 30000));
    EXPECT_EQ(SendMessageW(editor.View(), 1698, 0, 0), 1000);
}

}  // namespace
