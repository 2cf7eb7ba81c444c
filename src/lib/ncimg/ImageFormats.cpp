#include "ImageFormats.h"

#include "BmpReader.h"
#include "BmpWriter.h"
#include "GifWriter.h"
#include "JpegWriter.h"
#include "PcxReader.h"
#include "PcxWriter.h"
#include "PngWriter.h"
#include "PnmReader.h"
#include "PnmWriter.h"
#include "PsdReader.h"
#include "SgiReader.h"
#include "SgiWriter.h"
#include "SunReader.h"
#include "SunWriter.h"
#include "TgaReader.h"
#include "TgaWriter.h"
#include "TiffWriter.h"
#include "XbmReader.h"
#include "XpmReader.h"

namespace lx {
namespace {

using In = const ProbeInput&;

// Olympus and Panasonic raw files are TIFF structures with magic numbers of their own.
bool TiffStructure(In in) {
    return in.startsWith("II*\0") || in.startsWith("MM\0*") || in.startsWith("IIRO") || in.startsWith("IIRS") ||
           in.startsWith("IIU\0");
}

// Most raw kinds are TIFF structures that only their name tells apart.
bool TiffNamedRaw(In in, ImageType self) { return in.namedType == self && TiffStructure(in); }

constexpr ImageFormat kRows[] = {
    {kImageJpeg, "JPEG", L"jpg jpeg jpe jif", L".jpg", [](In in, ImageType) { return in.startsWith("\xff\xd8\xff"); },
     nullptr, nullptr, [](const PackedDib& dib) { return EncodeJpeg(dib, JpegSaveRecord{}); }},
    {kImageGif, "GIF", L"gif", L".gif", [](In in, ImageType) { return in.startsWith("GIF87a") || in.startsWith("GIF89a"); },
     nullptr, nullptr, EncodeGif},
    {kImagePng, "PNG", L"png xjg", L".png", [](In in, ImageType) { return in.startsWith("\x89PNG\r\n\x1a\n"); }, nullptr,
     nullptr, EncodePng},
    {kImagePsd, "Photoshop", L"psd", nullptr, [](In in, ImageType) { return in.startsWith("8BPS"); }, nullptr, ReadPsd,
     nullptr},
    {kImageRas, "Sun raster", L"ras", nullptr, [](In in, ImageType) { return in.startsWith("\x59\xa6\x6a\x95"); },
     nullptr, ReadSun, EncodeSun},
    {kImageCrw, "Canon raw", L"crw cr2", nullptr,
     [](In in, ImageType self) { return in.startsWith("II\x1a\0\0\0HEAPCCDR") || TiffNamedRaw(in, self); }},
    {kImageNef, "Nikon raw", L"nef", nullptr, TiffNamedRaw},
    {kImageRaf, "Fujifilm raw", L"raf", nullptr,
     [](In in, ImageType self) { return in.startsWith("FUJIFILMCCD-RAW") || TiffNamedRaw(in, self); }},
    {kImageMrw, "Minolta raw", L"mrw", nullptr,
     [](In in, ImageType self) { return in.startsWith("\0MRM") || TiffNamedRaw(in, self); }},
    {kImageX3f, "Sigma raw", L"x3f", nullptr,
     [](In in, ImageType self) { return in.startsWith("FOVb") || TiffNamedRaw(in, self); }},
    {kImagePef, "Pentax raw", L"pef", nullptr, TiffNamedRaw},
    {kImageSrf, "Sony SRF raw", L"srf sr2", nullptr, TiffNamedRaw},
    {kImageOrf, "Olympus raw", L"orf", nullptr, TiffNamedRaw},
    {kImageDng, "Digital negative", L"dng", nullptr, TiffNamedRaw},
    {kImageErf, "Epson raw", L"erf", nullptr, TiffNamedRaw},
    {kImageArw, "Sony ARW raw", L"arw", nullptr, TiffNamedRaw},
    {kImageRw2, "Panasonic raw", L"raw rw2", nullptr, TiffNamedRaw},
    {kImageMef, "Mamiya raw", L"mef", nullptr, TiffNamedRaw},
    {kImage3fr, "Hasselblad raw", L"3fr", nullptr, TiffNamedRaw},
    // A TIFF structure named like a raw file is that raw kind (the rows above).
    {kImageTiff, "TIFF", L"tif tiff", L".tif",
     [](In in, ImageType) {
         return (in.startsWith("II*\0") || in.startsWith("MM\0*")) && !IsCameraRawType(in.namedType);
     },
     nullptr, nullptr, EncodeTiff},
    {kImageBmp, "BMP", L"bmp dib rle", L".bmp", [](In in, ImageType) { return LooksLikeBmp(in.head); }, nullptr, ReadBmp,
     EncodeBmp},
    {kImageSgi, "SGI", L"sgi rgb", nullptr, [](In in, ImageType) { return LooksLikeSgi(in.head); }, nullptr, ReadSgi,
     EncodeSgi},
    {kImageIco, "Icon", L"ico", nullptr,
     [](In in, ImageType) { return in.startsWith("\0\0\1\0") && in.head.size() >= 6 && (in.head[4] | in.head[5]); }},
    {kImagePnm, "PNM", L"pnm pgm ppm", L".ppm", [](In in, ImageType) { return LooksLikePnm(in.head); }, nullptr, ReadPnm,
     EncodePnm},
    {kImagePcx, "PCX", L"pcx", L".pcx", [](In in, ImageType) { return LooksLikePcx(in.head); }, nullptr, ReadPcx,
     EncodePcx},
    {kImageXpm, "XPM", L"xpm", nullptr, [](In in, ImageType) { return LooksLikeXpm(in.head); }, nullptr, ReadXpm},
    {kImageXbm, "XBM", L"xbm", nullptr, [](In in, ImageType) { return LooksLikeXbm(in.head); }, nullptr, ReadXbm},
    {kImageTga, "Targa", L"tga", L".tga", [](In in, ImageType) { return LooksLikeTga(in.head) && HasTgaFooter(in.tail); },
     [](In in) { return LooksLikeTga(in.head); }, ReadTga, EncodeTga},
    // Known by name only.
    {kImageMag, "MAG", L"mag"},
    {kImageMki, "MKI", L"mki"},
    {kImageCam, "CAM", L"cam"},
    {kImageWmf, "Windows metafile", L"wmf"},
    {kImageEmf, "Enhanced metafile", L"emf"},
    {kImageTxr, "TXR", L"txr"},
    {kImageFpx, "FlashPix", L"fpx", L".fpx"},
    {kImageJpeg2000, "JPEG 2000", L"jp2", L".jp2"},
    {kImagePcd, "Photo CD", L"pcd"},
};

wchar_t AsciiLower(wchar_t c) { return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c; }

// Whether `extension` is one of the blank-separated lower-case words of `list`.
bool InList(const wchar_t* list, std::wstring_view extension) {
    if (extension.empty()) return false;
    for (const wchar_t* word = list; *word;) {
        size_t length = 0;
        while (word[length] && word[length] != L' ') ++length;
        if (length == extension.size()) {
            size_t i = 0;
            while (i < length && AsciiLower(extension[i]) == word[i]) ++i;
            if (i == length) return true;
        }
        word += length;
        while (*word == L' ') ++word;
    }
    return false;
}

}  // namespace

const std::span<const ImageFormat> kImageFormats(kRows);

const ImageFormat* FindImageFormat(ImageType type) {
    for (const ImageFormat& format : kImageFormats)
        if (format.type == type) return &format;
    return nullptr;
}

ImageType ImageTypeFromExtension(std::wstring_view extension) {
    for (const ImageFormat& format : kImageFormats)
        if (InList(format.extensions, extension)) return format.type;
    return kImageUnknown;
}

ImageType ImageTypeFromName(const std::filesystem::path& name) {
    // Works on the native characters: a wide name need not convert to narrow text, and every
    // extension of the table is ASCII.
    const auto native = name.extension().native();
    std::wstring extension;
    for (size_t i = native.empty() ? 0 : 1; i < native.size(); ++i) {
        const auto c = native[i];
        if (c == 0 || static_cast<uint32_t>(c) >= 128) return kImageUnknown;
        extension += static_cast<wchar_t>(c);
    }
    return ImageTypeFromExtension(extension);
}

}  // namespace lx
