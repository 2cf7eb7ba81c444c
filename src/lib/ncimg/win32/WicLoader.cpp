// Decoding through the Windows Imaging Component: the formats Windows itself decodes (BMP,
// JPEG, PNG, GIF, TIFF, ICO) and whatever codecs are installed (camera raw, HEIF, ...).
// The first frame becomes a packed DIB: palette and grey images keep 1, 4 or 8 bits (two-bit
// ones become four, sixteen-bit grey becomes eight), images with transparency become 32-bit
// BGRA (24-bit when every pixel is opaque after all), the rest 24-bit. JPEG and TIFF
// pictures are turned upright by their Exif orientation.
//
// A frame is decoded only when its file is large enough to hold it at the format's best
// compression, and its rows go straight into the DIB: a small file that claims a huge
// canvas is refused before the decoder allocates anything.
#include "ImageLoadSystem.h"

#include "ImageLoadOrientation.h"
#include "ImageLoadSupport.h"

#include <objbase.h>
#include <wincodec.h>
#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace lx {
namespace {

template <class T>
class ComPtr {
public:
    ComPtr() = default;
    ~ComPtr() { if (p_) p_->Release(); }
    ComPtr(const ComPtr&) = delete;
    ComPtr& operator=(const ComPtr&) = delete;
    T** out() { return &p_; }
    T* operator->() const { return p_; }
    T* get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }

private:
    T* p_ = nullptr;
};

// COM for the duration of one load. A thread that already runs COM in another apartment
// model (RPC_E_CHANGED_MODE) can still use WIC's free-threaded objects; it is not ours to
// uninitialise then.
class ComScope {
public:
    ComScope() : hr_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComScope() { if (SUCCEEDED(hr_)) CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    bool usable() const { return SUCCEEDED(hr_) || hr_ == RPC_E_CHANGED_MODE; }

private:
    HRESULT hr_;
};

bool CreateFactory(ComPtr<IWICImagingFactory>& factory) {
    return SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      reinterpret_cast<void**>(factory.out())));
}

bool FormatHasAlpha(IWICImagingFactory* factory, const WICPixelFormatGUID& format) {
    ComPtr<IWICComponentInfo> info;
    if (FAILED(factory->CreateComponentInfo(format, info.out()))) return false;
    ComPtr<IWICPixelFormatInfo2> formatInfo;
    if (FAILED(info->QueryInterface(IID_IWICPixelFormatInfo2, reinterpret_cast<void**>(formatInfo.out())))) return false;
    BOOL transparency = FALSE;
    return SUCCEEDED(formatInfo->SupportsTransparency(&transparency)) && transparency;
}

UINT PixelFormatBits(IWICImagingFactory* factory, const WICPixelFormatGUID& format) {
    ComPtr<IWICComponentInfo> info;
    ComPtr<IWICPixelFormatInfo> formatInfo;
    UINT bits = 0;
    if (FAILED(factory->CreateComponentInfo(format, info.out())) ||
        FAILED(info->QueryInterface(IID_IWICPixelFormatInfo, reinterpret_cast<void**>(formatInfo.out()))) ||
        FAILED(formatInfo->GetBitsPerPixel(&bits)))
        return 0;
    return bits;
}

// The most pixels one byte of the container can stand for, at its best compression.
uint64_t MostPixelsPerByte(const GUID& container, UINT width, UINT bitsPerPixel) {
    if (container == GUID_ContainerFormatJpeg) return kJpegMostPixelsPerByte;
    // Deflate turns two bits into at most one 258-byte match.
    if (container == GUID_ContainerFormatPng) return 1032 * 8 / std::max(bitsPerPixel, 1u);
    // A 12-bit LZW code stands for at most 4096 pixels.
    if (container == GUID_ContainerFormatGif) return 4096 * 8 / 12;
    // CCITT group 4 codes a blank row of any width in one bit; narrow strips may be LZW.
    if (container == GUID_ContainerFormatTiff) return std::max<uint64_t>(uint64_t{8} * width, 4096 * 8 / 12);
    return 1024;  // as the library's own readers allow
}

// Whether `encodedBytes` of the container can describe the frame.
bool PlausibleForEncoding(const GUID& container, UINT width, UINT height, UINT bitsPerPixel, uint64_t encodedBytes) {
    return PlausibleForCompression(width, height, encodedBytes, MostPixelsPerByte(container, width, bitsPerPixel));
}

// Rows come from WIC top-down, one at a time, straight into the DIB's bottom-up rows.
bool CopyRowsInto(IWICBitmapSource* source, PackedDib& dib) {
    const UINT width = static_cast<UINT>(dib.width()), stride = static_cast<UINT>(dib.stride());
    for (int y = 0; y < dib.height(); ++y) {
        const WICRect rect{0, y, static_cast<INT>(width), 1};
        if (FAILED(source->CopyPixels(&rect, stride, stride, dib.row(y)))) return false;
    }
    return true;
}

// A new image of `bitCount` filled from `source`, which is already in the DIB's pixel layout.
std::optional<PackedDib> CopyRows(IWICBitmapSource* source, UINT width, UINT height, int bitCount) {
    PackedDib dib = NewImage(width, height, bitCount, SIZE_MAX);
    if (dib.empty() || !CopyRowsInto(source, dib)) return std::nullopt;
    return dib;
}

// A new image of `bitCount` whose rows `convert` makes from the source's rows of
// `sourceBits` per pixel, read one at a time.
template <class Convert>
std::optional<PackedDib> ConvertRows(IWICBitmapSource* source, UINT width, UINT height, int sourceBits, int bitCount,
                                     Convert convert) {
    PackedDib dib = NewImage(width, height, bitCount, SIZE_MAX);
    if (dib.empty()) return std::nullopt;
    const UINT rowBytes = static_cast<UINT>((static_cast<uint64_t>(width) * sourceBits + 7) / 8);
    std::vector<uint8_t> row(rowBytes);
    for (UINT y = 0; y < height; ++y) {
        const WICRect rect{0, static_cast<INT>(y), static_cast<INT>(width), 1};
        if (FAILED(source->CopyPixels(&rect, rowBytes, rowBytes, row.data()))) return std::nullopt;
        convert(row.data(), dib.row(static_cast<int>(y)));
    }
    return dib;
}

// DIBs have no two-bit depth: each two-bit index becomes a four-bit one.
std::optional<PackedDib> CopyTwoBitRowsAsFour(IWICBitmapSource* source, UINT width, UINT height) {
    return ConvertRows(source, width, height, 2, 4, [width](const uint8_t* from, uint8_t* to) {
        for (UINT x = 0; x < width; ++x) PutIndex(to, 4, static_cast<int>(x), (from[x >> 2] >> (6 - 2 * (x & 3))) & 3);
    });
}

bool CreateConverter(IWICImagingFactory* factory, IWICBitmapSource* frame, const WICPixelFormatGUID& to,
                     ComPtr<IWICFormatConverter>& converter) {
    return SUCCEEDED(factory->CreateFormatConverter(converter.out())) &&
           SUCCEEDED(converter->Initialize(frame, to, WICBitmapDitherTypeNone, nullptr, 0.0, WICBitmapPaletteTypeCustom));
}

std::optional<PackedDib> Converted(IWICImagingFactory* factory, IWICBitmapSource* frame, const WICPixelFormatGUID& to,
                                   UINT width, UINT height, int bitCount) {
    ComPtr<IWICFormatConverter> converter;
    if (!CreateConverter(factory, frame, to, converter)) return std::nullopt;
    return CopyRows(converter.get(), width, height, bitCount);
}

// Colour without transparency as 24-bit BGR. Not every converter offers 24 bits from every
// source (Wine's takes 16-bit colour samples only to 32-bit BGRA, and refuses only once
// the pixels are asked for); 32-bit BGRA is the form every converter knows, and its alpha
// is all opaque here, so each row keeps three bytes of every four.
std::optional<PackedDib> ConvertedToBgr(IWICImagingFactory* factory, IWICBitmapSource* frame, UINT width, UINT height) {
    if (auto dib = Converted(factory, frame, GUID_WICPixelFormat24bppBGR, width, height, 24)) return dib;
    ComPtr<IWICFormatConverter> converter;
    if (!CreateConverter(factory, frame, GUID_WICPixelFormat32bppBGRA, converter)) return std::nullopt;
    return ConvertRows(converter.get(), width, height, 32, 24, [width](const uint8_t* from, uint8_t* to) {
        for (UINT x = 0; x < width; ++x, from += 4, to += 3) std::memcpy(to, from, 3);
    });
}

// Grey keeps a grey palette: one, four and eight bits as they are, two bits as four,
// sixteen bits rounded to eight. Null for any other format.
std::optional<PackedDib> CopyGrey(IWICBitmapSource* frame, const WICPixelFormatGUID& format, UINT width, UINT height) {
    if (format == GUID_WICPixelFormatBlackWhite) return CopyRows(frame, width, height, 1);
    if (format == GUID_WICPixelFormat4bppGray) return CopyRows(frame, width, height, 4);
    if (format == GUID_WICPixelFormat8bppGray) return CopyRows(frame, width, height, 8);
    if (format == GUID_WICPixelFormat2bppGray) {
        auto dib = CopyTwoBitRowsAsFour(frame, width, height);
        if (!dib) return std::nullopt;
        for (int i = 0; i < 4; ++i) {
            const uint8_t level = static_cast<uint8_t>(i * 85);
            dib->palette()[i] = Rgbq{level, level, level, 0};
        }
        return dib;
    }
    if (format == GUID_WICPixelFormat16bppGray)
        return ConvertRows(frame, width, height, 16, 8, [width](const uint8_t* from, uint8_t* to) {
            for (UINT x = 0; x < width; ++x) to[x] = ScaleSample(ReadLe16(from + 2 * x), 65535);
        });
    return std::nullopt;
}

// A palette image keeps its indices and colours when no entry is transparent.
std::optional<PackedDib> CopyIndexed(IWICImagingFactory* factory, IWICBitmapFrameDecode* frame, int bits, UINT width,
                                     UINT height) {
    ComPtr<IWICPalette> palette;
    UINT count = 0;
    BOOL hasAlpha = FALSE;
    if (FAILED(factory->CreatePalette(palette.out())) || FAILED(frame->CopyPalette(palette.get())) ||
        FAILED(palette->GetColorCount(&count)) || count == 0 || FAILED(palette->HasAlpha(&hasAlpha)) || hasAlpha)
        return std::nullopt;
    std::vector<WICColor> colours(count);
    if (FAILED(palette->GetColors(count, colours.data(), &count))) return std::nullopt;
    auto dib = bits == 2 ? CopyTwoBitRowsAsFour(frame, width, height) : CopyRows(frame, width, height, bits);
    if (!dib) return std::nullopt;
    auto pal = dib->palette();
    for (size_t i = 0; i < pal.size(); ++i) {
        const WICColor c = i < count ? colours[i] : 0;
        pal[i] = Rgbq{static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8), static_cast<uint8_t>(c >> 16), 0};
    }
    return dib;
}

int IndexedBits(const WICPixelFormatGUID& format) {
    if (format == GUID_WICPixelFormat1bppIndexed) return 1;
    if (format == GUID_WICPixelFormat2bppIndexed) return 2;
    if (format == GUID_WICPixelFormat4bppIndexed) return 4;
    if (format == GUID_WICPixelFormat8bppIndexed) return 8;
    return 0;
}

// `encodedBytes` is the size of the file or memory block the decoder reads.
std::optional<PackedDib> DecodeFrame(IWICImagingFactory* factory, IWICBitmapDecoder* decoder, uint64_t encodedBytes) {
    ComPtr<IWICBitmapFrameDecode> frame;
    UINT width = 0, height = 0;
    WICPixelFormatGUID format{};
    GUID container{};
    if (FAILED(decoder->GetContainerFormat(&container)) || FAILED(decoder->GetFrame(0, frame.out())) ||
        FAILED(frame->GetSize(&width, &height)) || FAILED(frame->GetPixelFormat(&format)) ||
        !PlausibleForEncoding(container, width, height, PixelFormatBits(factory, format), encodedBytes))
        return std::nullopt;

    const int indexedBits = IndexedBits(format);
    if (indexedBits != 0)
        if (auto dib = CopyIndexed(factory, frame.get(), indexedBits, width, height)) return dib;
    // A palette with a transparent entry (GIF, PNG with tRNS) goes the 32-bit way below.
    if (auto dib = CopyGrey(frame.get(), format, width, height)) return dib;
    if (indexedBits != 0 || FormatHasAlpha(factory, format)) {
        auto dib = Converted(factory, frame.get(), GUID_WICPixelFormat32bppBGRA, width, height, 32);
        if (!dib) return std::nullopt;
        return DropOpaqueAlpha(std::move(*dib));
    }
    if (format == GUID_WICPixelFormat24bppBGR) return CopyRows(frame.get(), width, height, 24);
    return ConvertedToBgr(factory, frame.get(), width, height);
}

std::optional<PackedDib> DecodeStream(IWICImagingFactory* factory, std::span<const uint8_t> encoded) {
    if (encoded.empty() || encoded.size() > UINT_MAX) return std::nullopt;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapDecoder> decoder;
    if (FAILED(factory->CreateStream(stream.out())) ||
        FAILED(stream->InitializeFromMemory(const_cast<BYTE*>(encoded.data()), static_cast<DWORD>(encoded.size()))) ||
        FAILED(factory->CreateDecoderFromStream(stream.get(), nullptr, WICDecodeMetadataCacheOnDemand, decoder.out())))
        return std::nullopt;
    return DecodeFrame(factory, decoder.get(), encoded.size());
}

// The bytes the orientation tag may lie in: a JPEG keeps its Exif segment near the start,
// a TIFF may put its first directory anywhere.
std::vector<uint8_t> OrientationBytes(const std::filesystem::path& path, int type) {
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes;
    if (!in) return bytes;
    constexpr size_t kJpegHead = 1 << 20;
    if (type == kImageJpeg) {
        bytes.resize(kJpegHead);
        in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<size_t>(in.gcount()));
    } else {
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    return bytes;
}

}  // namespace

std::optional<PackedDib> LoadWithSystemCodec(const std::filesystem::path& path, int type) {
    ComScope com;
    ComPtr<IWICImagingFactory> factory;
    if (!com.usable() || !CreateFactory(factory)) return std::nullopt;
    ComPtr<IWICBitmapDecoder> decoder;
    std::optional<PackedDib> dib;
    std::error_code error;
    const uintmax_t fileBytes = std::filesystem::file_size(path, error);
    if (!error && SUCCEEDED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                               WICDecodeMetadataCacheOnDemand, decoder.out())))
        dib = DecodeFrame(factory.get(), decoder.get(), fileBytes);
    if (dib && (type == kImageJpeg || type == kImageTiff)) {
        const int orientation = ReadExifOrientation(OrientationBytes(path, type));
        if (!OrientUpright(*dib, orientation)) return std::nullopt;
    }
    return dib;
}

std::optional<PackedDib> DecodeWithSystemCodec(std::span<const uint8_t> encoded, int type) {
    ComScope com;
    ComPtr<IWICImagingFactory> factory;
    if (!com.usable() || !CreateFactory(factory)) return std::nullopt;
    auto dib = DecodeStream(factory.get(), encoded);
    if (dib && (type == kImageJpeg || type == kImageTiff) && !OrientUpright(*dib, ReadExifOrientation(encoded))) return std::nullopt;
    return dib;
}

}  // namespace lx
