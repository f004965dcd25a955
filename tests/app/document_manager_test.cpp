// SPDX-License-Identifier: MIT
#include "app/document_manager.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app_test_support.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace plyra;
using namespace plyra::test;
using SaveAnswer = DocumentPrompts::SaveAnswer;

class DocumentManagerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    ScriptedPrompts::Script m_script;
    std::unique_ptr<PlyraApplication> m_app;
    QString m_first;
    QString m_last;

    DocumentManager& documents() { return m_app->documents(); }

    static void endPass()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
    }

    static MorphLine::Ptr lineFrom(Point start, Point end)
    {
        MorphLine::Ptr line = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            line->setStartPoint(start, track, nullptr);
            line->setEndPoint(end, track, nullptr);
        }
        return line;
    }

    // A saved package with both images and one line.
    QString savedPackage(const QString& name)
    {
        MorphEditorWindowController* window = documents().newDocumentWithImages(m_first, m_last);
        window->document().addMorphLine(lineFrom({0.2f, 0.2f}, {0.8f, 0.6f}));
        const QString path = m_dir.filePath(name);
        m_script.savePaths.push_back(path);
        [&] { QVERIFY(documents().saveAs(window)); }();
        documents().close(window);
        endPass();
        return path;
    }

private slots:
    void initTestCase()
    {
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
        m_first = writeTestImage(m_dir, QStringLiteral("first.png"), 200, 100);
        m_last = writeTestImage(m_dir, QStringLiteral("last.png"), 200, 100);
    }

    void init()
    {
        m_script = {};
        m_app = std::make_unique<PlyraApplication>(std::make_unique<ScriptedPrompts>(m_script), std::make_unique<SilentUpdateAlerts>());
    }

    void cleanup()
    {
        m_app.reset();
        endPass();
    }

    void modifiedMarkFollowsEditsAndUndo()
    {
        MorphEditorWindowController* window = documents().newDocument();
        QVERIFY(!window->isWindowModified());
        QVERIFY(window->windowTitle().startsWith(QStringLiteral("Untitled[*]")));
        window->document().addMorphLine(lineFrom({0.1f, 0.1f}, {0.5f, 0.5f}));
        endPass();
        QVERIFY(window->isWindowModified());
        window->undo();
        endPass();
        QVERIFY(!window->isWindowModified());
        window->redo();
        endPass();
        QVERIFY(window->isWindowModified());
        // A selection change alone is not an edit.
        window->undo();
        window->document().addMorphLine(lineFrom({0.1f, 0.1f}, {0.5f, 0.5f}));
        endPass();
        m_script.savePaths.push_back(m_dir.filePath(QStringLiteral("marks.plyra")));
        QVERIFY(documents().save(window));
        endPass();
        QVERIFY(!window->isWindowModified());
        window->document().insertObjectInSelectedLinesAtIndex(window->document().morphLines().front(), 0);
        endPass();
        QVERIFY(!window->isWindowModified());
    }

    void saveAsIntoTheDocumentsOwnPackageIsRefused()
    {
        const QString package = savedPackage(QStringLiteral("own.plyra"));
        MorphEditorWindowController* window = documents().openDocument(package);
        QVERIFY(window);
        m_script.savePaths.push_back(package + QStringLiteral("/own.plyra"));
        QVERIFY(!documents().saveAs(window));
        QCOMPARE(m_script.errors.size(), 1);
        QVERIFY(m_script.errors.constFirst().contains(QStringLiteral("cannot be saved inside its own package")));
        QVERIFY(!QFileInfo::exists(package + QStringLiteral("/own.plyra")));
        QCOMPARE(window->filePath(), QFileInfo(package).canonicalFilePath());
    }

    void closingAnEditedDocumentAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<bool>("written");
        QTest::newRow("cancel keeps the window") << int(SaveAnswer::Cancel) << false << false;
        QTest::newRow("don't save discards") << int(SaveAnswer::DontSave) << true << false;
        QTest::newRow("save writes, then closes") << int(SaveAnswer::Save) << true << true;
    }

    void closingAnEditedDocumentAsks()
    {
        QFETCH(int, answer);
        QFETCH(bool, closed);
        QFETCH(bool, written);
        const QString path = m_dir.filePath(QStringLiteral("asked-%1.plyra").arg(answer));
        MorphEditorWindowController* window = documents().newDocumentWithImages(m_first, QString());
        m_script.saveAnswers.push_back(SaveAnswer(answer));
        m_script.savePaths.push_back(path);
        QCOMPARE(documents().close(window), closed);
        QCOMPARE(m_script.asked, QStringList{QStringLiteral("Untitled")});
        QCOMPARE(documents().windows().size(), closed ? 0u : 1u);
        QCOMPARE(QFileInfo::exists(path + QStringLiteral("/info.plist")), written);
    }

    void anUneditedDocumentClosesWithoutAsking()
    {
        MorphEditorWindowController* window = documents().newDocument();
        QVERIFY(documents().close(window));
        QVERIFY(m_script.asked.isEmpty());
    }

    void saveAsWritesANewPackageAndRenamesTheWindow()
    {
        const QString original = savedPackage(QStringLiteral("original.plyra"));
        MorphEditorWindowController* window = documents().openDocument(original);
        QVERIFY(window);
        QCOMPARE(window->displayName(), QStringLiteral("original"));
        window->document().addMorphLine(lineFrom({0.3f, 0.7f}, {0.6f, 0.2f}));
        const QString copy = m_dir.filePath(QStringLiteral("copy.plyra"));
        m_script.savePaths.push_back(copy);
        QVERIFY(documents().saveAs(window));
        QCOMPARE(window->displayName(), QStringLiteral("copy"));
        QVERIFY(window->windowTitle().startsWith(QStringLiteral("copy[*]")));
        QVERIFY(!window->document().isEdited());

        MorphDocument reread;
        QVERIFY(reread.readFromFile(copy));
        QCOMPARE(reread.morphLines().size(), 2u);
        QVERIFY(reread.imageInTrack(0) && reread.imageInTrack(1));
        MorphDocument untouched;
        QVERIFY(untouched.readFromFile(original));
        QCOMPARE(untouched.morphLines().size(), 1u);
    }

    void revertGoesBackToTheSavedPackage()
    {
        const QString path = savedPackage(QStringLiteral("revert.plyra"));
        MorphEditorWindowController* window = documents().openDocument(path);
        window->document().removeObjectFromMorphLinesAtIndex(0);
        endPass();
        QVERIFY(window->document().isEdited());
        documents().revert(window);
        endPass();
        QCOMPARE(documents().windows().size(), 1u);
        MorphEditorWindowController* reverted = documents().windows().front();
        QCOMPARE(reverted->document().morphLines().size(), 1u);
        QVERIFY(!reverted->document().isEdited());
    }

    void aDamagedPackageIsRefusedWithItsNameAndReason_data()
    {
        QTest::addColumn<QByteArray>("infoPlist");
        QTest::addColumn<QString>("reasonFragment");
        QTest::newRow("not a property list") << QByteArray("{ this is ( not") << QString();
        QTest::newRow("an array") << QByteArray("( 1, 2 )") << QString();
        QTest::newRow("missing info.plist") << QByteArray() << QString();
    }

    void aDamagedPackageIsRefusedWithItsNameAndReason()
    {
        QFETCH(QByteArray, infoPlist);
        const QString path = m_dir.filePath(QStringLiteral("damaged-%1.plyra").arg(QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-'))));
        QDir().mkpath(path);
        if (!infoPlist.isEmpty()) {
            QFile file(path + QStringLiteral("/info.plist"));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(infoPlist);
        }
        MorphEditorWindowController* open = documents().newDocument();
        QVERIFY(!documents().openDocument(path));
        QCOMPARE(m_script.errors.size(), 1);
        const QStringList parts = m_script.errors.constFirst().split(QStringLiteral(" | "));
        QVERIFY2(parts.value(0).contains(QFileInfo(path).fileName()), qPrintable(parts.value(0)));
        QVERIFY2(!parts.value(1).isEmpty(), "the message gives a reason");
        QCOMPARE(documents().windows().size(), 1u);
        QCOMPARE(documents().windows().front().data(), open);
    }

    void openingAnOpenPackageRaisesItsWindow()
    {
        const QString path = savedPackage(QStringLiteral("twice.plyra"));
        MorphEditorWindowController* first = documents().openDocument(path);
        MorphEditorWindowController* second = documents().openDocument(QDir(m_dir.path()).filePath(QStringLiteral("./twice.plyra")));
        QCOMPARE(second, first);
        QCOMPARE(documents().windows().size(), 1u);
    }

    void twoImagesMakeANewEditedDocument()
    {
        QVERIFY(m_app->openArguments({m_first, m_last}));
        QCOMPARE(documents().windows().size(), 1u);
        MorphEditorWindowController* window = documents().windows().front();
        QVERIFY(window->document().imageInTrack(0) && window->document().imageInTrack(1));
        QVERIFY(window->document().isEdited());
        QVERIFY(!window->document().undoManager().canUndo());
        // Its first Save proposes the folder of its first image.
        QVERIFY(!documents().save(window));
        QCOMPARE(m_script.saveStarts.constLast(), QFileInfo(m_first).absoluteDir().filePath(window->displayName()));

        // An image that does not read: a message naming it, and no new window.
        QFile bad(m_dir.filePath(QStringLiteral("bad.png")));
        QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("not an image") > 0);
        bad.close();
        QVERIFY(!m_app->openArguments({m_first, bad.fileName()}));
        QCOMPARE(m_script.errors.size(), 1);
        QVERIFY(m_script.errors.constFirst().contains(QStringLiteral("bad.png")));
        QCOMPARE(documents().windows().size(), 1u);
    }

    void quittingAsksForEveryEditedDocumentAndStopsAtCancel()
    {
        MorphEditorWindowController* a = documents().newDocumentWithImages(m_first, QString());
        documents().newDocument();
        MorphEditorWindowController* c = documents().newDocumentWithImages(m_last, QString());
        Q_UNUSED(a);
        Q_UNUSED(c);
        m_script.saveAnswers = {SaveAnswer::DontSave, SaveAnswer::Cancel};
        QVERIFY(!documents().closeAll());
        QCOMPARE(m_script.asked.size(), 2);
        QCOMPARE(documents().windows().size(), 1u);
    }
};

QTEST_MAIN(DocumentManagerTest)
#include "document_manager_test.moc"
