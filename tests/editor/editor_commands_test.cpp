// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "editor/editor_commands.h"
#include "platform/log.h"
#include "platform/undo_manager.h"

using namespace plyra;
using namespace plyra::test;

Q_DECLARE_METATYPE(plyra::Point)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

struct Segment {
    Point a;
    Point b;
};
Q_DECLARE_METATYPE(std::vector<Segment>)

class EditorCommandsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void nudges_data();
    void nudges();
    void nudgingAChainMovesTheSharedPointOnce();
    void deleteKeys_data();
    void deleteKeys();
    void selectAttached();
    void selectAllAppendsInListOrderAndSelectNoneEmpties();
    void clearDeletesTheSelection();
    void rectOfSelectedLines_data();
    void rectOfSelectedLines();
};

void EditorCommandsTest::nudges_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Point>("startShift");
    QTest::addColumn<Point>("endShift");
    const Qt::KeyboardModifiers none;
    QTest::newRow("up") << int(Qt::Key_Up) << none << Point{0, 1} << Point{0, 1};
    QTest::newRow("down") << int(Qt::Key_Down) << none << Point{0, -1} << Point{0, -1};
    QTest::newRow("left") << int(Qt::Key_Left) << none << Point{-1, 0} << Point{-1, 0};
    QTest::newRow("right") << int(Qt::Key_Right) << none << Point{1, 0} << Point{1, 0};
    QTest::newRow("Ctrl up: start only") << int(Qt::Key_Up) << Qt::KeyboardModifiers(Qt::ControlModifier) << Point{0, 1} << Point{};
    QTest::newRow("Ctrl Alt left: start only") << int(Qt::Key_Left) << (Qt::ControlModifier | Qt::AltModifier) << Point{-1, 0} << Point{};
    QTest::newRow("Alt up: end only") << int(Qt::Key_Up) << Qt::KeyboardModifiers(Qt::AltModifier) << Point{} << Point{0, 1};
    QTest::newRow("Alt Shift up: both") << int(Qt::Key_Up) << (Qt::AltModifier | Qt::ShiftModifier) << Point{0, 1} << Point{0, 1};
    QTest::newRow("Shift right: both") << int(Qt::Key_Right) << Qt::KeyboardModifiers(Qt::ShiftModifier) << Point{1, 0} << Point{1, 0};
    QTest::newRow("a letter: nothing") << int(Qt::Key_A) << none << Point{} << Point{};
}

void EditorCommandsTest::nudges()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Point, startShift);
    QFETCH(Point, endShift);
    EditorFixture f;
    const MorphLine::Ptr line = f.addLine({100, 100}, {200, 150});
    const MorphLine::Ptr other = f.addLine({300, 100}, {400, 150});
    f.select({line});
    f.settle();
    f.key(key, modifiers);
    // One view unit is 1/512 of the width and 1/256 of the height in stored points.
    QCOMPARE(line->startPoint(0), (Point{(100 + startShift.x) / 512, (100 + startShift.y) / 256}));
    QCOMPARE(line->endPoint(0), (Point{(200 + endShift.x) / 512, (150 + endShift.y) / 256}));
    QCOMPARE(line->startPoint(1), (Point{100.0f / 512, 100.0f / 256}));
    QCOMPARE(other->startPoint(0), (Point{300.0f / 512, 100.0f / 256}));
    f.endPass();
    const bool moved = startShift.x != 0 || startShift.y != 0 || endShift.x != 0 || endShift.y != 0;
    QCOMPARE(f.document.undoManager().undoStepCount(), moved ? 1 : 0);

    // Without a selection no key does anything.
    f.document.setSelectedLines({});
    f.settle();
    const Point before = line->startPoint(0);
    f.key(key, modifiers);
    QCOMPARE(line->startPoint(0), before);
}

void EditorCommandsTest::nudgingAChainMovesTheSharedPointOnce()
{
    EditorFixture f;
    const auto chain = f.addChain({{100, 100}, {200, 100}, {300, 120}});
    f.select({chain[1], chain[0]});
    f.settle();
    f.key(Qt::Key_Up);
    QCOMPARE(f.ends(chain[0]).start, (Point{100, 101}));
    QCOMPARE(f.ends(chain[0]).end, (Point{200, 101}));
    QCOMPARE(f.ends(chain[1]).start, (Point{200, 101}));
    QCOMPARE(f.ends(chain[1]).end, (Point{300, 121}));
    f.endPass();
    f.document.undoManager().undo();
    QCOMPARE(f.ends(chain[1]).start, (Point{200, 100}));
    QCOMPARE(f.ends(chain[0]).end, (Point{200, 100}));

    LogCapture log;
    EditorCommands(f.document, 0, {512, 256}).moveLines({chain[0]}, Qt::Key_Home, {});
    QVERIFY(log.contains("Didn't move line"));
    QCOMPARE(f.ends(chain[0]).start, (Point{100, 100}));
}

void EditorCommandsTest::deleteKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Delete") << int(Qt::Key_Delete);
    QTest::newRow("Backspace") << int(Qt::Key_Backspace);
}

void EditorCommandsTest::deleteKeys()
{
    QFETCH(int, key);
    EditorFixture f;
    std::vector<MorphLine::Ptr> lines;
    for (float y : {20.0f, 60.0f, 100.0f, 140.0f, 180.0f})
        lines.push_back(f.addLine({100, y}, {200, y}));
    f.select({lines[3], lines[0], lines[2]});
    f.settle();
    f.key(key);
    QCOMPARE(f.document.morphLines(), (std::vector{lines[1], lines[4]}));
    QVERIFY(f.document.selectedLines().empty());
    f.endPass();
    QCOMPARE(f.document.undoManager().undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(f.document.undoManager().undoActionName()), QStringLiteral("Delete Line"));
    f.document.undoManager().undo();
    QCOMPARE(f.document.morphLines(), lines);
    QCOMPARE(f.document.selectedLines().size(), std::size_t(3));
}

void EditorCommandsTest::selectAttached()
{
    EditorFixture f;
    const auto chain = f.addChain({{20, 20}, {80, 40}, {140, 20}, {200, 40}, {260, 20}, {320, 40}});
    const MorphLine::Ptr loose = f.addLine({100, 200}, {200, 200});
    f.select({chain[2]});
    f.editor->selectAttachedLines();
    QCOMPARE(f.selection(), (std::vector<int>{2, 1, 3, 0, 4}));
    f.select({loose});
    f.editor->selectAttachedLines();
    QCOMPARE(f.selection(), std::vector<int>{5});
}

void EditorCommandsTest::selectAllAppendsInListOrderAndSelectNoneEmpties()
{
    EditorFixture f;
    std::vector<MorphLine::Ptr> lines;
    for (float y : {20.0f, 60.0f, 100.0f, 140.0f, 180.0f})
        lines.push_back(f.addLine({100, y}, {200, y}));
    f.select({lines[3], lines[1]});
    f.editor->selectAll();
    QCOMPARE(f.selection(), (std::vector<int>{3, 1, 0, 2, 4}));
    f.settle();
    f.editor->selectNone();
    QVERIFY(f.document.selectedLines().empty());
    f.endPass();
    QVERIFY(!f.document.undoManager().canUndo());
}

void EditorCommandsTest::clearDeletesTheSelection()
{
    EditorFixture f;
    const auto chain = f.addChain({{20, 20}, {80, 40}, {140, 20}});
    const MorphLine::Ptr loose = f.addLine({100, 200}, {200, 200});
    f.select({loose, chain[0]});
    f.settle();
    f.editor->clear();
    QCOMPARE(f.document.morphLines(), (std::vector{chain[1]}));
    QVERIFY(!chain[1]->attachedLineAtStart());
    f.endPass();
    f.document.undoManager().undo();
    QCOMPARE(f.document.morphLines().size(), std::size_t(3));
    QCOMPARE(chain[1]->attachedLineAtStart(), chain[0]);
}

void EditorCommandsTest::rectOfSelectedLines_data()
{
    QTest::addColumn<std::vector<Segment>>("selected");
    QTest::addColumn<QRectF>("rect");
    const Segment diagonal{{10, 10}, {30, 50}};
    const Segment horizontal{{10, 30}, {40, 30}};
    const Segment vertical{{60, 0}, {60, 90}};
    QTest::newRow("none") << std::vector<Segment>{} << QRectF();
    QTest::newRow("one diagonal line") << std::vector{diagonal} << QRectF(10, 10, 20, 40);
    QTest::newRow("reversed diagonal") << std::vector{Segment{{30, 50}, {10, 10}}} << QRectF(10, 10, 20, 40);
    QTest::newRow("one horizontal line: its flat box") << std::vector{horizontal} << QRectF(10, 30, 30, 0);
    QTest::newRow("two horizontal lines: nothing") << std::vector{horizontal, Segment{{0, 70}, {90, 70}}} << QRectF();
    QTest::newRow("horizontal, then diagonal") << std::vector{horizontal, diagonal} << QRectF(10, 10, 20, 40);
    QTest::newRow("diagonal, then vertical adds nothing") << std::vector{diagonal, vertical} << QRectF(10, 10, 20, 40);
    QTest::newRow("two diagonals") << std::vector{diagonal, Segment{{100, 5}, {50, 20}}} << QRectF(10, 5, 90, 45);
}

void EditorCommandsTest::rectOfSelectedLines()
{
    QFETCH(std::vector<Segment>, selected);
    QFETCH(QRectF, rect);
    EditorFixture f;
    f.addLine({300, 100}, {400, 200});
    std::vector<MorphLine::Ptr> lines;
    for (const Segment& s : selected)
        lines.push_back(f.addLine(s.a, s.b));
    f.select(lines);
    QCOMPARE(f.editor->rectOfSelectedLines(), rect);
}

QTEST_MAIN(EditorCommandsTest)
#include "editor_commands_test.moc"
