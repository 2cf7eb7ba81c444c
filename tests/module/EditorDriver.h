// The photo editor as the host starts it (pxfRunW on a thread of its own) and what its tests
// drive it with: commands, the view's picture and selection, the save dialog, the settings.
#pragma once

#include <windows.h>

#include <cstring>
#include <filesystem>
#include <memory>
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
    // Nothing is asked for a while.
    bool Quiet(int ms = 500) {
        Sleep(ms);
        return OwnedDialog() == nullptr;
    }
};

}  // namespace lxtest
