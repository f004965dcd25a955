// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_document.h"

#include <QColor>
#include <QSize>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace plyra {
class ManualClock;
class RenderScheduler;
}

namespace plyra::test {

/// Binds the notification queue to the Qt event loop, keeps the user defaults in a file
/// of the test's own and puts the render timers on testClock(). Call once, from
/// initTestCase().
void initRenderWindowTests();
/// The time of the render windows' timers (recalculation delays, polls): it moves only
/// when a test moves it.
ManualClock& testClock();
/// Moves the test clock on by ms and lets the events and notifications of that time run.
void advance(int ms);

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

/// Runs the event loop and moves the test clock on, 10 ms at a time, until the
/// predicate holds; false when it still does not after timeoutMs of real time, which
/// only the worker threads' work takes.
bool waitFor(const std::function<bool()>& done, int timeoutMs = 20000);

} // namespace plyra::test
