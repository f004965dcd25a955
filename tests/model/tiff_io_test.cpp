// SPDX-License-Identifier: MIT
#include "model/tiff_io.h"

#include <gtest/gtest.h>

#include <QColorSpace>
#include <QFile>
#include <QTemporaryDir>

#include <tiffio.h>

#include <cstring>
#include <vector>

namespace plyra {
namespace {

// Every alpha from clear to opaque with colours that premultiplication would round away.
QImage unassociatedPattern()
{
    QImage image(17, 9, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(x * 15, 255 - y * 20, (x * 7 + y * 31) % 256, (x * 16 + y) % 256));
    return image;
}

QImage premultipliedPattern()
{
    QImage image(13, 7, QImage::Format_RGBA8888_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = (x * 20 + y * 3) % 256;
            line[x * 4 + 0] = static_cast<uchar>(alpha * x / 13);
            line[x * 4 + 1] = static_cast<uchar>(alpha * y / 7);
            line[x * 4 + 2] = static_cast<uchar>(alpha / 2);
            line[x * 4 + 3] = static_cast<uchar>(alpha);
        }
    }
    return image;
}

void expectSameArgb(const QImage& expected, const QImage& actual)
{
    ASSERT_EQ(expected.size(), actual.size());
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x)
            ASSERT_EQ(expected.pixel(x, y), actual.pixel(x, y)) << "at " << x << ", " << y;
}

struct TiffTags {
    std::uint16_t compression = 0;
    std::uint16_t samples = 0;
    std::uint16_t extra = 0;
};

TiffTags tagsOf(const QString& path)
{
    TiffTags tags;
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), "r");
    if (!tiff)
        return tags;
    TIFFGetField(tiff, TIFFTAG_COMPRESSION, &tags.compression);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &tags.samples);
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) && count > 0)
        tags.extra = kinds[0];
    TIFFClose(tiff);
    return tags;
}

class TiffIoTest : public ::testing::Test {
protected:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }
    QTemporaryDir m_dir;
};

TEST_F(TiffIoTest, UnassociatedAlphaRoundTripIsExact)
{
    const QImage source = unassociatedPattern();
    QString error;
    ASSERT_TRUE(TiffIo::write(source, path("a.tiff"), &error)) << error.toStdString();
    const std::optional<QImage> read = TiffIo::read(path("a.tiff"), &error);
    ASSERT_TRUE(read) << error.toStdString();
    EXPECT_EQ(read->format(), QImage::Format_RGBA8888);
    expectSameArgb(source, *read);

    const TiffTags tags = tagsOf(path("a.tiff"));
    EXPECT_EQ(tags.compression, 32773); // PackBits
    EXPECT_EQ(tags.samples, 4);
    EXPECT_EQ(tags.extra, EXTRASAMPLE_UNASSALPHA);
}

TEST_F(TiffIoTest, PremultipliedRoundTripKeepsStoredBytes)
{
    const QImage source = premultipliedPattern();
    ASSERT_TRUE(TiffIo::write(source, path("p.tiff")));
    const std::optional<QImage> read = TiffIo::read(path("p.tiff"));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->format(), QImage::Format_RGBA8888_Premultiplied);
    ASSERT_EQ(read->size(), source.size());
    for (int y = 0; y < source.height(); ++y)
        EXPECT_EQ(0, std::memcmp(source.constScanLine(y), read->constScanLine(y), static_cast<std::size_t>(source.width()) * 4))
            << "row " << y;
    EXPECT_EQ(tagsOf(path("p.tiff")).extra, EXTRASAMPLE_ASSOCALPHA);
}

TEST_F(TiffIoTest, OpaqueImagesAreStoredWithoutAlpha)
{
    QImage source(31, 5, QImage::Format_RGB32);
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x)
            source.setPixel(x, y, qRgb(x * 8, y * 50, 200 - x));
    ASSERT_TRUE(TiffIo::write(source, path("o.tiff")));
    EXPECT_EQ(tagsOf(path("o.tiff")).samples, 3);
    const std::optional<QImage> read = TiffIo::read(path("o.tiff"));
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->hasAlphaChannel());
    expectSameArgb(source, *read);
}

TEST_F(TiffIoTest, TheColourProfileTravelsWithThePixels)
{
    QImage source = unassociatedPattern();
    source.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    ASSERT_TRUE(TiffIo::write(source, path("p3.tiff")));
    const std::optional<QImage> read = TiffIo::read(path("p3.tiff"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->colorSpace(), QColorSpace(QColorSpace::DisplayP3));
    expectSameArgb(source, *read);

    ASSERT_TRUE(TiffIo::write(unassociatedPattern(), path("plain.tiff")));
    EXPECT_FALSE(TiffIo::read(path("plain.tiff"))->colorSpace().isValid());
}

TEST_F(TiffIoTest, GreyImagesComeBackAsTheSameGreys)
{
    QImage source(9, 4, QImage::Format_Grayscale8);
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x)
            source.scanLine(y)[x] = static_cast<uchar>(x * 30 + y);
    ASSERT_TRUE(TiffIo::write(source, path("g.tiff")));
    const std::optional<QImage> read = TiffIo::read(path("g.tiff"));
    ASSERT_TRUE(read);
    expectSameArgb(source, *read);
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

TEST_F(TiffIoTest, MissingFileGivesAReason)
{
    QString error;
    EXPECT_FALSE(TiffIo::read(path("none.tiff"), &error));
    EXPECT_TRUE(error.contains(path("none.tiff"))) << error.toStdString();
}

TEST_F(TiffIoTest, DamagedFilesAreRefused)
{
    ASSERT_TRUE(TiffIo::write(unassociatedPattern(), path("whole.tiff")));
    QFile whole(path("whole.tiff"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();

    const std::vector<std::pair<const char*, QByteArray>> cases = {
        {"empty.tiff", QByteArray()},
        {"header.tiff", bytes.left(8)},
        {"half.tiff", bytes.left(bytes.size() / 2)},
        {"junk.tiff", QByteArrayLiteral("II*\0") + QByteArray(64, '\xff')},
        {"text.tiff", QByteArrayLiteral("this is not an image")},
    };
    for (const auto& [name, content] : cases) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QString error;
        EXPECT_FALSE(TiffIo::read(path(name), &error)) << name;
        EXPECT_FALSE(error.isEmpty()) << name;
    }
}

TEST_F(TiffIoTest, WritingNothingOrNowhereFails)
{
    QString error;
    EXPECT_FALSE(TiffIo::write(QImage(), path("null.tiff"), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(QFile::exists(path("null.tiff")));
    error.clear();
    EXPECT_FALSE(TiffIo::write(unassociatedPattern(), path("no/such/dir/x.tiff"), &error));
    EXPECT_FALSE(error.isEmpty());
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
