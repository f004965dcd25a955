// SPDX-License-Identifier: MIT
#include "app/document_manager.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/window_actions.h"
#include "app_test_support.h"
#include "editor/morph_editor.h"
#include "inspector/inspector_controller.h"
#include "inspector/line_timing_view.h"
#include "inspector/morph_line_inspector.h"
#include "inspector/time_field.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenuBar>
#include <QTest>

using namespace plyra;
using namespace plyra::test;

// The whole interface in German, chosen the way the user's language chooses it.
class GermanInterfaceTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    ScriptedPrompts::Script m_script;
    std::unique_ptr<PlyraApplication> m_app;

private slots:
    void initTestCase()
    {
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
        QCOMPARE(PlyraApplication::installTranslations({QStringLiteral("fr-FR"), QStringLiteral("de-DE"), QStringLiteral("en")}),
            QStringLiteral("de"));
        m_app = std::make_unique<PlyraApplication>(std::make_unique<ScriptedPrompts>(m_script), std::make_unique<SilentUpdateAlerts>());
    }

    void cleanupTestCase()
    {
        m_app.reset();
        RunLoop::main().runUntilIdle();
    }

    void menusToolbarAndEditorsAreGerman()
    {
        MorphEditorWindowController* window = m_app->documents().newDocument();
        QStringList titles;
        for (QAction* menu : window->menuBar()->actions())
            titles.append(menu->text());
        QCOMPARE(titles, (QStringList{"&Datei", "&Bearbeiten", "&Ansicht", "Be&rechnen", "&Hilfe"}));
        QCOMPARE(window->actions().action(Command::SelectAll)->text(), QStringLiteral("&Alles auswählen"));
        QCOMPARE(window->firstEditor()->accessibleName(), QStringLiteral("Erstes Bild"));
        QCOMPARE(window->lastEditor()->accessibleName(), QStringLiteral("Letztes Bild"));
        QCOMPARE(window->displayName(), QStringLiteral("Unbenannt"));
        QCOMPARE(sharedMnemonics(window->menuBar()->actions(), QStringLiteral("Menüleiste")), QStringList());
        QCOMPARE(window->firstEditor()->accessibleDescription(), QStringLiteral("Linien: 0, ausgewählt: 0"));
    }

    void whyAFileCannotBeReadIsGerman()
    {
        QFile empty(m_dir.filePath(QStringLiteral("leer.png")));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        m_script.errors.clear();
        QVERIFY(!m_app->documents().newDocumentWithImages(empty.fileName(), QString()));
        QCOMPARE(m_script.errors.size(), 1);
        QVERIFY2(m_script.errors[0].startsWith(QStringLiteral("Das Bild „leer.png“")), qPrintable(m_script.errors[0]));
        QVERIFY2(m_script.errors[0].contains(QStringLiteral("die Datei ist leer")), qPrintable(m_script.errors[0]));
    }

    void timesAreTypedAndShownWithADecimalComma()
    {
        // Numbers follow the interface's language, whatever the locale of LANG says.
        MorphEditorWindowController* window = m_app->documents().newDocument();
        MorphLine::Ptr line = MorphLine::create();
        line->setEndPoint({0.5f, 0.5f}, 0, nullptr);
        window->document().addMorphLine(line);
        window->document().setSelectedLines({line});
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        InspectorController* inspector = InspectorController::sharedInspectorController();
        inspector->showPanel();
        QCOMPARE(inspector->shownView(), MorphLineInspector::sharedInspector()->view());
        TimeField* field = MorphLineInspector::sharedInspector()->timingView()->field(TimingCell::StartStop);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QStringLiteral("0,3"));
        QTest::keyClick(field, Qt::Key_Return);
        RunLoop::main().runUntilIdle();
        QCOMPARE(line->startPointStopMoveTime(), 0.3f);
        QCOMPARE(field->text(), QStringLiteral("0,3"));
        inspector->hidePanel();
    }

    void undoNamesAreGerman()
    {
        MorphEditorWindowController* window = m_app->documents().newDocument();
        MorphLine::Ptr line = MorphLine::create();
        line->setEndPoint({0.5f, 0.5f}, 0, nullptr);
        line->setEndPoint({0.5f, 0.5f}, 1, nullptr);
        window->document().addMorphLine(line);
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
        QCOMPARE(window->actions().action(Command::Undo)->text(), QStringLiteral("&Rückgängig: Neue Linie"));
        line->setEndPoint({0.6f, 0.5f}, 0, &window->document().undoManager());
        RunLoop::main().runUntilIdle();
        QCOMPARE(window->actions().action(Command::Undo)->text(), QStringLiteral("&Rückgängig: Linie bewegen"));
    }
};

QTEST_MAIN(GermanInterfaceTest)
#include "german_interface_test.moc"
