#include "ImageTypes.h"

#include "PathNames.h"

#include <cwchar>
#include <string>

namespace lx {

namespace {

// The shell's classic path limit, which its extension rename keeps to.
constexpr size_t kClassicMaxPath = 260;

// Where the shell sees the extension of a path: the last dot of its last component, where
// a blank, like a separator, starts over; the terminating NUL when there is none. "/"
// separates as "\" does: a folder typed with slashes must not lend its dot to the file
// name, or a save would land beside the folder, over another file.
wchar_t* FindPathExtension(wchar_t* path) {
    wchar_t* dot = nullptr;
    wchar_t* p = path;
    for (; *p; ++p) {
        if (IsPathSeparator(*p) || *p == L' ') {
            dot = nullptr;
        } else if (*p == L'.') {
            dot = p;
        }
    }
    return dot ? dot : p;
}

}  // namespace

const SaveFormat kSaveFormats[] = {
    {kImageJpeg, L"JPEG", L"JPEG"},
    {kImageBmp, L"BMP", L"Windows Bitmap"},
    {kImageGif, L"GIF", L"CompuServe GIF"},
    {kImageTiff, L"TIFF", L"Tag Image File Format"},
    {kImageTga, L"TGA", L"Truevision Targa"},
    {kImagePcx, L"PCX", L"Zsoft PCX"},
    {kImageFpx, L"FPX", L"Flash Pix"},
    {kImagePng, L"PNG", L"Portable Network Graphics"},
    {kImagePnm, L"PNM", L"Portable aNy Map"},
    {kImageJpeg2000, L"JPEG2000", L"JPEG-2000 ISO/IEC 15444-1"},
    {kImageTableEnd, nullptr, nullptr},
};

// The save dialog's own extensions: PNM is offered as ".pnm" here although a save names it
// ".ppm", and Sun raster and SGI are offered although a save does not rename for them.
const SaveFilterType kSaveFilterTypes[] = {
    {kImageJpeg, L".jpg"}, {kImageBmp, L".bmp"}, {kImageGif, L".gif"},       {kImagePng, L".png"},
    {kImageTiff, L".tif"}, {kImageFpx, L".fpx"}, {kImageTga, L".tga"},       {kImageRas, L".ras"},
    {kImagePcx, L".pcx"},  {kImagePnm, L".pnm"}, {kImageJpeg2000, L".jp2"}, {kImageSgi, L".sgi"},
    {kImageTableEnd, nullptr},
};

const SaveFilterType* SaveFilterTypeAt(int filterIndex) {
    for (int i = 0; kSaveFilterTypes[i].id != kImageTableEnd; ++i) {
        if (i == filterIndex) return &kSaveFilterTypes[i];
    }
    return nullptr;
}

ImageType ImageTypeFromPath(const wchar_t* path) {
    if (path == nullptr) return kImageUnknown;
    const std::wstring extension = ExtensionOf(path);
    return extension.empty() ? kImageUnknown : ImageTypeFromExtension(std::wstring_view(extension).substr(1));
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
    const ImageFormat* format = FindImageFormat(target);
    if (format == nullptr || format->saveExtension == nullptr) return false;
    // The rename's own refusal of an over-long path does not make the save type invalid.
    if (path != nullptr && ImageTypeFromPath(path) != target) RenamePathExtension(path, format->saveExtension);
    return true;
}

}  // namespace lx
