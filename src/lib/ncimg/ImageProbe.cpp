#include "ImageProbe.h"

#include "TgaReader.h"
#include "XbmReader.h"
#include "XpmReader.h"

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace lx {
namespace {

bool StartsWith(std::span<const uint8_t> head, const char* magic, size_t size) {
    return head.size() >= size && std::memcmp(head.data(), magic, size) == 0;
}

int ProbeBmp(std::span<const uint8_t> head) {
    if (!StartsWith(head, "BM", 2) || head.size() < 18) return 0;
    const uint32_t infoSize = head[14] | head[15] << 8 | head[16] << 16 | static_cast<uint32_t>(head[17]) << 24;
    switch (infoSize) {
    case 12: case 16: case 40: case 52: case 56: case 64: case 108: case 124: return 1;
    default: return 0;
    }
}

int ProbePcx(std::span<const uint8_t> head) {
    if (head.size() < 128 || head[0] != 0x0a || head[2] > 1) return 0;
    const uint8_t version = head[1], bits = head[3], planes = head[65];
    const bool versionOk = version == 0 || version == 2 || version == 3 || version == 4 || version == 5;
    const bool bitsOk = bits == 1 || bits == 2 || bits == 4 || bits == 8;
    return versionOk && bitsOk && planes >= 1 && planes <= 4 ? 6 : 0;
}

int ProbeTiffFamily(std::span<const uint8_t> head, const std::filesystem::path& name) {
    const bool tiff = StartsWith(head, "II*\0", 4) || StartsWith(head, "MM\0*", 4);
    // Olympus and Panasonic raw files are TIFF structures with their own magic numbers.
    const bool rawTiff = StartsWith(head, "IIRO", 4) || StartsWith(head, "IIRS", 4) || StartsWith(head, "IIU\0", 4);
    if (!tiff && !rawTiff) return 0;
    const int raw = RawTypeFromName(name);
    if (raw) return raw;
    return tiff ? 4 : 0;
}

}  // namespace

std::string LowerExtension(const std::filesystem::path& name) {
    // Works on the native characters: converting a wide name to narrow text could fail
    // for characters outside the system code page, and extensions we know are ASCII.
    const std::filesystem::path extension = name.extension();
    std::string ext;
    for (auto c : extension.native()) {
        if (c == 0 || static_cast<uint32_t>(c) >= 128) return {};
        ext += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    }
    return ext;
}

int RawTypeFromName(const std::filesystem::path& name) {
    const std::string ext = LowerExtension(name);
    static const struct { const char* ext; int type; } kRaw[] = {
        {".crw", 26}, {".cr2", 26}, {".nef", 27}, {".raf", 28}, {".mrw", 29}, {".x3f", 30},
        {".pef", 31}, {".srf", 32}, {".sr2", 32}, {".orf", 33}, {".dng", 34}, {".erf", 35},
        {".arw", 36}, {".raw", 37}, {".rw2", 37}, {".mef", 38}, {".3fr", 39},
    };
    for (const auto& r : kRaw)
        if (ext == r.ext) return r.type;
    return 0;
}

int ProbeImageBytes(std::span<const uint8_t> head, std::span<const uint8_t> tail, const std::filesystem::path& name) {
    if (StartsWith(head, "\xff\xd8\xff", 3)) return 2;
    if (StartsWith(head, "GIF87a", 6) || StartsWith(head, "GIF89a", 6)) return 3;
    if (StartsWith(head, "\x89PNG\r\n\x1a\n", 8)) return 10;
    if (StartsWith(head, "8BPS", 4)) return 11;
    if (StartsWith(head, "\x59\xa6\x6a\x95", 4)) return 9;
    if (int type = ProbeTiffFamily(head, name)) return type;
    if (int type = ProbeBmp(head)) return type;
    // Camera raw kinds with a signature of their own.
    if (StartsWith(head, "II\x1a\0\0\0HEAPCCDR", 14)) return 26;
    if (StartsWith(head, "FUJIFILMCCD-RAW", 15)) return 28;
    if (StartsWith(head, "\0MRM", 4)) return 29;
    if (StartsWith(head, "FOVb", 4)) return 30;
    if (head.size() >= 4 && head[0] == 0x01 && head[1] == 0xda && head[2] <= 1 && (head[3] == 1 || head[3] == 2))
        return 14;
    if (head.size() >= 6 && head[0] == 0 && head[1] == 0 && head[2] == 1 && head[3] == 0 && (head[4] | head[5]))
        return 18;
    if (head.size() >= 3 && head[0] == 'P' && head[1] >= '1' && head[1] <= '6' &&
        (head[2] == ' ' || head[2] == '\n' || head[2] == '\r' || head[2] == '\t'))
        return 17;
    if (int type = ProbePcx(head)) return type;
    if (LooksLikeXpm(head)) return 20;
    if (LooksLikeXbm(head)) return 21;
    if (LooksLikeTga(head) && HasTgaFooter(tail)) return 5;
    return 0;
}

int ProbeImageType(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return 0;
    std::vector<uint8_t> head(kProbeHeadBytes);
    in.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<size_t>(in.gcount()));
    std::vector<uint8_t> tail(26);
    in.clear();
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size >= 26) {
        in.seekg(size - 26);
        in.read(reinterpret_cast<char*>(tail.data()), 26);
        if (in.gcount() != 26) tail.clear();
    } else {
        tail.clear();
    }
    return ProbeImageBytes(head, tail, path.filename());
}

}  // namespace lx
