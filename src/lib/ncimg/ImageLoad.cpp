#include "ImageLoad.h"

#include "BmpReader.h"
#include "ImageLoadSystem.h"
#include "ImageProbe.h"
#include "PcxReader.h"
#include "PnmReader.h"
#include "PsdReader.h"
#include "RawPreview.h"
#include "SgiReader.h"
#include "SunReader.h"
#include "TgaReader.h"
#include "XbmReader.h"
#include "XpmReader.h"

#include <algorithm>
#include <fstream>
#include <vector>

namespace lx {
namespace {

using Reader = std::optional<PackedDib> (*)(std::span<const uint8_t>);

// The formats read here rather than by the system's codecs, by probe type.
Reader OwnReader(int type) {
    switch (type) {
    case 1: return ReadBmp;
    case 5: return ReadTga;
    case 6: return ReadPcx;
    case 9: return ReadSun;
    case 11: return ReadPsd;
    case 14: return ReadSgi;
    case 17: return ReadPnm;
    case 20: return ReadXpm;
    case 21: return ReadXbm;
    default: return nullptr;
    }
}

// Targa carries no signature; its name and a consistent header decide.
int TypeWithTgaByName(std::span<const uint8_t> file, const std::filesystem::path& name) {
    const size_t tailSize = std::min<size_t>(file.size(), 26);
    const int type = ProbeImageBytes(file.first(std::min(file.size(), kProbeHeadBytes)), file.last(tailSize), name);
    if (type == 0 && LowerExtension(name) == ".tga" && LooksLikeTga(file)) return 5;
    return type;
}

std::optional<std::vector<uint8_t>> ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) return std::nullopt;
    const std::streamoff size = in.tellg();
    if (size < 0) return std::nullopt;
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) return std::nullopt;
    return bytes;
}

// A camera raw file that no system codec decodes shows its largest embedded image.
std::optional<PackedDib> LoadWithSystemCodecOrPreview(const std::filesystem::path& path, int type) {
    auto dib = LoadWithSystemCodec(path, type);
    if (!dib && IsCameraRawType(type)) return LoadRawPreview(path);
    return dib;
}

}  // namespace

std::optional<PackedDib> LoadImageBytes(std::span<const uint8_t> file, const std::filesystem::path& name) {
    const int type = TypeWithTgaByName(file, name);
    if (Reader read = OwnReader(type)) return read(file);
    auto dib = DecodeWithSystemCodec(file, type);
    if (!dib && IsCameraRawType(type)) {
        MemorySource source(file);
        if (const auto preview = FindRawPreview(source)) return DecodeRawPreview(*preview);
    }
    return dib;
}

std::optional<PackedDib> LoadImageFile(const std::filesystem::path& path) {
    const int type = ProbeImageType(path);
    // Formats of our own are read whole; the rest is left to the system codec, which reads
    // the file itself (a camera raw file may be tens of megabytes it never needs whole).
    if (type != 0 && !OwnReader(type)) return LoadWithSystemCodecOrPreview(path, type);
    const auto bytes = ReadWholeFile(path);
    if (!bytes) return std::nullopt;
    const int known = TypeWithTgaByName(*bytes, path.filename());
    if (Reader read = OwnReader(known)) return read(*bytes);
    return LoadWithSystemCodecOrPreview(path, known);
}

std::optional<PackedDib> LoadBmpFromMemory(std::span<const uint8_t> block) { return ReadBmp(block); }

std::optional<PackedDib> LoadJpegFromMemory(std::span<const uint8_t> block) {
    if (block.size() < 3 || block[0] != 0xff || block[1] != 0xd8) return std::nullopt;
    return DecodeWithSystemCodec(block, 2);
}

}  // namespace lx
