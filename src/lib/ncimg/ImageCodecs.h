// The codec library's operations, for the tools to include: everything that turns files
// or memory into images and images into files. Images are lx::PackedDib values; whatever
// an operation returns belongs to the caller.
//
//   Which formats           kImageFormats, FindImageFormat(type), ImageTypeFromName(name)
//   What a file is          ProbeImageType(path), ProbeImageBytes(head, tail, name)
//   Reading                 LoadImageFile(path), LoadImageBytes(bytes, name),
//                           LoadBmpFromMemory(block), LoadJpegFromMemory(block)
//   Writing (non-zero = ok) SaveJpegFile, SaveBmpFile, SaveGifFile, SaveTgaFile, SaveSunFile, SavePcxFile,
//                           SaveTiffFile, SavePngFile, SavePnmFile, SaveSgiFile,
//                           SaveImageByType; SaveFlashPixFile and SaveJpeg2000File write
//                           nothing and return 0
//   Changing depth          ConvertDepth(dib, 24), CreateBlankImage(width, height, colour)
//   Upright photographs     ReadExifOrientation(bytes), OrientUpright(dib, orientation)
//
// JPEG encoding itself (EncodeJpeg and its JpegSaveRecord) lives in JpegWriter.h.
#pragma once

#include "ImageFormats.h"
#include "ImageLoad.h"
#include "ImageLoadOrientation.h"
#include "ImageProbe.h"
#include "ImageSave.h"
#include "ImageSaveConvert.h"
