// SPDX-License-Identifier: MIT
#include "inspector_test_support.h"

#include "inspector/inspector_controller.h"
#include "inspector/inspector_panel.h"
#include "inspector/line_timing_view.h"
#include "inspector/morph_line_inspector.h"
#include "inspector/time_field.h"
#include "inspector/timing_timeline.h"

#include <QLocale>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace plyra;
using namespace plyra::test;

Q_DECLARE_METATYPE(plyra::TimingCell)

namespace {

using Times = std::vector<std::array<float, 6>>;
using Four = std::array<float, 4>;

// One document window in front of a panel that shows the line inspector.
struct Scene {
    Scene()
    {
        controller.registerInspector(&inspector);
        window.activate();
        controller.showPanel();
    }

    LineTimingView* view() { return inspector.timingView(); }
    TimeField* field(TimingCell cell) { return view()->field(cell); }
    TimingTimeline* timeline() { return view()->timeline(); }
    UndoManager& undo() { return window.document().undoManager(); }

    /// Types text into a field as a person does and presses Return.
    void type(TimingCell cell, const QString& text)
    {
        TimeField* f = field(cell);
        f->setFocus();
        f->selectAll();
        QTest::keyClicks(f, text);
        QTest::keyClick(f, Qt::Key_Return);
        settle();
    }

    FakeDocumentWindow window;
    InspectorController controller;
    MorphLineInspector inspector;
};

bool near(float a, float b)
{
    return std::abs(a - b) < 1e-6f;
}

} // namespace

class MorphLineInspectorTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpInspectorTests(); }

    void acceptsOnlySelectionsOfLines()
    {
        MorphLineInspector inspector;
        const QVariant line = QVariant::fromValue(MorphLine::create());
        QVERIFY(inspector.isValidInspectorForTargets({line}));
        QVERIFY(inspector.isValidInspectorForTargets({line, QVariant::fromValue(MorphLine::create())}));
        QVERIFY(!inspector.isValidInspectorForTargets({}));
        QVERIFY(!inspector.isValidInspectorForTargets({line, QStringLiteral("other")}));
        QVERIFY(!inspector.isValidInspectorForTargets({QVariant::fromValue(MorphLine::Ptr())}));
    }

    void startBeginOnOneLine()
    {
        Scene scene;
        const auto lines = scene.window.addChain(1, 0.3f);
        const auto others = scene.window.addChain(2, 0.6f);
        scene.window.select(lines);
        const Times before = timesOf(lines);
        const Times othersBefore = timesOf(others);

        scene.type(TimingCell::StartBegin, QStringLiteral("0.3"));
        Times expected = before;
        expected[0][0] = 0.3f;
        QVERIFY(timesOf(lines) == expected);
        QVERIFY(timesOf(others) == othersBefore);
        QCOMPARE(scene.undo().undoActionName(), std::string("Change settings"));
        QCOMPARE(scene.undo().undoStepCount(), 1);
        scene.undo().undo();
        QVERIFY(timesOf(lines) == before);
    }

    void spreadsAlongAChain_data()
    {
        QTest::addColumn<TimingCell>("edited");
        QTest::addColumn<int>("field");
        QTest::addColumn<Four>("expected");
        QTest::newRow("end begin") << TimingCell::EndBegin << 2 << Four{0.2f, 0.4f, 0.6f, 0.8f};
        QTest::newRow("start begin") << TimingCell::StartBegin << 0 << Four{0.0f, 0.2f, 0.4f, 0.6f};
    }

    void spreadsAlongAChain()
    {
        QFETCH(TimingCell, edited);
        QFETCH(int, field);
        QFETCH(Four, expected);
        Scene scene;
        const auto chain = scene.window.addChain(4, 0.5f);
        scene.window.select({chain[2], chain[0], chain[3], chain[1]});
        // Start begin 0 and end begin 0.8 in the cells, then one of them is edited.
        scene.field(TimingCell::EndBegin)->setValue(0.8f);
        scene.type(edited, edited == TimingCell::EndBegin ? QStringLiteral("0.8") : QStringLiteral("0"));
        for (size_t i = 0; i < 4; ++i)
            QVERIFY2(near(timesOf(*chain[i])[size_t(field)], expected[i]), qPrintable(QString::number(i)));
        QCOMPARE(scene.undo().undoStepCount(), 1);
    }

    void spreadsEachChainOnItsOwn()
    {
        Scene scene;
        const auto a = scene.window.addChain(3, 0.2f);
        const auto b = scene.window.addChain(2, 0.4f);
        const auto c = scene.window.addChain(5, 0.7f);
        // Two whole chains, and a third cut in two by its unselected middle line.
        scene.window.select({b[1], a[0], c[4], a[2], b[0], c[0], a[1], c[1], c[3]});
        scene.type(TimingCell::EndBegin, QStringLiteral("0.9"));
        const float expectedA[] = {0.3f, 0.6f, 0.9f};
        for (size_t i = 0; i < 3; ++i)
            QVERIFY(near(a[i]->endPointBeginMoveTime(), expectedA[i]));
        QVERIFY(near(b[0]->endPointBeginMoveTime(), 0.45f) && near(b[1]->endPointBeginMoveTime(), 0.9f));
        QVERIFY(near(c[0]->endPointBeginMoveTime(), 0.45f) && near(c[1]->endPointBeginMoveTime(), 0.9f));
        QVERIFY(near(c[3]->endPointBeginMoveTime(), 0.45f) && near(c[4]->endPointBeginMoveTime(), 0.9f));
        // The unselected line keeps its own end; its start follows the joined end before it.
        QVERIFY(near(c[2]->startPointBeginMoveTime(), 0.9f) && near(c[2]->endPointBeginMoveTime(), 0.0f));
        QVERIFY(near(c[3]->startPointBeginMoveTime(), 0.0f));
    }

    void revertShowsTheChainsEnds()
    {
        Scene scene;
        scene.window.setImages(true);
        const auto chain = scene.window.addChain(3, 0.5f);
        chain[0]->setStartPointStopMoveTime(0.3f, nullptr);
        chain[0]->setStartPointBeginMoveTime(0.1f, nullptr);
        chain[0]->setDissolveStartTime(0.05f, nullptr);
        chain[1]->setDissolveEndTime(0.5f, nullptr);
        chain[2]->setEndPointBeginMoveTime(0.7f, nullptr);
        chain[2]->setEndPointStopMoveTime(0.9f, nullptr);
        chain[2]->setDissolveStartTime(0.6f, nullptr);
        chain[2]->setDissolveEndTime(0.95f, nullptr);
        scene.window.select({chain[2], chain[1], chain[0]});
        const TimingValues expected{0.1f, 0.3f, 0.7f, 0.9f, 0.05f, 0.95f};
        QVERIFY(scene.view()->values() == expected);
        QVERIFY(scene.timeline()->values() == expected);
        QCOMPARE(scene.field(TimingCell::StartBegin)->text(), QStringLiteral("0.1"));
        QCOMPARE(scene.field(TimingCell::DissolveEnd)->text(), QStringLiteral("0.95"));
    }

    void dissolveNeedsBothImagesAndSetsEveryLine()
    {
        Scene scene;
        const auto chain = scene.window.addChain(2, 0.5f);
        const auto single = scene.window.addChain(1, 0.2f);
        scene.window.select({chain[0], single[0], chain[1]});
        QVERIFY(!scene.field(TimingCell::DissolveStart)->isEnabled());
        QVERIFY(!scene.field(TimingCell::DissolveEnd)->isEnabled());
        QVERIFY(!scene.timeline()->isDissolveEnabled());
        QVERIFY(scene.field(TimingCell::StartBegin)->isEnabled());

        scene.window.setImages(false);
        settle();
        QVERIFY(!scene.field(TimingCell::DissolveStart)->isEnabled());
        scene.window.setImages(true);
        settle();
        QVERIFY(scene.field(TimingCell::DissolveStart)->isEnabled());
        QVERIFY(scene.timeline()->isDissolveEnabled());

        scene.type(TimingCell::DissolveStart, QStringLiteral("0.4"));
        scene.type(TimingCell::DissolveEnd, QStringLiteral("0.6"));
        for (const auto& line : {chain[0], chain[1], single[0]}) {
            QCOMPARE(line->dissolveStartTime(), 0.4f);
            QCOMPARE(line->dissolveEndTime(), 0.6f);
        }
    }

    void everyEditUndoesAndRedoes_data()
    {
        QTest::addColumn<TimingCell>("cell");
        QTest::addColumn<QString>("text");
        QTest::newRow("start begin") << TimingCell::StartBegin << QStringLiteral("0.2");
        QTest::newRow("start stop") << TimingCell::StartStop << QStringLiteral("0.5");
        QTest::newRow("end begin") << TimingCell::EndBegin << QStringLiteral("0.7");
        QTest::newRow("end stop") << TimingCell::EndStop << QStringLiteral("0.4");
        QTest::newRow("dissolve start") << TimingCell::DissolveStart << QStringLiteral("0.8");
        QTest::newRow("dissolve end") << TimingCell::DissolveEnd << QStringLiteral("0.1");
    }

    void everyEditUndoesAndRedoes()
    {
        QFETCH(TimingCell, cell);
        QFETCH(QString, text);
        Scene scene;
        scene.window.setImages(true);
        const auto chain = scene.window.addChain(3, 0.5f);
        scene.window.select(chain);
        scene.undo().removeAllActions();
        const Times before = timesOf(chain);

        scene.type(cell, text);
        const Times after = timesOf(chain);
        QVERIFY(after != before);
        QCOMPARE(scene.undo().undoStepCount(), 1);
        QCOMPARE(scene.undo().undoActionName(), std::string("Change settings"));

        scene.undo().undo();
        QVERIFY(timesOf(chain) == before);
        settle();
        QCOMPARE(scene.field(cell)->value(), before.front()[cellIndex(cell)]);
        scene.undo().redo();
        QVERIFY(timesOf(chain) == after);
        QCOMPARE(scene.undo().undoStepCount(), 1);
    }

    void timelineDragEqualsTyping()
    {
        // The same chain edited by typing 0.6 into the end begin field, and by dragging
        // the end begin handle about before letting it go at 0.6.
        struct Result {
            Times edited;
            Times undone;
            int steps;
            TimingValues shown;
        };
        auto edit = [](bool drag) {
            Scene scene;
            const auto chain = scene.window.addChain(3, 0.5f);
            chain[2]->setEndPointStopMoveTime(0.7f, nullptr);
            scene.window.select(chain);
            scene.undo().removeAllActions();
            if (drag) {
                TimingTimeline* timeline = scene.timeline();
                const QPoint grab = timeline->handlePosition(TimingCell::EndBegin);
                auto at = [&](float t) { return QPoint(int(std::lround(timeline->timeToX(t))), grab.y()); };
                QTest::mousePress(timeline, Qt::LeftButton, {}, grab);
                for (float t : {0.1f, 0.35f, 0.9f, 0.6f}) {
                    QTest::mouseMove(timeline, at(t));
                    settle();
                }
                QTest::mouseRelease(timeline, Qt::LeftButton, {}, at(0.6f));
            } else {
                scene.type(TimingCell::EndBegin, QStringLiteral("0.6"));
            }
            settle();
            Result result{timesOf(chain), {}, scene.undo().undoStepCount(), scene.view()->values()};
            scene.undo().undo();
            result.undone = timesOf(chain);
            return result;
        };
        const Result typed = edit(false);
        const Result dragged = edit(true);
        QVERIFY(typed.edited != typed.undone);
        QVERIFY(dragged.edited == typed.edited);
        QVERIFY(dragged.undone == typed.undone);
        QVERIFY(dragged.shown == typed.shown);
        QCOMPARE(typed.steps, 1);
        QCOMPARE(dragged.steps, 1);
    }

    void timelineEndsAndRows()
    {
        Scene scene;
        const auto lines = scene.window.addChain(1, 0.5f);
        lines[0]->setStartPointBeginMoveTime(0.5f, nullptr);
        lines[0]->setStartPointStopMoveTime(0.5f, nullptr);
        scene.window.select(lines);
        TimingTimeline* timeline = scene.timeline();
        const QPoint jump = timeline->handlePosition(TimingCell::StartBegin);

        // Both ends of a jump lie under the pointer: the direction of the drag picks one.
        QTest::mousePress(timeline, Qt::LeftButton, {}, jump);
        QTest::mouseMove(timeline, QPoint(int(std::lround(timeline->timeToX(0.8f))), jump.y()));
        QTest::mouseRelease(timeline, Qt::LeftButton, {}, QPoint(int(std::lround(timeline->timeToX(0.8f))), jump.y()));
        settle();
        QCOMPARE(lines[0]->startPointBeginMoveTime(), 0.5f);
        QCOMPARE(lines[0]->startPointStopMoveTime(), 0.8f);

        // Shift drags in thousandths; a drag past the end stops at 1.
        const QPoint stop = timeline->handlePosition(TimingCell::StartStop);
        int fine = int(std::lround(timeline->timeToX(0.8f))) - 6;
        auto fineTimeAt = [timeline](int x) { return float(std::round(double(timeline->xToTime(x)) * 1000.0) / 1000.0); };
        while (std::abs(fineTimeAt(fine) * 100.0f - std::round(fineTimeAt(fine) * 100.0f)) < 0.05f)
            --fine; // a pixel between the hundredths
        const float fineTime = fineTimeAt(fine);
        QTest::mousePress(timeline, Qt::LeftButton, {}, stop);
        QTest::mouseMove(timeline, QPoint(fine, stop.y()));
        QTest::mouseRelease(timeline, Qt::LeftButton, Qt::ShiftModifier, QPoint(fine, stop.y()));
        settle();
        QCOMPARE(lines[0]->startPointStopMoveTime(), fineTime);
        const QPoint endStop = timeline->handlePosition(TimingCell::EndStop);
        QTest::mousePress(timeline, Qt::LeftButton, {}, endStop);
        QTest::mouseRelease(timeline, Qt::LeftButton, {}, QPoint(timeline->width() + 40, endStop.y()));
        QCOMPARE(lines[0]->endPointStopMoveTime(), 1.0f);

        // Without both images the dissolve row does not move.
        const int steps = scene.undo().undoStepCount();
        const QPoint dissolve = timeline->handlePosition(TimingCell::DissolveEnd);
        QTest::mousePress(timeline, Qt::LeftButton, {}, dissolve);
        QTest::mouseRelease(timeline, Qt::LeftButton, {}, QPoint(int(timeline->timeToX(0.5f)), dissolve.y()));
        settle();
        QCOMPARE(lines[0]->dissolveEndTime(), 1.0f);
        QCOMPARE(scene.undo().undoStepCount(), steps);
    }

    void frameMarkerFollowsTheFrameWindow()
    {
        Scene scene;
        scene.window.select(scene.window.addChain(1, 0.5f));
        QCOMPARE(scene.timeline()->frameTime(), std::nullopt);
        scene.window.setFrameTime(0.25f);
        settle();
        QCOMPARE(scene.timeline()->frameTime(), std::optional<float>(0.25f));
        QVERIFY(scene.timeline()->accessibleDescription().contains(QStringLiteral("0.25")));
        scene.window.setFrameTime(std::nullopt);
        settle();
        QCOMPARE(scene.timeline()->frameTime(), std::nullopt);
    }

    void typedNumbersFollowTheLocaleAndAreClamped_data()
    {
        QTest::addColumn<QLocale::Language>("language");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<float>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("german comma") << QLocale::German << QStringLiteral("0,35") << 0.35f << QStringLiteral("0,35");
        QTest::newRow("german point") << QLocale::German << QStringLiteral("0.25") << 0.25f << QStringLiteral("0,25");
        QTest::newRow("english point") << QLocale::English << QStringLiteral("0.125") << 0.125f << QStringLiteral("0.125");
        QTest::newRow("above one") << QLocale::English << QStringLiteral("1.5") << 1.0f << QStringLiteral("1");
        QTest::newRow("below zero") << QLocale::German << QStringLiteral("-0,2") << 0.0f << QStringLiteral("0");
        QTest::newRow("not a number") << QLocale::English << QStringLiteral("soon") << 0.5f << QStringLiteral("0.5");
        QTest::newRow("german, five decimals") << QLocale::German << QStringLiteral("0,12345") << 0.12345f << QStringLiteral("0,1235");
    }

    void typedNumbersFollowTheLocaleAndAreClamped()
    {
        QFETCH(QLocale::Language, language);
        QFETCH(QString, typed);
        QFETCH(float, stored);
        QFETCH(QString, shown);
        Scene scene;
        scene.view()->setLocale(QLocale(language, QLocale::AnyTerritory));
        const auto lines = scene.window.addChain(1, 0.5f);
        lines[0]->setStartPointStopMoveTime(0.5f, nullptr);
        scene.window.select(lines);
        scene.type(TimingCell::StartStop, typed);
        QCOMPARE(lines[0]->startPointStopMoveTime(), stored);
        QCOMPARE(scene.field(TimingCell::StartStop)->text(), shown);
    }

    void fieldsShowWhatWasStored()
    {
        Scene scene;
        const auto lines = scene.window.addChain(1, 0.5f);
        lines[0]->setStartPointBeginMoveTime(0.3f, nullptr);
        scene.window.select(lines);
        // Within the setters' resolution: nothing changes, and the field shows so.
        scene.type(TimingCell::StartBegin, QStringLiteral("0.30004"));
        QCOMPARE(lines[0]->startPointBeginMoveTime(), 0.3f);
        QCOMPARE(scene.field(TimingCell::StartBegin)->text(), QStringLiteral("0.3"));
        QCOMPARE(scene.undo().undoStepCount(), 0);
        // A stop before the begin pulls the begin along.
        scene.type(TimingCell::StartStop, QStringLiteral("0.2"));
        QCOMPARE(scene.field(TimingCell::StartBegin)->text(), QStringLiteral("0.2"));
        // Leaving a field without a change applies nothing.
        scene.field(TimingCell::EndBegin)->setFocus();
        scene.field(TimingCell::EndStop)->setFocus();
        settle();
        QCOMPARE(scene.undo().undoStepCount(), 1);
        // An action from a control that is no field changes nothing.
        QObject stranger;
        scene.inspector.setValues(&stranger);
        scene.inspector.setValues(nullptr);
        QCOMPARE(scene.undo().undoStepCount(), 1);
    }

    void everyControlHasAnAccessibleName()
    {
        MorphLineInspector inspector;
        LineTimingView* view = inspector.timingView();
        QSet<QString> names;
        for (TimingCell cell : kTimingCells)
            names.insert(view->field(cell)->accessibleName());
        QCOMPARE(names.size(), 6);
        QVERIFY(!names.contains(QString()));
        QVERIFY(!view->timeline()->accessibleName().isEmpty());
        QVERIFY(!view->timeline()->accessibleDescription().isEmpty());
        QVERIFY(!view->helpButton()->accessibleName().isEmpty());
    }
};

QTEST_MAIN(MorphLineInspectorTest)
#include "morph_line_inspector_test.moc"
