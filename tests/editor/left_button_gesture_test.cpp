// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "platform/undo_manager.h"

#include <QApplication>
#include <QMouseEvent>

#include <cmath>

using namespace plyra;
using namespace plyra::test;

Q_DECLARE_METATYPE(plyra::Point)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

namespace {

enum class Outcome { MovedStart, MovedEnd, MovedLine, NewLine };

bool near(Point a, Point b)
{
    return std::abs(a.x - b.x) < 1e-3f && std::abs(a.y - b.y) < 1e-3f;
}

} // namespace

Q_DECLARE_METATYPE(Outcome)

class LeftButtonGestureTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void pressChoosesTheGesture_data();
    void pressChoosesTheGesture();
    void tiesGoToTheLaterLine();
    void chains_data();
    void chains();
    void draggingOneOfThreeSelectedLines_data();
    void draggingOneOfThreeSelectedLines();
    void chainMovesItsSharedPointOnce();
    void draggingAnEndCarriesTheJoinedNeighbour();
    void oneDragIsOneUndoStep();
    void theOtherEditorAndTheDocumentSeeTheChange();
    void ctrlClickTogglesAndKeysActDuringAGesture();
    void clickWithoutMotionChangesNothing_data();
    void clickWithoutMotionChangesNothing();
};

void LeftButtonGestureTest::pressChoosesTheGesture_data()
{
    QTest::addColumn<Point>("lineStart");
    QTest::addColumn<Point>("lineEnd");
    QTest::addColumn<Point>("pressAt");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Outcome>("outcome");
    const Point a{100, 100};
    const Point b{200, 100};
    const Qt::KeyboardModifiers none;
    QTest::newRow("start point at exactly 5") << a << b << Point{100, 105} << none << Outcome::MovedStart;
    QTest::newRow("start point at 5.01 moves the line") << Point{94.99f, 100} << b << Point{100, 100} << none << Outcome::MovedLine;
    QTest::newRow("beside the line at 5.01 draws") << Point{100, 94.99f} << Point{200, 94.99f} << Point{150, 100} << none << Outcome::NewLine;
    QTest::newRow("beside the line at exactly 5 moves it") << Point{100, 95} << Point{200, 95} << Point{150, 100} << none << Outcome::MovedLine;
    QTest::newRow("end point") << a << b << Point{203, 104} << none << Outcome::MovedEnd;
    QTest::newRow("both ends in reach: start") << a << Point{104, 100} << Point{102, 100} << none << Outcome::MovedStart;
    QTest::newRow("middle moves the line") << a << b << Point{150, 103} << none << Outcome::MovedLine;
    QTest::newRow("Alt alone on a line draws") << a << b << Point{150, 100} << Qt::KeyboardModifiers(Qt::AltModifier) << Outcome::NewLine;
    QTest::newRow("Alt on the start point draws") << a << b << Point{100, 100} << Qt::KeyboardModifiers(Qt::AltModifier) << Outcome::NewLine;
    QTest::newRow("Ctrl on the start point drags it") << a << b << Point{100, 100} << Qt::KeyboardModifiers(Qt::ControlModifier) << Outcome::MovedStart;
    QTest::newRow("far away draws") << a << b << Point{150, 200} << none << Outcome::NewLine;
    QTest::newRow("Shift alone far away moves the nearest line") << a << b << Point{150, 200} << Qt::KeyboardModifiers(Qt::ShiftModifier) << Outcome::MovedLine;
    QTest::newRow("Shift alone far from the end drags it") << a << b << Point{201, 200} << Qt::KeyboardModifiers(Qt::ShiftModifier) << Outcome::MovedLine;
    QTest::newRow("Shift alone at the end drags it") << a << b << Point{200, 102} << Qt::KeyboardModifiers(Qt::ShiftModifier) << Outcome::MovedEnd;
    QTest::newRow("Shift with Ctrl far away draws") << a << b << Point{150, 200} << (Qt::ShiftModifier | Qt::ControlModifier) << Outcome::NewLine;
}

void LeftButtonGestureTest::pressChoosesTheGesture()
{
    QFETCH(Point, lineStart);
    QFETCH(Point, lineEnd);
    QFETCH(Point, pressAt);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Outcome, outcome);
    EditorFixture f;
    const MorphLine::Ptr line = f.addLine(lineStart, lineEnd);
    f.select({line});
    f.settle();
    const LineEnds before = f.ends(line);
    const Point to{pressAt.x + 20, pressAt.y + 40};
    f.drag(pressAt, {{pressAt.x + 10, pressAt.y + 20}, to}, Qt::LeftButton, modifiers);
    f.endPass();

    const LineEnds after = f.ends(line);
    const Point shift{to.x - pressAt.x, to.y - pressAt.y};
    switch (outcome) {
    case Outcome::MovedStart:
        QCOMPARE(after.start, to);
        QCOMPARE(after.end, before.end);
        break;
    case Outcome::MovedEnd:
        QCOMPARE(after.start, before.start);
        QCOMPARE(after.end, to);
        break;
    case Outcome::MovedLine:
        QVERIFY(near(after.start, {before.start.x + shift.x, before.start.y + shift.y}));
        QVERIFY(near(after.end, {before.end.x + shift.x, before.end.y + shift.y}));
        break;
    case Outcome::NewLine:
        QVERIFY(near(after.start, before.start));
        QVERIFY(near(after.end, before.end));
        QCOMPARE(f.document.morphLines().size(), std::size_t(2));
        QCOMPARE(f.ends(f.document.morphLines()[1]).start, pressAt);
        QCOMPARE(f.ends(f.document.morphLines()[1]).end, to);
        QCOMPARE(f.ends(f.document.morphLines()[1], 1).end, to);
        break;
    }
    if (outcome != Outcome::NewLine)
        QCOMPARE(f.document.morphLines().size(), std::size_t(1));
    // Shift alone leaves the selection as it was (here: the line stays selected even
    // though the pointer ends far from it).
    if (modifiers == Qt::ShiftModifier)
        QCOMPARE(f.selection(), std::vector<int>{0});
    QVERIFY(!f.editor->isGestureActive());
}

void LeftButtonGestureTest::tiesGoToTheLaterLine()
{
    EditorFixture f;
    const MorphLine::Ptr first = f.addLine({100, 100}, {200, 100});
    const MorphLine::Ptr second = f.addLine({100, 110}, {200, 110});
    f.settle();
    f.drag({150, 105}, {{150, 125}});
    QCOMPARE(f.ends(first).start, (Point{100, 100}));
    QCOMPARE(f.ends(second).start, (Point{100, 130}));
    QCOMPARE(f.selection(), std::vector<int>{1});
}

struct ChainStep {
    enum Kind { Click, Press, Move, Drag, Release, Key } kind;
    Point at;
    int key = 0;
};
Q_DECLARE_METATYPE(std::vector<ChainStep>)

void LeftButtonGestureTest::chains_data()
{
    QTest::addColumn<std::vector<ChainStep>>("steps");
    QTest::addColumn<int>("lines");
    QTest::addColumn<std::vector<int>>("selectedAfter");
    QTest::addColumn<QString>("actionName");
    const Point p0{50, 50}, p1{150, 60}, p2{250, 40}, p3{350, 80};
    using S = ChainStep;
    QTest::newRow("click, click, click, click on the last point")
        << std::vector<S>{{S::Click, p0}, {S::Click, p1}, {S::Click, p2}, {S::Click, {252, 42}}} << 2
        << std::vector<int>{1} << QStringLiteral("Create lines");
    QTest::newRow("three clicks and Escape")
        << std::vector<S>{{S::Click, p0}, {S::Click, p1}, {S::Click, p2}, {S::Key, {}, Qt::Key_Escape}} << 2
        << std::vector<int>{1} << QStringLiteral("Create lines");
    QTest::newRow("three clicks and Return")
        << std::vector<S>{{S::Click, p0}, {S::Click, p1}, {S::Click, p2}, {S::Key, {}, Qt::Key_Return}} << 2
        << std::vector<int>{1} << QStringLiteral("Create lines");
    QTest::newRow("two clicks, Enter near the first line's start")
        << std::vector<S>{{S::Click, p0}, {S::Click, p1}, {S::Move, {53, 50}}, {S::Key, {}, Qt::Key_Enter}} << 1
        << std::vector<int>{0} << QStringLiteral("New Line");
    QTest::newRow("press, drag, release")
        << std::vector<S>{{S::Press, p0}, {S::Drag, {100, 55}}, {S::Drag, p1}, {S::Release, p1}} << 1
        << std::vector<int>{0} << QStringLiteral("New Line");
    QTest::newRow("clicks, then a drag and release ends with a last line")
        << std::vector<S>{{S::Click, p0}, {S::Click, p1}, {S::Press, p2}, {S::Drag, p3}, {S::Release, p3}} << 3
        << std::vector<int>{2} << QStringLiteral("Create lines");
    QTest::newRow("a click beside the view places nothing")
        << std::vector<S>{{S::Click, p0}, {S::Click, {-20, 60}}, {S::Click, {600, 60}}, {S::Click, p1}, {S::Click, {151, 61}}}
        << 1 << std::vector<int>{0} << QStringLiteral("New Line");
    QTest::newRow("a short drag is a click")
        << std::vector<S>{{S::Press, p0}, {S::Drag, {53, 53}}, {S::Release, {53, 53}}, {S::Click, p1}, {S::Key, {}, Qt::Key_Escape}}
        << 1 << std::vector<int>{0} << QStringLiteral("New Line");
}

void LeftButtonGestureTest::chains()
{
    QFETCH(std::vector<ChainStep>, steps);
    QFETCH(int, lines);
    QFETCH(std::vector<int>, selectedAfter);
    QFETCH(QString, actionName);
    EditorFixture f;
    const MorphLine::Ptr existing = f.addLine({400, 200}, {500, 200});
    f.select({existing});
    f.settle();
    for (const ChainStep& step : steps) {
        switch (step.kind) {
        case ChainStep::Click: f.click(step.at); break;
        case ChainStep::Press: f.press(step.at); break;
        case ChainStep::Move: f.move(step.at, Qt::NoButton); break;
        case ChainStep::Drag: f.move(step.at, Qt::LeftButton); break;
        case ChainStep::Release: f.release(step.at); break;
        case ChainStep::Key: f.key(step.key); break;
        }
        f.endPass(); // every event in a pass of its own, as a person makes them
    }
    QVERIFY(!f.editor->isGestureActive());
    QCOMPARE(int(f.document.morphLines().size()), lines + 1);
    // Each new line is joined to the one drawn before it, on both tracks alike.
    for (int i = 1; i < lines; ++i) {
        const MorphLine::Ptr& line = f.document.morphLines()[std::size_t(i + 1)];
        QCOMPARE(f.document.morphLines()[std::size_t(i)]->attachedLineAtEnd(), line);
        QCOMPARE(f.ends(line, 1).start, f.ends(line, 0).start);
    }
    std::vector<int> expected;
    for (int index : selectedAfter)
        expected.push_back(index + 1);
    QCOMPARE(f.selection(), expected);
    QCOMPARE(f.document.undoManager().undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(f.document.undoManager().undoActionName()), actionName);
    f.document.undoManager().undo();
    QCOMPARE(int(f.document.morphLines().size()), 1);
    QCOMPARE(f.selection(), std::vector<int>{0});
}

void LeftButtonGestureTest::draggingOneOfThreeSelectedLines_data()
{
    QTest::addColumn<bool>("pressedLineSelected");
    QTest::newRow("pressed line selected: all three move") << true;
    QTest::newRow("pressed line not selected: it moves alone") << false;
}

void LeftButtonGestureTest::draggingOneOfThreeSelectedLines()
{
    QFETCH(bool, pressedLineSelected);
    EditorFixture f;
    std::vector<MorphLine::Ptr> lines;
    for (float y : {50.0f, 100.0f, 150.0f, 200.0f})
        lines.push_back(f.addLine({100, y}, {200, y}));
    f.select(pressedLineSelected ? std::vector{lines[0], lines[1], lines[2]} : std::vector{lines[0], lines[2], lines[3]});
    f.settle();
    f.drag({150, 100}, {{160, 110}, {170, 120}});
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool moves = pressedLineSelected ? i < 3 : i == 1;
        const float y = 50.0f + 50.0f * float(i);
        QCOMPARE(f.ends(lines[i]).start, (moves ? Point{120, y + 20} : Point{100, y}));
        QCOMPARE(f.ends(lines[i], 1).start, (Point{100, y}));
    }
    QCOMPARE(f.selection(), pressedLineSelected ? (std::vector<int>{0, 1, 2}) : (std::vector<int>{1}));
}

void LeftButtonGestureTest::chainMovesItsSharedPointOnce()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {200, 100}, {300, 150}});
    QCOMPARE(chain[0]->attachedLineAtEnd(), chain[1]);
    // In either order of the selection, the shared point moves by the pointer's shift once.
    for (const auto& order : {std::vector{chain[0], chain[1]}, std::vector{chain[1], chain[0]}}) {
        f.select(order);
        f.settle();
        const LineEnds before = f.ends(chain[1]);
        const LineEnds first = f.ends(chain[0]);
        const Point middle{(first.start.x + first.end.x) / 2, (first.start.y + first.end.y) / 2};
        f.drag(middle, {{middle.x + 5, middle.y + 10}, {middle.x + 10, middle.y + 20}});
        f.endPass();
        QCOMPARE(f.ends(chain[1]).start, (Point{before.start.x + 10, before.start.y + 20}));
        QCOMPARE(f.ends(chain[0]).end, f.ends(chain[1]).start);
        QCOMPARE(f.ends(chain[1]).end, (Point{before.end.x + 10, before.end.y + 20}));
        QCOMPARE(f.selection().size(), std::size_t(2));
    }
}

void LeftButtonGestureTest::draggingAnEndCarriesTheJoinedNeighbour()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {200, 100}, {300, 150}});
    const MorphLine::Ptr far = f.addLine({400, 30}, {450, 30});
    f.select({far});
    f.settle();
    f.drag({201, 101}, {{210, 130}, {220, 140}});
    QCOMPARE(f.ends(chain[0]).end, (Point{220, 140}));
    QCOMPARE(f.ends(chain[1]).start, (Point{220, 140}));
    QCOMPARE(f.ends(chain[1], 1).start, (Point{200, 100}));
    // Afterwards exactly the lines near the release point are selected.
    QCOMPARE(f.selection(), (std::vector<int>{0, 1}));
}

void LeftButtonGestureTest::oneDragIsOneUndoStep()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {200, 100}, {300, 150}});
    const MorphLine::Ptr other = f.addLine({100, 200}, {200, 220});
    f.select({chain[0], chain[1], other});
    f.settle();
    std::vector<LineEnds> before;
    for (const MorphLine::Ptr& line : f.document.morphLines())
        before.push_back(f.ends(line));

    f.press({150, 100});
    for (int i = 1; i <= 10; ++i) {
        f.move({150.0f + 3.0f * float(i), 100.0f + 2.0f * float(i)});
        f.endPass(); // each move in a pass of its own
    }
    f.release({180, 120});
    f.endPass();
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Move Line"));
    undo.undo();
    f.endPass();
    for (std::size_t i = 0; i < before.size(); ++i) {
        QCOMPARE(f.ends(f.document.morphLines()[i]).start, before[i].start);
        QCOMPARE(f.ends(f.document.morphLines()[i]).end, before[i].end);
    }
    QCOMPARE(f.selection(), (std::vector<int>{0, 1, 2}));
    undo.redo();
    QCOMPARE(f.ends(other).start, (Point{130, 220}));
    QCOMPARE(f.ends(chain[0]).end, f.ends(chain[1]).start);
}

void LeftButtonGestureTest::theOtherEditorAndTheDocumentSeeTheChange()
{
    EditorFixture f;
    f.settle();
    const QImage empty = f.lastEditor->grab().toImage();
    f.drag({100, 32}, {{200, 48}, {300, 64}});
    f.endPass();
    QCOMPARE(f.document.morphLines().size(), std::size_t(1));
    const MorphLine::Ptr line = f.document.morphLines()[0];
    QCOMPARE(line->startPoint(1), (Point{100.0f / 512, 32.0f / 256}));
    QCOMPARE(line->endPoint(1), (Point{300.0f / 512, 64.0f / 256}));
    // The last-image editor draws the new line and its knobs (it is selected).
    const QImage shown = f.lastEditor->grab().toImage();
    for (const Point& p : {Point{200, 48}, Point{300, 64}, Point{304, 64}})
        QVERIFY(shown.pixel(f.widgetPoint(p)) != empty.pixel(f.widgetPoint(p)));

    // A drag of the end in the last-image editor moves only track 1's point.
    QTest::mousePress(f.lastEditor, Qt::LeftButton, {}, f.widgetPoint({300, 64}));
    QMouseEvent moveEvent(QEvent::MouseMove, f.widgetPoint({310, 50}), f.lastEditor->mapToGlobal(f.widgetPoint({310, 50})),
        Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(f.lastEditor, &moveEvent);
    QTest::mouseRelease(f.lastEditor, Qt::LeftButton, {}, f.widgetPoint({310, 50}));
    QCOMPARE(line->endPoint(1), (Point{310.0f / 512, 50.0f / 256}));
    QCOMPARE(line->endPoint(0), (Point{300.0f / 512, 64.0f / 256}));
}

void LeftButtonGestureTest::ctrlClickTogglesAndKeysActDuringAGesture()
{
    EditorFixture f;
    std::vector<MorphLine::Ptr> lines;
    for (float y : {50.0f, 100.0f, 150.0f})
        lines.push_back(f.addLine({100, y}, {200, y}));
    f.select({lines[0], lines[1]});
    f.settle();
    // Away from the handles of the selection's frame (corners and edge middles).
    f.click({170, 101}, Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.selection(), std::vector<int>{0});
    f.click({170, 151}, Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.selection(), (std::vector<int>{0, 2}));

    // An arrow pressed in the middle of a drag nudges the selection at once.
    f.press({120, 50});
    f.key(Qt::Key_Up);
    QCOMPARE(f.ends(lines[2]).start, (Point{100, 151}));
    QVERIFY(f.editor->isGestureActive());
    f.release({120, 40});
    QCOMPARE(f.ends(lines[0]).start, (Point{100, 41}));
    QVERIFY(!f.editor->isGestureActive());
}

void LeftButtonGestureTest::clickWithoutMotionChangesNothing_data()
{
    QTest::addColumn<Point>("pressAt");
    QTest::addColumn<Point>("releaseAt");
    QTest::addColumn<bool>("changes");
    QTest::newRow("on the start point") << Point{102, 101} << Point{102, 101} << false;
    QTest::newRow("on the end point") << Point{198, 99} << Point{198, 99} << false;
    QTest::newRow("on the line") << Point{150, 102} << Point{150, 102} << false;
    QTest::newRow("end point, 1 unit off") << Point{198, 99} << Point{199, 99} << false;
    QTest::newRow("line, 1 unit off") << Point{150, 102} << Point{150, 101} << false;
    QTest::newRow("end point, 1.5 units off") << Point{198, 99} << Point{199.5f, 99} << true;
    QTest::newRow("line, 2 units off") << Point{150, 102} << Point{152, 102} << true;
}

void LeftButtonGestureTest::clickWithoutMotionChangesNothing()
{
    QFETCH(Point, pressAt);
    QFETCH(Point, releaseAt);
    QFETCH(bool, changes);
    EditorFixture f;
    const MorphLine::Ptr line = f.addLine({100, 100}, {200, 100});
    f.settle();
    const LineEnds before = f.ends(line);
    f.press(pressAt);
    if (!(releaseAt == pressAt))
        f.move(releaseAt);
    f.release(releaseAt);
    f.endPass();
    QCOMPARE(f.document.undoManager().canUndo(), changes);
    QCOMPARE(!near(f.ends(line).start, before.start) || !near(f.ends(line).end, before.end), changes);
    // The click selects the line all the same.
    QCOMPARE(f.selection(), std::vector<int>{0});
}

QTEST_MAIN(LeftButtonGestureTest)
#include "left_button_gesture_test.moc"
