#include "JpegMarkers.h"

#include <algorithm>
#include <cstring>

namespace lx {
namespace {

int Be16(const uint8_t* p) { return p[0] << 8 | p[1]; }

}  // namespace

bool JpegFrameHeader::decodable() const {
    const bool huffman = marker == 0xC0 || marker == 0xC1 || marker == 0xC2;
    const size_t n = components.size();
    if (!huffman || precision != 8 || width <= 0 || height <= 0 || (n != 1 && n != 3 && n != 4)) return false;
    return std::all_of(components.begin(), components.end(),
                       [](const JpegComponentSpec& c) { return c.h >= 1 && c.h <= 4 && c.v >= 1 && c.v <= 4; });
}

bool JpegMarkerReader::start() {
    pos_ = 0;
    if (file_.size() < 4 || file_[0] != 0xFF || file_[1] != 0xD8) return false;
    pos_ = 2;
    return true;
}

JpegMarkerReader::Stop JpegMarkerReader::next() {
    const size_t size = file_.size();
    for (;;) {
        // Garbage before a marker is skipped, as are fill bytes (repeated 0xFF).
        while (pos_ < size && file_[pos_] != 0xFF) ++pos_;
        while (pos_ < size && file_[pos_] == 0xFF) ++pos_;
        if (pos_ >= size) return Stop::End;
        const uint8_t marker = file_[pos_++];
        if (marker == 0xD9 || marker == 0xD8) return Stop::End;
        if (marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) continue;  // no length
        if (size - pos_ < 2) return Stop::End;
        const size_t length = static_cast<size_t>(Be16(&file_[pos_]));
        if (length < 2 || length > size - pos_) return Stop::End;
        const std::span<const uint8_t> body = file_.subspan(pos_ + 2, length - 2);
        pos_ += length;
        const bool frameMarker = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frameMarker) {
            if (hasFrame_ || !readFrame(marker, body)) return Stop::End;
            return Stop::Frame;
        }
        if (marker == 0xDA) return hasFrame_ && readScan(body) ? Stop::Scan : Stop::End;
        if (!readSegment(marker, body)) return Stop::End;
    }
}

bool JpegMarkerReader::readSegment(uint8_t marker, std::span<const uint8_t> body) {
    switch (marker) {
    case 0xDB: return readQuant(body);
    case 0xC4: return readHuffman(body);
    case 0xDD:
        if (body.size() < 2) return false;
        restartInterval_ = Be16(body.data());
        return true;
    case 0xE0:
        if (body.size() >= 5 && std::memcmp(body.data(), "JFIF\0", 5) == 0) jfif_ = true;
        return true;
    case 0xEE:
        if (body.size() >= 12 && std::memcmp(body.data(), "Adobe", 5) == 0) {
            adobe_ = true;
            adobeTransform_ = body[11];
        }
        return true;
    default: return true;  // other application data, comments, DNL
    }
}

bool JpegMarkerReader::readFrame(uint8_t marker, std::span<const uint8_t> body) {
    if (body.size() < 6) return false;
    frame_.marker = marker;
    frame_.precision = body[0];
    frame_.height = Be16(&body[1]);
    frame_.width = Be16(&body[3]);
    const int count = body[5];
    if (count < 1 || body.size() < 6 + static_cast<size_t>(count) * 3) return false;
    frame_.components.clear();
    for (int i = 0; i < count; ++i) {
        const uint8_t* p = &body[6 + i * 3];
        for (const auto& c : frame_.components)
            if (c.id == p[0]) return false;
        frame_.components.push_back({p[0], p[1] >> 4, p[1] & 15, p[2] & 3});
        if (p[2] > 3) return false;
    }
    hasFrame_ = true;
    return true;
}

bool JpegMarkerReader::readScan(std::span<const uint8_t> body) {
    if (body.empty()) return false;
    const int count = body[0];
    if (count < 1 || count > 4 || body.size() < 4 + static_cast<size_t>(count) * 2) return false;
    JpegScanHeader scan;
    scan.count = count;
    for (int i = 0; i < count; ++i) {
        const uint8_t id = body[1 + i * 2], tables = body[2 + i * 2];
        int index = -1;
        for (size_t c = 0; c < frame_.components.size(); ++c)
            if (frame_.components[c].id == id) index = static_cast<int>(c);
        for (int j = 0; j < i; ++j)
            if (scan.component[j] == index) index = -1;
        if (index < 0 || (tables >> 4) > 3 || (tables & 15) > 3) return false;
        scan.component[i] = index;
        scan.dcTable[i] = tables >> 4;
        scan.acTable[i] = tables & 15;
    }
    const uint8_t* tail = &body[1 + count * 2];
    scan.ss = tail[0];
    scan.se = tail[1];
    scan.ah = tail[2] >> 4;
    scan.al = tail[2] & 15;
    scan_ = scan;
    return true;
}

bool JpegMarkerReader::readQuant(std::span<const uint8_t> body) {
    size_t i = 0;
    while (i < body.size()) {
        const int precision = body[i] >> 4, slot = body[i] & 15;
        const size_t bytes = precision ? 128 : 64;
        if (slot > 3 || precision > 1 || body.size() - i - 1 < bytes) return false;
        const uint8_t* p = &body[i + 1];
        for (int k = 0; k < 64; ++k)
            quant_[slot][kZigzagToNatural[k]] = static_cast<uint16_t>(precision ? Be16(p + 2 * k) : p[k]);
        quantSet_[slot] = true;
        i += 1 + bytes;
    }
    return true;
}

bool JpegMarkerReader::readHuffman(std::span<const uint8_t> body) {
    size_t i = 0;
    while (i < body.size()) {
        if (body.size() - i < 17) return false;
        const int cls = body[i] >> 4, slot = body[i] & 15;
        if (cls > 1 || slot > 3) return false;
        HuffmanSpec spec;
        int total = 0;
        for (int l = 0; l < 16; ++l) total += spec.counts[l] = body[i + 1 + l];
        if (total > 256 || body.size() - i - 17 < static_cast<size_t>(total)) return false;
        std::copy_n(&body[i + 17], total, spec.symbols.begin());
        (cls ? ac_ : dc_)[slot] = spec;
        (cls ? acSet_ : dcSet_)[slot] = true;
        i += 17 + total;
    }
    return true;
}

void JpegMarkerReader::supplyStandardHuffmanTables() {
    for (int slot = 0; slot < 2; ++slot) {
        if (!dcSet_[slot]) dc_[slot] = StandardDcSpec(slot), dcSet_[slot] = true;
        if (!acSet_[slot]) ac_[slot] = StandardAcSpec(slot), acSet_[slot] = true;
    }
}

JpegMarkerReader::Colour JpegMarkerReader::colour() const {
    const auto& c = frame_.components;
    switch (c.size()) {
    case 1: return Colour::Grey;
    case 3:
        if (jfif_) return Colour::YCbCr;
        if (adobe_) return adobeTransform_ == 0 ? Colour::Rgb : Colour::YCbCr;
        if (c[0].id == 'R' && c[1].id == 'G' && c[2].id == 'B') return Colour::Rgb;
        return Colour::YCbCr;
    case 4:
        if (adobe_ && adobeTransform_ != 0) return Colour::Ycck;
        return Colour::Cmyk;
    default: return Colour::Other;
    }
}

}  // namespace lx
