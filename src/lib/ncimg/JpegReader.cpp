// How a picture is decoded: a file of one scan holding every component (baseline, the
// common case) is entropy-decoded and transformed one MCU row at a time straight into a ring
// of three rows per component, and each row is upsampled and converted into the DIB as soon
// as the row below it (the chroma filter's context) is there; nothing else of the picture is
// kept. Progressive and other multi-scan files first gather every block's coefficients from
// all their scans, then run the same row pipeline from the coefficients.
#include "JpegReader.h"

#include "ImageLoadSupport.h"
#include "JpegColor.h"
#include "JpegEntropy.h"
#include "JpegIdct.h"
#include "JpegMarkers.h"
#include "JpegUpsample.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace lx {
namespace {

// A hostile progressive file may repeat scans without end; real ones have a dozen or so.
constexpr int kMaxScans = 500;
// Rows of MCUs kept per component: the one being output and its neighbours above and below,
// which the vertical chroma filter reads.
constexpr int kRingBands = 3;

int CeilDiv(int64_t a, int64_t b) { return static_cast<int>((a + b - 1) / b); }

// Whether any of coefficients 1..63 is set: a block without them comes out flat.
bool HasAc(const int16_t* block) {
    uint64_t words[16];
    std::memcpy(words, block, sizeof words);
    uint64_t any = words[0] & ~uint64_t{0xFFFF};  // the DC coefficient is the first two bytes
    for (int i = 1; i < 16; ++i) any |= words[i];
    return any != 0;
}

enum class Upsample { Direct, H2V1Fancy, H2V2Fancy, H1V2Fancy, Replicate };

struct Component {
    int h = 1, v = 1;        // sampling factors (1 for a lone component)
    int size = 8;            // samples per block side after the reduced IDCT
    int blocksW = 0, blocksH = 0;
    int width = 0, height = 0;  // samples of the component at the output scale
    int hIn = 1, vIn = 1;     // samples of one MCU group, to be spread over maxH x maxV output pixels
    int quantSlot = 0;
    bool quantLatched = false;
    Upsample upsample = Upsample::Direct;
    IdctFunction idct = nullptr;
    alignas(16) QuantTable quant{};
    int bandRows = 0;
    ptrdiff_t stride = 0;
    std::vector<uint8_t> ring;    // kRingBands bands of rows
    std::vector<int16_t> coefs;   // the whole picture's blocks, for multi-scan files
    std::vector<uint8_t> rowOut;  // one upsampled output row
    int dc = 0;

    const uint8_t* row(int j) const {
        j = std::clamp(j, 0, height - 1);
        const int band = j / bandRows;
        return ring.data() + (static_cast<ptrdiff_t>(band % kRingBands) * bandRows + j % bandRows) * stride;
    }
    uint8_t* bandStart(int band) { return ring.data() + static_cast<ptrdiff_t>(band % kRingBands) * bandRows * stride; }
};

class Decoder {
public:
    Decoder(std::span<const uint8_t> file, JpegMarkerReader& markers, int scaleDenom)
        : file_(file), markers_(markers), minSize_(8 / scaleDenom) {}

    std::optional<PackedDib> run();

private:
    void plan();
    bool startScan();
    void decodeStreamingBand(int band);
    void decodeScan();
    void transformBand(int band);
    void emitBand(int band);
    const uint8_t* outputRow(Component& c, int y);
    void restartIfDue(int64_t mcu);

    std::span<const uint8_t> file_;
    JpegMarkerReader& markers_;
    const JpegFrameHeader* frame_ = nullptr;
    JpegScanHeader scan_;
    JpegMarkerReader::Colour colour_ = JpegMarkerReader::Colour::Other;
    int minSize_;
    int maxH_ = 1, maxV_ = 1, mcusX_ = 0, mcusY_ = 0;
    int outW_ = 0, outH_ = 0;
    std::vector<Component> comps_;
    std::array<HuffmanDecoder, 4> dcTables_, acTables_;
    JpegBitReader bits_{{}, 0};
    int nextRestart_ = 0;
    uint32_t eobRun_ = 0;
    PackedDib dib_;
};

void Decoder::plan() {
    const auto& specs = frame_->components;
    const bool lone = specs.size() == 1;
    for (const auto& s : specs) {
        maxH_ = std::max(maxH_, lone ? 1 : s.h);
        maxV_ = std::max(maxV_, lone ? 1 : s.v);
    }
    const int W = frame_->width, H = frame_->height;
    mcusX_ = CeilDiv(W, 8 * maxH_);
    mcusY_ = CeilDiv(H, 8 * maxV_);
    outW_ = CeilDiv(static_cast<int64_t>(W) * minSize_, 8);
    outH_ = CeilDiv(static_cast<int64_t>(H) * minSize_, 8);
    const bool fancy = minSize_ > 1;
    comps_.resize(specs.size());
    for (size_t i = 0; i < specs.size(); ++i) {
        Component& c = comps_[i];
        c.h = lone ? 1 : specs[i].h;
        c.v = lone ? 1 : specs[i].v;
        c.quantSlot = specs[i].quantTable;
        // Chroma of a subsampled file is scaled up by a larger IDCT where that saves upsampling.
        c.size = minSize_;
        while (c.size < 8 && (maxH_ * minSize_) % (c.h * c.size * 2) == 0 && (maxV_ * minSize_) % (c.v * c.size * 2) == 0)
            c.size *= 2;
        c.idct = IdctFor(c.size);
        c.blocksW = mcusX_ * c.h;
        c.blocksH = mcusY_ * c.v;
        c.width = CeilDiv(static_cast<int64_t>(W) * c.h * c.size, maxH_ * 8);
        c.height = CeilDiv(static_cast<int64_t>(H) * c.v * c.size, maxV_ * 8);
        c.hIn = c.h * c.size / minSize_;
        c.vIn = c.v * c.size / minSize_;
        if (c.hIn == maxH_ && c.vIn == maxV_) c.upsample = Upsample::Direct;
        else if (c.hIn * 2 == maxH_ && c.vIn == maxV_ && fancy && c.width > 2) c.upsample = Upsample::H2V1Fancy;
        else if (c.hIn == maxH_ && c.vIn * 2 == maxV_ && fancy) c.upsample = Upsample::H1V2Fancy;
        else if (c.hIn * 2 == maxH_ && c.vIn * 2 == maxV_ && fancy && c.width > 2) c.upsample = Upsample::H2V2Fancy;
        else c.upsample = Upsample::Replicate;
        c.bandRows = c.v * c.size;
        c.stride = static_cast<ptrdiff_t>(c.blocksW) * c.size;
        c.ring.assign(static_cast<size_t>(c.stride) * c.bandRows * kRingBands, 0);
        c.rowOut.assign(static_cast<size_t>(std::max(outW_, 2 * c.width)) + 16, 0);
    }
}

// Latches the quantisation tables of the scan's components and prepares its Huffman tables.
bool Decoder::startScan() {
    scan_ = markers_.scan();
    const bool progressive = frame_->progressive();
    if (progressive) {
        const auto& s = scan_;
        bool bad = s.ss == 0 ? s.se != 0 : (s.se < s.ss || s.se > 63 || s.count != 1);
        if (s.ah != 0 && s.al != s.ah - 1) bad = true;
        if (s.al > 13) bad = true;
        if (bad) return false;
    }
    const bool needDc = !progressive || (scan_.ss == 0 && scan_.ah == 0);
    const bool needAc = !progressive || scan_.ss != 0;
    for (int i = 0; i < scan_.count; ++i) {
        Component& c = comps_[scan_.component[i]];
        if (!c.quantLatched) {
            const QuantTable* q = markers_.quant(c.quantSlot);
            if (!q) return false;
            c.quant = *q;
            c.quantLatched = true;
        }
        c.dc = 0;
        if (needDc) {
            const HuffmanSpec* spec = markers_.dcSpec(scan_.dcTable[i]);
            if (!spec || !dcTables_[scan_.dcTable[i]].build(*spec, true)) return false;
        }
        if (needAc) {
            const HuffmanSpec* spec = markers_.acSpec(scan_.acTable[i]);
            if (!spec || !acTables_[scan_.acTable[i]].build(*spec, false)) return false;
        }
    }
    if (scan_.count > 1) {
        int blocks = 0;
        for (int i = 0; i < scan_.count; ++i) blocks += comps_[scan_.component[i]].h * comps_[scan_.component[i]].v;
        if (blocks > 10) return false;
    }
    bits_ = JpegBitReader(file_, markers_.position());
    nextRestart_ = 0;
    eobRun_ = 0;
    return true;
}

void Decoder::restartIfDue(int64_t mcu) {
    const int interval = markers_.restartInterval();
    if (interval == 0 || mcu == 0 || mcu % interval != 0) return;
    bits_.restart(nextRestart_);
    nextRestart_ = (nextRestart_ + 1) & 7;
    for (auto& c : comps_) c.dc = 0;
    eobRun_ = 0;
}

// One MCU row of a single-scan file, decoded and transformed straight into the ring.
void Decoder::decodeStreamingBand(int band) {
    alignas(16) int16_t block[64];
    for (int mx = 0; mx < mcusX_; ++mx) {
        restartIfDue(static_cast<int64_t>(band) * mcusX_ + mx);
        const bool empty = bits_.insufficient();
        for (int i = 0; i < scan_.count; ++i) {
            Component& c = comps_[scan_.component[i]];
            const HuffmanDecoder& dc = dcTables_[scan_.dcTable[i]];
            const HuffmanDecoder& ac = acTables_[scan_.acTable[i]];
            uint8_t* base = c.bandStart(band);
            for (int by = 0; by < c.v; ++by) {
                for (int bx = 0; bx < c.h; ++bx) {
                    std::memset(block, 0, sizeof block);
                    const bool flat = empty || !DecodeSequentialBlock(bits_, dc, ac, c.dc, block, c.size > 1);
                    uint8_t* out = base + by * c.size * c.stride + (mx * c.h + bx) * c.size;
                    if (flat) IdctFlat(block[0], c.quant[0], out, c.stride, c.size);
                    else c.idct(block, c.quant.data(), out, c.stride);
                }
            }
        }
    }
}

// One scan of a multi-scan file into the coefficient store.
void Decoder::decodeScan() {
    const bool progressive = frame_->progressive();
    const int ss = scan_.ss, se = scan_.se, ah = scan_.ah, al = scan_.al;
    auto decodeBlock = [&](Component& c, int i, int16_t* block) {
        const HuffmanDecoder& dc = dcTables_[scan_.dcTable[i]];
        const HuffmanDecoder& ac = acTables_[scan_.acTable[i]];
        if (!progressive) DecodeSequentialBlock(bits_, dc, ac, c.dc, block);
        else if (ss == 0 && ah == 0) DecodeDcFirst(bits_, dc, c.dc, al, block);
        else if (ss == 0) DecodeDcRefine(bits_, al, block);
        else if (ah == 0) DecodeAcFirst(bits_, ac, ss, se, al, eobRun_, block);
        else DecodeAcRefine(bits_, ac, ss, se, al, eobRun_, block);
    };
    if (scan_.count == 1) {
        // A scan of one component walks its own blocks, not the MCU grid's padding.
        Component& c = comps_[scan_.component[0]];
        const auto& spec = frame_->components[scan_.component[0]];
        const bool lone = comps_.size() == 1;
        const int rows = CeilDiv(CeilDiv(static_cast<int64_t>(frame_->height) * (lone ? 1 : spec.v), maxV_), 8);
        const int cols = CeilDiv(CeilDiv(static_cast<int64_t>(frame_->width) * (lone ? 1 : spec.h), maxH_), 8);
        for (int by = 0; by < rows; ++by) {
            for (int bx = 0; bx < cols; ++bx) {
                restartIfDue(static_cast<int64_t>(by) * cols + bx);
                if (!bits_.insufficient())
                    decodeBlock(c, 0, &c.coefs[(static_cast<size_t>(by) * c.blocksW + bx) * 64]);
            }
        }
        return;
    }
    for (int my = 0; my < mcusY_; ++my) {
        for (int mx = 0; mx < mcusX_; ++mx) {
            restartIfDue(static_cast<int64_t>(my) * mcusX_ + mx);
            if (bits_.insufficient()) continue;
            for (int i = 0; i < scan_.count; ++i) {
                Component& c = comps_[scan_.component[i]];
                for (int by = 0; by < c.v; ++by)
                    for (int bx = 0; bx < c.h; ++bx)
                        decodeBlock(c, i,
                                    &c.coefs[(static_cast<size_t>(my * c.v + by) * c.blocksW + mx * c.h + bx) * 64]);
            }
        }
    }
}

// One MCU row of a multi-scan file, transformed from the coefficient store into the ring.
void Decoder::transformBand(int band) {
    for (auto& c : comps_) {
        uint8_t* base = c.bandStart(band);
        for (int by = 0; by < c.v; ++by) {
            const int16_t* block = &c.coefs[static_cast<size_t>(band * c.v + by) * c.blocksW * 64];
            uint8_t* out = base + by * c.size * c.stride;
            for (int bx = 0; bx < c.blocksW; ++bx, block += 64) {
                if (HasAc(block)) c.idct(block, c.quant.data(), out + bx * c.size, c.stride);
                else IdctFlat(block[0], c.quant[0], out + bx * c.size, c.stride, c.size);
            }
        }
    }
}

// A component's samples for output row y, upsampled to the output width.
const uint8_t* Decoder::outputRow(Component& c, int y) {
    uint8_t* out = c.rowOut.data();
    switch (c.upsample) {
    case Upsample::Direct: return c.row(y);
    case Upsample::H2V1Fancy: UpsampleH2V1Fancy(c.row(y), c.width, out); break;
    case Upsample::H2V2Fancy:
        UpsampleH2V2Fancy(c.row(y / 2), c.row(y & 1 ? y / 2 + 1 : y / 2 - 1), c.width, out);
        break;
    case Upsample::H1V2Fancy:
        UpsampleH1V2Fancy(c.row(y / 2), c.row(y & 1 ? y / 2 + 1 : y / 2 - 1), c.width, y & 1, out);
        break;
    case Upsample::Replicate:
        UpsampleReplicate(c.row(static_cast<int>(static_cast<int64_t>(y) * c.vIn / maxV_)), c.hIn, maxH_, outW_, out);
        break;
    }
    return out;
}

void Decoder::emitBand(int band) {
    using Colour = JpegMarkerReader::Colour;
    const int rows = maxV_ * minSize_;
    const int last = std::min(outH_, (band + 1) * rows);
    for (int y = band * rows; y < last; ++y) {
        const uint8_t* p[4] = {};
        for (size_t i = 0; i < comps_.size(); ++i) p[i] = outputRow(comps_[i], y);
        uint8_t* out = dib_.row(y);
        switch (colour_) {
        case Colour::Grey: std::memcpy(out, p[0], static_cast<size_t>(outW_)); break;
        case Colour::YCbCr: YccToBgr(p[0], p[1], p[2], outW_, out); break;
        case Colour::Rgb: RgbToBgr(p[0], p[1], p[2], outW_, out); break;
        case Colour::Cmyk: CmykToBgr(p[0], p[1], p[2], p[3], outW_, out); break;
        case Colour::Ycck: YcckToBgr(p[0], p[1], p[2], p[3], outW_, out); break;
        case Colour::Other: break;
        }
    }
}

std::optional<PackedDib> Decoder::run() {
    frame_ = &markers_.frame();
    colour_ = markers_.colour();
    if (!frame_->decodable() || colour_ == JpegMarkerReader::Colour::Other) return std::nullopt;
    if (!PlausibleForCompression(frame_->width, frame_->height, file_.size(), kJpegMostPixelsPerByte))
        return std::nullopt;
    if (markers_.next() != JpegMarkerReader::Stop::Scan) return std::nullopt;
    markers_.supplyStandardHuffmanTables();
    plan();
    if (!startScan()) return std::nullopt;
    dib_ = PackedDib::Create(outW_, outH_, colour_ == JpegMarkerReader::Colour::Grey ? 8 : 24);
    if (dib_.empty()) return std::nullopt;

    const bool streaming = !frame_->progressive() && scan_.count == static_cast<int>(comps_.size());
    if (streaming) {
        decodeStreamingBand(0);
        for (int band = 0; band < mcusY_; ++band) {
            if (band + 1 < mcusY_) decodeStreamingBand(band + 1);
            emitBand(band);
        }
        return std::move(dib_);
    }

    int64_t blocks = 0;
    for (auto& c : comps_) {
        c.coefs.assign(static_cast<size_t>(c.blocksW) * c.blocksH * 64, 0);
        blocks += static_cast<int64_t>(c.blocksW) * c.blocksH;
    }
    // Every scan costs a pass over its blocks, data or not: the total is bounded.
    int64_t budget = blocks * 64;
    for (int scans = 0; scans < kMaxScans; ++scans) {
        for (int i = 0; i < scan_.count; ++i) {
            const Component& c = comps_[scan_.component[i]];
            budget -= static_cast<int64_t>(c.blocksW) * c.blocksH;
        }
        if (budget < 0) break;
        decodeScan();
        markers_.setPosition(bits_.position());
        if (markers_.next() != JpegMarkerReader::Stop::Scan || !startScan()) break;
    }
    transformBand(0);
    for (int band = 0; band < mcusY_; ++band) {
        if (band + 1 < mcusY_) transformBand(band + 1);
        emitBand(band);
    }
    return std::move(dib_);
}

}  // namespace

std::optional<JpegInfo> ReadJpegInfo(std::span<const uint8_t> file) {
    JpegMarkerReader markers(file);
    if (!markers.start()) return std::nullopt;
    JpegMarkerReader::Stop stop;
    while ((stop = markers.next()) != JpegMarkerReader::Stop::Frame)
        if (stop == JpegMarkerReader::Stop::End) return std::nullopt;
    const JpegFrameHeader& f = markers.frame();
    JpegInfo info;
    info.width = f.width;
    info.height = f.height;
    info.components = static_cast<int>(f.components.size());
    info.progressive = f.progressive();
    info.decodable = f.decodable() && markers.colour() != JpegMarkerReader::Colour::Other;
    return info;
}

std::optional<PackedDib> ReadJpeg(std::span<const uint8_t> file, int scaleDenom) {
    if (scaleDenom != 1 && scaleDenom != 2 && scaleDenom != 4 && scaleDenom != 8) return std::nullopt;
    JpegMarkerReader markers(file);
    if (!markers.start()) return std::nullopt;
    JpegMarkerReader::Stop stop;
    while ((stop = markers.next()) != JpegMarkerReader::Stop::Frame)
        if (stop == JpegMarkerReader::Stop::End) return std::nullopt;
    return Decoder(file, markers, scaleDenom).run();
}

int JpegScaleToCover(int width, int height, int wantWidth, int wantHeight) {
    for (int denom = 8; denom > 1; denom /= 2)
        if (CeilDiv(width, denom) >= wantWidth || CeilDiv(height, denom) >= wantHeight) return denom;
    return 1;
}

}  // namespace lx
