// SPDX-License-Identifier: MIT
#include "render/frame_output.h"
#include "render/frame_render_controller.h"
#include "render_test_support.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>

#include <chrono>
#include <thread>

namespace plyra {
namespace {

void renderToEnd(RenderController& controller)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!controller.tick() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TEST(FrameRender, RendersTheFirstImageAtTimeZeroAndTheLastAtOne)
{
    test::TwoImageDocument doc;
    doc.addStillLine(0.2f, 0.5f, 0.8f, 0.5f);
    FrameRenderController controller(*doc.document);
    EXPECT_FLOAT_EQ(controller.time(), 0.5f);
    EXPECT_FALSE(controller.setTime(0.5004f)); // within 0.001
    EXPECT_TRUE(controller.setTime(0.0f));
    ASSERT_TRUE(controller.recalc());
    EXPECT_EQ(controller.morphJobs().size(), 1u);
    renderToEnd(controller);
    ASSERT_TRUE(controller.bitmap());
    EXPECT_EQ(controller.bitmap()->width(), 64);
    EXPECT_EQ(controller.bitmap()->height(), 48);
    EXPECT_EQ(controller.bitmap()->pixel(10, 10), (std::array<std::uint8_t, 4>{255, 0, 0, 255}));
    EXPECT_FLOAT_EQ(controller.progress(), 1.0f);

    controller.setTime(1.0f);
    ASSERT_TRUE(controller.recalc());
    renderToEnd(controller);
    EXPECT_EQ(controller.bitmap()->pixel(30, 40), (std::array<std::uint8_t, 4>{0, 0, 255, 255}));
}

TEST(FrameRender, SavesAJpegAtQuality95WithTheFramesPixelSize)
{
    test::TwoImageDocument doc(QColor(200, 120, 40), QColor(20, 80, 220));
    FrameRenderController controller(*doc.document);
    controller.settings().setFrameSize({80, 30});
    QString error;
    const QString path = doc.dir.filePath(QStringLiteral("frame.jpg"));
    EXPECT_FALSE(controller.saveRenderedFrame(path, &error)); // nothing rendered yet
    EXPECT_FALSE(QFile::exists(path));
    ASSERT_TRUE(controller.recalc());
    renderToEnd(controller);
    ASSERT_TRUE(controller.saveRenderedFrame(path, &error)) << error.toStdString();

    QImageReader reader(path);
    EXPECT_EQ(reader.format(), QByteArray("jpeg"));
    EXPECT_EQ(reader.size(), QSize(80, 30));

    // The same frame encoded at quality 95 gives the very same bytes.
    QByteArray expected;
    QBuffer buffer(&expected);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(95);
    ASSERT_TRUE(writer.write(imageFromBitmap(*controller.bitmap()).convertToFormat(QImage::Format_RGB888)));
    QFile saved(path);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), expected);

    EXPECT_FALSE(controller.saveRenderedFrame(doc.dir.filePath(QStringLiteral("missing/dir/frame.jpg")), &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(FrameRender, SavesPngAndTiffLosslessWithAlphaByTheirExtensions)
{
    // A half-transparent first image: the frame between has alpha to keep.
    test::TwoImageDocument doc(QColor(200, 120, 40, 128), QColor(20, 80, 220));
    FrameRenderController controller(*doc.document);
    ASSERT_TRUE(controller.recalc());
    renderToEnd(controller);
    ASSERT_TRUE(controller.bitmap());
    const QImage frame = imageFromBitmap(*controller.bitmap());
    ASSERT_LT(qAlpha(frame.pixel(5, 5)), 255);
    const struct { const char* name; QByteArray format; } cases[] = {
        {"frame.png", "png"}, {"FRAME.PNG", "png"}, {"frame.tif", "tiff"}, {"frame.TIFF", "tiff"}, {"frame.jpeg", "jpeg"}};
    for (const auto& c : cases) {
        const QString path = doc.dir.filePath(QLatin1String(c.name));
        QString error;
        ASSERT_TRUE(controller.saveRenderedFrame(path, &error)) << c.name << ": " << error.toStdString();
        QImageReader reader(path);
        EXPECT_EQ(reader.format(), c.format) << c.name;
        const QImage read = reader.read();
        ASSERT_EQ(read.size(), frame.size()) << c.name;
        if (c.format == "jpeg")
            continue;
        EXPECT_TRUE(read.hasAlphaChannel()) << c.name;
        EXPECT_EQ(read.depth(), 32) << c.name; // 8 bits a channel
        // Straight alpha (PNG) or premultiplied (TIFF): the frame's bytes either way.
        EXPECT_EQ(read.convertToFormat(QImage::Format_RGBA8888_Premultiplied), frame) << c.name;
    }
    QString error;
    const QString other = doc.dir.filePath(QStringLiteral("frame.bmp"));
    EXPECT_FALSE(controller.saveRenderedFrame(other, &error));
    EXPECT_TRUE(error.contains(QStringLiteral(".png"))) << error.toStdString();
    EXPECT_FALSE(QFile::exists(other));
}

TEST(FrameRender, NoImageNoRender)
{
    test::TwoImageDocument doc{QColor(), QColor()};
    FrameRenderController controller(*doc.document);
    controller.settings().setFrameSize({10, 10});
    EXPECT_FALSE(controller.recalc());
    EXPECT_FALSE(controller.isRendering());
    EXPECT_TRUE(controller.tick());
}

} // namespace
} // namespace plyra
