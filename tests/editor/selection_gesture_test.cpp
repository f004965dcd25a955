// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "platform/undo_manager.h"

using namespace plyra;
using namespace plyra::test;

Q_DECLARE_METATYPE(plyra::Point)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

/// Four horizontal lines, 0 to 3, from x 100 to 200 at y 40, 80, 120 and 160.
class SelectionGestureTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void rectangle_data();
    void rectangle();
    void rectangleOfWidthZeroSelectsWhatItCrossesAndIsNotDrawn();
    void click_data();
    void click();
    void aRectangleIsNoUndoStep();

private:
    static std::vector<MorphLine::Ptr> addLines(EditorFixture& f)
    {
        std::vector<MorphLine::Ptr> lines;
        for (float y : {40.0f, 80.0f, 120.0f, 160.0f})
            lines.push_back(f.addLine({100, y}, {200, y}));
        return lines;
    }
};

void SelectionGestureTest::rectangle_data()
{
    QTest::addColumn<std::vector<int>>("selectedBefore");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Point>("pressAt");
    QTest::addColumn<std::vector<Point>>("dragThrough");
    QTest::addColumn<std::vector<int>>("selectedAfter");
    const Qt::KeyboardModifiers none;
    const Qt::KeyboardModifiers ctrl(Qt::ControlModifier);
    const Point p{50, 60};
    QTest::newRow("selects exactly what it meets") << std::vector<int>{0} << none << p
        << std::vector<Point>{{150, 130}} << std::vector<int>{1, 2};
    QTest::newRow("live: shrinking lets lines go") << std::vector<int>{} << none << p
        << std::vector<Point>{{150, 170}, {150, 100}} << std::vector<int>{1};
    QTest::newRow("Ctrl adds to the earlier selection") << std::vector<int>{0} << ctrl << p
        << std::vector<Point>{{150, 130}} << std::vector<int>{0, 1, 2};
    QTest::newRow("Ctrl, first line met selected: removes") << std::vector<int>{3, 1, 2} << ctrl << p
        << std::vector<Point>{{150, 130}} << std::vector<int>{3};
    QTest::newRow("Ctrl removing, shrinking brings lines back") << std::vector<int>{3, 1, 2} << ctrl << p
        << std::vector<Point>{{150, 130}, {150, 100}} << std::vector<int>{3, 2};
    QTest::newRow("Ctrl adding, shrinking drops only new lines") << std::vector<int>{2} << ctrl << p
        << std::vector<Point>{{150, 90}, {150, 170}, {150, 90}} << std::vector<int>{2, 1};
    QTest::newRow("a rectangle meeting nothing clears") << std::vector<int>{0, 1} << none << p
        << std::vector<Point>{{90, 200}} << std::vector<int>{};
    QTest::newRow("dragged from the top right to the bottom left") << std::vector<int>{} << none << Point{210, 50}
        << std::vector<Point>{{150, 20}} << std::vector<int>{0};
}

void SelectionGestureTest::rectangle()
{
    QFETCH(std::vector<int>, selectedBefore);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Point, pressAt);
    QFETCH(std::vector<Point>, dragThrough);
    QFETCH(std::vector<int>, selectedAfter);
    EditorFixture f;
    const auto lines = addLines(f);
    std::vector<MorphLine::Ptr> before;
    for (int index : selectedBefore)
        before.push_back(lines[std::size_t(index)]);
    f.select(before);
    f.settle();
    // Both buttons start it: the right one, and the left one with Meta (Control).
    for (bool meta : {false, true}) {
        f.select(before);
        const Qt::MouseButton button = meta ? Qt::LeftButton : Qt::RightButton;
        f.press(pressAt, button, modifiers | (meta ? Qt::MetaModifier : Qt::NoModifier));
        for (const Point& p : dragThrough)
            f.move(p, button, modifiers);
        f.release(dragThrough.back(), button, modifiers);
        QCOMPARE(f.selection(), selectedAfter);
        QVERIFY(!f.editor->isGestureActive());
    }
}

void SelectionGestureTest::rectangleOfWidthZeroSelectsWhatItCrossesAndIsNotDrawn()
{
    EditorFixture f;
    addLines(f);
    f.settle();
    const QImage before = f.editor->grab().toImage();
    f.press({150, 60}, Qt::RightButton);
    f.move({150, 140}, Qt::RightButton);
    QCOMPARE(f.selection(), (std::vector<int>{1, 2}));
    // Nothing of a dashed rectangle away from the lines (nor on them, beside the knobs).
    const QImage during = f.editor->grab().toImage();
    for (float y : {65.0f, 100.0f, 135.0f})
        for (float x : {148.0f, 149.0f, 150.0f, 151.0f, 152.0f})
            QCOMPARE(during.pixel(f.widgetPoint({x, y})), before.pixel(f.widgetPoint({x, y})));
    f.release({150, 140}, Qt::RightButton);

    // A proper rectangle is drawn while it is dragged, and gone afterwards.
    f.press({60, 60}, Qt::RightButton);
    f.move({90, 140}, Qt::RightButton);
    QVERIFY(f.editor->grab().toImage().pixel(f.widgetPoint({60, 100})) != before.pixel(f.widgetPoint({60, 100})));
    f.release({90, 140}, Qt::RightButton);
    QCOMPARE(f.editor->grab().toImage().pixel(f.widgetPoint({60, 100})), before.pixel(f.widgetPoint({60, 100})));
}

void SelectionGestureTest::click_data()
{
    QTest::addColumn<std::vector<int>>("selectedBefore");
    QTest::addColumn<Point>("at");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<std::vector<int>>("selectedAfter");
    const Qt::KeyboardModifiers none;
    const Qt::KeyboardModifiers ctrl(Qt::ControlModifier);
    QTest::newRow("far from every line: the nearest alone") << std::vector<int>{0, 2} << Point{450, 230} << none << std::vector<int>{3};
    QTest::newRow("tie between two lines: the later") << std::vector<int>{} << Point{150, 100} << none << std::vector<int>{2};
    QTest::newRow("Ctrl toggles off") << std::vector<int>{0, 2} << Point{150, 42} << ctrl << std::vector<int>{2};
    QTest::newRow("Ctrl toggles on") << std::vector<int>{0, 2} << Point{150, 78} << ctrl << std::vector<int>{0, 2, 1};
}

void SelectionGestureTest::click()
{
    QFETCH(std::vector<int>, selectedBefore);
    QFETCH(Point, at);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(std::vector<int>, selectedAfter);
    EditorFixture f;
    const auto lines = addLines(f);
    for (bool meta : {false, true}) {
        std::vector<MorphLine::Ptr> before;
        for (int index : selectedBefore)
            before.push_back(lines[std::size_t(index)]);
        f.select(before);
        if (meta)
            f.click(at, Qt::LeftButton, modifiers | Qt::MetaModifier);
        else
            f.click(at, Qt::RightButton, modifiers);
        QCOMPARE(f.selection(), selectedAfter);
    }
    // A click in a document without lines changes nothing.
    EditorFixture empty;
    empty.click({100, 100}, Qt::RightButton);
    QVERIFY(empty.document.morphLines().empty());
    QVERIFY(!empty.editor->isGestureActive());
}

void SelectionGestureTest::aRectangleIsNoUndoStep()
{
    EditorFixture f;
    addLines(f);
    f.settle();
    f.press({50, 20}, Qt::RightButton);
    for (float y : {50.0f, 90.0f, 130.0f, 170.0f}) {
        f.move({150, y}, Qt::RightButton);
        f.endPass();
    }
    f.release({150, 170}, Qt::RightButton);
    f.endPass();
    QCOMPARE(f.selection(), (std::vector<int>{0, 1, 2, 3}));
    QVERIFY(!f.document.undoManager().canUndo());
}

QTEST_MAIN(SelectionGestureTest)
#include "selection_gesture_test.moc"
