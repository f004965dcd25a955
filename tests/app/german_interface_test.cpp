// SPDX-License-Identifier: MIT
#include "app/document_manager.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/window_actions.h"
#include "app_test_support.h"
#include "editor/morph_editor.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QAction>
#include <QApplication>
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
        // Numbers as the interface's language writes them, whatever the locale of LANG.
        QCOMPARE(QLocale().toString(0.3), QStringLiteral("0,3"));
        QCOMPARE(window->firstEditor()->accessibleDescription(), QStringLiteral("Linien: 0, ausgewählt: 0"));
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
