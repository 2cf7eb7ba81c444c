// The photo editor as the host starts it (pxfRunW on a thread of its own) and what its tests
// drive it with: commands, the view's picture and selection, the save dialog, the settings.
#pragma once

#include <windows.h>
#include <shlwapi.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include <gtest/gtest.h>

#include "FrameOnThread.h"
#include "ImageCodecs.h"
#include "ModuleTest.h"
#include "PackedDib.h"
#include "TestFiles.h"

namespace lxtest {

using lx::PackedDib;

constexpr wchar_t kFrameClass[] = L"LXPHOTOEDIT_FRAME";
constexpr int kZoomViewId = 21;
constexpr UINT kGetSelection = 1705, kSetSelection = 1704, kGetImage = 1711, kSetZoom = 1716;
const std::wstring kCaption = L"フォト イメージ";
const std::wstring kEditorCaption = L"フォト レタッチ";
const wchar_t kSettingsRoot[] = L"Software\\Northcape\\Applets\\lxpicture";
const wchar_t kSettingsKey[] = L"Software\\Northcape\\Applets\\lxpicture\\MainEditor";
const wchar_t kRecentKey[] = L"Software\\Northcape\\Applets\\lxpicture\\Recent Document List";

// A picture whose every byte of pixels is `value` (an index for palette depths).
inline PackedDib Filled(int width, int height, int bits, int value) {
    PackedDib dib = PackedDib::Create(width, height, bits);
    for (int y = 0; y < height; ++y) std::memset(dib.row(y), value, dib.stride());
    return dib;
}
inline void WriteBitmap(const std::filesystem::path& path, int width, int height, int depth = 24, int grey = 128) {
    ASSERT_NE(lx::SaveBmpFile(path, Filled(width, height, depth, grey)), 0);
}

// A movable block holding `bytes`, as the clipboard and a drop hand them on.
inline HGLOBAL GlobalCopy(std::span<const uint8_t> bytes) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    return block;
}

// The clipboard holding `dib` as CF_DIB, or nothing when it is empty.
inline void PutOnClipboard(std::span<const uint8_t> dib) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    if (!dib.empty()) SetClipboardData(CF_DIB, GlobalCopy(dib));
    CloseClipboard();
}
inline void PutOnClipboard(const PackedDib& dib) { PutOnClipboard(dib.bytes()); }

// One editor started through pxfRunW with `line`; closed (if still open) at the end, saying
// No to a question about unsaved changes.
class Editor : public FrameOnThread {
public:
    explicit Editor(std::wstring line) : FrameOnThread("pxfRunW", kFrameClass, std::move(line)) {}
    explicit Editor(const std::filesystem::path& path) : Editor(L"\"" + path.wstring() + L"\"") {}

    bool HasImage() const { return SendMessageW(View(), kGetImage, 0, 0) != 0; }
    // Lets the frame's idle pass run (the zoom pane and the command states follow it).
    void Idle() {
        PostMessageW(frame(), WM_NULL, 0, 0);
        SendMessageW(frame(), WM_NULL, 0, 0);
        Sleep(50);
    }

    HWND View() const { return Child(kZoomViewId); }
    RECT Selection() const {
        RECT r{};
        SendMessageW(View(), kGetSelection, 0, reinterpret_cast<LPARAM>(&r));
        return r;
    }
    void Select(RECT r) { SendMessageW(View(), kSetSelection, 0, reinterpret_cast<LPARAM>(&r)); }

    // The save dialog, given `path` and confirmed with its first type (JPEG). The name box is
    // an edit control (1152) or the edit inside a combo box (1148).
    bool SaveDialog(const std::filesystem::path& path) {
        HWND dialog = nullptr, name = nullptr;
        auto nameBox = [&] {
            for (HWND child : Descendants(dialog))
                if (WindowClass(child) == L"Edit" && (GetDlgCtrlID(child) == 1152 || GetDlgCtrlID(child) == 1148))
                    return child;
            return HWND{};
        };
        if (!WaitFor([&] { return (dialog = OwnedDialog()) != nullptr && (name = nameBox()) != nullptr; }, 10000))
            return false;
        SetWindowTextW(name, path.wstring().c_str());
        SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
        return WaitFor([&] { return !IsWindow(dialog); }, 10000);
    }
    // Gives `command` and waits for the dialog with this caption; null when none came.
    HWND Dialog(int command, const wchar_t* caption) {
        Command(command);
        HWND dialog = nullptr;
        WaitFor([&] { return (dialog = FindWindowW(L"#32770", caption)) != nullptr && IsWindowVisible(dialog); }, 10000);
        return dialog;
    }
    // Nothing is asked for a while.
    bool Quiet(int ms = 500) {
        Sleep(ms);
        return OwnedDialog() == nullptr;
    }
};

// Editor tests start with no stored settings and open their pictures from a scratch folder.
class EditorFixture : public ::testing::Test {
protected:
    explicit EditorFixture(const char* folder) : dir_(folder) {}
    void SetUp() override {
        ASSERT_NE(Dll(), nullptr) << "cannot load " << LX_DLL_PATH;
        SHDeleteKeyW(HKEY_CURRENT_USER, kSettingsKey);
        SHDeleteKeyW(HKEY_CURRENT_USER, kRecentKey);
    }
    // `dib` saved as `name` and opened; the editor holds the picture on return.
    std::unique_ptr<Editor> Open(const PackedDib& dib, const char* name = "doc.bmp") {
        EXPECT_NE(lx::SaveBmpFile(dir_ / name, dib), 0);
        auto editor = std::make_unique<Editor>(dir_ / name);
        EXPECT_TRUE(WaitFor([&] { return editor->HasImage(); }, 30000)) << name;
        return editor;
    }
    ScratchDir dir_;
};

}  // namespace lxtest
