#include "JpegScans.h"

#include <cstdlib>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lx {
namespace {

// Symbols go either to a tally or, with their extra bits, into a bit stream. The scan
// code is written once against this interface and instantiated for both.
class CountingSink {
public:
    explicit CountingSink(ScanCounts& counts) : counts_(counts) {}
    void dc(int slot, int symbol, uint32_t, int) { ++counts_.dc[slot][symbol]; }
    void ac(int slot, int symbol, uint32_t, int) { ++counts_.ac[slot][symbol]; }
    void bits(uint32_t, int) {}

private:
    ScanCounts& counts_;
};

class WritingSink {
public:
    WritingSink(const ScanCodes& codes, BitStream& out) : codes_(codes), out_(out) {}
    void dc(int slot, int symbol, uint32_t extra, int extraBits) { put(codes_.dc[slot], symbol, extra, extraBits); }
    void ac(int slot, int symbol, uint32_t extra, int extraBits) { put(codes_.ac[slot], symbol, extra, extraBits); }
    void bits(uint32_t value, int count) { out_.put(value, count); }

private:
    void put(const HuffmanCodes& table, int symbol, uint32_t extra, int extraBits) {
        out_.put(static_cast<uint32_t>(table.code[symbol]) << extraBits | extra, table.length[symbol] + extraBits);
    }
    const ScanCodes& codes_;
    BitStream& out_;
};

constexpr int kZeroRun16 = 0xf0;
constexpr int kMaxEobRun = 0x7fff;
constexpr size_t kMaxPendingBits = 1000;

// A signed value as its size category and the extra bits that follow the symbol
// (negative values in one's complement).
struct Magnitude {
    int size;
    uint32_t extra;
};
inline Magnitude Split(int value) {
    const uint32_t magnitude = static_cast<uint32_t>(std::abs(value));
    const int size = BitLength(magnitude);
    const uint32_t extra = value < 0 ? (static_cast<uint32_t>(value - 1) & ((1u << size) - 1)) : magnitude;
    return {size, extra};
}

// Bit k set when zigzag coefficient k is non-zero.
inline uint64_t NonzeroMask(const int16_t* zz) {
    uint64_t mask = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (int k = 0; k < 64; k += 16) {
        const __m128i a = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(zz + k)), zero);
        const __m128i b = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(zz + k + 8)), zero);
        mask |= static_cast<uint64_t>(~_mm_movemask_epi8(_mm_packs_epi16(a, b)) & 0xffff) << k;
    }
#else
    for (int k = 0; k < 64; ++k) mask |= static_cast<uint64_t>(zz[k] != 0) << k;
#endif
    return mask;
}

template <class Sink>
inline void CodeSequentialBlock(const int16_t* zz, int& predictor, int slot, Sink& sink) {
    const Magnitude dc = Split(zz[0] - predictor);
    predictor = zz[0];
    sink.dc(slot, dc.size, dc.extra, dc.size);

    uint64_t nonzero = NonzeroMask(zz) & ~uint64_t{1};
    int last = 0;
    while (nonzero) {
        const int k = __builtin_ctzll(nonzero);
        nonzero &= nonzero - 1;
        int run = k - last - 1;
        for (; run >= 16; run -= 16) sink.ac(slot, kZeroRun16, 0, 0);
        const Magnitude ac = Split(zz[k]);
        sink.ac(slot, run << 4 | ac.size, ac.extra, ac.size);
        last = k;
    }
    if (last != 63) sink.ac(slot, 0, 0, 0);  // end of block
}

template <class Sink>
void RunSequential(const JpegFrame& frame, int rowBegin, int rowEnd, int* predictor, Sink& sink) {
    for (int my = rowBegin; my < rowEnd; ++my) {
        for (int mx = 0; mx < frame.mcusAcross; ++mx) {
            for (size_t c = 0; c < frame.components.size(); ++c) {
                const JpegComponent& comp = frame.components[c];
                for (int y = 0; y < comp.vSampling; ++y)
                    for (int x = 0; x < comp.hSampling; ++x)
                        CodeSequentialBlock(comp.block(mx * comp.hSampling + x, my * comp.vSampling + y),
                                            predictor[c], comp.tableIndex, sink);
            }
        }
    }
}

// One progressive scan. AC scans carry runs of empty blocks (EOB runs) across blocks,
// and refinement scans owe correction bits that follow the symbol closing the run.
template <class Sink>
class ProgressiveCoder {
public:
    ProgressiveCoder(const JpegFrame& frame, const ProgressiveScan& scan, Sink& sink)
        : frame_(frame), scan_(scan), sink_(sink) {}

    void run() {
        const bool dcScan = scan_.spectralStart == 0;
        forEachBlock([&](int c, const int16_t* zz) {
            if (dcScan && scan_.bitHigh == 0) dcFirst(c, zz);
            else if (dcScan) sink_.bits((zz[0] >> scan_.bitLow) & 1, 1);
            else if (scan_.bitHigh == 0) acFirst(zz);
            else acRefine(zz);
        });
        flushEobRun();
    }

private:
    // A scan of one component covers only the blocks holding real samples; a scan of
    // several goes MCU by MCU, padding blocks included.
    template <class Fn>
    void forEachBlock(Fn fn) {
        if (scan_.components.size() == 1) {
            const int c = scan_.components[0];
            const JpegComponent& comp = frame_.components[c];
            for (int by = 0; by < comp.heightInBlocks; ++by)
                for (int bx = 0; bx < comp.widthInBlocks; ++bx) fn(c, comp.block(bx, by));
            return;
        }
        for (int my = 0; my < frame_.mcusDown; ++my)
            for (int mx = 0; mx < frame_.mcusAcross; ++mx)
                for (int c : scan_.components) {
                    const JpegComponent& comp = frame_.components[c];
                    for (int y = 0; y < comp.vSampling; ++y)
                        for (int x = 0; x < comp.hSampling; ++x)
                            fn(c, comp.block(mx * comp.hSampling + x, my * comp.vSampling + y));
                }
    }

    int acSlot() const { return frame_.components[scan_.components[0]].tableIndex; }

    void dcFirst(int c, const int16_t* zz) {
        const int value = zz[0] >> scan_.bitLow;  // arithmetic shift, as the point transform of DC
        const Magnitude m = Split(value - predictor_[c]);
        predictor_[c] = value;
        sink_.dc(frame_.components[c].tableIndex, m.size, m.extra, m.size);
    }

    void acFirst(const int16_t* zz) {
        int run = 0;
        for (int k = scan_.spectralStart; k <= scan_.spectralEnd; ++k) {
            const int value = zz[k];
            const uint32_t magnitude = static_cast<uint32_t>(std::abs(value)) >> scan_.bitLow;
            if (magnitude == 0) {
                ++run;
                continue;
            }
            flushEobRun();
            for (; run >= 16; run -= 16) sink_.ac(acSlot(), kZeroRun16, 0, 0);
            const int size = BitLength(magnitude);
            const uint32_t extra = value < 0 ? (~magnitude & ((1u << size) - 1)) : magnitude;
            sink_.ac(acSlot(), run << 4 | size, extra, size);
            run = 0;
        }
        if (run > 0 && ++eobRun_ == kMaxEobRun) flushEobRun();
    }

    void acRefine(const int16_t* zz) {
        int magnitude[64];
        int lastNew = -1;  // the last coefficient that becomes non-zero in this scan
        for (int k = scan_.spectralStart; k <= scan_.spectralEnd; ++k) {
            magnitude[k] = std::abs(zz[k]) >> scan_.bitLow;
            if (magnitude[k] == 1) lastNew = k;
        }
        int run = 0;
        blockBits_.clear();
        for (int k = scan_.spectralStart; k <= scan_.spectralEnd; ++k) {
            if (magnitude[k] == 0) {
                ++run;
                continue;
            }
            // A run of 16 zeros is coded only while a new coefficient is still to come;
            // otherwise the end-of-block covers it.
            while (run > 15 && k <= lastNew) {
                flushEobRun();
                sink_.ac(acSlot(), kZeroRun16, 0, 0);
                run -= 16;
                emitBlockBits();
            }
            if (magnitude[k] > 1) {
                blockBits_.push_back(static_cast<uint8_t>(magnitude[k] & 1));  // already known: one more bit
                continue;
            }
            flushEobRun();
            sink_.ac(acSlot(), run << 4 | 1, zz[k] > 0 ? 1u : 0u, 1);
            emitBlockBits();
            run = 0;
        }
        if (run > 0 || !blockBits_.empty()) {
            ++eobRun_;
            pendingBits_.insert(pendingBits_.end(), blockBits_.begin(), blockBits_.end());
            if (eobRun_ == kMaxEobRun || pendingBits_.size() > kMaxPendingBits) flushEobRun();
        }
    }

    void emitBlockBits() {
        for (uint8_t bit : blockBits_) sink_.bits(bit, 1);
        blockBits_.clear();
    }

    void flushEobRun() {
        if (eobRun_ > 0) {
            const int size = BitLength(eobRun_) - 1;
            sink_.ac(acSlot(), size << 4, eobRun_ & ((1u << size) - 1), size);
            eobRun_ = 0;
        }
        for (uint8_t bit : pendingBits_) sink_.bits(bit, 1);
        pendingBits_.clear();
    }

    const JpegFrame& frame_;
    const ProgressiveScan& scan_;
    Sink& sink_;
    int predictor_[4] = {};
    uint32_t eobRun_ = 0;
    std::vector<uint8_t> pendingBits_;
    std::vector<uint8_t> blockBits_;
};

}  // namespace

DcPredictors PredictorsAfterRow(const JpegFrame& frame, int row) {
    DcPredictors p;
    for (size_t c = 0; c < frame.components.size(); ++c) {
        const JpegComponent& comp = frame.components[c];
        p.value[c] = comp.block(frame.mcusAcross * comp.hSampling - 1, (row + 1) * comp.vSampling - 1)[0];
    }
    return p;
}

void CountSequential(const JpegFrame& frame, int rowBegin, int rowEnd, DcPredictors& predictors, ScanCounts& counts) {
    CountingSink sink(counts);
    RunSequential(frame, rowBegin, rowEnd, predictors.value, sink);
}

void EncodeSequential(const JpegFrame& frame, int rowBegin, int rowEnd, DcPredictors& predictors,
                      const ScanCodes& codes, BitStream& out) {
    WritingSink sink(codes, out);
    RunSequential(frame, rowBegin, rowEnd, predictors.value, sink);
}

std::vector<ProgressiveScan> StandardProgression(int componentCount) {
    // DC: first all but the lowest bit, then that bit. Luma AC: a low band early, the
    // rest at reduced precision, then two refinements. Chroma AC: whole band at once.
    if (componentCount == 1) {
        return {{{0}, 0, 0, 0, 1},  {{0}, 1, 5, 0, 2}, {{0}, 6, 63, 0, 2},
                {{0}, 1, 63, 2, 1}, {{0}, 0, 0, 1, 0}, {{0}, 1, 63, 1, 0}};
    }
    return {{{0, 1, 2}, 0, 0, 0, 1}, {{0}, 1, 5, 0, 2},  {{2}, 1, 63, 0, 1},     {{1}, 1, 63, 0, 1},
            {{0}, 6, 63, 0, 2},      {{0}, 1, 63, 2, 1}, {{0, 1, 2}, 0, 0, 1, 0}, {{2}, 1, 63, 1, 0},
            {{1}, 1, 63, 1, 0},      {{0}, 1, 63, 1, 0}};
}

void CountProgressive(const JpegFrame& frame, const ProgressiveScan& scan, ScanCounts& counts) {
    CountingSink sink(counts);
    ProgressiveCoder<CountingSink>(frame, scan, sink).run();
}

void EncodeProgressive(const JpegFrame& frame, const ProgressiveScan& scan, const ScanCodes& codes, BitStream& out) {
    WritingSink sink(codes, out);
    ProgressiveCoder<WritingSink>(frame, scan, sink).run();
}

}  // namespace lx
