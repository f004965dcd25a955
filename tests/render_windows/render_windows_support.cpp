// SPDX-License-Identifier: MIT
#include "render_windows_support.h"

#include "platform/qt/qt_run_loop.h"
#include "platform/qt/timer.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "render/windows/render_window.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QImage>
#include <QTest>

#include <cmath>
#include <thread>

namespace plyra::test {

void initRenderWindowTests()
{
    static QTemporaryDir defaults;
    UserDefaults::standard().useFile(defaults.filePath(QStringLiteral("defaults.ini")));
    bindRunLoopToQtEventLoop();
    testClock();
    // Windows closed with a movie never saved: no question waits for an answer.
    RenderWindow::setUnsavedResultQuestion([](RenderWindow&) { return RenderSaveDialog::UnsavedResultAnswer::DontSave; });
}

ManualClock& testClock()
{
    static ManualClock clock;
    return clock;
}

void advance(int ms)
{
    QCoreApplication::processEvents();
    RunLoop::main().runUntilIdle();
    testClock().advance(ms);
    QCoreApplication::processEvents();
    RunLoop::main().runUntilIdle();
}

QString WindowTestDocument::writeTexture(const QString& path, QSize size, int seed)
{
    QImage image(size, QImage::Format_RGBA8888);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y,
                QColor((x * 255) / size.width(), (y * 255) / size.height(), ((x / 4 + y / 4 + seed) % 2) ? 220 : 40));
    image.save(path);
    return path;
}

WindowTestDocument::WindowTestDocument(QSize first, QSize last)
    : document(std::make_unique<MorphDocument>())
{
    if (first.isValid())
        document->setImageFromURL(writeTexture(dir.filePath(QStringLiteral("first.png")), first, 0), 0);
    if (last.isValid())
        document->setImageFromURL(writeTexture(dir.filePath(QStringLiteral("last.png")), last, 1), 1);
    RunLoop::main().runUntilIdle();
}

WindowTestDocument::~WindowTestDocument()
{
    RunLoop::main().runUntilIdle();
}

QString WindowTestDocument::savePackage(const QString& name)
{
    const QString path = dir.filePath(name);
    QString error;
    if (!document->writeToFile(path, &error))
        qWarning("cannot write the test package: %s", qPrintable(error));
    return path;
}

MorphLine::Ptr WindowTestDocument::addLine(float x0, float y0, float x1, float y1, float dx, float dy)
{
    MorphLine::Ptr line = MorphLine::create();
    line->setStartPoint({x0, y0}, 0, nullptr);
    line->setEndPoint({x1, y1}, 0, nullptr);
    line->setStartPoint({x0 + dx, y0 + dy}, 1, nullptr);
    line->setEndPoint({x1 + dx, y1 + dy}, 1, nullptr);
    document->addMorphLine(line);
    return line;
}

bool waitFor(const std::function<bool()>& done, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        advance(10);
        // Leave the processors to the workers for a moment.
        std::this_thread::yield();
    }
    return true;
}

} // namespace plyra::test
