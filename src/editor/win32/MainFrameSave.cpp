// Saving the document: Save, Save As with the checks before writing over a file, and the
// wallpaper.
#include <shlwapi.h>

#include <filesystem>

#include "DialogHelpers.h"
#include "DibGlobal.h"
#include "ExifReader.h"
#include "ImageCodecs.h"
#include "ImageTypes.h"
#include "MainFrame.h"
#include "ModuleResources.h"

namespace lx {

bool CMainFrame::Save() {
    if (path_.empty()) return SaveAs();
    if (!document_.Modified()) return true;
    if (!Write(ViewImage(), path_, fileType_)) return false;
    document_.ClearUndo();
    return true;
}

bool CMainFrame::SaveAs() {
    HGLOBAL image = ViewImage();
    if (!image) return false;
    wchar_t path[kPathChars] = {};
    lstrcpynW(path, path_.c_str(), kPathChars);
    int filter = 0;
    if (!ShowImageFileDialog(hwnd(), 4090, 4094, path, false, &filter)) return false;
    const SaveFilterType* chosen = SaveFilterTypeAt(filter);
    if (!chosen) return false;
    // The chosen type decides the content; the name follows it (".jpeg" stays, "x.png"
    // saved as JPEG becomes "x.jpg"). Types without a forced extension keep a typed one.
    if (!ForceSaveExtension(path, chosen->id) && ImageTypeFromPath(path) == kImageUnknown)
        RenamePathExtension(path, chosen->extension);
    if (PathFileExistsW(path) && !PathIsDirectoryW(path) && Ask(4087, path, MB_YESNO | MB_ICONQUESTION) != IDYES)
        return false;
    if (!Write(image, path, chosen->id)) return false;
    document_.ClearUndo();
    fileType_ = chosen->id;
    path_ = path;
    SetTitle(path_);
    return true;
}

bool CMainFrame::Write(HGLOBAL image, const std::wstring& path, int type) {
    if (!image) return false;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    bool madeWritable = false;
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
            Ask(4097, path, MB_OK | MB_ICONERROR);
            return false;
        }
        if (attributes & FILE_ATTRIBUTE_READONLY) {
            if (Ask(4098, path, MB_YESNO | MB_ICONQUESTION) != IDYES) return false;
            if (!SetFileAttributesW(path.c_str(), attributes & ~FILE_ATTRIBUTE_READONLY)) {
                ShowSaveFailure(path);
                return false;
            }
            madeWritable = true;
        }
        const bool refused =
            ((type == kImageJpeg || type == kImageTiff) && HasShootingInfo(std::filesystem::path(path)) &&
             Ask(4103, path, MB_YESNO | MB_ICONQUESTION) != IDYES) ||
            (type == kImagePsd && Ask(4089, path, MB_YESNO | MB_ICONQUESTION) != IDYES);
        if (refused) {
            if (madeWritable) SetFileAttributesW(path.c_str(), attributes);
            return false;
        }
    }
    HCURSOR previous = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    // The codecs write to a temporary file beside the target and rename it over the target
    // only when it is whole: a failed write leaves the old file as it was.
    std::optional<PackedDib> dib = DibFromGlobal(image);
    const bool written = dib && SaveImageByType(std::filesystem::path(path), *dib, type) != 0;
    SetCursor(previous);
    if (!written) {
        if (madeWritable) SetFileAttributesW(path.c_str(), attributes);
        ShowSaveFailure(path);
    }
    return written;
}

void CMainFrame::ShowSaveFailure(const std::wstring& path) { Ask(4107, path, MB_OK | MB_ICONERROR); }

// A bitmap file of the user's choosing, then made the desktop's wallpaper.
void CMainFrame::SaveAsWallpaper() {
    HGLOBAL image = ViewImage();
    if (!image) return;
    wchar_t path[kPathChars] = {};
    if (!path_.empty()) {
        lstrcpynW(path, path_.c_str(), kPathChars);
        RenamePathExtension(path, L".bmp");
    }
    if (!ShowImageFileDialog(hwnd(), 4090, 4091, path, false)) return;
    if (ImageTypeFromPath(path) != kImageBmp) RenamePathExtension(path, L".bmp");
    if (PathFileExistsW(path) && Ask(4087, path, MB_YESNO | MB_ICONQUESTION) != IDYES) return;
    if (!Write(image, path, kImageBmp)) return;
    SystemParametersInfoW(SPI_SETDESKWALLPAPER, 0, path, SPIF_UPDATEINIFILE | SPIF_SENDCHANGE);
}

}  // namespace lx
