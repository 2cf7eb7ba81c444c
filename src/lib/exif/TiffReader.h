// TiffReader: the image file directories (IFDs) of a TIFF structure, read through a
// ByteSource.
//
// Exif data is a TIFF structure wherever it lives: a JPEG's APP1 segment, a TIFF file,
// most camera raw files (some with their own magic number instead of 42). Offsets in the
// structure count from its header (`base`); every read is kept inside [base, limit), so a
// hostile offset or count can only make a read fail, never reach outside the structure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ByteSource.h"
#include "PackedDib.h"  // ReadLe16, ReadLe32

namespace lx {

enum class ByteOrder : uint8_t { Little, Big };

// TIFF field types used by Exif.
enum TiffType : uint16_t {
    kTiffByte = 1, kTiffAscii = 2, kTiffShort = 3, kTiffLong = 4, kTiffRational = 5,
    kTiffSByte = 6, kTiffUndefined = 7, kTiffSShort = 8, kTiffSLong = 9, kTiffSRational = 10,
    kTiffFloat = 11, kTiffDouble = 12, kTiffIfd = 13,
};

// Bytes of one value of a field type; 0 for a type this reader does not know.
uint32_t TiffTypeSize(uint16_t type);

struct TiffEntry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint32_t count = 0;
    uint64_t valueOffset = 0;  // absolute offset of the value in the source
    uint64_t byteSize() const { return static_cast<uint64_t>(TiffTypeSize(type)) * count; }
};

struct TiffIfd {
    std::vector<TiffEntry> entries;
    uint32_t next = 0;  // offset of the next IFD in the chain, 0 at its end
    const TiffEntry* find(uint16_t tag) const;
};

// Magic numbers that follow the byte-order mark.
constexpr uint16_t kTiffMagic = 42;
constexpr uint16_t kOrfMagic = 0x4F52;   // "RO" read little-endian
constexpr uint16_t kOrfMagicS = 0x5352;  // "RS", some later models
constexpr uint16_t kRw2Magic = 0x55;

class TiffReader {
public:
    // Reads the 8-byte header at `base`; nullopt unless it has a byte-order mark and one of
    // the known magic numbers. `limit` is where the structure ends in the source.
    static std::optional<TiffReader> Open(ByteSource& source, uint64_t base, uint64_t limit);

    ByteOrder order() const { return order_; }
    uint16_t magic() const { return magic_; }
    uint32_t firstIfd() const { return firstIfd_; }
    uint64_t base() const { return base_; }
    ByteSource& source() const { return *source_; }

    // Whether `length` bytes at structure offset `offset` lie inside the structure.
    bool inside(uint64_t offset, uint64_t length) const {
        return offset <= limit_ - base_ && length <= limit_ - base_ - offset;
    }

    // The IFD at structure offset `offset`; nullopt when it does not fit in the structure.
    // At most kMaxEntries entries are taken; entries of unknown type are dropped.
    std::optional<TiffIfd> readIfd(uint32_t offset) const;
    static constexpr uint16_t kMaxEntries = 1000;

    // Value `index` of an integer field (BYTE, SHORT, LONG, signed ones, IFD).
    std::optional<int64_t> integer(const TiffEntry& entry, uint32_t index = 0) const;
    // The raw bytes of the field's value, or empty when larger than `maxBytes` or outside.
    std::vector<uint8_t> bytes(const TiffEntry& entry, uint32_t maxBytes) const;

    uint16_t get16(const uint8_t* p) const;
    uint32_t get32(const uint8_t* p) const;

private:
    TiffReader() = default;
    ByteSource* source_ = nullptr;
    uint64_t base_ = 0;
    uint64_t limit_ = 0;
    ByteOrder order_ = ByteOrder::Little;
    uint16_t magic_ = 0;
    uint32_t firstIfd_ = 0;
};

// One integer or rational value of `type` stored at `p` in the given byte order;
// nullopt when the type does not hold that kind of value. `p` holds TiffTypeSize(type) bytes.
std::optional<int64_t> DecodeTiffInteger(uint16_t type, ByteOrder order, const uint8_t* p);
std::optional<std::pair<int64_t, int64_t>> DecodeTiffRational(uint16_t type, ByteOrder order, const uint8_t* p);

// Endian helpers shared by the container readers.
inline uint16_t ReadBe16(const uint8_t* p) { return static_cast<uint16_t>((p[0] << 8) | p[1]); }
inline uint32_t ReadBe32(const uint8_t* p) {
    return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
           (static_cast<uint32_t>(p[2]) << 8) | static_cast<uint32_t>(p[3]);
}

}  // namespace lx
