// SPDX-License-Identifier: MIT
#include "platform/stills/tiff_encoder.h"

#include "platform/log.h"
#include "platform/user_text.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <memory>

namespace plyra {
namespace {

// Rows per strip: small strips keep the compressor's working set in the cache.
constexpr std::uint32_t kRowsPerStrip = 16;

/// A growing file in memory that libtiff writes through its client procedures.
struct MemoryFile {
    std::vector<std::uint8_t> bytes;
    toff_t position = 0;
    std::string lastError;

    static tsize_t read(thandle_t handle, tdata_t data, tsize_t size)
    {
        auto* file = static_cast<MemoryFile*>(handle);
        const toff_t available = file->position < file->bytes.size() ? file->bytes.size() - file->position : 0;
        const auto count = static_cast<std::size_t>(std::min<toff_t>(available, static_cast<toff_t>(size)));
        std::memcpy(data, file->bytes.data() + file->position, count);
        file->position += count;
        return static_cast<tsize_t>(count);
    }
    static tsize_t write(thandle_t handle, tdata_t data, tsize_t size)
    {
        auto* file = static_cast<MemoryFile*>(handle);
        const auto count = static_cast<std::size_t>(size);
        if (file->position + count > file->bytes.size())
            file->bytes.resize(file->position + count);
        std::memcpy(file->bytes.data() + file->position, data, count);
        file->position += count;
        return size;
    }
    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        auto* file = static_cast<MemoryFile*>(handle);
        const toff_t base = whence == SEEK_CUR ? file->position : whence == SEEK_END ? file->bytes.size() : 0;
        file->position = base + offset;
        return file->position;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) { return static_cast<MemoryFile*>(handle)->bytes.size(); }
    static int map(thandle_t, tdata_t*, toff_t*) { return 0; }
    static void unmap(thandle_t, tdata_t, toff_t) { }
    static int onError(TIFF*, void* self, const char*, const char* format, va_list args)
    {
        static_cast<MemoryFile*>(self)->lastError = formatStringV(format, args);
        return 1;
    }
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }
};

struct TiffClose {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

void setTags(TIFF* tiff, const PixelRows& picture, bool opaque, double dotsPerInch)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, opaque ? 3 : 4);
    if (!opaque) {
        const std::uint16_t extra[] = {EXTRASAMPLE_ASSOCALPHA};
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, extra);
    }
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kRowsPerStrip);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<float>(dotsPerInch));
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<float>(dotsPerInch));
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
}

} // namespace

std::optional<std::vector<std::uint8_t>> TiffEncoder::encode(const PixelRows& picture, double dotsPerInch,
                                                             std::string* error)
{
    auto fail = [error](const std::string& reason) {
        if (error)
            *error = fillIn(userText("TiffEncoder", "cannot encode the TIFF image: %1"), {reason});
        return std::nullopt;
    };
    if (picture.isEmpty())
        return fail(userText("TiffEncoder", "there is no picture to encode"));
    MemoryFile file;
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, &MemoryFile::onError, &file);
    TIFFOpenOptionsSetWarningHandlerExtR(options, &MemoryFile::onWarning, &file);
    std::unique_ptr<TIFF, TiffClose> tiff(TIFFClientOpenExt("frame", "w", &file, &MemoryFile::read, &MemoryFile::write,
        &MemoryFile::seek, &MemoryFile::close, &MemoryFile::size, &MemoryFile::map, &MemoryFile::unmap, options));
    TIFFOpenOptionsFree(options);
    if (!tiff)
        return fail(file.lastError);
    const bool opaque = picture.isOpaque();
    setTags(tiff.get(), picture, opaque, dotsPerInch);
    const StoredPixels stored = opaque ? StoredPixels::Rgb : StoredPixels::PremultipliedRgba;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(picture.width) * (opaque ? 3 : 4));
    for (int y = 0; y < picture.height; ++y) {
        storeRow(picture, y, stored, row.data());
        if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y), 0) < 0)
            return fail(file.lastError);
    }
    if (!TIFFWriteDirectory(tiff.get()))
        return fail(file.lastError);
    tiff.reset();
    return std::move(file.bytes);
}

} // namespace plyra
