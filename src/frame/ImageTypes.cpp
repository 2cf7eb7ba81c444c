#include "ImageTypes.h"

#include <cwchar>

namespace lx {

namespace {

struct ExtensionRow {
    const wchar_t* extension;  // lower case, without the dot
    ImageType type;
};

// "xjg" shares the PNG id on purpose: files of that name are PNG data to every tool.
constexpr ExtensionRow kExtensions[] = {
    {L"bmp", 1},  {L"dib", 1},  {L"rle", 1},  {L"jpg", 2},  {L"jpeg", 2}, {L"jpe", 2},  {L"jif", 2},
    {L"gif", 3},  {L"tif", 4},  {L"tiff", 4}, {L"tga", 5},  {L"pcx", 6},  {L"mag", 7},  {L"mki", 8},
    {L"ras", 9},  {L"png", 10}, {L"xjg", 10}, {L"psd", 11}, {L"cam", 13}, {L"sgi", 14}, {L"rgb", 14},
    {L"wmf", 15}, {L"emf", 16}, {L"pnm", 17}, {L"pgm", 17}, {L"ppm", 17}, {L"ico", 18}, {L"txr", 19},
    {L"xpm", 20}, {L"xbm", 21}, {L"fpx", 23}, {L"jp2", 24}, {L"pcd", 25}, {L"crw", 26}, {L"cr2", 26},
    {L"nef", 27}, {L"raf", 28}, {L"mrw", 29}, {L"x3f", 30}, {L"pef", 31}, {L"srf", 32}, {L"sr2", 32},
    {L"orf", 33}, {L"dng", 34}, {L"erf", 35}, {L"arw", 36}, {L"raw", 37}, {L"rw2", 37}, {L"mef", 38},
    {L"3fr", 39},
};

// The extension each save type writes. PNM is written as ".ppm" although the filter table
// offers ".pnm" for the same id: existing outputs carry that name, keep it.
constexpr struct {
    ImageType type;
    const wchar_t* extension;
} kForcedExtensions[] = {
    {1, L".bmp"}, {2, L".jpg"},  {3, L".gif"},  {4, L".tif"},  {5, L".tga"},
    {6, L".pcx"}, {10, L".png"}, {17, L".ppm"}, {23, L".fpx"}, {24, L".jp2"},
};

// The shell's classic path limit, which its extension rename keeps to.
constexpr size_t kClassicMaxPath = 260;

wchar_t AsciiLower(wchar_t c) { return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c; }

bool EqualsIgnoringAsciiCase(const wchar_t* text, const wchar_t* lowerCase) {
    for (; *text && *lowerCase; ++text, ++lowerCase) {
        if (AsciiLower(*text) != *lowerCase) return false;
    }
    return *text == *lowerCase;
}

// Where the shell sees the extension of a path: the last dot of its last component, where
// a blank, like a backslash, starts over; the terminating NUL when there is none.
wchar_t* FindPathExtension(wchar_t* path) {
    wchar_t* dot = nullptr;
    wchar_t* p = path;
    for (; *p; ++p) {
        if (*p == L'\\' || *p == L' ') {
            dot = nullptr;
        } else if (*p == L'.') {
            dot = p;
        }
    }
    return dot ? dot : p;
}

}  // namespace

const SaveFormat kSaveFormats[] = {
    {2, L"JPEG", L"JPEG"},
    {1, L"BMP", L"Windows Bitmap"},
    {3, L"GIF", L"CompuServe GIF"},
    {4, L"TIFF", L"Tag Image File Format"},
    {5, L"TGA", L"Truevision Targa"},
    {6, L"PCX", L"Zsoft PCX"},
    {23, L"FPX", L"Flash Pix"},
    {10, L"PNG", L"Portable Network Graphics"},
    {17, L"PNM", L"Portable aNy Map"},
    {24, L"JPEG2000", L"JPEG-2000 ISO/IEC 15444-1"},
    {kImageTableEnd, nullptr, nullptr},
};

const SaveFilterType kSaveFilterTypes[] = {
    {2, L".jpg"},  {1, L".bmp"},  {3, L".gif"}, {10, L".png"}, {4, L".tif"},  {23, L".fpx"},           {5, L".tga"},
    {9, L".ras"},  {6, L".pcx"},  {17, L".pnm"}, {24, L".jp2"}, {14, L".sgi"}, {kImageTableEnd, nullptr},
};

const SaveFilterType* SaveFilterTypeAt(int filterIndex) {
    for (int i = 0; kSaveFilterTypes[i].id != kImageTableEnd; ++i) {
        if (i == filterIndex) return &kSaveFilterTypes[i];
    }
    return nullptr;
}

ImageType ImageTypeFromPath(const wchar_t* path) {
    if (path == nullptr) return kImageUnknown;
    const wchar_t* dot = std::wcsrchr(path, L'.');
    if (dot == nullptr) return kImageUnknown;
    for (const ExtensionRow& row : kExtensions) {
        if (EqualsIgnoringAsciiCase(dot + 1, row.extension)) return row.type;
    }
    return kImageUnknown;
}

bool MayCarryExif(ImageType type) {
    return type == kImageJpeg || type == kImageTiff || (type >= kImageFirstRaw && type <= kImageLastRaw);
}

bool RenamePathExtension(wchar_t* path, const wchar_t* extension) {
    if (path == nullptr || extension == nullptr) return false;
    wchar_t* at = FindPathExtension(path);
    const size_t length = std::wcslen(extension);
    if (static_cast<size_t>(at - path) + length >= kClassicMaxPath) return false;
    std::wmemcpy(at, extension, length + 1);
    return true;
}

bool ForceSaveExtension(wchar_t* path, ImageType target) {
    for (const auto& row : kForcedExtensions) {
        if (row.type != target) continue;
        // The rename's own refusal of an over-long path does not make the save type invalid.
        if (path != nullptr && ImageTypeFromPath(path) != target) RenamePathExtension(path, row.extension);
        return true;
    }
    return false;
}

}  // namespace lx
