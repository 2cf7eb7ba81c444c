// The editor's image operations and paste through the real editor: pxfRunW on a thread of
// its own, the real dialogs driven through their controls, the real clipboard and registry,
// the pictures read back from the view.
#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "../lib/nccore/win32/DialogDriver.h"
#include "DibGlobal.h"
#include "EditorDriver.h"
#include "Painted.h"

using namespace lxtest;
using lx::PackedDib;

namespace {

const wchar_t kEditKey[] = L"Software\\Northcape\\Applets\\lxpicture\\Edit";

// Control ids of the dialogs.
constexpr int kPasteMode = 1231, kPasteOpacity = 1232, kPasteByHand = 1242, kPasteAnchor = 1243, kPasteOffsetX = 1244;
constexpr int kZoomWidth = 1252, kZoomHeight = 1253;
constexpr int kResizeHeight = 1263;
constexpr int kQuantizeMethod = 1271, kQuantizeCount = 1272;

// The picture the view shows, copied.
PackedDib Shown(const Editor& editor) {
    auto block = reinterpret_cast<HGLOBAL>(SendMessageW(editor.View(), kGetImage, 0, 0));
    std::optional<PackedDib> dib = block ? lx::DibFromGlobal(block) : std::nullopt;
    return dib ? *dib : PackedDib{};
}
uint32_t ShownPixel(const Editor& editor, int x, int y) { return Shown(editor).pixel(x, y) & 0xFFFFFF; }

bool Press(HWND dialog, int id) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    return WaitFor([&] { return !IsWindow(dialog); }, 10000);
}

// OK refused: the dialog stays, the focus on control `id` (or inside it, for a combo box).
// Sent, so that the dialog has judged its fields when this looks.
bool Refused(HWND dialog, int id) {
    HWND control = GetDlgItem(dialog, id), ok = GetDlgItem(dialog, IDOK);
    SendMessageTimeoutW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(ok), SMTO_NORMAL, 10000, nullptr);
    return WaitFor([&] {
        HWND focus = FocusOf(dialog);
        return IsWindowVisible(dialog) && (focus == control || GetParent(focus) == control);
    }, 5000);
}

std::vector<uint8_t> StoredPaste() {
    std::vector<uint8_t> value(64);
    DWORD size = static_cast<DWORD>(value.size());
    if (RegGetValueW(HKEY_CURRENT_USER, kEditKey, L"Paste", RRF_RT_ANY, nullptr, value.data(), &size) != 0) return {};
    value.resize(size);
    return value;
}
int32_t Field(const std::vector<uint8_t>& record, int offset) {
    int32_t v = 0;
    std::memcpy(&v, record.data() + offset, 4);
    return v;
}

class EditorImageTest : public EditorFixture {
protected:
    EditorImageTest() : EditorFixture("editor-image") {}
    void SetUp() override {
        EditorFixture::SetUp();
        SHDeleteKeyW(HKEY_CURRENT_USER, kEditKey);
    }
};

TEST_F(EditorImageTest, PastingIntoAnEmptyEditorMakesTheDocumentAtTwentyFourBits) {
    PutOnClipboard(Filled(30, 20, 32, 0x40));
    Editor editor{std::wstring(L"")};
    ASSERT_TRUE(editor.frame());
    editor.Idle();
    editor.Command(2032);
    ASSERT_TRUE(WaitFor([&] { return editor.HasImage(); }));
    EXPECT_EQ(editor.StatusText(4), L"30 x 20");
    EXPECT_EQ(editor.StatusText(5), L"24bpp");
    EXPECT_TRUE(editor.Quiet(0));  // no dialog for the first picture
    EXPECT_FALSE(editor.ToolEnabled(2036));
    EXPECT_EQ(ShownPixel(editor, 3, 3), 0x404040u);
}

// A device-dependent bitmap alone is taken too; a block no reader takes (7 bits per pixel)
// changes nothing.
TEST_F(EditorImageTest, ABitmapOnTheClipboardIsPastedAndAMalformedOneIsNot) {
    PackedDib bad = Filled(4, 4, 24, 0);
    std::vector<uint8_t> bytes(bad.bytes().begin(), bad.bytes().end());
    bytes[14] = 7;  // biBitCount
    PutOnClipboard(bytes);
    Editor editor{std::wstring(L"")};
    ASSERT_TRUE(editor.frame());
    editor.CommandNow(2032);
    EXPECT_FALSE(editor.HasImage());

    const std::vector<uint32_t> pixels(8 * 6, 0x00336699);  // 32-bit rows, top-down
    HBITMAP bitmap = CreateBitmap(8, 6, 1, 32, pixels.data());
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    SetClipboardData(CF_BITMAP, bitmap);
    CloseClipboard();
    editor.CommandNow(2032);
    ASSERT_TRUE(editor.HasImage());
    EXPECT_EQ(editor.StatusText(4), L"8 x 6");
    EXPECT_EQ(ShownPixel(editor, 7, 5), 0x336699u);
}

// The list hands on codes: row 5 is "明度" (6), row 16 "減算" (18). The anchor's centre cell
// places a 10 x 10 picture at (15, 10) of a 40 x 30 one.
TEST_F(EditorImageTest, TheModeListStoresCodesAndTheAnchorPlacesThePicture) {
    auto editor = Open(Filled(40, 30, 24, 128));
    PutOnClipboard(Filled(10, 10, 24, 255));
    for (const auto& [row, code, centre] : {std::tuple{5, 6, 0xFFFFFFu}, {16, 18, 0x000000u}}) {
        HWND dialog = editor->Dialog(2032, L"貼り付け");
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(SendDlgItemMessageW(dialog, kPasteMode, CB_GETCOUNT, 0, 0), 17);
        SendDlgItemMessageW(dialog, kPasteMode, CB_SETCURSEL, row, 0);
        HWND anchor = GetDlgItem(dialog, kPasteAnchor);
        RECT r{};
        GetClientRect(anchor, &r);
        PostMessageW(anchor, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(r.right / 2, r.bottom / 2));
        Sleep(100);
        ASSERT_TRUE(Press(dialog, IDOK));
        const auto stored = StoredPaste();
        ASSERT_EQ(stored.size(), 40u);
        EXPECT_EQ(Field(stored, 0), code);
        EXPECT_EQ(Field(stored, 28), 4);  // the centre cell
        ASSERT_TRUE(WaitFor([&] { return ShownPixel(*editor, 15, 10) == centre; })) << code;
        EXPECT_EQ(ShownPixel(*editor, 24, 19), centre);
        EXPECT_EQ(ShownPixel(*editor, 14, 10), 0x808080u);
        EXPECT_EQ(ShownPixel(*editor, 25, 20), 0x808080u);
    }
    editor->CommandNow(2036);
    EXPECT_TRUE(editor->ToolEnabled(2036));  // two pastes, two steps
}

// One per cent opacity lays alpha 2: 255 x 2 / 255, not 2.55 rounded up.
TEST_F(EditorImageTest, ABadOffsetIsRefusedWithTheFocusOnItAndAGoodOneMovesTheFaintPicture) {
    auto editor = Open(Filled(20, 20, 24, 0));
    PutOnClipboard(Filled(5, 5, 24, 255));
    HWND dialog = editor->Dialog(2032, L"貼り付け");
    ASSERT_NE(dialog, nullptr);
    for (const wchar_t* bad : {L"abc", L"100001", L"", L"3x"}) {
        SetDlgItemTextW(dialog, kPasteOffsetX, bad);
        EXPECT_TRUE(Refused(dialog, kPasteOffsetX)) << bad;
    }
    SetDlgItemTextW(dialog, kPasteOffsetX, L"-3");
    SendDlgItemMessageW(dialog, kPasteOpacity, TBM_SETPOS, TRUE, 1);
    ASSERT_TRUE(Press(dialog, IDOK));
    ASSERT_TRUE(WaitFor([&] { return editor->ToolEnabled(2036); }));
    EXPECT_EQ(ShownPixel(*editor, 1, 4), 0x020202u);
    EXPECT_EQ(ShownPixel(*editor, 2, 0), 0u);
    EXPECT_EQ(ShownPixel(*editor, 1, 5), 0u);
    EXPECT_EQ(Field(StoredPaste(), 32), -3);
}

// By hand: the picture floats over the view; Esc gives up, a drag and Enter place it.
TEST_F(EditorImageTest, PlacingByHandDragsTheFloatingPictureAndEscGivesUp) {
    auto editor = Open(Filled(40, 30, 24, 128));
    PutOnClipboard(Filled(6, 6, 24, 0));
    for (const bool accept : {false, true}) {
        HWND dialog = editor->Dialog(2032, L"貼り付け");
        ASSERT_NE(dialog, nullptr);
        SendMessageW(GetDlgItem(dialog, kPasteByHand), BM_CLICK, 0, 0);
        ASSERT_TRUE(Press(dialog, IDOK));
        Sleep(300);  // the view's own loop takes over
        HWND view = editor->View();
        if (accept) {
            PostMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 50));
            PostMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 55));
            PostMessageW(view, WM_LBUTTONUP, 0, MAKELPARAM(60, 55));
        }
        PostMessageW(view, WM_KEYDOWN, accept ? VK_RETURN : VK_ESCAPE, 0);
        Sleep(300);
        EXPECT_EQ(editor->ToolEnabled(2036), accept);
        EXPECT_TRUE(editor->HasImage());
    }
    ASSERT_TRUE(WaitFor([&] { return ShownPixel(*editor, 10, 5) == 0u; }));
    EXPECT_EQ(ShownPixel(*editor, 15, 10), 0u);
    EXPECT_EQ(ShownPixel(*editor, 9, 5), 0x808080u);
    EXPECT_EQ(ShownPixel(*editor, 16, 11), 0x808080u);
}

TEST_F(EditorImageTest, ImageSizeToTheSameSizeIsNoStepAndABadWidthIsRefused) {
    auto editor = Open(Filled(40, 30, 24, 128));
    HWND dialog = editor->Dialog(2071, L"イメージサイズ");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(Press(dialog, IDOK));
    EXPECT_TRUE(editor->Quiet());
    EXPECT_FALSE(editor->ToolEnabled(2036));

    dialog = editor->Dialog(2071, L"イメージサイズ");
    ASSERT_NE(dialog, nullptr);
    SetDlgItemTextW(dialog, kZoomWidth, L"0");
    EXPECT_TRUE(Refused(dialog, kZoomWidth));
    SetDlgItemTextW(dialog, kZoomWidth, L"20");  // the ratio is kept: the height follows
    EXPECT_EQ(GetDlgItemInt(dialog, kZoomHeight, nullptr, FALSE), 15u);
    ASSERT_TRUE(Press(dialog, IDOK));
    ASSERT_TRUE(WaitFor([&] { return editor->StatusText(4) == L"20 x 15"; }));
    EXPECT_TRUE(editor->ToolEnabled(2036));
}

TEST_F(EditorImageTest, ACanvasOnlyLowerStillAsksAndNoKeepsThePicture) {
    auto editor = Open(Filled(40, 30, 24, 128));
    for (const int answer : {IDNO, IDYES}) {
        HWND dialog = editor->Dialog(2073, L"カンバスサイズ");
        ASSERT_NE(dialog, nullptr);
        SetDlgItemInt(dialog, kResizeHeight, 20, FALSE);
        ASSERT_TRUE(Press(dialog, IDOK));
        EXPECT_NE(editor->Answer(answer).find(L"画像の一部が切り取られますがよろしいですか？"), std::wstring::npos);
        EXPECT_TRUE(WaitFor([&] { return editor->StatusText(4) == (answer == IDYES ? L"40 x 20" : L"40 x 30"); }));
        EXPECT_EQ(editor->ToolEnabled(2036), answer == IDYES);
    }
}

TEST_F(EditorImageTest, RotatingLeftThenRightRestoresThePictureInTwoSteps) {
    auto editor = Open(Painted(7, 5, [](int x, int y) { return static_cast<uint32_t>(x * 0x0b2137 + y * 0x250b05); }));
    const PackedDib before = Shown(*editor);
    editor->CommandNow(2081);
    EXPECT_EQ(editor->StatusText(4), L"5 x 7");
    editor->CommandNow(2082);
    EXPECT_TRUE(Shown(*editor).bytes() == before.bytes());
    editor->CommandNow(2036);
    EXPECT_TRUE(editor->ToolEnabled(2036));
    editor->CommandNow(2036);
    EXPECT_FALSE(editor->ToolEnabled(2036));
}

TEST_F(EditorImageTest, ReducingTo256NearestColoursGivesEightBitsAndTooManyIsRefused) {
    // 200 greys: more than 16, so the reduced picture takes 8 bits, and no more than 256, so
    // nearest colours keep every one.
    auto editor = Open(Painted(20, 10, [](int x, int y) { return 0x010101u * (y * 20 + x); }));
    HWND dialog = editor->Dialog(2053, L"減色");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(SendDlgItemMessageW(dialog, kQuantizeCount, CB_GETCOUNT, 0, 0), 8);
    SendDlgItemMessageW(dialog, kQuantizeMethod, CB_SETCURSEL, 0, 0);
    SetDlgItemTextW(dialog, kQuantizeCount, L"300");
    EXPECT_TRUE(Refused(dialog, kQuantizeCount));
    SetDlgItemTextW(dialog, kQuantizeCount, L"256");
    ASSERT_TRUE(Press(dialog, IDOK));
    ASSERT_TRUE(WaitFor([&] { return editor->StatusText(5) == L"8bpp"; }));
    EXPECT_EQ(ShownPixel(*editor, 4, 3), 0x404040u);  // grey 64
}

TEST_F(EditorImageTest, CountingColoursTellsTheNumber) {
    PackedDib two = Filled(10, 10, 24, 0);
    std::memset(two.row(3), 0xFF, 6);
    auto editor = Open(two);
    editor->Command(2055);
    EXPECT_NE(editor->Answer(IDOK).find(L"この画像で使用している色数は 2 色です。"), std::wstring::npos);
}

TEST_F(EditorImageTest, MirrorWorksWithinTheSelectionAndKeepsIt) {
    auto editor = Open(Painted(20, 4, [](int x, int) { return 0x010101u * (x * 10); }));
    editor->Select({2, 0, 8, 4});
    editor->CommandNow(2083);
    const RECT kept = editor->Selection();
    EXPECT_EQ(kept.left, 2);
    EXPECT_EQ(kept.right, 8);
    EXPECT_EQ(ShownPixel(*editor, 2, 1), 0x464646u);  // was column 7
    EXPECT_EQ(ShownPixel(*editor, 7, 1), 0x141414u);  // was column 2
    EXPECT_EQ(ShownPixel(*editor, 9, 1), 0x5A5A5Au);  // outside: unchanged
    EXPECT_EQ(ShownPixel(*editor, 1, 1), 0x0A0A0Au);
}

// Select by size: a zero height is refused with the focus on it; a good size is centred.
TEST_F(EditorImageTest, SelectBySizeRefusesAZeroSideAndCentresTheSelection) {
    auto editor = Open(Filled(40, 30, 24, 128));
    HWND dialog = editor->Dialog(2035, L"指定サイズで選択");
    ASSERT_NE(dialog, nullptr);
    SetDlgItemInt(dialog, 1001, 10, FALSE);
    SetDlgItemInt(dialog, 1002, 0, FALSE);
    EXPECT_TRUE(Refused(dialog, 1002));
    SetDlgItemInt(dialog, 1002, 6, FALSE);
    ASSERT_TRUE(Press(dialog, IDOK));
    const RECT selection = editor->Selection();
    EXPECT_EQ(selection.left, 15);
    EXPECT_EQ(selection.top, 12);
    EXPECT_EQ(selection.right, 25);
    EXPECT_EQ(selection.bottom, 18);
    EXPECT_FALSE(editor->ToolEnabled(2036));  // a selection is no step
}

// The colour table editor shows the entries of a palette picture; closing it without a
// change makes no step.
TEST_F(EditorImageTest, TheColourTableEditorShowsTheFirstEntryAndAnUnchangedTableIsNoStep) {
    PackedDib palette = Filled(8, 8, 8, 0);
    palette.palette()[0] = lx::Rgbq{30, 20, 10, 0};
    auto editor = Open(palette);
    for (const int button : {IDOK, IDCANCEL}) {
        HWND dialog = editor->Dialog(2054, L"カラーテーブルの編集");
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(WindowText(GetDlgItem(dialog, 1283)), L"番号 0\nR 10\nG 20\nB 30");
        ASSERT_TRUE(Press(dialog, button));
        EXPECT_FALSE(editor->ToolEnabled(2036));
    }
}

}  // namespace
