#include "JpegEntropy.h"

#include <cstring>

namespace lx {

const std::array<uint8_t, 80> kNaturalOrderPadded = [] {
    std::array<uint8_t, 80> order{};
    for (int k = 0; k < 80; ++k) order[k] = k < 64 ? kZigzagToNatural[k] : 63;
    return order;
}();

bool HuffmanDecoder::build(const HuffmanSpec& spec, bool dc) {
    fast.fill(0);
    acFast.fill(0);
    maxCode.fill(-1);
    valueOffset.fill(0);
    int32_t code = 0;
    int index = 0;
    for (int length = 1; length <= 16; ++length) {
        const int n = spec.counts[length - 1];
        if (n) {
            valueOffset[length] = index - code;
            for (int i = 0; i < n; ++i, ++code, ++index) {
                if (index >= 256 || code >= (1 << length)) return false;
                const uint8_t symbol = spec.symbols[index];
                if (dc && symbol > 15) return false;
                symbols[index] = symbol;
                if (length <= kLookBits) {
                    const int shift = kLookBits - length;
                    for (int j = code << shift; j < (code + 1) << shift; ++j)
                        fast[j] = static_cast<uint16_t>(length << 8 | symbol);
                }
            }
            // The all-ones code of a length stays unused, as every encoder leaves it.
            if (code >= (1 << length)) return false;
            maxCode[length] = code - 1;
        }
        code <<= 1;
    }
    if (!dc) {
        for (int look = 0; look < (1 << kLookBits); ++look) {
            const int length = fast[look] >> 8, rs = fast[look] & 0xFF, size = rs & 15;
            if (!length || !size || length + size > kLookBits) continue;
            const int raw = (look >> (kLookBits - length - size)) & ((1 << size) - 1);
            const int value = raw < (1 << (size - 1)) ? raw - (1 << size) + 1 : raw;
            acFast[look] = static_cast<int32_t>(static_cast<uint32_t>(value) << 16) | (rs >> 4) << 4 | (length + size);
        }
    }
    return true;
}

void JpegBitReader::fill() {
    while (bits_ <= 56) {
        if (marker_ >= 0) {
            acc_ <<= 8;
            bits_ += 8;
            fakeBits_ += 8;
            continue;
        }
        // Eight plain bytes at once where no 0xFF can hide among them.
        if (size_ - pos_ >= 8) {
            uint64_t word;
            std::memcpy(&word, data_ + pos_, 8);
            // A byte of 0xFF has all its bits set: test for it with the classic zero-byte trick.
            const uint64_t inverted = ~word;
            if (((inverted - 0x0101010101010101ull) & ~inverted & 0x8080808080808080ull) == 0) {
                const int take = bits_ > 7 ? (64 - bits_) / 8 : 7;  // 1..7 bytes, as many as fit
                acc_ = acc_ << (take * 8) | __builtin_bswap64(word) >> (64 - take * 8);
                pos_ += take;
                bits_ += take * 8;
                continue;
            }
        }
        if (pos_ >= size_) {
            marker_ = 0xD9;
            continue;
        }
        uint8_t c = data_[pos_];
        if (c == 0xFF) {
            size_t p = pos_ + 1;
            while (p < size_ && data_[p] == 0xFF) ++p;
            if (p >= size_) {
                marker_ = 0xD9;
                pos_ = size_;
                continue;
            }
            if (data_[p] != 0) {
                marker_ = data_[p];
                pos_ = p - 1;
                continue;
            }
            pos_ = p + 1;  // 0xFF 0x00, after any fill bytes, stands for one 0xFF of data
        } else {
            ++pos_;
        }
        acc_ = acc_ << 8 | c;
        bits_ += 8;
    }
}

int JpegBitReader::decodeLong(const HuffmanDecoder& table) {
    for (int length = HuffmanDecoder::kLookBits + 1; length <= 16; ++length) {
        const int32_t code = static_cast<int32_t>(peek(length));
        if (code <= table.maxCode[length]) {
            skip(length);
            return table.symbols[(code + table.valueOffset[length]) & 0xFF];
        }
    }
    skip(16);  // no such code: damaged data, read as a zero
    return 0;
}

void JpegBitReader::seekMarker() {
    for (;;) {
        while (pos_ < size_ && data_[pos_] != 0xFF) ++pos_;
        size_t p = pos_ + 1;
        while (p < size_ && data_[p] == 0xFF) ++p;
        if (p >= size_) {
            marker_ = 0xD9;
            pos_ = size_;
            return;
        }
        if (data_[p] != 0) {
            marker_ = data_[p];
            pos_ = p - 1;
            return;
        }
        pos_ = p + 1;
    }
}

void JpegBitReader::restart(int expected) {
    acc_ = 0;
    bits_ = fakeBits_ = 0;
    if (marker_ < 0) seekMarker();
    for (;;) {
        const int rst = marker_ - 0xD0;
        const bool isRestart = rst >= 0 && rst <= 7;
        enum { Take, SkipAndLook, Leave } action;
        if (isRestart && rst == expected) action = Take;
        else if (marker_ < 0xC0) action = SkipAndLook;
        else if (!isRestart || marker_ == 0xD9) action = Leave;
        else if (rst == ((expected + 1) & 7) || rst == ((expected + 2) & 7)) action = Leave;
        else if (rst == ((expected + 7) & 7) || rst == ((expected + 6) & 7)) action = SkipAndLook;
        else action = Take;
        if (action == Leave) return;
        pos_ += 2;
        marker_ = -1;
        if (action == Take) {
            insufficient_ = false;
            return;
        }
        seekMarker();
    }
}

bool DecodeSequentialBlock(JpegBitReader& in, const HuffmanDecoder& dcTable, const HuffmanDecoder& acTable, int& dc,
                           int16_t* block, bool keepAc) {
    const int s = in.decode(dcTable);
    const int diff = s ? in.value(s) : 0;
    dc = static_cast<int>(static_cast<uint32_t>(dc) + static_cast<uint32_t>(diff));
    block[0] = static_cast<int16_t>(dc);
    bool ac = false;
    for (int k = 1; k < 64; ++k) {
        in.ensure(32);  // enough for any code and its value
        const int32_t hit = acTable.acFast[in.peek(HuffmanDecoder::kLookBits)];
        if (hit) {
            in.skip(hit & 15);
            k += (hit >> 4) & 15;
            if (keepAc) block[kNaturalOrderPadded[k]] = static_cast<int16_t>(hit >> 16);
            ac = true;
            continue;
        }
        const int rs = in.decode(acTable);
        const int run = rs >> 4, size = rs & 15;
        if (size) {
            k += run;
            const int value = in.value(size);
            if (keepAc) block[kNaturalOrderPadded[k]] = static_cast<int16_t>(value);
            ac = true;
        } else {
            if (run != 15) break;
            k += 15;
        }
    }
    in.noteEnd();
    return ac && keepAc;
}

void DecodeDcFirst(JpegBitReader& in, const HuffmanDecoder& dcTable, int& dc, int al, int16_t* block) {
    const int s = in.decode(dcTable);
    const int diff = s ? in.value(s) : 0;
    dc = static_cast<int>(static_cast<uint32_t>(dc) + static_cast<uint32_t>(diff));
    block[0] = static_cast<int16_t>(static_cast<uint32_t>(dc) << al);
    in.noteEnd();
}

void DecodeDcRefine(JpegBitReader& in, int al, int16_t* block) {
    if (in.bits(1)) block[0] = static_cast<int16_t>(block[0] | (1 << al));
    in.noteEnd();
}

void DecodeAcFirst(JpegBitReader& in, const HuffmanDecoder& acTable, int ss, int se, int al, uint32_t& eobRun,
                   int16_t* block) {
    if (eobRun) {
        --eobRun;
        return;
    }
    for (int k = ss; k <= se; ++k) {
        const int rs = in.decode(acTable);
        const int run = rs >> 4, size = rs & 15;
        if (size) {
            k += run;
            block[kNaturalOrderPadded[k]] = static_cast<int16_t>(static_cast<uint32_t>(in.value(size)) << al);
        } else if (run == 15) {
            k += 15;
        } else {
            eobRun = (1u << run) - 1;
            if (run) eobRun += in.bits(run);
            break;
        }
    }
    in.noteEnd();
}

namespace {

// A coefficient already nonzero takes one correction bit of the refinement.
void RefineNonzero(JpegBitReader& in, int16_t& coef, int p1) {
    if (in.bits(1) && (coef & p1) == 0) coef = static_cast<int16_t>(coef >= 0 ? coef + p1 : coef - p1);
}

}  // namespace

void DecodeAcRefine(JpegBitReader& in, const HuffmanDecoder& acTable, int ss, int se, int al, uint32_t& eobRun,
                    int16_t* block) {
    const int p1 = 1 << al;
    int k = ss;
    if (eobRun == 0) {
        for (; k <= se; ++k) {
            const int rs = in.decode(acTable);
            int run = rs >> 4;
            int value = 0;
            if (rs & 15) {
                value = in.bits(1) ? p1 : -p1;
            } else if (run != 15) {
                eobRun = 1u << run;
                if (run) eobRun += in.bits(run);
                break;
            }
            // Skip `run` zero coefficients, refining the nonzero ones passed on the way.
            for (; k <= se; ++k) {
                int16_t& coef = block[kNaturalOrderPadded[k]];
                if (coef != 0) {
                    RefineNonzero(in, coef, p1);
                } else if (--run < 0) {
                    break;
                }
            }
            if (value) block[kNaturalOrderPadded[k]] = static_cast<int16_t>(value);
        }
    }
    if (eobRun > 0) {
        for (; k <= se; ++k) {
            int16_t& coef = block[kNaturalOrderPadded[k]];
            if (coef != 0) RefineNonzero(in, coef, p1);
        }
        --eobRun;
    }
    in.noteEnd();
}

}  // namespace lx
