#include "AlbumPageText.h"

namespace lx {

namespace {

std::wstring Number(int value) { return std::to_wstring(value); }

std::wstring HexByte(uint32_t value) {
    static const wchar_t kDigits[] = L"0123456789ABCDEF";
    return {kDigits[(value >> 4) & 15], kDigits[value & 15]};
}

std::wstring SheetLink(int sheetIndex) { return L"<a href=\"" + SheetFileName(sheetIndex) + L"\">"; }

// A file name inside src or href: a browser would take "#" as the start of a fragment and
// "%41" as an escaped "A", so both signs are escaped; everything else stands as it is.
std::wstring UrlText(const std::wstring& path) {
    std::wstring url;
    for (wchar_t c : path) {
        if (c == L'%') url += L"%25";
        else if (c == L'#') url += L"%23";
        else url += c == L'\\' ? L'/' : c;
    }
    return url;
}

}  // namespace

std::wstring SheetFileName(int sheetIndex) { return L"sheet_" + Number(sheetIndex + 1) + L".html"; }

std::wstring SheetStartText(const std::wstring& title, int sheetIndex, bool tableBorder) {
    std::wstring text =
        L"<head>\n"
        L"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=shift_jis\">\n"
        L"<meta http-equiv=\"Content-Language\" content=\"ja\">\n"
        L"<meta name=\"GENERATOR\" content=\"Northcape Web Album\"><title>";
    text += title.empty() ? L"sheet" : title;
    text += L"[" + Number(sheetIndex) + L"]</title>\n";
    text +=
        L"<style type=\"text/css\">\n<!--\n"
        L"a { text-decoration:none; }\n"
        L"a:link { color:#003399; text-decoration:none; }\n"
        L"a:visited {color:#003399; text-decoration:none; }\n"
        L"a:hover { color:#ffffff; background-color:#003399; text-decoration:none; }\n"
        L"body { font: , , ; font-size: 10pt; }\n"
        L"td { font: , , ; font-size: 10pt; vertical-align: middle;\n}\n"
        L"//-->\n</style>\n"
        L"</head>\n"
        L"<body><center>\n";
    if (!title.empty()) text += L"<p>" + title + L"</p>\n";
    text += L"<table border=" + Number(tableBorder ? 1 : 0) + L" cellpadding=2>\n";
    return text;
}

std::wstring CellText(const AlbumCell& cell, bool linked) {
    std::wstring text = L"<td align=center width=" + Number(cell.width) + L" height=" + Number(cell.height) + L" ";
    text += L"bgcolor=#" + HexByte(cell.background) + HexByte(cell.background >> 8) + HexByte(cell.background >> 16) +
            L">";
    if (linked) text += L"<a href=\"" + UrlText(cell.link) + L"\">";
    // A file that nothing could decode has no thumbnail: its cell shows the name alone.
    if (!cell.thumbnail.empty())
        text += L"<img border=0 src=\"" + UrlText(cell.thumbnail) + L"\" alt=\"" + cell.altText + L"\"><br>";
    text += cell.caption;
    if (linked) text += L"</a>";
    text += L"</td>\n";
    return text;
}

std::wstring RowPaddingText(int cellsInRow, int columns) {
    std::wstring text;
    for (int i = cellsInRow; i < columns; ++i) text += L"<td></td>\n";
    return text + L"</tr>\n";
}

std::wstring NavigationText(int sheetIndex, int sheetCount) {
    std::wstring text = L"<p><br></p><table><tr><td>" + Number(sheetIndex + 1) + L"/" + Number(sheetCount) +
                        L"ページ&nbsp;[&nbsp;</td>";
    for (int k = 0; k < sheetCount; ++k) {
        const bool current = k == sheetIndex;
        text += L"<td>";
        text += current ? L"<b>" : SheetLink(k);
        text += L"&nbsp;" + Number(k + 1) + L"&nbsp;";
        text += current ? L"</b>" : L"</a>";
        text += L"</td>";
    }
    text += L"<td>&nbsp;]&nbsp;</td>";
    if (sheetCount > 1) {
        if (sheetIndex > 0) text += L"<td>" + SheetLink(sheetIndex - 1) + L"≪前へ</a></td>";
        // The ">" after "≫" belongs to the label as the album has always written it.
        if (sheetIndex < sheetCount - 1) text += L"<td>" + SheetLink(sheetIndex + 1) + L"次へ≫></a></td>";
    }
    return text + L"</tr></table>\n";
}

std::wstring SheetEndText(int sheetIndex, int sheetCount) {
    return L"</table>\n" + NavigationText(sheetIndex, sheetCount) + L"</center></body></html>\n";
}

}  // namespace lx
