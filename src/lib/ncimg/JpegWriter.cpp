#include "JpegWriter.h"

#include "JpegDct.h"
#include "JpegSampling.h"
#include "JpegScans.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <thread>

namespace lx {
namespace {

constexpr int kMaxSide = 65535;

// The DIB's rows as blue-green-red pixels or as grey samples, whatever its depth. The
// common depths are read in place; the others are converted one row at a time.
class SourceRows {
public:
    explicit SourceRows(const PackedDib& dib) : dib_(dib), scratch_(static_cast<size_t>(dib.width()) * 3) {
        greyOf_.fill(0);
        const auto palette = dib.palette();
        for (size_t i = 0; i < palette.size() && i < greyOf_.size(); ++i) greyOf_[i] = palette[i].r;
    }

    const uint8_t* colour(int y, int& pixelBytes) {
        if (dib_.bitCount() == 24 || (dib_.bitCount() == 32 && dib_.compression() == kBiRgb)) {
            pixelBytes = dib_.bitCount() / 8;
            return dib_.row(y);
        }
        pixelBytes = 3;
        for (int x = 0; x < dib_.width(); ++x) {
            const uint32_t p = dib_.pixel(x, y);
            scratch_[3 * x] = static_cast<uint8_t>(p);
            scratch_[3 * x + 1] = static_cast<uint8_t>(p >> 8);
            scratch_[3 * x + 2] = static_cast<uint8_t>(p >> 16);
        }
        return scratch_.data();
    }

    // Only for grey-palette images, where every colour's red equals its grey level.
    const uint8_t* grey(int y) {
        const uint8_t* row = dib_.row(y);
        for (int x = 0; x < dib_.width(); ++x)
            scratch_[x] = dib_.bitCount() == 8 ? greyOf_[row[x]] : static_cast<uint8_t>(dib_.pixel(x, y));
        return scratch_.data();
    }

private:
    const PackedDib& dib_;
    std::vector<uint8_t> scratch_;
    std::array<uint8_t, 256> greyOf_;
};

// The frame's geometry, with room for the coefficients of every MCU row, or of one
// (`wholeImage` false) when each row is coded as soon as it is transformed.
JpegFrame PlanFrame(int width, int height, bool grey, bool wholeImage) {
    auto blocks = [](int samples) { return (samples + 7) / 8; };
    JpegFrame frame;
    frame.width = width;
    frame.height = height;
    const int mcuSide = grey ? 8 : 16;
    frame.mcusAcross = (width + mcuSide - 1) / mcuSide;
    frame.mcusDown = (height + mcuSide - 1) / mcuSide;
    frame.heldMcuRows = wholeImage ? frame.mcusDown : 1;
    const int componentCount = grey ? 1 : 3;
    for (int c = 0; c < componentCount; ++c) {
        JpegComponent comp;
        comp.id = c + 1;
        comp.hSampling = comp.vSampling = (c == 0 && !grey) ? 2 : 1;
        comp.tableIndex = c == 0 ? 0 : 1;
        // Chroma of a colour image has half the samples each way, rounded up.
        const int divisor = grey ? 1 : 2 / comp.hSampling;
        comp.widthInBlocks = blocks((width + divisor - 1) / divisor);
        comp.heightInBlocks = blocks((height + divisor - 1) / divisor);
        comp.blocksAcross = frame.mcusAcross * comp.hSampling;
        comp.blocksDown = frame.mcusDown * comp.vSampling;
        comp.coefficients.resize(static_cast<size_t>(comp.blocksAcross) * frame.heldMcuRows * comp.vSampling * 64);
        frame.components.push_back(std::move(comp));
    }
    return frame;
}

// Turns one MCU row of the image at a time into quantised coefficients: conversion to
// the components, optional smoothing, chroma downsampling, DCT. Each worker thread has
// its own, so rows can be made in any order.
class CoefficientMaker {
public:
    CoefficientMaker(const PackedDib& dib, JpegFrame& frame, const DctQuantizer (&quantizers)[2], int smoothing)
        : source_(dib), frame_(frame), quantizers_(quantizers), smoothing_(smoothing) {
        const JpegComponent& full = frame.components[0];
        rows_ = 8 * full.vSampling;
        width_ = 8 * full.blocksAcross;
        for (size_t c = 0; c < frame.components.size(); ++c) planes_[c].resize(static_cast<size_t>(rows_ + 2) * width_);
        work_.resize(static_cast<size_t>(rows_) * width_);
        band_.resize(static_cast<size_t>(8) * width_);
    }

    void make(int mcuRow) {
        if (frame_.heldMcuRows == 1)
            for (JpegComponent& comp : frame_.components) comp.firstBlockRow = mcuRow * comp.vSampling;
        readRows(mcuRow);
        JpegComponent& full = frame_.components[0];
        const uint8_t* luma = plane(0, 0);
        if (smoothing_ > 0) {
            for (int r = 0; r < rows_; ++r)
                SmoothRow(plane(0, r - 1), plane(0, r), plane(0, r + 1), width_, smoothing_, work_.data() + r * width_);
            luma = work_.data();
        }
        transform(full, mcuRow, luma, width_);
        if (frame_.components.size() == 1) return;

        const int half = width_ / 2;
        for (int c = 1; c < 3; ++c) {
            for (int r = 0; r < 8; ++r) {
                uint8_t* out = work_.data() + r * half;
                if (smoothing_ > 0)
                    SmoothDownsampleRow(plane(c, 2 * r - 1), plane(c, 2 * r), plane(c, 2 * r + 1), plane(c, 2 * r + 2),
                                        half, smoothing_, out);
                else
                    DownsampleRow(plane(c, 2 * r), plane(c, 2 * r + 1), half, out);
            }
            transform(frame_.components[c], mcuRow, work_.data(), half);
        }
        fillPaddingBlocks(full, mcuRow);
    }

private:
    // Row r of the MCU row in component c's full-resolution plane; -1 and rows_ are the
    // neighbours the smoothing filter reads.
    uint8_t* plane(int c, int r) { return planes_[c].data() + static_cast<size_t>(r + 1) * width_; }

    void readRows(int mcuRow) {
        const int margin = smoothing_ > 0 ? 1 : 0;
        for (int r = -margin; r < rows_ + margin; ++r) {
            // Rows past the picture's edges repeat the edge row.
            const int y = std::clamp(mcuRow * rows_ + r, 0, frame_.height - 1);
            if (frame_.components.size() == 1) {
                uint8_t* out = plane(0, r);
                std::memcpy(out, source_.grey(y), frame_.width);
                std::fill(out + frame_.width, out + width_, out[frame_.width - 1]);
            } else {
                int pixelBytes = 3;
                const uint8_t* bgr = source_.colour(y, pixelBytes);
                ConvertRowToYcc(bgr, pixelBytes, frame_.width, width_, plane(0, r), plane(1, r), plane(2, r));
            }
        }
    }

    void transform(JpegComponent& comp, int mcuRow, const uint8_t* samples, int stride) {
        const DctQuantizer& q = quantizers_[comp.tableIndex];
        for (int y = 0; y < comp.vSampling; ++y) {
            for (int r = 0; r < 8; ++r)
                LevelShiftRow(samples + static_cast<size_t>(y * 8 + r) * stride, stride, band_.data() + r * stride);
            const int by = mcuRow * comp.vSampling + y;
            for (int bx = 0; bx < comp.blocksAcross; ++bx) ForwardDctQuantize(band_.data() + bx * 8, stride, q, comp.block(bx, by));
        }
    }

    // Blocks that an MCU needs but no picture sample reaches carry only a DC value, the
    // same as their neighbour's, which costs the fewest bits.
    void fillPaddingBlocks(JpegComponent& comp, int mcuRow) {
        for (int y = 0; y < comp.vSampling; ++y) {
            const int by = mcuRow * comp.vSampling + y;
            for (int bx = 0; bx < comp.blocksAcross; ++bx) {
                const bool right = bx >= comp.widthInBlocks, below = by >= comp.heightInBlocks;
                if (!right && !below) continue;
                int16_t* block = comp.block(bx, by);
                const int16_t dc = below ? comp.block(bx, by - 1)[0] : block[-64];
                std::fill(block, block + 64, int16_t{0});
                block[0] = dc;
            }
        }
    }

    SourceRows source_;
    JpegFrame& frame_;
    const DctQuantizer (&quantizers_)[2];
    int smoothing_;
    int rows_ = 0, width_ = 0;
    std::vector<uint8_t> planes_[3];
    std::vector<uint8_t> work_;
    std::vector<float> band_;  // eight rows of samples ready for the DCT
};

constexpr int kMaxParts = 16;

// Splits [0, count) into contiguous parts of at least minPerPart (at most kMaxParts) and
// runs fn(begin, end, part) for each, on as many threads as there are cores. Threads take
// the next part whenever they finish one, so a core that falls behind holds up little.
// Returns the number of parts.
template <class Fn>
int ForEachPart(int count, int minPerPart, Fn fn) {
    const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    const int parts = std::clamp(count / std::max(minPerPart, 1), 1, std::min(kMaxParts, 4 * cores));
    std::atomic<int> next{0};
    auto work = [&] {
        for (int p = next++; p < parts; p = next++)
            fn(static_cast<int>(int64_t{count} * p / parts), static_cast<int>(int64_t{count} * (p + 1) / parts), p);
    };
    std::vector<std::thread> threads;
    for (int t = 1; t < std::min(cores, parts); ++t) threads.emplace_back(work);
    work();
    for (auto& t : threads) t.join();
    return parts;
}

void Put16(std::vector<uint8_t>& out, int value) {
    out.push_back(static_cast<uint8_t>(value >> 8));
    out.push_back(static_cast<uint8_t>(value));
}

void PutMarker(std::vector<uint8_t>& out, uint8_t marker, int payloadLength) {
    out.push_back(0xff);
    out.push_back(marker);
    Put16(out, payloadLength + 2);
}

void PutJfifHeader(std::vector<uint8_t>& out, const PackedDib& dib) {
    PutMarker(out, 0xe0, 14);
    const char id[5] = {'J', 'F', 'I', 'F', 0};
    out.insert(out.end(), id, id + 5);
    out.push_back(1);  // version 1.01
    out.push_back(1);
    // The DIB's resolution in dots per inch when it has one, else just square pixels.
    const int32_t xppm = dib.header().xPelsPerMeter, yppm = dib.header().yPelsPerMeter;
    const bool known = xppm > 0 && yppm > 0;
    auto dpi = [](int32_t ppm) { return std::clamp(static_cast<int>(std::lround(ppm * 0.0254)), 1, 65535); };
    out.push_back(known ? 1 : 0);
    Put16(out, known ? dpi(xppm) : 1);
    Put16(out, known ? dpi(yppm) : 1);
    out.push_back(0);  // no thumbnail
    out.push_back(0);
}

void PutQuantTable(std::vector<uint8_t>& out, int slot, const QuantTable& table) {
    PutMarker(out, 0xdb, 65);
    out.push_back(static_cast<uint8_t>(slot));  // 8-bit precision
    for (int k = 0; k < 64; ++k) out.push_back(static_cast<uint8_t>(table[kZigzagToNatural[k]]));
}

void PutFrameHeader(std::vector<uint8_t>& out, const JpegFrame& frame, bool progressive) {
    PutMarker(out, progressive ? 0xc2 : 0xc0, 6 + 3 * static_cast<int>(frame.components.size()));
    out.push_back(8);
    Put16(out, frame.height);
    Put16(out, frame.width);
    out.push_back(static_cast<uint8_t>(frame.components.size()));
    for (const JpegComponent& comp : frame.components) {
        out.push_back(static_cast<uint8_t>(comp.id));
        out.push_back(static_cast<uint8_t>(comp.hSampling << 4 | comp.vSampling));
        out.push_back(static_cast<uint8_t>(comp.tableIndex));
    }
}

void PutHuffmanTable(std::vector<uint8_t>& out, bool ac, int slot, const HuffmanSpec& spec) {
    const int n = spec.symbolCount();
    PutMarker(out, 0xc4, 17 + n);
    out.push_back(static_cast<uint8_t>((ac ? 0x10 : 0) | slot));
    out.insert(out.end(), spec.counts.begin(), spec.counts.end());
    out.insert(out.end(), spec.symbols.begin(), spec.symbols.begin() + n);
}

void PutScanHeader(std::vector<uint8_t>& out, const JpegFrame& frame, const std::vector<int>& components,
                   int start, int end, int high, int low) {
    PutMarker(out, 0xda, 4 + 2 * static_cast<int>(components.size()));
    out.push_back(static_cast<uint8_t>(components.size()));
    for (int c : components) {
        const JpegComponent& comp = frame.components[c];
        out.push_back(static_cast<uint8_t>(comp.id));
        // Selectors a scan does not use are written as 0.
        const int dc = start == 0 && high == 0 ? comp.tableIndex : 0;
        const int ac = end > 0 ? comp.tableIndex : 0;
        out.push_back(static_cast<uint8_t>(dc << 4 | ac));
    }
    out.push_back(static_cast<uint8_t>(start));
    out.push_back(static_cast<uint8_t>(end));
    out.push_back(static_cast<uint8_t>(high << 4 | low));
}

int TableSlots(const JpegFrame& frame) { return frame.components.size() > 1 ? 2 : 1; }

void AddCounts(ScanCounts& into, const ScanCounts& from) {
    for (int s = 0; s < 2; ++s)
        for (int i = 0; i < 256; ++i) {
            into.dc[s][i] += from.dc[s][i];
            into.ac[s][i] += from.ac[s][i];
        }
}

struct SampleSource {
    const PackedDib& dib;
    const DctQuantizer (&quantizers)[2];
    int smoothing;
};

// Transforms the whole image into the frame's coefficient store, in parallel parts.
void MakeAllCoefficients(JpegFrame& frame, const SampleSource& source) {
    ForEachPart(frame.mcusDown, 4, [&](int begin, int end, int) {
        CoefficientMaker maker(source.dib, frame, source.quantizers, source.smoothing);
        for (int row = begin; row < end; ++row) maker.make(row);
    });
}

// Writes the tables of a sequential scan and returns the codes made from them.
ScanCodes PutSequentialTables(std::vector<uint8_t>& out, const JpegFrame& frame, const HuffmanSpec (&dc)[2],
                              const HuffmanSpec (&ac)[2]) {
    ScanCodes codes;
    for (int s = 0; s < TableSlots(frame); ++s) {
        PutHuffmanTable(out, false, s, dc[s]);
        PutHuffmanTable(out, true, s, ac[s]);
        codes.dc[s] = MakeCodes(dc[s]);
        codes.ac[s] = MakeCodes(ac[s]);
    }
    std::vector<int> all(frame.components.size());
    for (size_t c = 0; c < all.size(); ++c) all[c] = static_cast<int>(c);
    PutScanHeader(out, frame, all, 0, 63, 0, 0);
    return codes;
}

void JoinParts(std::vector<uint8_t>& out, std::vector<BitStream>& parts, int count) {
    for (int p = 1; p < count; ++p) parts[0].append(parts[p]);
    parts[0].appendStuffed(out);
}

// The sequential scan with the example tables. Nothing needs the whole image's
// coefficients, so each part codes every MCU row right after transforming it; a part
// that starts mid-image first transforms the row before it to learn the DC predictors.
void PutStandardScan(std::vector<uint8_t>& out, const JpegFrame& frame, const SampleSource& source) {
    HuffmanSpec dc[2], ac[2];
    for (int s = 0; s < 2; ++s) {
        dc[s] = StandardDcSpec(s);
        ac[s] = StandardAcSpec(s);
    }
    const ScanCodes codes = PutSequentialTables(out, frame, dc, ac);
    std::vector<BitStream> partBits(kMaxParts);
    const int parts = ForEachPart(frame.mcusDown, 8, [&](int begin, int end, int part) {
        JpegFrame rows = PlanFrame(frame.width, frame.height, frame.components.size() == 1, false);
        CoefficientMaker maker(source.dib, rows, source.quantizers, source.smoothing);
        DcPredictors predictors;
        if (begin > 0) {
            maker.make(begin - 1);
            predictors = PredictorsAfterRow(rows, begin - 1);
        }
        partBits[part].reserveBytes(static_cast<size_t>(end - begin) * frame.mcusAcross * 64);
        for (int row = begin; row < end; ++row) {
            maker.make(row);
            EncodeSequential(rows, row, row + 1, predictors, codes, partBits[part]);
        }
    });
    JoinParts(out, partBits, parts);
}

// The sequential scan with tables made for this image: count in parallel parts, build
// the tables, then code in the same parts.
void PutOptimizedScan(std::vector<uint8_t>& out, const JpegFrame& frame) {
    std::vector<ScanCounts> partCounts(kMaxParts);
    const int parts = ForEachPart(frame.mcusDown, 8, [&](int begin, int end, int part) {
        DcPredictors predictors = begin > 0 ? PredictorsAfterRow(frame, begin - 1) : DcPredictors();
        CountSequential(frame, begin, end, predictors, partCounts[part]);
    });
    for (int p = 1; p < parts; ++p) AddCounts(partCounts[0], partCounts[p]);
    HuffmanSpec dc[2], ac[2];
    for (int s = 0; s < TableSlots(frame); ++s) {
        dc[s] = OptimalSpec(partCounts[0].dc[s]);
        ac[s] = OptimalSpec(partCounts[0].ac[s]);
    }
    const ScanCodes codes = PutSequentialTables(out, frame, dc, ac);
    std::vector<BitStream> partBits(kMaxParts);
    ForEachPart(frame.mcusDown, 8, [&](int begin, int end, int part) {
        DcPredictors predictors = begin > 0 ? PredictorsAfterRow(frame, begin - 1) : DcPredictors();
        EncodeSequential(frame, begin, end, predictors, codes, partBits[part]);
    });
    JoinParts(out, partBits, parts);
}

// One progressive scan with its own optimal tables: DHT markers, header and data.
std::vector<uint8_t> ProgressiveScanBytes(const JpegFrame& frame, const ProgressiveScan& scan) {
    std::vector<uint8_t> out;
    ScanCounts counts;
    CountProgressive(frame, scan, counts);
    ScanCodes codes;
    const bool dcScan = scan.spectralStart == 0;
    if (!dcScan || scan.bitHigh == 0) {  // DC refinement sends raw bits only
        bool used[2] = {};
        for (int c : scan.components) used[frame.components[c].tableIndex] = true;
        for (int s = 0; s < 2; ++s) {
            if (!used[s]) continue;
            const HuffmanSpec spec = OptimalSpec(dcScan ? counts.dc[s] : counts.ac[s]);
            PutHuffmanTable(out, !dcScan, s, spec);
            (dcScan ? codes.dc[s] : codes.ac[s]) = MakeCodes(spec);
        }
    }
    PutScanHeader(out, frame, scan.components, scan.spectralStart, scan.spectralEnd, scan.bitHigh, scan.bitLow);
    BitStream bits;
    EncodeProgressive(frame, scan, codes, bits);
    bits.appendStuffed(out);
    return out;
}

// The scans depend only on the coefficients, not on each other, so they are made in
// parallel and written in order.
void PutProgressiveScans(std::vector<uint8_t>& out, const JpegFrame& frame) {
    const std::vector<ProgressiveScan> scans = StandardProgression(static_cast<int>(frame.components.size()));
    std::vector<std::vector<uint8_t>> pieces(scans.size());
    ForEachPart(static_cast<int>(scans.size()), 1, [&](int begin, int end, int) {
        for (int i = begin; i < end; ++i) pieces[i] = ProgressiveScanBytes(frame, scans[i]);
    });
    for (const auto& piece : pieces) out.insert(out.end(), piece.begin(), piece.end());
}

}  // namespace

std::vector<uint8_t> EncodeJpeg(const PackedDib& dib, const JpegSaveRecord& record) {
    if (dib.empty() || dib.width() <= 0 || dib.height() <= 0 || dib.width() > kMaxSide || dib.height() > kMaxSide)
        return {};
    const bool grey = dib.bitCount() <= 8 && dib.hasGreyPalette();
    const int quality = std::clamp(record.quality, 1, 100);
    const int smoothing = std::clamp(record.smoothing, 0, 100);

    const bool progressive = record.progressive != 0;
    const bool optimize = !progressive && record.optimizeHuffman != 0;
    JpegFrame frame = PlanFrame(dib.width(), dib.height(), grey, progressive || optimize);
    const QuantTable tables[2] = {ScaledQuantTable(0, quality), ScaledQuantTable(1, quality)};
    const DctQuantizer quantizers[2] = {MakeDctQuantizer(tables[0]), MakeDctQuantizer(tables[1])};
    const SampleSource source{dib, quantizers, smoothing};

    std::vector<uint8_t> out;
    out.reserve(static_cast<size_t>(dib.width()) * dib.height() / 4 + 1024);
    out.push_back(0xff);
    out.push_back(0xd8);
    PutJfifHeader(out, dib);
    for (int s = 0; s < TableSlots(frame); ++s) PutQuantTable(out, s, tables[s]);
    PutFrameHeader(out, frame, progressive);
    if (progressive || optimize) MakeAllCoefficients(frame, source);
    if (progressive)
        PutProgressiveScans(out, frame);
    else if (optimize)
        PutOptimizedScan(out, frame);
    else
        PutStandardScan(out, frame, source);
    out.push_back(0xff);
    out.push_back(0xd9);
    return out;
}

}  // namespace lx
