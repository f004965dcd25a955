// SPDX-License-Identifier: MIT
// Large photographs open; files that claim absurd sizes, or are not files at all, are
// refused with their reason, quickly and without allocating for what they claim.
#include "model/display_image.h"
#include "model/image_limits.h"
#include "model/track_image.h"
#include "platform/stop_request.h"

#include "document_test_support.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>

#include <chrono>
#include <fstream>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>

namespace plyra {
namespace {

using Clock = std::chrono::steady_clock;

long peakResidentKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

// A one-page PDF whose MediaBox is size × size points, with a correct cross-reference table.
QByteArray pdfWithPage(int size)
{
    const QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + QByteArray::number(size) + " " + QByteArray::number(size) + "] >>",
    };
    QByteArray pdf = "%PDF-1.4\n";
    QList<qsizetype> offsets;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        offsets.append(pdf.size());
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const qsizetype xref = pdf.size();
    pdf += "xref\n0 4\n0000000000 65535 f \n";
    for (qsizetype offset : offsets)
        pdf += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    pdf += "trailer\n<< /Size 4 /Root 1 0 R >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
    return pdf;
}

// A little-endian TIFF header and directory claiming width × height RGB pixels.
QByteArray tiffClaiming(std::uint32_t width, std::uint32_t height)
{
    QByteArray bytes("II*\0\x08\0\0\0", 8);
    auto put16 = [&bytes](std::uint16_t v) { bytes.append(static_cast<char>(v & 0xff)).append(static_cast<char>(v >> 8)); };
    auto put32 = [&put16](std::uint32_t v) { put16(static_cast<std::uint16_t>(v & 0xffff)); put16(static_cast<std::uint16_t>(v >> 16)); };
    const std::vector<std::array<std::uint32_t, 3>> entries{
        {256, 4, width}, {257, 4, height}, {258, 3, 8}, {259, 3, 1}, {262, 3, 2},
        {273, 4, 8}, {277, 3, 3}, {278, 4, height}, {279, 4, 3u * width * height},
    };
    put16(static_cast<std::uint16_t>(entries.size()));
    for (const auto& [tag, type, value] : entries) {
        put16(static_cast<std::uint16_t>(tag));
        put16(static_cast<std::uint16_t>(type));
        put32(1);
        put32(value);
    }
    put32(0);
    return bytes;
}

class LargeImage : public ::testing::Test {
public:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

protected:
    void TearDown() override { StopRequest::clear(); }
    QTemporaryDir m_dir;
};

TEST_F(LargeImage, AFortyEightMegapixelPhotographOpensAndRenders)
{
    QImage photo(8000, 6000, QImage::Format_RGB32);
    photo.fill(QColor(30, 90, 200));
    for (int x = 0; x < 64; ++x)
        photo.setPixelColor(x, 0, QColor(250, 10, 10)); // a red mark at the top left
    ASSERT_TRUE(photo.save(path("photo.jpg"), "JPEG", 90));
    photo = QImage();

    TrackImage track;
    track.setLocation(path("photo.jpg"));
    const std::optional<DisplayImage> shown = track.displayImage();
    ASSERT_TRUE(shown) << (track.loadFailure() ? track.loadFailure()->reason.toStdString() : "");
    EXPECT_EQ(shown->raster.size(), QSize(8000, 6000));
    const Image rendered = track.renderImage();
    ASSERT_FALSE(rendered.isNull());
    EXPECT_EQ(rendered.extent().width, 8000.0f);
    EXPECT_EQ(rendered.extent().height, 6000.0f);
    EXPECT_FALSE(track.loadFailure());
}

struct RefusedCase {
    const char* name;
    std::function<void(const QString&)> make;
    FileProblem problem;
    const char* reason;
};

TEST_F(LargeImage, FilesClaimingTooManyPixelsOrNotBeingFilesAreRefusedWithTheirReason)
{
    const std::vector<RefusedCase> cases{
        {"bomb.jpg", [](const QString& p) { writeBytes(p, test::jpegClaiming(60000, 60000)); }, FileProblem::TooLarge,
         "the image is too large: 60000 × 60000 pixels"},
        {"bomb.tiff", [](const QString& p) { writeBytes(p, tiffClaiming(60000, 60000)); }, FileProblem::TooLarge,
         "60000 × 60000 pixels"},
        {"page-23000.pdf", [](const QString& p) { writeBytes(p, pdfWithPage(23000)); }, FileProblem::TooLarge,
         "the first page of the PDF document is too large: at 72 dpi it has 23000 × 23000 pixels"},
        {"page-100000.pdf", [](const QString& p) { writeBytes(p, pdfWithPage(100000)); }, FileProblem::TooLarge,
         "100000 × 100000 pixels"},
        {"sparse.pdf", [](const QString& p) {
             writeBytes(p, "%PDF-1.4\n");
             ASSERT_TRUE(QFile::resize(p, qint64{30} << 30));
         }, FileProblem::TooLarge, "too large (30.0 GB"},
        {"sparse-pdf-1g.pdf", [](const QString& p) {
             writeBytes(p, "%PDF-1.4\n");
             ASSERT_TRUE(QFile::resize(p, qint64{1} << 30));
         }, FileProblem::TooLarge, "PDF files may have at most 256 MB"},
        {"fifo.png", [](const QString& p) { ASSERT_EQ(::mkfifo(QFile::encodeName(p).constData(), 0644), 0); },
         FileProblem::NotRegular, "FIFO"},
        {"zero.png", [](const QString& p) { ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), p)); },
         FileProblem::NotRegular, "character device"},
        {"folder.png", [](const QString& p) { ASSERT_TRUE(QDir().mkdir(p)); }, FileProblem::Folder, "folder"},
        {"empty.png", [](const QString& p) { writeBytes(p, {}); }, FileProblem::Empty, "empty"},
        {"text.png", [](const QString& p) { writeBytes(p, "just some words"); }, FileProblem::Damaged,
         "not an image"},
        {"missing.png", [](const QString&) {}, FileProblem::Missing, "no such file"},
    };
    const long peakBefore = peakResidentKiB();
    for (const RefusedCase& c : cases) {
        SCOPED_TRACE(c.name);
        c.make(path(c.name));
        ImageLoadFailure failure;
        const Clock::time_point start = Clock::now();
        EXPECT_FALSE(DisplayImage::load(path(c.name), &failure));
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
        EXPECT_EQ(failure.problem, c.problem);
        EXPECT_TRUE(failure.reason.contains(QString::fromUtf8(c.reason))) << failure.reason.toStdString();
    }
    // Nothing was allocated for the sizes claimed (the smallest of them is 2 GB).
    EXPECT_LT(peakResidentKiB() - peakBefore, 200 * 1024);
}

TEST_F(LargeImage, AStopRequestInterruptsALoadWhichIsTriedAgainLater)
{
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::yellow);
    ASSERT_TRUE(image.save(path("still.png")));
    TrackImage track;
    track.setLocation(path("still.png"));
    StopRequest::request();
    EXPECT_FALSE(track.displayImage());
    ASSERT_TRUE(track.loadFailure());
    EXPECT_EQ(track.loadFailure()->problem, FileProblem::Interrupted);
    StopRequest::clear();
    EXPECT_TRUE(track.displayImage()); // an interrupted load is not remembered as a failure
    EXPECT_FALSE(track.loadFailure());
    EXPECT_TRUE(imageSizeAllowed(16384, 16384));
    EXPECT_FALSE(imageSizeAllowed(16385, 16384));
}

} // namespace
} // namespace plyra
