// The one vocabulary of image file types that every tool shares.
//
// A file's type is decided by its extension alone (the text after the last "." of the path,
// without regard to ASCII case). Save dialogs and the conversion dialog list the types they
// can write from the two tables below, each ended by a row whose id is -1.
// Paths are wide strings; functions that change a path work in place on a buffer of
// kPathChars characters.
#pragma once

#include "CommandLine.h"  // kPathChars, the size of every path buffer

#include <cstddef>
#include <cstdint>

namespace lx {

using ImageType = int32_t;

enum : ImageType {
    kImageUnknown = 0,
    kImageBmp = 1,
    kImageJpeg = 2,
    kImageGif = 3,
    kImageTiff = 4,
    kImageTga = 5,
    kImagePcx = 6,
    kImageMag = 7,
    kImageMki = 8,
    kImageRas = 9,
    kImagePng = 10,
    kImagePsd = 11,
    kImageCam = 13,
    kImageSgi = 14,
    kImageWmf = 15,
    kImageEmf = 16,
    kImagePnm = 17,
    kImageIco = 18,
    kImageTxr = 19,
    kImageXpm = 20,
    kImageXbm = 21,
    kImageFpx = 23,
    kImageJpeg2000 = 24,
    kImagePcd = 25,
    kImageFirstRaw = 26,  // crw, cr2
    kImageLastRaw = 39,   // 3fr
    kImageTableEnd = -1,
};

// The type of a path by its extension; 0 for a null path, no dot or an unknown extension.
ImageType ImageTypeFromPath(const wchar_t* path);

// True for the types whose files may hold Exif data: JPEG, TIFF and the camera raw kinds.
bool MayCarryExif(ImageType type);

// Gives `path` (a buffer of kPathChars) the extension that saving as `target` writes. A path
// whose type already is `target` keeps its own spelling (.jpeg stays, .dib stays). Returns
// false, leaving the path, for a target this module cannot name an extension for.
bool ForceSaveExtension(wchar_t* path, ImageType target);

// Replaces the extension of the last path component (or appends one), the way the shell's
// PathRenameExtensionW does, including its limit: a result that would not fit in a classic
// 260-character path is refused and the path is left as it was.
bool RenamePathExtension(wchar_t* path, const wchar_t* extension);

// The formats the conversion dialog offers, in display order.
struct SaveFormat {
    ImageType id;
    const wchar_t* shortName;
    const wchar_t* longName;
};
extern const SaveFormat kSaveFormats[];

// One row per entry of the "save as any format" filter list, same order: the zero-based filter
// index a save dialog returns indexes this table.
struct SaveFilterType {
    ImageType id;
    const wchar_t* extension;
};
extern const SaveFilterType kSaveFilterTypes[];

// The row of kSaveFilterTypes at a filter index, or null when the index is out of the table.
const SaveFilterType* SaveFilterTypeAt(int filterIndex);

}  // namespace lx
