#include "TiffReader.h"


namespace lx {

uint32_t TiffTypeSize(uint16_t type) {
    switch (type) {
    case kTiffByte: case kTiffAscii: case kTiffSByte: case kTiffUndefined: return 1;
    case kTiffShort: case kTiffSShort: return 2;
    case kTiffLong: case kTiffSLong: case kTiffFloat: case kTiffIfd: return 4;
    case kTiffRational: case kTiffSRational: case kTiffDouble: return 8;
    default: return 0;
    }
}

const TiffEntry* TiffIfd::find(uint16_t tag) const {
    for (const TiffEntry& entry : entries)
        if (entry.tag == tag) return &entry;
    return nullptr;
}

std::optional<TiffReader> TiffReader::Open(ByteSource& source, uint64_t base, uint64_t limit) {
    uint8_t header[8];
    if (limit > source.size() || base > limit || limit - base < 8 || !source.read(base, 8, header))
        return std::nullopt;
    TiffReader reader;
    if (header[0] == 'I' && header[1] == 'I') reader.order_ = ByteOrder::Little;
    else if (header[0] == 'M' && header[1] == 'M') reader.order_ = ByteOrder::Big;
    else return std::nullopt;
    reader.magic_ = reader.get16(header + 2);
    if (reader.magic_ != kTiffMagic && reader.magic_ != kOrfMagic && reader.magic_ != kOrfMagicS &&
        reader.magic_ != kRw2Magic)
        return std::nullopt;
    reader.source_ = &source;
    reader.base_ = base;
    reader.limit_ = limit;
    reader.firstIfd_ = reader.get32(header + 4);
    return reader;
}

uint16_t TiffReader::get16(const uint8_t* p) const {
    return order_ == ByteOrder::Little ? ReadLe16(p) : ReadBe16(p);
}

uint32_t TiffReader::get32(const uint8_t* p) const {
    return order_ == ByteOrder::Little ? ReadLe32(p) : ReadBe32(p);
}

std::optional<TiffIfd> TiffReader::readIfd(uint32_t offset) const {
    uint8_t countBytes[2];
    if (!inside(offset, 2) || !source_->read(base_ + offset, 2, countBytes)) return std::nullopt;
    const uint16_t count = get16(countBytes);
    // Some writers leave the next-IFD link out after the last IFD, so it is optional.
    const uint64_t tableSize = 12ull * count;
    if (!inside(offset + 2ull, tableSize)) return std::nullopt;
    std::vector<uint8_t> table = source_->readVector(base_ + offset + 2, static_cast<size_t>(tableSize));
    if (table.size() != tableSize) return std::nullopt;

    TiffIfd ifd;
    uint8_t link[4];
    if (inside(offset + 2ull + tableSize, 4) && source_->read(base_ + offset + 2 + tableSize, 4, link))
        ifd.next = get32(link);
    const uint16_t taken = count < kMaxEntries ? count : kMaxEntries;
    ifd.entries.reserve(taken);
    for (uint16_t i = 0; i < taken; ++i) {
        const uint8_t* p = table.data() + 12u * i;
        TiffEntry entry;
        entry.tag = get16(p);
        entry.type = get16(p + 2);
        entry.count = get32(p + 4);
        if (TiffTypeSize(entry.type) == 0) continue;
        if (entry.byteSize() <= 4) {
            entry.valueOffset = base_ + offset + 2 + 12u * i + 8;
        } else {
            const uint32_t valueAt = get32(p + 8);
            if (!inside(valueAt, entry.byteSize())) continue;
            entry.valueOffset = base_ + valueAt;
        }
        ifd.entries.push_back(entry);
    }
    return ifd;
}

std::optional<int64_t> DecodeTiffInteger(uint16_t type, ByteOrder order, const uint8_t* p) {
    const bool le = order == ByteOrder::Little;
    switch (type) {
    case kTiffByte: case kTiffUndefined: return p[0];
    case kTiffSByte: return static_cast<int8_t>(p[0]);
    case kTiffShort: return le ? ReadLe16(p) : ReadBe16(p);
    case kTiffSShort: return static_cast<int16_t>(le ? ReadLe16(p) : ReadBe16(p));
    case kTiffLong: case kTiffIfd: return le ? ReadLe32(p) : ReadBe32(p);
    case kTiffSLong: return static_cast<int32_t>(le ? ReadLe32(p) : ReadBe32(p));
    default: return std::nullopt;
    }
}

std::optional<std::pair<int64_t, int64_t>> DecodeTiffRational(uint16_t type, ByteOrder order, const uint8_t* p) {
    if (type == kTiffRational || type == kTiffSRational) {
        const bool le = order == ByteOrder::Little;
        const uint32_t num = le ? ReadLe32(p) : ReadBe32(p);
        const uint32_t den = le ? ReadLe32(p + 4) : ReadBe32(p + 4);
        if (type == kTiffRational) return std::pair<int64_t, int64_t>{num, den};
        return std::pair<int64_t, int64_t>{static_cast<int32_t>(num), static_cast<int32_t>(den)};
    }
    // Some writers store whole numbers (an ISO, a focal length) as integers.
    auto whole = DecodeTiffInteger(type, order, p);
    if (!whole) return std::nullopt;
    return std::pair<int64_t, int64_t>{*whole, 1};
}

std::optional<int64_t> TiffReader::integer(const TiffEntry& entry, uint32_t index) const {
    const uint32_t size = TiffTypeSize(entry.type);
    uint8_t v[4];
    if (index >= entry.count || size == 0 || size > 4 ||
        !source_->read(entry.valueOffset + uint64_t(index) * size, size, v))
        return std::nullopt;
    return DecodeTiffInteger(entry.type, order_, v);
}

std::vector<uint8_t> TiffReader::bytes(const TiffEntry& entry, uint32_t maxBytes) const {
    if (entry.byteSize() > maxBytes) return {};
    return source_->readVector(entry.valueOffset, static_cast<size_t>(entry.byteSize()));
}

}  // namespace lx
