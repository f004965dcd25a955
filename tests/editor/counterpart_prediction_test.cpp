// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "platform/undo_manager.h"

#include <QApplication>
#include <QMouseEvent>

#include <cmath>

using namespace plyra;
using namespace plyra::test;

namespace {

// The last image shows the first's content at 0.4 times the size, turned by 10°, shifted:
// a similarity between pixel positions, whatever the two images' sizes.
struct KnownMap {
    QSize first;
    QSize last;

    Point toLast(Point unit) const { return apply(unit, first, last, 0.4, 10.0, {0.2 * last.width(), 0.2 * last.height()}); }
    Point toFirst(Point unit) const
    {
        // The inverse similarity: scale 1/0.4, turned back, the shift undone.
        const Point shifted{static_cast<float>(unit.x - 0.2), static_cast<float>(unit.y - 0.2)};
        return apply(shifted, last, first, 1.0 / 0.4, -10.0, {0.0, 0.0});
    }
    Point inTrack(unsigned track, Point unitOfOther) const { return track == 1 ? toLast(unitOfOther) : toFirst(unitOfOther); }

private:
    static Point apply(Point unit, QSize from, QSize to, double scale, double degrees, QPointF shift)
    {
        const double angle = degrees * std::acos(-1.0) / 180.0;
        const double x = unit.x * from.width();
        const double y = unit.y * from.height();
        const double px = scale * (std::cos(angle) * x - std::sin(angle) * y) + shift.x();
        const double py = scale * (std::sin(angle) * x + std::cos(angle) * y) + shift.y();
        return {static_cast<float>(px / to.width()), static_cast<float>(py / to.height())};
    }
};

bool near(Point a, Point b, float tolerance = 2e-5f)
{
    return std::abs(a.x - b.x) < tolerance && std::abs(a.y - b.y) < tolerance;
}

void dragOn(MorphEditor* editor, const EditorFixture& f, Point from, Point to)
{
    QTest::mousePress(editor, Qt::LeftButton, {}, f.widgetPoint(from));
    const QPoint local = f.widgetPoint(to);
    QMouseEvent move(QEvent::MouseMove, local, editor->mapToGlobal(local), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(editor, &move);
    QTest::mouseRelease(editor, Qt::LeftButton, {}, local);
}

// Images of the map's sizes, and three true pairs through it, as if placed by hand.
void addTruePairs(EditorFixture& f, const KnownMap& map)
{
    QString error;
    QVERIFY(f.document.setImageFromFile(f.writeImage(QStringLiteral("first.png"), map.first, Qt::gray), 0, &error));
    QVERIFY(f.document.setImageFromFile(f.writeImage(QStringLiteral("last.png"), map.last, Qt::gray), 1, &error));
    const ViewMapping view{EditorFixture::kWidth, EditorFixture::kHeight};
    const Point ends[][2] = {{{60, 40}, {200, 60}}, {{300, 200}, {420, 150}}, {{100, 180}, {150, 230}}};
    for (const auto& pair : ends) {
        const MorphLine::Ptr line = MorphLine::create();
        line->setStartPoint(view.toUnit(pair[0]), 0, nullptr);
        line->setEndPoint(view.toUnit(pair[1]), 0, nullptr);
        line->setStartPoint(map.toLast(view.toUnit(pair[0])), 1, nullptr);
        line->setEndPoint(map.toLast(view.toUnit(pair[1])), 1, nullptr);
        f.document.addMorphLine(line);
    }
}

} // namespace

class CounterpartPredictionTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void aDrawnLineLandsAtTheMappedPlace_data();
    void aDrawnLineLandsAtTheMappedPlace();
    void chainsShareTheirPredictedPoints();
    void placeSelectionByPrediction();
};

void CounterpartPredictionTest::aDrawnLineLandsAtTheMappedPlace_data()
{
    QTest::addColumn<unsigned>("track");
    QTest::addColumn<QSize>("lastSize");
    QTest::addColumn<bool>("predicting");
    QTest::newRow("first to last, same aspect") << 0u << QSize(600, 300) << true;
    QTest::newRow("first to last, other aspect") << 0u << QSize(300, 500) << true;
    QTest::newRow("last to first, same aspect") << 1u << QSize(600, 300) << true;
    QTest::newRow("last to first, other aspect") << 1u << QSize(300, 500) << true;
    QTest::newRow("prediction off") << 0u << QSize(300, 500) << false;
}

void CounterpartPredictionTest::aDrawnLineLandsAtTheMappedPlace()
{
    QFETCH(unsigned, track);
    QFETCH(QSize, lastSize);
    QFETCH(bool, predicting);
    EditorFixture f;
    const KnownMap map{QSize(800, 400), lastSize};
    addTruePairs(f, map);
    f.settle();
    MorphEditor* editor = track == 0 ? f.editor : f.lastEditor;
    for (MorphEditor* e : {f.editor, f.lastEditor})
        e->setPredictsCounterparts(predicting);

    // Drawn in the last image, a line starts from points of the last image: where it
    // stands in the first comes from the inverse map.
    const Point from{230, 120};
    const Point to{330, 110};
    dragOn(editor, f, from, to);
    f.endPass();
    QCOMPARE(f.document.morphLines().size(), std::size_t(4));
    const MorphLine::Ptr line = f.document.morphLines().back();
    const ViewMapping view{EditorFixture::kWidth, EditorFixture::kHeight};
    const unsigned other = track == 0 ? 1u : 0u;
    QCOMPARE(line->startPoint(track), view.toUnit(from));
    QCOMPARE(line->endPoint(track), view.toUnit(to));
    const Point expectedStart = predicting ? map.inTrack(other, view.toUnit(from)) : view.toUnit(from);
    const Point expectedEnd = predicting ? map.inTrack(other, view.toUnit(to)) : view.toUnit(to);
    QVERIFY2(near(line->startPoint(other), expectedStart), QTest::toString(line->startPoint(other)));
    QVERIFY2(near(line->endPoint(other), expectedEnd), QTest::toString(line->endPoint(other)));

    // One undo step takes the line out of both images.
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("New Line"));
    undo.undo();
    f.endPass();
    QCOMPARE(f.document.morphLines().size(), std::size_t(3));
}

void CounterpartPredictionTest::chainsShareTheirPredictedPoints()
{
    EditorFixture f;
    const KnownMap map{QSize(512, 256), QSize(512, 256)};
    addTruePairs(f, map);
    f.settle();
    const std::vector<Point> clicks{{250, 60}, {300, 100}, {350, 70}};
    for (const Point& p : clicks)
        f.click(p);
    f.key(Qt::Key_Escape);
    f.endPass();
    QCOMPARE(f.document.morphLines().size(), std::size_t(5));
    const MorphLine::Ptr first = f.document.morphLines()[3];
    const MorphLine::Ptr second = f.document.morphLines()[4];
    QCOMPARE(first->attachedLineAtEnd(), second);
    const ViewMapping view{EditorFixture::kWidth, EditorFixture::kHeight};
    QCOMPARE(first->endPoint(1), second->startPoint(1));
    QVERIFY(near(first->startPoint(1), map.toLast(view.toUnit(clicks[0]))));
    QVERIFY(near(second->startPoint(1), map.toLast(view.toUnit(clicks[1]))));
    QVERIFY(near(second->endPoint(1), map.toLast(view.toUnit(clicks[2]))));
    QCOMPARE(f.document.undoManager().undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(f.document.undoManager().undoActionName()), QStringLiteral("Create lines"));
}

void CounterpartPredictionTest::placeSelectionByPrediction()
{
    EditorFixture f;
    const KnownMap map{QSize(512, 256), QSize(512, 256)};
    addTruePairs(f, map);
    // Two lines drawn with prediction off: the same place in both images. The chain's
    // shared point moves once; the point joined to a known line stays where it is.
    const std::vector<MorphLine::Ptr> chain = f.addChain({{250, 60}, {300, 100}, {350, 70}});
    const MorphLine::Ptr known = f.document.morphLines()[0];
    const MorphLine::Ptr joined = MorphLine::create();
    const ViewMapping view{EditorFixture::kWidth, EditorFixture::kHeight};
    for (unsigned track : {0u, 1u}) {
        joined->setStartPoint(known->endPoint(track), track, nullptr);
        joined->setEndPoint(view.toUnit({240, 20}), track, nullptr);
    }
    f.document.addMorphLine(joined);
    QCOMPARE(known->attachedLineAtEnd(), joined);
    f.select({chain[0], chain[1], joined});
    f.settle();
    f.editor->placeSelectionByPrediction();
    f.endPass();
    QVERIFY(near(chain[0]->startPoint(1), map.toLast(view.toUnit({250, 60}))));
    QVERIFY(near(chain[1]->startPoint(1), map.toLast(view.toUnit({300, 100}))));
    QCOMPARE(chain[0]->endPoint(1), chain[1]->startPoint(1));
    QVERIFY(near(chain[1]->endPoint(1), map.toLast(view.toUnit({350, 70}))));
    QCOMPARE(joined->startPoint(1), known->endPoint(1));
    QVERIFY(near(joined->endPoint(1), map.toLast(view.toUnit({240, 20}))));
    // Track 0 is untouched, and one undo puts track 1 back.
    QCOMPARE(chain[0]->startPoint(0), view.toUnit({250, 60}));
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 1);
    QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Move Line"));
    undo.undo();
    QCOMPARE(chain[1]->endPoint(1), view.toUnit({350, 70}));
    QCOMPARE(joined->endPoint(1), view.toUnit({240, 20}));
}

QTEST_MAIN(CounterpartPredictionTest)
#include "counterpart_prediction_test.moc"
