// SPDX-License-Identifier: MIT
#pragma once

#include "editor/morph_editor.h"
#include "editor/view_geometry.h"
#include "model/morph_document.h"

#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <memory>
#include <vector>

namespace plyra::test {

/// A document with both editors side by side in a shown window, each 512 × 256 units (so
/// that unit and view coordinates convert exactly), and helpers that send real mouse
/// and key events at view coordinates (origin bottom left, y up).
class EditorFixture {
public:
    static constexpr int kWidth = 512;
    static constexpr int kHeight = 256;

    EditorFixture();
    ~EditorFixture();

    MorphDocument document;
    MorphEditor* editor = nullptr;
    MorphEditor* lastEditor = nullptr;

    /// A line with the same view points on both tracks, added without an undo step.
    MorphLine::Ptr addLine(Point a, Point b);
    /// Lines joined end to start, each from one point to the next.
    std::vector<MorphLine::Ptr> addChain(const std::vector<Point>& points);
    void select(const std::vector<MorphLine::Ptr>& lines);
    /// The indices in the document of the selected lines, in selection order.
    std::vector<int> selection() const;
    LineEnds ends(const MorphLine::Ptr& line, unsigned track = 0) const;

    void press(Point p, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {});
    void release(Point p, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {});
    /// A move with the given buttons held (none: a plain pointer move).
    void move(Point p, Qt::MouseButtons buttons = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {});
    void click(Point p, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {});
    /// Press, one move per point, release at the last point.
    void drag(Point from, const std::vector<Point>& through, Qt::MouseButton button = Qt::LeftButton,
        Qt::KeyboardModifiers modifiers = {});
    void key(int key, Qt::KeyboardModifiers modifiers = {});

    /// Ends the event-loop pass: notifications go out and undo steps close.
    void endPass();
    /// Forgets the undo steps of the set-up and ends the pass.
    void settle();

    QPoint widgetPoint(Point view) const;
    QString writeImage(const QString& name, QSize size, QColor colour) const;

private:
    std::unique_ptr<QWidget> m_window;
    QTemporaryDir m_dir;
};

/// Prepares the process: the run loop bound to Qt's event loop, a palette with a white
/// base so that drawn pixels are easy to tell. Call once in initTestCase().
void initEditorTests();

} // namespace plyra::test

namespace QTest {
template <>
char* toString(const plyra::Point& p);
} // namespace QTest
