// The text of an album sheet, piece by piece in the order it is written: the head up to the
// table's opening tag, the cells, the padding of an unfinished row, and the end with the
// navigation line between the sheets. Line ends are single LF characters. Nothing from the
// user or from file names is escaped for HTML: titles and names are written as they stand,
// except that links and image sources escape "%" and "#", which would break them as URLs.
#pragma once

#include <cstdint>
#include <string>

namespace lx {

// Everything before the first cell: head, style, title line and the table's opening tag.
// An empty title names the page "sheet"; `sheetIndex` counts from 0.
std::wstring SheetStartText(const std::wstring& title, int sheetIndex, bool tableBorder);

// One table cell. `link` is the link target as written (backslashes still in it) or empty
// for no link; `thumbnail` the thumbnail's file name, empty when there is none; `caption`
// the source's file name.
struct AlbumCell {
    int width = 0;
    int height = 0;
    uint32_t background = 0;  // a Windows colour: red in the low byte
    std::wstring link;
    std::wstring thumbnail;
    std::wstring altText;
    std::wstring caption;
};
std::wstring CellText(const AlbumCell& cell, bool linked);

// The empty cells that complete a row holding `cellsInRow` cells, and the row's end.
std::wstring RowPaddingText(int cellsInRow, int columns);

// "1/2ページ [ 1 2 ]" with links to the other sheets, and the previous and next links.
std::wstring NavigationText(int sheetIndex, int sheetCount);

// The table's end, the navigation line and the page's end.
std::wstring SheetEndText(int sheetIndex, int sheetCount);

// "sheet_N.html" with N counting from 1.
std::wstring SheetFileName(int sheetIndex);

}  // namespace lx
