// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "platform/qt/qt_run_loop.h"
#include "platform/run_loop.h"
#include "platform/undo_manager.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>

namespace plyra::test {

void initEditorTests()
{
    bindRunLoopToQtEventLoop();
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Base, Qt::white);
    QApplication::setPalette(palette);
}

EditorFixture::EditorFixture()
    : m_window(std::make_unique<QWidget>())
{
    m_window->resize(2 * kWidth + 30, kHeight + 20);
    for (unsigned track : {0u, 1u}) {
        auto* view = new MorphEditor(m_window.get());
        view->setGeometry(10 + static_cast<int>(track) * (kWidth + 10), 10, kWidth, kHeight);
        view->setTrack(track);
        view->setDataSource(&document);
        (track == 0 ? editor : lastEditor) = view;
    }
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    editor->setFocus();
    settle();
}

EditorFixture::~EditorFixture()
{
    for (MorphEditor* view : {editor, lastEditor})
        view->setDataSource(nullptr);
    endPass();
}

MorphLine::Ptr EditorFixture::addLine(Point a, Point b)
{
    const ViewMapping mapping{kWidth, kHeight};
    const MorphLine::Ptr line = MorphLine::create();
    for (unsigned track : {0u, 1u}) {
        line->setStartPoint(mapping.toUnit(a), track, nullptr);
        line->setEndPoint(mapping.toUnit(b), track, nullptr);
    }
    document.addMorphLine(line);
    return line;
}

std::vector<MorphLine::Ptr> EditorFixture::addChain(const std::vector<Point>& points)
{
    // The document joins a new line to the free end it starts on.
    std::vector<MorphLine::Ptr> lines;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        lines.push_back(addLine(points[i], points[i + 1]));
    return lines;
}

void EditorFixture::select(const std::vector<MorphLine::Ptr>& lines)
{
    document.setSelectedLines(lines);
}

std::vector<int> EditorFixture::selection() const
{
    std::vector<int> result;
    const auto& lines = document.morphLines();
    for (const MorphLine::Ptr& line : document.selectedLines())
        result.push_back(static_cast<int>(std::find(lines.begin(), lines.end(), line) - lines.begin()));
    return result;
}

LineEnds EditorFixture::ends(const MorphLine::Ptr& line, unsigned track) const
{
    return ViewMapping{kWidth, kHeight}.lineEnds(*line, track);
}

QPoint EditorFixture::widgetPoint(Point view) const
{
    return ViewMapping{kWidth, kHeight}.toWidget(view).toPoint();
}

void EditorFixture::press(Point p, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    QTest::mousePress(editor, button, modifiers, widgetPoint(p));
}

void EditorFixture::release(Point p, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    QTest::mouseRelease(editor, button, modifiers, widgetPoint(p));
}

void EditorFixture::move(Point p, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    // QTest's own moves carry no modifiers; the selection gesture reads them from the
    // first drag event.
    const QPoint local = widgetPoint(p);
    QMouseEvent event(QEvent::MouseMove, local, editor->mapToGlobal(local), Qt::NoButton, buttons, modifiers);
    QApplication::sendEvent(editor, &event);
}

void EditorFixture::click(Point p, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    press(p, button, modifiers);
    release(p, button, modifiers);
}

void EditorFixture::drag(Point from, const std::vector<Point>& through, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    press(from, button, modifiers);
    for (const Point& p : through)
        move(p, button, modifiers);
    release(through.empty() ? from : through.back(), button, modifiers);
}

void EditorFixture::key(int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(editor, static_cast<Qt::Key>(key), modifiers);
}

void EditorFixture::endPass()
{
    QCoreApplication::processEvents();
    RunLoop::main().runUntilIdle();
}

void EditorFixture::settle()
{
    endPass();
    document.undoManager().removeAllActions();
}

QString EditorFixture::writeImage(const QString& name, QSize size, QColor colour) const
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    const QString path = m_dir.filePath(name);
    image.save(path);
    return path;
}

} // namespace plyra::test

namespace QTest {
template <>
char* toString(const plyra::Point& p)
{
    return qstrdup(QByteArray::number(p.x).append(", ").append(QByteArray::number(p.y)).constData());
}
} // namespace QTest
