// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"
#include "platform/notification_center.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>

#include <functional>

namespace plyra::test {

/// A small JPEG whose frame header claims width × height.
inline QByteArray jpegClaiming(int width, int height)
{
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(QImageWriter(&buffer, "jpeg").write(image));
    for (qsizetype i = 0; i + 8 < bytes.size(); ++i) {
        const auto marker = static_cast<unsigned char>(bytes[i + 1]);
        if (static_cast<unsigned char>(bytes[i]) == 0xff && (marker == 0xc0 || marker == 0xc2)) {
            bytes[i + 5] = static_cast<char>(height >> 8);
            bytes[i + 6] = static_cast<char>(height & 0xff);
            bytes[i + 7] = static_cast<char>(width >> 8);
            bytes[i + 8] = static_cast<char>(width & 0xff);
            return bytes;
        }
    }
    ADD_FAILURE() << "no frame header in the JPEG";
    return bytes;
}

/// A temporary directory, user defaults of its own, a clean run loop and counters of
/// the two document notifications, for the document and package tests.
class DocumentTestBase : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        UserDefaults::standard().useFile(path("defaults.ini"));
        RunLoop::main().runUntilIdle();
        auto& center = NotificationCenter::defaultCenter();
        center.addObserver(kObjectsUpdatedNotification, [this](const Notification&) { ++objectsUpdated; }, this);
        center.addObserver("selectionUpdated", [this](const Notification&) { ++selectionUpdated; }, this);
    }
    void TearDown() override
    {
        RunLoop::main().runUntilIdle();
        NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
    }

    /// Ends the current pass: coalesced notifications are posted, the undo step closes.
    void endPass() { RunLoop::main().runUntilIdle(); }
    void resetCounts()
    {
        endPass();
        objectsUpdated = selectionUpdated = 0;
    }

    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

    /// Writes a PNG whose pixels are colour(x, y), with alpha.
    QString writePng(const char* name, int width, int height,
        const std::function<QRgb(int, int)>& colour = [](int x, int y) { return qRgba(x % 256, y % 256, (x + y) % 256, 255); }) const
    {
        QImage image(width, height, QImage::Format_ARGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixel(x, y, colour(x, y));
        const QString file = path(name);
        EXPECT_TRUE(image.save(file, "PNG"));
        return file;
    }

    /// A line with the given ends on track 0 and track 1, built without undo.
    static MorphLine::Ptr makeLine(Point start0, Point end0, Point start1, Point end1)
    {
        MorphLine::Ptr line = MorphLine::create();
        line->setStartPoint(start0, 0, nullptr);
        line->setEndPoint(end0, 0, nullptr);
        line->setStartPoint(start1, 1, nullptr);
        line->setEndPoint(end1, 1, nullptr);
        return line;
    }
    /// The same segment on both tracks.
    static MorphLine::Ptr makeLine(Point start, Point end) { return makeLine(start, end, start, end); }

    int objectsUpdated = 0;
    int selectionUpdated = 0;

private:
    QTemporaryDir m_dir;
};

} // namespace plyra::test
