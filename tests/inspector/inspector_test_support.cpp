// SPDX-License-Identifier: MIT
#include "inspector_test_support.h"

#include "inspector/inspector_controller.h"
#include "inspector/inspector_selection.h"
#include "platform/notification_center.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QImage>
#include <QLabel>
#include <QTest>

namespace plyra::test {

void setUpInspectorTests()
{
    static QTemporaryDir defaultsDir;
    UserDefaults::standard().useFile(defaultsDir.filePath(QStringLiteral("defaults.ini")));
    bindRunLoopToQtEventLoop();
    testClock();
}

ManualClock& testClock()
{
    static ManualClock clock;
    return clock;
}

FakeDocumentWindow::FakeDocumentWindow()
{
    resize(400, 300);
    setCentralWidget(new QLabel(QStringLiteral("document")));
}

QVariantList FakeDocumentWindow::currentSelection() const
{
    QVariantList selection = selectionOfLines(m_document.selectedLines());
    if (m_foreign.isValid())
        selection.append(m_foreign);
    return selection;
}

bool FakeDocumentWindow::documentHasBothImages() const
{
    return m_document.imageInTrack(0).has_value() && m_document.imageInTrack(1).has_value();
}

void FakeDocumentWindow::setFrameTime(std::optional<float> time)
{
    m_frameTime = time;
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kFrameTimeUpdatedNotification, m_document.notificationObject()});
}

void FakeDocumentWindow::setImages(bool both)
{
    for (unsigned track = 0; track < (both ? 2u : 1u); ++track) {
        QImage image(8, 6, QImage::Format_RGB32);
        image.fill(track == 0 ? Qt::red : Qt::blue);
        const QString file = m_dir.filePath(QStringLiteral("track%1.png").arg(track));
        QVERIFY(image.save(file, "PNG"));
        m_document.setImageFromURL(file, track);
    }
}

std::vector<MorphLine::Ptr> FakeDocumentWindow::addChain(int n, float y)
{
    std::vector<MorphLine::Ptr> lines;
    m_document.undoManager().disableUndoRegistration();
    for (int i = 0; i < n; ++i) {
        MorphLine::Ptr line = MorphLine::create();
        const Point start{0.1f + 0.15f * static_cast<float>(i), y};
        const Point end{0.25f + 0.15f * static_cast<float>(i), y};
        for (unsigned track = 0; track < 2; ++track) {
            line->setStartPoint(start, track, nullptr);
            line->setEndPoint(end, track, nullptr);
        }
        m_document.addMorphLine(line);
        lines.push_back(line);
    }
    m_document.undoManager().enableUndoRegistration();
    return lines;
}

void FakeDocumentWindow::select(const std::vector<MorphLine::Ptr>& lines)
{
    m_document.undoManager().disableUndoRegistration();
    m_document.setSelectedLines(lines);
    m_document.undoManager().enableUndoRegistration();
    settle();
}

void FakeDocumentWindow::activate()
{
    show();
    activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(this));
}

bool CountingInspector::isValidInspectorForTargets(const QVariantList& targets) const
{
    return selectionHoldsOnlyLines(targets);
}

void CountingInspector::revert()
{
    ++reverts;
}

QWidget* CountingInspector::createView()
{
    return new QLabel(QStringLiteral("counting"));
}

std::array<float, 6> timesOf(const MorphLine& line)
{
    return {line.startPointBeginMoveTime(), line.startPointStopMoveTime(), line.endPointBeginMoveTime(),
        line.endPointStopMoveTime(), line.dissolveStartTime(), line.dissolveEndTime()};
}

std::vector<std::array<float, 6>> timesOf(const std::vector<MorphLine::Ptr>& lines)
{
    std::vector<std::array<float, 6>> times;
    for (const MorphLine::Ptr& line : lines)
        times.push_back(timesOf(*line));
    return times;
}

void settle()
{
    QCoreApplication::processEvents();
    RunLoop::main().runUntilIdle();
    testClock().advance(InspectorController::kRevertDelayMs);
    QCoreApplication::processEvents();
}

} // namespace plyra::test
