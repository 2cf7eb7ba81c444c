// The list's thumbnails as GDI bitmaps through the system codecs: JPEG photographs whose Exif
// data embeds a thumbnail and an orientation (built here: our JPEG encoder plus an APP1
// segment written by hand), JPEGs without one, and damaged files.
#include <windows.h>

#include <gtest/gtest.h>

#include "ImageCodecs.h"
#include "JpegWriter.h"
#include "TestFiles.h"
#include "Thumbnail.h"

using namespace lx;

namespace {

PackedDib Filled(int width, int height, uint32_t leftRgb, uint32_t rightRgb) {
    PackedDib dib = PackedDib::Create(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t c = x < width / 2 ? leftRgb : rightRgb;
            uint8_t* p = dib.row(y) + x * 3;
            p[0] = c & 0xff, p[1] = (c >> 8) & 0xff, p[2] = (c >> 16) & 0xff;
        }
    return dib;
}

void Put16(std::vector<uint8_t>& v, uint16_t x) { v.push_back(x & 0xff), v.push_back(x >> 8); }
void Put32(std::vector<uint8_t>& v, uint32_t x) { Put16(v, x & 0xffff), Put16(v, x >> 16); }
void Entry(std::vector<uint8_t>& v, uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    Put16(v, tag), Put16(v, type), Put32(v, count), Put32(v, value);
}

// `main` with an Exif segment after its start marker: IFD0 holding the orientation, IFD1
// pointing at `thumbnail` (a whole JPEG) stored right after the IFDs.
std::vector<uint8_t> WithExifThumbnail(const std::vector<uint8_t>& main, const std::vector<uint8_t>& thumbnail,
                                       uint16_t orientation) {
    std::vector<uint8_t> tiff = {'I', 'I', 42, 0};
    Put32(tiff, 8);
    Put16(tiff, 1);                              // IFD0 at 8: one entry
    Entry(tiff, 0x0112, 3, 1, orientation);      // Orientation, SHORT
    Put32(tiff, 8 + 2 + 12 + 4);                 // IFD1 follows
    Put16(tiff, 2);                              // IFD1: two entries
    const uint32_t thumbAt = 26 + 2 + 24 + 4;
    Entry(tiff, 0x0201, 4, 1, thumbAt);          // JPEGInterchangeFormat
    Entry(tiff, 0x0202, 4, 1, static_cast<uint32_t>(thumbnail.size()));
    Put32(tiff, 0);
    tiff.insert(tiff.end(), thumbnail.begin(), thumbnail.end());
    std::vector<uint8_t> app1 = {0xff, 0xe1};
    const size_t length = 2 + 6 + tiff.size();
    app1.push_back(static_cast<uint8_t>(length >> 8)), app1.push_back(length & 0xff);
    for (char c : std::string("Exif\0\0", 6)) app1.push_back(static_cast<uint8_t>(c));
    app1.insert(app1.end(), tiff.begin(), tiff.end());
    std::vector<uint8_t> file(main.begin(), main.begin() + 2);
    file.insert(file.end(), app1.begin(), app1.end());
    file.insert(file.end(), main.begin() + 2, main.end());
    return file;
}

struct Pixels {
    int width = 0, height = 0, depth = 0;
    std::vector<uint32_t> rgb;  // top-down, 0xRRGGBB
    uint32_t at(int x, int y) const { return rgb[static_cast<size_t>(y) * width + x]; }
};

Pixels Read(HBITMAP bitmap) {
    Pixels out;
    DIBSECTION section{};
    if (GetObjectW(bitmap, sizeof(section), &section) != sizeof(section)) return out;
    out.width = section.dsBm.bmWidth, out.height = section.dsBm.bmHeight, out.depth = section.dsBm.bmBitsPixel;
    const auto* bits = static_cast<const uint8_t*>(section.dsBm.bmBits);
    const int stride = section.dsBm.bmWidthBytes;
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            const uint8_t* p = bits + static_cast<size_t>(out.height - 1 - y) * stride + x * 3;
            out.rgb.push_back(static_cast<uint32_t>(p[2]) << 16 | p[1] << 8 | p[0]);
        }
    return out;
}

bool Near(uint32_t a, uint32_t b, int tolerance = 40) {
    for (int shift : {0, 8, 16})
        if (std::abs(static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff)) > tolerance)
            return false;
    return true;
}

class ThumbnailTest : public ::testing::Test {
protected:
    std::wstring Write(const std::string& name, const std::vector<uint8_t>& bytes) {
        lxtest::WriteFile(dir_ / name, bytes);
        return (dir_ / name).wstring();
    }
    std::vector<uint8_t> Jpeg(const PackedDib& dib) {
        JpegSaveRecord record;
        record.quality = 95;
        return EncodeJpeg(dib, record);
    }
    // A grey 400 x 300 photograph embedding a red-and-blue thumbnail of the given size.
    std::wstring Camera(const std::string& name, int thumbWidth, int thumbHeight, uint16_t orientation) {
        const auto thumb = Jpeg(Filled(thumbWidth, thumbHeight, 0xff0000, 0x0000ff));
        return Write(name, WithExifThumbnail(Jpeg(Filled(400, 300, 0x808080, 0x808080)), thumb, orientation));
    }
    // The thumbnail's pixels (the bitmap freed again); width 0 when none was made.
    static Pixels ThumbnailOf(const std::wstring& path) {
        HBITMAP bitmap = MakeThumbnail(path);
        if (!bitmap) return {};
        Pixels px = Read(bitmap);
        DeleteObject(bitmap);
        return px;
    }
    lxtest::ScratchDir dir_{"thumbnail-win"};
};

}  // namespace

TEST_F(ThumbnailTest, APlainJpegIsDecodedWholeAndReducedTo24Bits) {
    const Pixels px = ThumbnailOf(Write("plain.jpg", Jpeg(Filled(400, 300, 0x00c000, 0xffff00))));
    ASSERT_EQ(px.width, 72);
    EXPECT_EQ(px.height, 54);
    EXPECT_EQ(px.depth, 24);
    EXPECT_TRUE(Near(px.at(10, 27), 0x00c000)) << std::hex << px.at(10, 27);
    EXPECT_TRUE(Near(px.at(60, 27), 0xffff00)) << std::hex << px.at(60, 27);
}

TEST_F(ThumbnailTest, TheExifThumbnailServesTurnedUprightByTheFilesOrientation) {
    // The main picture is grey, the embedded one red and blue: the colours tell which served.
    const Pixels px = ThumbnailOf(Camera("camera.jpg", 160, 120, 6));
    // 160 x 120 turned a quarter clockwise is 120 x 160: the red left half comes on top.
    ASSERT_EQ(px.width, 54);
    EXPECT_EQ(px.height, 72);
    EXPECT_TRUE(Near(px.at(27, 8), 0xff0000)) << std::hex << px.at(27, 8);
    EXPECT_TRUE(Near(px.at(27, 64), 0x0000ff)) << std::hex << px.at(27, 64);
}

TEST_F(ThumbnailTest, ASmallExifThumbnailIsPassedOverForTheWholePicture) {
    const Pixels px = ThumbnailOf(Camera("small.jpg", 64, 48, 1));
    ASSERT_EQ(px.width, 72);
    EXPECT_EQ(px.height, 54);
    EXPECT_TRUE(Near(px.at(10, 27), 0x808080, 8)) << std::hex << px.at(10, 27);
}

TEST_F(ThumbnailTest, TruncatedAndMissingFilesGiveNoBitmap) {
    auto bytes = Jpeg(Filled(400, 300, 0x00c000, 0xffff00));
    bytes.resize(200);
    EXPECT_EQ(MakeThumbnail(Write("cut.jpg", bytes)), nullptr);
    EXPECT_EQ(MakeThumbnail((dir_ / "absent.jpg").wstring()), nullptr);
    EXPECT_EQ(MakeThumbnail(Write("empty.png", std::vector<uint8_t>())), nullptr);
}
