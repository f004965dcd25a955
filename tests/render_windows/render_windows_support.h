// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_document.h"

#include <QColor>
#include <QSize>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace plyra {
class RenderScheduler;
}

namespace plyra::test {

/// Binds the notification queue to the Qt event loop and keeps the user defaults in a
/// file of the test's own. Call once, from initTestCase().
void initRenderWindowTests();

/// A temporary folder with two textured images of the given sizes (an invalid size: no
/// image in that track) and a document that uses them.
struct WindowTestDocument {
    QTemporaryDir dir;
    std::unique_ptr<MorphDocument> document;

    explicit WindowTestDocument(QSize first = {64, 48}, QSize last = {64, 48});
    ~WindowTestDocument();

    /// A package of the document on disk, for tools that read packages.
    QString savePackage(const QString& name = QStringLiteral("doc.plyra"));
    /// A line from (x0, y0) to (x1, y1) in the first image that moves by (dx, dy) by the last.
    MorphLine::Ptr addLine(float x0, float y0, float x1, float y1, float dx = 0.0f, float dy = 0.0f);

    static QString writeTexture(const QString& path, QSize size, int seed);
};

/// Waits, running the event loop, until the predicate holds; false after the time-out.
bool waitFor(const std::function<bool()>& done, int timeoutMs = 20000);

} // namespace plyra::test
