// CInformationView: the viewer's information pane (child 6), a two-column report of the file
// shown: name, folder, size and date of the file, the picture's size and depth, then the
// shooting information its Exif data carries, one heading row per group.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

// The header of a packed DIB block, read without copying the pixels; false when the block is
// null or too small.
bool ReadDibHeader(HGLOBAL image, BITMAPINFOHEADER& header);

class CInformationView {
public:
    bool Create(HWND parent, int id);
    HWND hwnd() const { return hwnd_; }

    // Fills the report for `path`; the image (a packed DIB block, may be null) only lends its
    // header for the size and depth.
    void Show(const std::wstring& path, HGLOBAL image);
    void Clear();
    int RowCount() const;
    std::wstring Cell(int row, int column) const;

private:
    void AddRow(const std::wstring& name, const std::wstring& value);
    HWND hwnd_ = nullptr;
};

}  // namespace lx
