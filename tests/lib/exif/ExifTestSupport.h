// Test support for the Exif reader: a small TIFF structure builder (either byte order,
// any magic number) for crafted files, a frame-only JPEG maker, and (native builds only)
// wrappers around the outside tools that make real files (convert, exiftool).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "ExifReader.h"
#include "TestFiles.h"

namespace lxtest {

using Bytes = std::vector<uint8_t>;

// Lays out IFDs, their out-of-line values and data blobs after an 8-byte header. IFD 0
// is the first IFD; offsets count from the header, as in an Exif segment.
class TiffBuilder {
public:
    explicit TiffBuilder(bool bigEndian = false, uint16_t magic = 42) : big_(bigEndian), magic_(magic) {}

    int addIfd() {
        ifds_.emplace_back();
        return static_cast<int>(ifds_.size() - 1);
    }
    int addBlob(Bytes bytes) {
        blobs_.push_back(std::move(bytes));
        return static_cast<int>(blobs_.size() - 1);
    }
    // The IFD that follows `ifd` in its chain (any index, so a test can make a loop).
    void chain(int ifd, int next) { ifds_[ifd].next = next; }

    void add(int ifd, uint16_t tag, uint16_t type, uint32_t count, Bytes value) {
        ifds_[ifd].entries.push_back({tag, type, count, std::move(value), {}, -1});
    }
    void addShort(int ifd, uint16_t tag, uint16_t v) { add(ifd, tag, 3, 1, u16(v)); }
    void addLong(int ifd, uint16_t tag, uint32_t v) { add(ifd, tag, 4, 1, u32(v)); }
    void addShorts(int ifd, uint16_t tag, const std::vector<uint16_t>& vs) {
        Bytes b;
        for (uint16_t v : vs) append(b, u16(v));
        add(ifd, tag, 3, static_cast<uint32_t>(vs.size()), b);
    }
    void addAscii(int ifd, uint16_t tag, const std::string& text) {
        Bytes b(text.begin(), text.end());
        b.push_back(0);
        add(ifd, tag, 2, static_cast<uint32_t>(b.size()), b);
    }
    // A LONG holding the offset of another IFD (Exif, GPS, SubIFD pointers).
    void addIfdPointer(int ifd, uint16_t tag, int child) { addIfdPointers(ifd, tag, {child}); }
    void addIfdPointers(int ifd, uint16_t tag, const std::vector<int>& children) {
        const auto count = static_cast<uint32_t>(children.size());
        ifds_[ifd].entries.push_back({tag, 4, count, Bytes(4 * count), children, -1});
    }
    // A LONG holding the offset of a blob, and one holding its length.
    void addBlobOffset(int ifd, uint16_t tag, int blob) { ifds_[ifd].entries.push_back({tag, 4, 1, {}, {}, blob}); }
    void addBlobLength(int ifd, uint16_t tag, int blob) {
        addLong(ifd, tag, static_cast<uint32_t>(blobs_[blob].size()));
    }

    Bytes build() const;

    Bytes u16(uint16_t v) const {
        return big_ ? Bytes{uint8_t(v >> 8), uint8_t(v)} : Bytes{uint8_t(v), uint8_t(v >> 8)};
    }
    Bytes u32(uint32_t v) const {
        return big_ ? Bytes{uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)}
                    : Bytes{uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
    }
    static void append(Bytes& to, const Bytes& from) { to.insert(to.end(), from.begin(), from.end()); }

private:
    struct Entry {
        uint16_t tag, type;
        uint32_t count;
        Bytes value;
        std::vector<int> ifdRefs;
        int blobRef;
    };
    struct Ifd {
        std::vector<Entry> entries;
        int next = -1;
    };
    // The entry's value with IFD pointers filled in.
    Bytes resolved(const Entry& e, const std::vector<uint32_t>& ifdAt) const {
        if (e.ifdRefs.empty()) return e.value;
        Bytes b;
        for (int child : e.ifdRefs) append(b, u32(ifdAt[child]));
        return b;
    }
    bool big_;
    uint16_t magic_;
    std::vector<Ifd> ifds_;
    std::vector<Bytes> blobs_;
};

inline Bytes TiffBuilder::build() const {
    // First pass: where every IFD, out-of-line value and blob goes.
    std::vector<uint32_t> ifdAt(ifds_.size());
    uint32_t at = 8;
    for (size_t i = 0; i < ifds_.size(); ++i) {
        ifdAt[i] = at;
        at += 2 + 12 * static_cast<uint32_t>(ifds_[i].entries.size()) + 4;
    }
    std::vector<std::vector<uint32_t>> valueAt(ifds_.size());
    for (size_t i = 0; i < ifds_.size(); ++i)
        for (const Entry& e : ifds_[i].entries) {
            valueAt[i].push_back(at);
            if (e.value.size() > 4) at += static_cast<uint32_t>(e.value.size() + (e.value.size() & 1));
        }
    std::vector<uint32_t> blobAt;
    for (const Bytes& b : blobs_) {
        blobAt.push_back(at);
        at += static_cast<uint32_t>(b.size());
    }
    Bytes out = big_ ? Bytes{'M', 'M'} : Bytes{'I', 'I'};
    append(out, u16(magic_));
    append(out, u32(ifds_.empty() ? 0 : ifdAt[0]));
    for (size_t i = 0; i < ifds_.size(); ++i) {
        append(out, u16(static_cast<uint16_t>(ifds_[i].entries.size())));
        for (size_t k = 0; k < ifds_[i].entries.size(); ++k) {
            const Entry& e = ifds_[i].entries[k];
            append(out, u16(e.tag));
            append(out, u16(e.type));
            append(out, u32(e.count));
            Bytes field = e.blobRef >= 0 ? u32(blobAt[e.blobRef]) : resolved(e, ifdAt);
            if (field.size() > 4) field = u32(valueAt[i][k]);
            field.resize(4, 0);
            append(out, field);
        }
        append(out, u32(ifds_[i].next >= 0 ? ifdAt[ifds_[i].next] : 0));
    }
    for (size_t i = 0; i < ifds_.size(); ++i)
        for (const Entry& e : ifds_[i].entries)
            if (e.value.size() > 4) {
                append(out, resolved(e, ifdAt));
                if (e.value.size() & 1) out.push_back(0);
            }
    for (const Bytes& b : blobs_) append(out, b);
    return out;
}

// A JPEG file image holding `tiff` as its Exif APP1 segment, then a tiny real picture.
inline Bytes JpegWithExif(const Bytes& tiff, const Bytes& picture) {
    Bytes out{0xFF, 0xD8, 0xFF, 0xE1};
    const size_t length = tiff.size() + 8;
    out.push_back(uint8_t(length >> 8));
    out.push_back(uint8_t(length));
    const char id[] = {'E', 'x', 'i', 'f', 0, 0};
    out.insert(out.end(), id, id + 6);
    TiffBuilder::append(out, tiff);
    // The picture without its own start-of-image marker.
    out.insert(out.end(), picture.begin() + 2, picture.end());
    return out;
}

// A JPEG stream the reader measures but nobody decodes: SOI, a quantisation table, a frame
// header of `marker` with the size, one `shade` byte of scan data, EOI.
inline Bytes FrameJpeg(uint16_t width, uint16_t height, uint8_t shade = 0, uint8_t marker = 0xC0) {
    return {0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x04, 0x00, 0x00,                              // SOI, DQT
            0xFF, marker, 0x00, 0x0B, 8, uint8_t(height >> 8), uint8_t(height),           // SOFn, precision, height
            uint8_t(width >> 8), uint8_t(width), 0x01, 0x01, 0x11, 0x00,                   // width, 1 component
            0xFF, 0xDA, 0x00, 0x02, shade, 0xFF, 0xD9};                                    // SOS, data, EOI
}

// A TIFF structure with a make and model in IFD0 and `date` as DateTimeOriginal in its Exif IFD.
inline Bytes TiffWithDate(const std::string& date, bool bigEndian = false, uint16_t magic = 42) {
    TiffBuilder t(bigEndian, magic);
    const int ifd0 = t.addIfd(), exif = t.addIfd();
    t.addAscii(ifd0, 0x10F, "Maker");
    t.addAscii(ifd0, 0x110, "Model X");
    t.addIfdPointer(ifd0, 0x8769, exif);
    t.addAscii(exif, 0x9003, date);
    return t.build();
}

inline std::optional<lx::ShootingTime> TimeOf(const Bytes& file) {
    lx::MemorySource source(file);
    return lx::ReadShootingTime(source);
}

#ifndef _WIN32
// A JPEG picture made by ImageMagick (a solid colour, `width` x `height`).
inline Bytes MakeJpeg(const std::filesystem::path& scratch, int width, int height, const std::string& colour = "red") {
    const auto file = scratch / ("pic" + std::to_string(width) + "x" + std::to_string(height) + ".jpg");
    Run("convert -size " + std::to_string(width) + "x" + std::to_string(height) + " xc:" + colour + " '" +
        file.string() + "'");
    return ReadFile(file);
}

// Runs exiftool over a file in place with the given tag assignments.
inline int ExifTool(const std::string& args, const std::filesystem::path& file) {
    return Run("exiftool -q -q -m -overwrite_original " + args + " '" + file.string() + "' >/dev/null 2>&1");
}

// Photographs made by ImageMagick whose tags exiftool wrote, in a scratch folder of their own.
class ExiftoolPhotos : public ::testing::Test {
protected:
    void SetUp() override { LX_REQUIRE_TOOLS("convert exiftool"); }
    std::filesystem::path photo(const std::string& name, const std::string& tags) {
        const auto path = dir / name;
        WriteFile(path, MakeJpeg(dir.path(), 40, 30));
        EXPECT_EQ(ExifTool(tags, path), 0) << tags;
        return path;
    }
    ScratchDir dir{"exiftool"};
};
#endif

}  // namespace lxtest
