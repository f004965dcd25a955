// SPDX-License-Identifier: MIT
#include "model/tiff_io.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <tiffio.h>

#include <cstring>
#include <functional>
#include <vector>

namespace plyra {
namespace {

QImage pattern(int width, int height, QImage::Format format, const std::function<QRgb(int, int)>& colour)
{
    QImage image(width, height, format);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, colour(x, y));
    return image;
}

// Every alpha from clear to opaque with colours that premultiplication would round away.
QImage unassociatedPattern()
{
    return pattern(17, 9, QImage::Format_ARGB32, [](int x, int y) { return qRgba(x * 15, 255 - y * 20, (x * 7 + y * 31) % 256, (x * 16 + y) % 256); });
}

void expectSamePixels(const QImage& expected, const QImage& actual, const char* what)
{
    ASSERT_EQ(expected.size(), actual.size()) << what;
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x)
            ASSERT_EQ(expected.pixel(x, y), actual.pixel(x, y)) << what << " at " << x << ", " << y;
}

class TiffIoTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }
    QTemporaryDir m_dir;
};

TEST_F(TiffIoTest, PackBitsRoundTripIsExact)
{
    QImage premultiplied(13, 7, QImage::Format_RGBA8888_Premultiplied);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 13; ++x) {
            const int alpha = (x * 20 + y * 3) % 256;
            const uchar bytes[4] = {static_cast<uchar>(alpha * x / 13), static_cast<uchar>(alpha * y / 7), static_cast<uchar>(alpha / 2), static_cast<uchar>(alpha)};
            std::memcpy(premultiplied.scanLine(y) + x * 4, bytes, 4);
        }
    const QImage grey = pattern(9, 4, QImage::Format_Grayscale8, [](int x, int y) { return qRgb(x * 30 + y, x * 30 + y, x * 30 + y); });
    struct Case { const char* file; QImage image; QImage::Format readFormat; std::uint16_t samples; std::uint16_t extra; };
    const std::vector<Case> cases = {
        {"unassociated.tiff", unassociatedPattern(), QImage::Format_RGBA8888, 4, EXTRASAMPLE_UNASSALPHA},
        {"premultiplied.tiff", premultiplied, QImage::Format_RGBA8888_Premultiplied, 4, EXTRASAMPLE_ASSOCALPHA},
        {"opaque.tiff", pattern(31, 5, QImage::Format_RGB32, [](int x, int y) { return qRgb(x * 8, y * 50, 200 - x); }), QImage::Format_RGB888, 3, 0},
        {"grey.tiff", grey, QImage::Format_RGB888, 3, 0},
    };
    for (const Case& c : cases) {
        QString error;
        ASSERT_TRUE(TiffIo::write(c.image, path(c.file), &error)) << error.toStdString();
        const std::optional<QImage> read = TiffIo::read(path(c.file), &error);
        ASSERT_TRUE(read) << error.toStdString();
        ASSERT_EQ(read->format(), c.readFormat) << c.file;
        expectSamePixels(c.image, *read, c.file);
        for (int y = 0; c.image.format() == c.readFormat && y < c.image.height(); ++y) // premultiplied: the bytes too
            EXPECT_EQ(0, std::memcmp(c.image.constScanLine(y), read->constScanLine(y), static_cast<std::size_t>(c.image.width()) * 4)) << "row " << y;
        TIFF* tiff = TIFFOpen(QFile::encodeName(path(c.file)).constData(), "r");
        ASSERT_NE(tiff, nullptr);
        std::uint16_t compression = 0, samples = 0, extraCount = 0, *extra = nullptr;
        TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        const bool hasExtra = TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extra) && extraCount > 0;
        EXPECT_EQ(compression, 32773) << c.file; // PackBits
        EXPECT_EQ(samples, c.samples) << c.file;
        EXPECT_EQ(hasExtra ? extra[0] : 0, c.extra) << c.file;
        TIFFClose(tiff);
    }
}

// Values an 8-bit file would round: every channel differs from its neighbours in the low byte.
QImage deepPattern(QImage::Format format)
{
    QImage image(11, 6, format);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const auto v = [&](int k) { return static_cast<std::uint16_t>((x * 5003 + y * 1237 + k * 331) % 65536); };
            const std::uint16_t alpha = format == QImage::Format_RGBX64 ? 0xffff : v(3);
            const auto scale = [&](std::uint16_t c) {
                return format == QImage::Format_RGBA64_Premultiplied ? static_cast<std::uint16_t>(std::uint32_t{c} * alpha / 65535u) : c;
            };
            auto* p = reinterpret_cast<std::uint16_t*>(image.scanLine(y)) + 4 * x;
            const std::uint16_t values[4] = {scale(v(0)), scale(v(1)), scale(v(2)), alpha};
            std::memcpy(p, values, sizeof values);
        }
    return image;
}

TEST_F(TiffIoTest, SixteenBitImagesKeepEveryValue)
{
    const struct { const char* file; QImage image; QImage::Format readFormat; std::uint16_t samples; } cases[] = {
        {"rgba64.tiff", deepPattern(QImage::Format_RGBA64), QImage::Format_RGBA64, 4},
        {"premultiplied64.tiff", deepPattern(QImage::Format_RGBA64_Premultiplied), QImage::Format_RGBA64_Premultiplied, 4},
        {"rgbx64.tiff", deepPattern(QImage::Format_RGBX64), QImage::Format_RGBX64, 3},
        {"grey16.tiff", deepPattern(QImage::Format_RGBX64).convertToFormat(QImage::Format_Grayscale16),
         QImage::Format_RGBX64, 3},
    };
    for (const auto& c : cases) {
        QString error;
        ASSERT_TRUE(TiffIo::write(c.image, path(c.file), &error)) << error.toStdString();
        const std::optional<QImage> read = TiffIo::read(path(c.file), &error);
        ASSERT_TRUE(read) << error.toStdString();
        ASSERT_EQ(read->format(), c.readFormat) << c.file;
        const QImage expected = c.image.convertToFormat(c.readFormat);
        for (int y = 0; y < expected.height(); ++y)
            ASSERT_EQ(0, std::memcmp(expected.constScanLine(y), read->constScanLine(y), std::size_t(expected.width()) * 8))
                << c.file << " row " << y;
        TIFF* tiff = TIFFOpen(QFile::encodeName(path(c.file)).constData(), "r");
        ASSERT_NE(tiff, nullptr);
        std::uint16_t bits = 0, samples = 0;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        EXPECT_EQ(bits, 16) << c.file;
        EXPECT_EQ(samples, c.samples) << c.file;
        TIFFClose(tiff);
    }
}

TEST_F(TiffIoTest, MissingDamagedOrUnwritableFilesGiveAReason)
{
    ASSERT_TRUE(TiffIo::write(unassociatedPattern(), path("whole.tiff")));
    QFile whole(path("whole.tiff"));
    const QByteArray bytes = whole.open(QIODevice::ReadOnly) ? whole.readAll() : QByteArray();
    const std::vector<std::pair<const char*, std::optional<QByteArray>>> cases = {
        {"none.tiff", std::nullopt},
        {"empty.tiff", QByteArray()},
        {"header.tiff", bytes.left(8)},
        {"half.tiff", bytes.left(bytes.size() / 2)},
        {"junk.tiff", QByteArrayLiteral("II*\0") + QByteArray(64, '\xff')},
        {"text.tiff", QByteArrayLiteral("this is not an image")},
    };
    for (const auto& [name, content] : cases) {
        QFile file(path(name));
        if (content) {
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(*content) == content->size());
            file.close();
        }
        QString error;
        EXPECT_FALSE(TiffIo::read(path(name), &error)) << name;
        EXPECT_TRUE(error.contains(path(name))) << name << ": " << error.toStdString();
    }

    QString error;
    EXPECT_FALSE(TiffIo::write(QImage(), path("null.tiff"), &error));
    EXPECT_TRUE(error.contains(path("null.tiff")));
    EXPECT_FALSE(QFile::exists(path("null.tiff")));
    EXPECT_FALSE(TiffIo::write(unassociatedPattern(), path("no/such/dir/x.tiff"), &error));
    EXPECT_TRUE(error.contains(path("no/such/dir/x.tiff")));
}

} // namespace
} // namespace plyra
