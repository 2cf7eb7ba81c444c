#include "JpegWriter.h"

#include "JpegCoefficients.h"
#include "ParallelParts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lx {
namespace {

constexpr int kMaxSide = 65535;
constexpr int kMaxParts = 16;

// Parts of at least minPerPart items (at most kMaxParts, and a few per core so a core that
// falls behind holds up little), run in parallel. The output does not depend on the split.
template <class Fn>
int ForEachPartOf(int count, int minPerPart, Fn fn) {
    const int cores = PartThreads();
    return ForEachPart(count, std::clamp(count / std::max(minPerPart, 1), 1, std::min(kMaxParts, 4 * cores)), fn);
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
    ForEachPartOf(frame.mcusDown, 4, [&](int begin, int end, int) {
        CoefficientMaker maker(source.dib, frame, source.quantizers, source.smoothing);
        for (int row = begin; row < end; ++row) maker.make(row);
    });
}

// The same, counting the symbols of the sequential scan as each row is made, while its
// coefficients are still in the cache. A part does not know the DC values that end the
// part before it, so it counts its first MCU's DC differences from zero; once every part
// is done, those few counts are moved to the right symbols.
ScanCounts MakeAllCoefficientsCounting(JpegFrame& frame, const SampleSource& source) {
    std::vector<ScanCounts> partCounts(kMaxParts);
    std::vector<int> partBegins(kMaxParts, 0);
    const int parts = ForEachPartOf(frame.mcusDown, 4, [&](int begin, int end, int part) {
        CoefficientMaker maker(source.dib, frame, source.quantizers, source.smoothing);
        DcPredictors predictors;
        partBegins[part] = begin;
        for (int row = begin; row < end; ++row) {
            maker.make(row);
            CountSequential(frame, row, row + 1, predictors, partCounts[part]);
        }
    });
    for (int p = 1; p < parts; ++p) {
        const DcPredictors before = PredictorsAfterRow(frame, partBegins[p] - 1);
        for (size_t c = 0; c < frame.components.size(); ++c) {
            const JpegComponent& comp = frame.components[c];
            const int dc = comp.block(0, partBegins[p] * comp.vSampling)[0];
            SymbolCounts& counts = partCounts[p].dc[comp.tableIndex];
            --counts[BitLength(static_cast<uint32_t>(std::abs(dc)))];
            ++counts[BitLength(static_cast<uint32_t>(std::abs(dc - before.value[c])))];
        }
        AddCounts(partCounts[0], partCounts[p]);
    }
    return partCounts[0];
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
// The first part's bytes go out row by row as they are coded; the others are held and
// joined on behind them.
void PutStandardScan(std::vector<uint8_t>& out, const JpegFrame& frame, const SampleSource& source) {
    HuffmanSpec dc[2], ac[2];
    for (int s = 0; s < 2; ++s) {
        dc[s] = StandardDcSpec(s);
        ac[s] = StandardAcSpec(s);
    }
    const ScanCodes codes = PutSequentialTables(out, frame, dc, ac);
    std::vector<BitStream> partBits(kMaxParts);
    const int parts = ForEachPartOf(frame.mcusDown, 8, [&](int begin, int end, int part) {
        JpegFrame rows = PlanFrame(frame.width, frame.height, frame.components.size() == 1, false);
        CoefficientMaker maker(source.dib, rows, source.quantizers, source.smoothing);
        DcPredictors predictors;
        if (begin > 0) {
            maker.make(begin - 1);
            predictors = PredictorsAfterRow(rows, begin - 1);
            partBits[part].reserveBytes(static_cast<size_t>(end - begin) * frame.mcusAcross * 64);
        }
        for (int row = begin; row < end; ++row) {
            maker.make(row);
            EncodeSequential(rows, row, row + 1, predictors, codes, partBits[part]);
            if (begin == 0) partBits[part].drainStuffed(out);
        }
    });
    JoinParts(out, partBits, parts);
}

// The sequential scan with tables made for this image from the symbols counted, coded in
// parallel parts, the first one straight out as above.
void PutOptimizedScan(std::vector<uint8_t>& out, const JpegFrame& frame, const ScanCounts& counts) {
    HuffmanSpec dc[2], ac[2];
    for (int s = 0; s < TableSlots(frame); ++s) {
        dc[s] = OptimalSpec(counts.dc[s]);
        ac[s] = OptimalSpec(counts.ac[s]);
    }
    const ScanCodes codes = PutSequentialTables(out, frame, dc, ac);
    std::vector<BitStream> partBits(kMaxParts);
    const int parts = ForEachPartOf(frame.mcusDown, 8, [&](int begin, int end, int part) {
        DcPredictors predictors = begin > 0 ? PredictorsAfterRow(frame, begin - 1) : DcPredictors();
        for (int row = begin; row < end; ++row) {
            EncodeSequential(frame, row, row + 1, predictors, codes, partBits[part]);
            if (begin == 0) partBits[part].drainStuffed(out);
        }
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
    ForEachPartOf(static_cast<int>(scans.size()), 1, [&](int begin, int end, int) {
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
    if (progressive) {
        MakeAllCoefficients(frame, source);
        PutProgressiveScans(out, frame);
    } else if (optimize) {
        const ScanCounts counts = MakeAllCoefficientsCounting(frame, source);
        PutOptimizedScan(out, frame, counts);
    } else {
        PutStandardScan(out, frame, source);
    }
    out.push_back(0xff);
    out.push_back(0xd9);
    return out;
}

}  // namespace lx
