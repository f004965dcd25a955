// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "platform/undo_manager.h"

#include <QApplication>
#include <QMouseEvent>

#include <cmath>
#include <functional>

using namespace plyra;
using namespace plyra::test;

using PointMap = std::function<Point(Point)>;
Q_DECLARE_METATYPE(plyra::Point)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)
Q_DECLARE_METATYPE(PointMap)

namespace {

bool near(Point a, Point b)
{
    return std::abs(a.x - b.x) < 2e-3f && std::abs(a.y - b.y) < 2e-3f;
}

PointMap scaling(Point fixed, float sx, float sy)
{
    return [=](Point p) { return Point{fixed.x + sx * (p.x - fixed.x), fixed.y + sy * (p.y - fixed.y)}; };
}

PointMap turning(float degrees)
{
    const double a = degrees * std::acos(-1.0) / 180.0;
    return [a](Point p) {
        const double x = p.x - 150.0;
        const double y = p.y - 150.0;
        return Point{static_cast<float>(150.0 + std::cos(a) * x - std::sin(a) * y),
            static_cast<float>(150.0 + std::sin(a) * x + std::cos(a) * y)};
    };
}

} // namespace

class TransformHandlesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void handles_data();
    void handles();
    void handlesNeedTwoSelectedLinesAndEscapeCancels();
    void pointerOverTheFrameShowsWhatAPressWouldDo();
    void flipMirrorsTheFocusedTrack();
    void duplicateCopiesTheChainBesideItAndSelectsTheCopy();
};

// Two selected lines whose points span the box from (100, 100) to (200, 200), centre
// (150, 150); a third line, not selected, ends on the top-right corner.
void TransformHandlesTest::handles_data()
{
    QTest::addColumn<Point>("pressAt");
    QTest::addColumn<Point>("dragTo");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<PointMap>("expected");
    const Qt::KeyboardModifiers none;
    QTest::newRow("corner, over a line's end") << Point{200, 200} << Point{250, 220} << none << scaling({100, 100}, 1.5f, 1.2f);
    QTest::newRow("corner with Shift: one factor") << Point{200, 200} << Point{250, 220}
                                                   << Qt::KeyboardModifiers(Qt::ShiftModifier) << scaling({100, 100}, 1.35f, 1.35f);
    QTest::newRow("corner with Ctrl: about the centre") << Point{200, 200} << Point{250, 220}
                                                        << Qt::KeyboardModifiers(Qt::ControlModifier) << scaling({150, 150}, 2.0f, 1.4f);
    QTest::newRow("bottom-left corner") << Point{102, 98} << Point{82, 78} << none << scaling({200, 200}, 1.2f, 1.2f);
    QTest::newRow("right edge") << Point{200, 150} << Point{230, 170} << none << scaling({100, 100}, 1.3f, 1.0f);
    QTest::newRow("top edge with Ctrl") << Point{150, 200} << Point{150, 225} << Qt::KeyboardModifiers(Qt::ControlModifier)
                                        << scaling({150, 150}, 1.0f, 1.5f);
    QTest::newRow("outside a corner: quarter turn") << Point{212, 212} << Point{88, 212} << none << turning(90.0f);
    QTest::newRow("turn by 50° with Shift: 45°") << Point{212, 212} << Point{143, 230}
                                                 << Qt::KeyboardModifiers(Qt::ShiftModifier) << turning(45.0f);
}

void TransformHandlesTest::handles()
{
    QFETCH(Point, pressAt);
    QFETCH(Point, dragTo);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(PointMap, expected);
    EditorFixture f;
    const MorphLine::Ptr a = f.addLine({100, 100}, {200, 100});
    const MorphLine::Ptr b = f.addLine({100, 150}, {200, 200});
    const MorphLine::Ptr c = f.addLine({300, 230}, {200, 200});
    f.select({a, b});
    f.settle();
    const Point midway{(pressAt.x + dragTo.x) / 2, (pressAt.y + dragTo.y) / 2};
    f.drag(pressAt, {midway, dragTo}, Qt::LeftButton, modifiers);
    f.endPass();

    for (const MorphLine::Ptr& line : {a, b}) {
        const LineEnds before{line->startPoint(1), line->endPoint(1)};
        const ViewMapping view{EditorFixture::kWidth, EditorFixture::kHeight};
        QVERIFY2(near(f.ends(line).start, expected(view.toView(before.start))), QTest::toString(f.ends(line).start));
        QVERIFY2(near(f.ends(line).end, expected(view.toView(before.end))), QTest::toString(f.ends(line).end));
    }
    // The line that was not selected keeps its points; the selection stays as it was.
    QCOMPARE(f.ends(c).start, (Point{300, 230}));
    QCOMPARE(f.selection(), (std::vector<int>{0, 1}));
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Transform Lines"));
    undo.undo();
    QCOMPARE(f.ends(a).end, (Point{200, 100}));
    QCOMPARE(f.ends(b).end, (Point{200, 200}));
}

void TransformHandlesTest::handlesNeedTwoSelectedLinesAndEscapeCancels()
{
    EditorFixture f;
    const MorphLine::Ptr a = f.addLine({100, 100}, {200, 100});
    const MorphLine::Ptr b = f.addLine({100, 150}, {200, 200});
    // One selected line: a press on its end drags the end, as ever.
    f.select({b});
    f.settle();
    f.drag({200, 200}, {{240, 210}});
    QCOMPARE(f.ends(b).end, (Point{240, 210}));
    QCOMPARE(f.ends(a).end, (Point{200, 100}));

    // Escape in the middle of a transform puts every point back and records nothing.
    f.select({a, b});
    f.settle();
    f.press({240, 210});
    f.move({300, 240});
    QVERIFY(f.ends(a).end.x > 230.0f);
    f.key(Qt::Key_Escape);
    QVERIFY(!f.editor->isGestureActive());
    f.release({300, 240});
    f.endPass();
    QCOMPARE(f.ends(a).end, (Point{200, 100}));
    QCOMPARE(f.ends(b).end, (Point{240, 210}));
    QCOMPARE(f.document.undoManager().undoStepCount(), 0);
}

void TransformHandlesTest::pointerOverTheFrameShowsWhatAPressWouldDo()
{
    EditorFixture f;
    f.select({f.addLine({100, 100}, {200, 100}), f.addLine({100, 150}, {200, 200})});
    f.settle();
    const struct {
        Point at;
        Qt::CursorShape shape;
    } rows[] = {
        {{200, 200}, Qt::SizeBDiagCursor}, {{100, 200}, Qt::SizeFDiagCursor}, {{200, 150}, Qt::SizeHorCursor},
        {{150, 100}, Qt::SizeVerCursor}, {{212, 212}, Qt::BitmapCursor}, {{88, 90}, Qt::BitmapCursor},
        {{150, 150}, Qt::ArrowCursor}, {{230, 230}, Qt::ArrowCursor},
    };
    for (const auto& row : rows) {
        f.move(row.at, Qt::NoButton);
        QVERIFY2(f.editor->cursor().shape() == row.shape, QTest::toString(row.at));
    }
}

void TransformHandlesTest::flipMirrorsTheFocusedTrack()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {140, 180}, {220, 120}});
    f.select(chain);
    f.settle();
    // The box runs from x = 100 to 220: x becomes 320 − x on track 1 only.
    f.lastEditor->flipSelectionHorizontally();
    f.endPass();
    QCOMPARE(f.ends(chain[0], 1).start, (Point{220, 100}));
    QCOMPARE(f.ends(chain[0], 1).end, (Point{180, 180}));
    QCOMPARE(f.ends(chain[1], 1).end, (Point{100, 120}));
    QCOMPARE(f.ends(chain[1], 1).start, f.ends(chain[0], 1).end);
    QCOMPARE(f.ends(chain[0], 0).start, (Point{100, 100}));
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Flip Lines"));
    undo.undo();
    QCOMPARE(f.ends(chain[1], 1).end, (Point{220, 120}));
}

void TransformHandlesTest::duplicateCopiesTheChainBesideItAndSelectsTheCopy()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {140, 180}, {220, 120}});
    f.addLine({300, 50}, {350, 60});
    f.select({chain[1], chain[0]});
    f.settle();
    f.editor->duplicateSelection();
    f.endPass();
    const std::vector<MorphLine::Ptr>& lines = f.document.morphLines();
    QCOMPARE(lines.size(), std::size_t(5));
    // Copies in the document's order, 10 units right and down on both tracks, joined alike.
    for (unsigned track : {0u, 1u}) {
        QCOMPARE(f.ends(lines[3], track).start, (Point{110, 90}));
        QCOMPARE(f.ends(lines[3], track).end, (Point{150, 170}));
        QCOMPARE(f.ends(lines[4], track).end, (Point{230, 110}));
    }
    QCOMPARE(lines[3]->attachedLineAtEnd(), lines[4]);
    QCOMPARE(chain[0]->attachedLineAtEnd(), chain[1]);
    QCOMPARE(f.selection(), (std::vector<int>{3, 4}));
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Duplicate Lines"));
    undo.undo();
    f.endPass();
    QCOMPARE(lines.size(), std::size_t(3));
    QCOMPARE(f.selection(), (std::vector<int>{1, 0}));
}

QTEST_MAIN(TransformHandlesTest)
#include "transform_handles_test.moc"
