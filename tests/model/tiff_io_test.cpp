// SPDX-License-Identifier: MIT
#include "model/tiff_io.h"

#include <gtest/gtest.h>

#include <QColorSpace>
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
    QImage grey(9, 4, QImage::Format_Grayscale8);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 9; ++x)
            grey.scanLine(y)[x] = static_cast<uchar>(x * 30 + y);
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
        std::uint16_t compression = 0, samples = 0, extraCount = 0;
        std::uint16_t* extra = nullptr;
        TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        const bool hasExtra = TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extra) && extraCount > 0;
        EXPECT_EQ(compression, 32773) << c.file; // PackBits
        EXPECT_EQ(samples, c.samples) << c.file;
        EXPECT_EQ(hasExtra ? extra[0] : 0, c.extra) << c.file;
        TIFFClose(tiff);
    }
}

TEST_F(TiffIoTest, TheColourProfileTravelsWithThePixels)
{
    QImage source = unassociatedPattern();
    source.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    ASSERT_TRUE(TiffIo::write(source, path("p3.tiff")));
    const std::optional<QImage> read = TiffIo::read(path("p3.tiff"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->colorSpace(), QColorSpace(QColorSpace::DisplayP3));
    expectSamePixels(source, *read, "p3");
    ASSERT_TRUE(TiffIo::write(unassociatedPattern(), path("plain.tiff")));
    EXPECT_FALSE(TiffIo::read(path("plain.tiff"))->colorSpace().isValid());
}

TEST_F(TiffIoTest, OtherLayoutsAreReadThroughLibtiffsConversion)
{
    // A one-channel grey TIFF with LZW, as other programs write it.
    TIFF* tiff = TIFFOpen(QFile::encodeName(path("grey.tiff")).constData(), "w");
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 3u);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 2u);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 2u);
    unsigned char rows[2][3] = {{0, 100, 255}, {7, 8, 9}};
    TIFFWriteScanline(tiff, rows[0], 0, 0);
    TIFFWriteScanline(tiff, rows[1], 1, 0);
    TIFFClose(tiff);

    const std::optional<QImage> read = TiffIo::read(path("grey.tiff"));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->size(), QSize(3, 2));
    EXPECT_EQ(read->pixel(0, 0), qRgba(0, 0, 0, 255));
    EXPECT_EQ(read->pixel(1, 0), qRgba(100, 100, 100, 255));
    EXPECT_EQ(read->pixel(2, 0), qRgba(255, 255, 255, 255));
    EXPECT_EQ(read->pixel(2, 1), qRgba(9, 9, 9, 255));
}

TEST_F(TiffIoTest, MissingDamagedOrUnwritableFilesGiveAReason)
{
    ASSERT_TRUE(TiffIo::write(unassociatedPattern(), path("whole.tiff")));
    QFile whole(path("whole.tiff"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
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

TEST(TiffIo, RecognisesBothByteOrders)
{
    EXPECT_TRUE(TiffIo::hasTiffSignature(QByteArrayLiteral("II*\0rest")));
    EXPECT_TRUE(TiffIo::hasTiffSignature(QByteArrayLiteral("MM\0*rest")));
    EXPECT_FALSE(TiffIo::hasTiffSignature(QByteArrayLiteral("II*")));
    EXPECT_FALSE(TiffIo::hasTiffSignature(QByteArrayLiteral("%PDF-1.4")));
}

} // namespace
} // namespace plyra
