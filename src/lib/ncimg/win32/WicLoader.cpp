// Decoding through the Windows Imaging Component: the formats Windows itself decodes (BMP,
// JPEG, PNG, GIF, TIFF, ICO) and whatever codecs are installed (camera raw, HEIF, ...).
// The first frame becomes a packed DIB: palette and grey images keep 1, 4 or 8 bits (two-bit
// palettes become four), images with transparency become 32-bit BGRA (24-bit when every
// pixel is opaque after all), the rest 24-bit. JPEG and TIFF pictures are turned upright by
// their Exif orientation.
#include "ImageLoadSystem.h"

#include "ImageLoadOrientation.h"
#include "ImageLoadSupport.h"

#include <objbase.h>
#include <wincodec.h>
#include <windows.h>

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

// Copies `source` (already in the DIB's pixel layout) into a new image, turning WIC's
// top-down rows into the DIB's bottom-up order.
std::optional<PackedDib> CopyRows(IWICBitmapSource* source, UINT width, UINT height, int bitCount) {
    PackedDib dib = NewImage(width, height, bitCount, SIZE_MAX);
    if (dib.empty()) return std::nullopt;
    const UINT stride = static_cast<UINT>(dib.stride());
    const size_t total = static_cast<size_t>(stride) * height;
    if (total > UINT_MAX) return std::nullopt;
    std::vector<uint8_t> topDown(total);
    if (FAILED(source->CopyPixels(nullptr, stride, static_cast<UINT>(total), topDown.data()))) return std::nullopt;
    for (UINT y = 0; y < height; ++y) std::memcpy(dib.row(static_cast<int>(y)), topDown.data() + static_cast<size_t>(y) * stride, stride);
    return dib;
}

// DIBs have no two-bit depth: each two-bit index becomes a four-bit one.
std::optional<PackedDib> CopyTwoBitRowsAsFour(IWICBitmapSource* source, UINT width, UINT height) {
    PackedDib dib = NewImage(width, height, 4, SIZE_MAX);
    if (dib.empty()) return std::nullopt;
    const size_t stride = (static_cast<size_t>(width) * 2 + 31) / 32 * 4;
    const size_t total = stride * height;
    if (total > UINT_MAX) return std::nullopt;
    std::vector<uint8_t> topDown(total);
    if (FAILED(source->CopyPixels(nullptr, static_cast<UINT>(stride), static_cast<UINT>(total), topDown.data())))
        return std::nullopt;
    for (UINT y = 0; y < height; ++y) {
        const uint8_t* from = topDown.data() + y * stride;
        uint8_t* to = dib.row(static_cast<int>(y));
        for (UINT x = 0; x < width; ++x) PutIndex(to, 4, static_cast<int>(x), (from[x >> 2] >> (6 - 2 * (x & 3))) & 3);
    }
    return dib;
}

std::optional<PackedDib> Converted(IWICImagingFactory* factory, IWICBitmapSource* frame, const WICPixelFormatGUID& to,
                                   UINT width, UINT height, int bitCount) {
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(factory->CreateFormatConverter(converter.out())) ||
        FAILED(converter->Initialize(frame, to, WICBitmapDitherTypeNone, nullptr, 0.0, WICBitmapPaletteTypeCustom)))
        return std::nullopt;
    return CopyRows(converter.get(), width, height, bitCount);
}

// Colour without transparency as 24-bit BGR. Not every converter offers 24 bits from every
// source (Wine's takes 16-bit samples, grey below 8 bits and two-bit palettes only to
// 32-bit BGRA, and refuses only once the pixels are asked for); 32-bit BGRA is the form
// every converter knows, and its alpha is all opaque here.
std::optional<PackedDib> ConvertedToBgr(IWICImagingFactory* factory, IWICBitmapSource* frame, UINT width, UINT height) {
    if (auto dib = Converted(factory, frame, GUID_WICPixelFormat24bppBGR, width, height, 24)) return dib;
    auto bgra = Converted(factory, frame, GUID_WICPixelFormat32bppBGRA, width, height, 32);
    if (!bgra) return std::nullopt;
    return DropOpaqueAlpha(std::move(*bgra));
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

std::optional<PackedDib> DecodeFrame(IWICImagingFactory* factory, IWICBitmapDecoder* decoder) {
    ComPtr<IWICBitmapFrameDecode> frame;
    UINT width = 0, height = 0;
    WICPixelFormatGUID format{};
    if (FAILED(decoder->GetFrame(0, frame.out())) || FAILED(frame->GetSize(&width, &height)) ||
        FAILED(frame->GetPixelFormat(&format)) || !PlausibleSize(width, height, SIZE_MAX))
        return std::nullopt;

    const int indexedBits = IndexedBits(format);
    if (indexedBits != 0)
        if (auto dib = CopyIndexed(factory, frame.get(), indexedBits, width, height)) return dib;
    // A palette with a transparent entry (GIF, PNG with tRNS) goes the 32-bit way below.
    if (format == GUID_WICPixelFormat8bppGray) return CopyRows(frame.get(), width, height, 8);  // grey palette by default
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
    return DecodeFrame(factory, decoder.get());
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
    if (SUCCEEDED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                     decoder.out())))
        dib = DecodeFrame(factory.get(), decoder.get());
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
