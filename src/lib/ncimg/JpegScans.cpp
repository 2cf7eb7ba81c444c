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
    // The same, with the unfinished word of the bit stream in a writer of its own. The
    // sequential scan makes one per block: in the short block loop the word stays in a
    // register, where the whole scan loop has too many other values live to keep it.
    class Block {
    public:
        explicit Block(WritingSink& sink) : codes_(sink.codes_), out_(sink.out_) {}
        void dc(int slot, int symbol, uint32_t extra, int extraBits) { put(codes_.dc[slot], symbol, extra, extraBits); }
        void ac(int slot, int symbol, uint32_t extra, int extraBits) { put(codes_.ac[slot], symbol, extra, extraBits); }
        void bits(uint32_t value, int count) { out_.put(value, count); }

    private:
        void put(const HuffmanCodes& table, int symbol, uint32_t extra, int extraBits) {
            out_.put(static_cast<uint32_t>(table.code[symbol]) << extraBits | extra, table.length[symbol] + extraBits);
        }
        const ScanCodes& codes_;
        BitStream::Writer out_;
    };

    WritingSink(const ScanCodes& codes, BitStream& out) : codes_(codes), out_(out) {}
    void dc(int slot, int symbol, uint32_t extra, int extraBits) { Block(*this).dc(slot, symbol, extra, extraBits); }
    void ac(int slot, int symbol, uint32_t extra, int extraBits) { Block(*this).ac(slot, symbol, extra, extraBits); }
    void bits(uint32_t value, int count) { out_.put(value, count); }

private:
    const ScanCodes& codes_;
    BitStream& out_;
};

constexpr int kZeroRun16 = 0xf0;
constexpr int kMaxEobRun = 0x7fff;
constexpr int kMaxPendingBits = 1000;

// A signed value as its size category and the extra bits that follow the symbol
// (negative values in one's complement).
struct Magnitude {
    int size;
    uint32_t extra;
};
// Signs of coefficients are as good as random, so this takes no branch on them.
inline Magnitude Split(int value) {
    const int32_t sign = value >> 31;  // 0 or -1
    const uint32_t magnitude = static_cast<uint32_t>((value ^ sign) - sign);
    const int size = BitLength(magnitude);
    const uint32_t extra = static_cast<uint32_t>(value + sign) & ((1u << size) - 1);
    return {size, extra};
}

// The same for a value known not to be zero, one instruction shorter.
inline Magnitude SplitNonzero(int value) {
    const int32_t sign = value >> 31;
    const uint32_t magnitude = static_cast<uint32_t>((value ^ sign) - sign);
    const int size = 32 - __builtin_clz(magnitude);
    const uint32_t extra = static_cast<uint32_t>(value + sign) & ((1u << size) - 1);
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

// Magnitudes of all 64 coefficients after a point transform (|value| >> shift), with a
// bit per coefficient whose magnitude is non-zero and one per magnitude of exactly 1.
struct BlockMagnitudes {
    alignas(16) uint16_t value[64];
    uint64_t nonzero = 0;
    uint64_t ones = 0;
};

inline void PointTransform(const int16_t* zz, int shift, BlockMagnitudes& m) {
    m.nonzero = m.ones = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128(), one = _mm_set1_epi16(1);
    const __m128i count = _mm_cvtsi32_si128(shift);
    for (int k = 0; k < 64; k += 16) {
        __m128i v[2];
        for (int h = 0; h < 2; ++h) {
            const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zz + k + 8 * h));
            const __m128i sign = _mm_srai_epi16(x, 15);
            v[h] = _mm_srl_epi16(_mm_sub_epi16(_mm_xor_si128(x, sign), sign), count);
            _mm_store_si128(reinterpret_cast<__m128i*>(m.value + k + 8 * h), v[h]);
        }
        const int zeros = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpeq_epi16(v[0], zero), _mm_cmpeq_epi16(v[1], zero)));
        const int units = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpeq_epi16(v[0], one), _mm_cmpeq_epi16(v[1], one)));
        m.nonzero |= static_cast<uint64_t>(~zeros & 0xffff) << k;
        m.ones |= static_cast<uint64_t>(units) << k;
    }
#else
    for (int k = 0; k < 64; ++k) {
        m.value[k] = static_cast<uint16_t>(static_cast<uint32_t>(std::abs(zz[k])) >> shift);
        m.nonzero |= static_cast<uint64_t>(m.value[k] != 0) << k;
        m.ones |= static_cast<uint64_t>(m.value[k] == 1) << k;
    }
#endif
}

template <class Sink>
inline void CodeBlockSymbols(const int16_t* zz, int& predictor, int slot, Sink& sink) {
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
        const Magnitude ac = SplitNonzero(zz[k]);
        sink.ac(slot, run << 4 | ac.size, ac.extra, ac.size);
        last = k;
    }
    if (last != 63) sink.ac(slot, 0, 0, 0);  // end of block
}

template <class Sink>
inline void CodeSequentialBlock(const int16_t* zz, int& predictor, int slot, Sink& sink) {
    if constexpr (requires { typename Sink::Block; }) {
        typename Sink::Block block(sink);
        CodeBlockSymbols(zz, predictor, slot, block);
    } else {
        CodeBlockSymbols(zz, predictor, slot, sink);
    }
}

// Inlined into each caller, so that a caller built for wider instructions builds the
// whole loop with them.
template <class Sink>
inline __attribute__((always_inline)) void RunSequential(const JpegFrame& frame, int rowBegin, int rowEnd,
                                                         int* predictor, Sink& sink) {
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
        : frame_(frame), scan_(scan), sink_(sink) {
        const int width = scan.spectralEnd - scan.spectralStart + 1;
        band_ = (width >= 64 ? ~uint64_t{0} : ((uint64_t{1} << width) - 1)) << scan.spectralStart;
    }

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
        BlockMagnitudes m;
        PointTransform(zz, scan_.bitLow, m);
        const uint16_t* magnitude = m.value;
        uint64_t nonzero = m.nonzero & band_;
        int last = scan_.spectralStart - 1;
        while (nonzero) {
            const int k = __builtin_ctzll(nonzero);
            nonzero &= nonzero - 1;
            flushEobRun();
            int run = k - last - 1;
            for (; run >= 16; run -= 16) sink_.ac(acSlot(), kZeroRun16, 0, 0);
            const uint32_t value = magnitude[k];
            const int size = BitLength(value);
            const uint32_t extra = zz[k] < 0 ? (~value & ((1u << size) - 1)) : value;
            sink_.ac(acSlot(), run << 4 | size, extra, size);
            last = k;
        }
        if (last < scan_.spectralEnd && ++eobRun_ == kMaxEobRun) flushEobRun();
    }

    // Coefficients already non-zero from earlier scans (magnitude above 1) send one more
    // bit each, after the next symbol; they neither count in nor end a run of zeros.
    void acRefine(const int16_t* zz) {
        BlockMagnitudes m;
        PointTransform(zz, scan_.bitLow, m);
        const uint16_t* magnitude = m.value;
        uint64_t nonzero = m.nonzero & band_;
        const uint64_t fresh = m.ones & band_;  // coefficients that become non-zero in this scan
        const int lastFresh = fresh ? 63 - __builtin_clzll(fresh) : -1;
        int run = 0, previous = scan_.spectralStart - 1;
        blockBitCount_ = 0;
        while (nonzero) {
            const int k = __builtin_ctzll(nonzero);
            nonzero &= nonzero - 1;
            run += k - previous - 1;
            previous = k;
            // A run of 16 zeros is coded only while a new coefficient is still to come;
            // otherwise the end-of-block covers it.
            while (run > 15 && k <= lastFresh) {
                flushEobRun();
                sink_.ac(acSlot(), kZeroRun16, 0, 0);
                run -= 16;
                emitBlockBits();
            }
            if (magnitude[k] > 1) {
                blockBits_[blockBitCount_++] = static_cast<uint8_t>(magnitude[k] & 1);
                continue;
            }
            flushEobRun();
            sink_.ac(acSlot(), run << 4 | 1, zz[k] > 0 ? 1u : 0u, 1);
            emitBlockBits();
            run = 0;
        }
        run += scan_.spectralEnd - previous;
        if (run > 0 || blockBitCount_ > 0) {
            ++eobRun_;
            for (int i = 0; i < blockBitCount_; ++i) pendingBits_[pendingBitCount_++] = blockBits_[i];
            if (eobRun_ == kMaxEobRun || pendingBitCount_ > kMaxPendingBits) flushEobRun();
        }
    }

    void emitBlockBits() {
        for (int i = 0; i < blockBitCount_; ++i) sink_.bits(blockBits_[i], 1);
        blockBitCount_ = 0;
    }

    void flushEobRun() {
        if (eobRun_ > 0) {
            const int size = BitLength(eobRun_) - 1;
            sink_.ac(acSlot(), size << 4, eobRun_ & ((1u << size) - 1), size);
            eobRun_ = 0;
        }
        for (int i = 0; i < pendingBitCount_; ++i) sink_.bits(pendingBits_[i], 1);
        pendingBitCount_ = 0;
    }

    const JpegFrame& frame_;
    const ProgressiveScan& scan_;
    Sink& sink_;
    int predictor_[4] = {};
    uint64_t band_ = 0;  // a bit per coefficient of the scan's spectral band
    uint32_t eobRun_ = 0;
    // Correction bits owed once the EOB run is sent, and those of the current block.
    uint8_t pendingBits_[kMaxPendingBits + 64];
    int pendingBitCount_ = 0;
    uint8_t blockBits_[64];
    int blockBitCount_ = 0;
};

#if defined(__x86_64__)
// The same loop with the shifts and bit scans of BMI1 and BMI2, which processors with AVX2
// have: a shift by a register count is one instruction there instead of three.
__attribute__((target("avx2,bmi,bmi2"))) void EncodeSequentialBmi2(const JpegFrame& frame, int rowBegin,
                                                                   int rowEnd, DcPredictors& predictors,
                                                                   const ScanCodes& codes, BitStream& out) {
    WritingSink sink(codes, out);
    RunSequential(frame, rowBegin, rowEnd, predictors.value, sink);
}
#endif

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
                      const ScanCodes& codes, BitStream& out, JpegSimd simd) {
#if defined(__x86_64__)
    if (simd >= JpegSimd::Avx2) return EncodeSequentialBmi2(frame, rowBegin, rowEnd, predictors, codes, out);
#endif
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
