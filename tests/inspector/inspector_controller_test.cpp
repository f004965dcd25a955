// SPDX-License-Identifier: MIT
#include "inspector_test_support.h"

#include "inspector/inspector_controller.h"
#include "inspector/inspector_panel.h"
#include "inspector/line_timing_view.h"
#include "inspector/morph_line_inspector.h"
#include "inspector/panel_placement.h"
#include "inspector/time_field.h"
#include "platform/log.h"
#include "platform/notification_center.h"
#include "platform/qt/user_defaults.h"

#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <algorithm>

using namespace plyra;
using namespace plyra::test;

class InspectorControllerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { setUpInspectorTests(); }

    void showsTimingViewForLinesAndEmptyViewForNone()
    {
        FakeDocumentWindow window;
        const auto lines = window.addChain(2, 0.5f);
        window.activate();
        InspectorController controller;
        MorphLineInspector inspector;
        controller.registerInspector(&inspector);
        controller.showPanel();
        QCOMPARE(controller.mainDocumentWindow(), &window);
        QCOMPARE(controller.shownView(), controller.emptySelectionView());

        window.select({lines[1]});
        QCOMPARE(controller.shownView(), inspector.view());
        QVERIFY(inspector.view()->isVisible());

        // The parked view keeps its state: what was typed but not committed is still there.
        inspector.timingView()->field(TimingCell::StartStop)->setText(QStringLiteral("0.42"));
        window.select({});
        QCOMPARE(controller.shownView(), controller.emptySelectionView());
        QVERIFY(inspector.view() && !inspector.view()->isVisible());
        QVERIFY(inspector.view()->parentWidget() != controller.panel());

        window.select({lines[0]});
        QCOMPARE(controller.shownView(), inspector.view());
        QCOMPARE(inspector.timingView()->field(TimingCell::StartBegin)->text(), QStringLiteral("0"));
    }

    void opensBesideTheDocumentWindowAndRemembersItsPlace()
    {
        UserDefaults::standard().remove(QStringLiteral("inspectorPanelPosition"));
        FakeDocumentWindow window;
        window.setGeometry(20, 40, 300, 200);
        window.activate();
        {
            InspectorController controller;
            controller.showPanel();
            const QRect panel = controller.panel()->frameGeometry();
            QCOMPARE(panel.left(), window.frameGeometry().right() + 9);
            QCOMPARE(panel.top(), window.frameGeometry().top());
            // The window manager settling the panel is not the user's choice: shown again,
            // it goes beside the document window where that is now.
            for (int step : {1, 2}) {
                testClock().advance(InspectorController::kPlacementSettleMs - 100);
                controller.panel()->move(panel.topLeft() + QPoint(step, 20));
                QTRY_COMPARE(controller.panel()->pos(), panel.topLeft() + QPoint(step, 20));
            }
            controller.hidePanel();
            const QPoint windowAt = window.pos() + QPoint(30, 10);
            window.move(windowAt);
            QTRY_COMPARE(window.pos(), windowAt);
            controller.showPanel();
            QCOMPARE(controller.panel()->frameGeometry().topLeft(), QPoint(window.frameGeometry().right() + 9, window.frameGeometry().top()));
            // The user's move, once the placement has settled, is remembered.
            testClock().advance(InspectorController::kPlacementSettleMs);
            controller.panel()->move(60, 70);
            QTRY_COMPARE(controller.panel()->pos(), QPoint(60, 70));
            controller.hidePanel();
            controller.showPanel();
            QCOMPARE(controller.panel()->pos(), QPoint(60, 70));
            controller.hidePanel();
        }
        // The next run of the program opens it there too; off the screen it is not used.
        InspectorController later;
        later.showPanel();
        QCOMPARE(later.panel()->pos(), QPoint(60, 70));
        later.hidePanel();
        PanelPlacement::remember(QPoint(-5000, 70));
        const QRect screen(0, 0, 800, 600);
        QVERIFY(!PanelPlacement::remembered(QSize(200, 300), screen));
        // No room on the right: on the left; none on either side: at the screen's edge.
        QCOMPARE(PanelPlacement::besideWindow(QRect(500, 10, 200, 100), QSize(250, 300), screen), QPoint(242, 10));
        QCOMPARE(PanelPlacement::besideWindow(QRect(100, 400, 600, 100), QSize(250, 300), screen), QPoint(550, 300));
    }

    void burstOfNotificationsRefreshesOnce()
    {
        FakeDocumentWindow window;
        const auto lines = window.addChain(1, 0.5f);
        window.activate();
        InspectorController controller;
        CountingInspector counting;
        controller.registerInspector(&counting);
        controller.registerInspector(&counting);
        controller.showPanel();
        window.select(lines);
        QCOMPARE(controller.shownView(), counting.view());

        // Ten notifications 2 ms apart: one refresh, 10 ms after the last.
        counting.reverts = 0;
        const char* names[] = {kSelectionUpdatedNotification, kObjectsUpdatedNotification, kFrameTimeUpdatedNotification};
        for (int i = 0; i < 10; ++i) {
            NotificationCenter::defaultCenter().post({names[i % 3], window.document().notificationObject()});
            testClock().advance(2);
        }
        testClock().advance(InspectorController::kRevertDelayMs - 3);
        QCOMPARE(counting.reverts, 0);
        testClock().advance(1);
        QCOMPARE(counting.reverts, 1);
        testClock().advance(100);
        QCOMPARE(counting.reverts, 1);

        // Changes of a document in no window in front refresh nothing.
        FakeDocumentWindow behind;
        NotificationCenter::defaultCenter().post({kObjectsUpdatedNotification, behind.document().notificationObject()});
        testClock().advance(100);
        QCOMPARE(counting.reverts, 1);
    }

    void hiddenPanelWaitsUntilShown()
    {
        FakeDocumentWindow window;
        const auto lines = window.addChain(1, 0.5f);
        window.activate();
        InspectorController controller;
        CountingInspector counting;
        controller.registerInspector(&counting);
        QSignalSpy visibility(&controller, &InspectorController::panelVisibilityChanged);

        window.select(lines);
        QCOMPARE(counting.reverts, 0);
        QCOMPARE(controller.shownView(), controller.emptySelectionView());
        QVERIFY(!controller.isPanelVisible());

        controller.togglePanel();
        QCOMPARE(counting.reverts, 1);
        QCOMPARE(controller.shownView(), counting.view());
        QVERIFY(controller.isPanelVisible());
        controller.togglePanel();
        QVERIFY(!controller.isPanelVisible());
        QCOMPARE(visibility.count(), 2);
        QCOMPARE(visibility.at(0).at(0).toBool(), true);
        QCOMPARE(visibility.at(1).at(0).toBool(), false);
    }

    void foreignObjectIsLoggedAndChangesNothing()
    {
        FakeDocumentWindow window;
        const auto lines = window.addChain(1, 0.5f);
        window.activate();
        InspectorController controller;
        MorphLineInspector inspector;
        controller.registerInspector(&inspector);
        controller.showPanel();
        window.select(lines);
        QCOMPARE(controller.shownView(), inspector.view());

        LogCapture log;
        window.setForeignSelectionItem(QStringLiteral("a stray object"));
        controller.revert();
        QCOMPARE(controller.shownView(), inspector.view());
        QCOMPARE(log.lines().size(), size_t(1));
        const std::string line = log.lines().front();
        QVERIFY2(line.starts_with("Unknown selection:(\n    "), line.c_str());
        QVERIFY(line.find("startPointBeginMoveTime") != std::string::npos);
        QVERIFY(line.ends_with(",\n    a stray object\n)"));
    }

    void followsTheDocumentWindowInFront()
    {
        FakeDocumentWindow first;
        FakeDocumentWindow second;
        const auto a = first.addChain(1, 0.5f);
        const auto b = second.addChain(1, 0.5f);
        a[0]->setStartPointBeginMoveTime(0.25f, nullptr);
        b[0]->setStartPointBeginMoveTime(0.75f, nullptr);
        first.select(a);
        second.select(b);
        InspectorController controller;
        MorphLineInspector inspector;
        controller.registerInspector(&inspector);
        first.activate();
        controller.showPanel();
        const TimeField* field = inspector.timingView()->field(TimingCell::StartBegin);
        QCOMPARE(field->value(), 0.25f);

        second.activate();
        settle();
        QCOMPARE(field->value(), 0.75f);
        QCOMPARE(controller.mainDocumentWindow(), &second);

        // Neither the panel nor a dialog becomes the main window.
        controller.panel()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(controller.panel()));
        QDialog dialog(&first);
        dialog.show();
        dialog.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        settle();
        QCOMPARE(controller.mainDocumentWindow(), &second);
        QCOMPARE(field->value(), 0.75f);
        dialog.hide();

        first.activate();
        settle();
        QCOMPARE(field->value(), 0.25f);
        // The window in front goes away: nothing is selected any more.
        first.hide();
        settle();
        QCOMPARE(controller.shownView(), controller.emptySelectionView());
    }

    void helpRequestsArePassedOn()
    {
        InspectorController controller;
        MorphLineInspector inspector;
        controller.registerInspector(&inspector);
        QSignalSpy help(&controller, &InspectorController::helpRequested);
        QTest::mouseClick(inspector.timingView()->helpButton(), Qt::LeftButton);
        QCOMPARE(help.count(), 1);
        QCOMPARE(help.at(0).at(0).toString(), QStringLiteral("timing"));
    }
};

QTEST_MAIN(InspectorControllerTest)
#include "inspector_controller_test.moc"
