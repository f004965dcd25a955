// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QColor>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace plyra::test {

/// A temporary folder with two solid-coloured images and a document that uses them,
/// with settings kept in a file of the folder.
struct TwoImageDocument {
    QTemporaryDir dir;
    std::unique_ptr<MorphDocument> document;

    explicit TwoImageDocument(QColor first = Qt::red, QColor last = Qt::blue, int width = 64, int height = 48)
    {
        UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
        document = std::make_unique<MorphDocument>();
        if (first.isValid())
            document->setImageFromURL(writeImage(QStringLiteral("first.png"), first, width, height), 0);
        if (last.isValid())
            document->setImageFromURL(writeImage(QStringLiteral("last.png"), last, width, height), 1);
        RunLoop::main().runUntilIdle();
    }

    ~TwoImageDocument() { RunLoop::main().runUntilIdle(); }

    QString writeImage(const QString& name, QColor color, int width, int height)
    {
        QImage image(width, height, QImage::Format_RGBA8888);
        image.fill(color);
        const QString path = dir.filePath(name);
        EXPECT_TRUE(image.save(path));
        return path;
    }

    /// A line that stays in place from the first image to the last.
    void addStillLine(float x0, float y0, float x1, float y1)
    {
        auto line = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            line->setStartPoint({x0, y0}, track, nullptr);
            line->setEndPoint({x1, y1}, track, nullptr);
        }
        document->addMorphLine(line);
    }
};

} // namespace plyra::test
