// SPDX-License-Identifier: MIT
// A start after a kill: each copy that an ended process left is offered once, with its
// document's name and date; Recover opens the edited document in place of the empty
// start window (saving goes to the original package and removes the copy), Discard
// removes the copy, no answer keeps it for the next start.
#include "app/document_manager.h"
#include "app/document_recovery.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app_test_support.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "recovery/recovery_copy.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

using namespace plyra;
using namespace plyra::test;
using RecoveryAnswer = DocumentPrompts::RecoveryAnswer;

namespace {

MorphLine::Ptr lineFrom(Point start, Point end)
{
    MorphLine::Ptr line = MorphLine::create();
    for (unsigned track : {0u, 1u}) {
        line->setStartPoint(start, track, nullptr);
        line->setEndPoint(end, track, nullptr);
    }
    return line;
}

// A process that has ended (and was reaped): the owner of the copies a kill leaves.
ProcessIdentity endedProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return {child, 1};
}

void endPass()
{
    QCoreApplication::processEvents();
    RunLoop::main().runUntilIdle();
}

} // namespace

class DocumentRecoveryTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_package;
    std::size_t m_linesInCopy = 0;

    // What a kill -9 after drawing a line in the package (or in an untitled document)
    // leaves in the store: a whole copy with one line more, owned by an ended process.
    RecoveryCopy leftCopy(DocumentRecovery& recovery, bool untitled)
    {
        RecoveryCopy copy;
        copy.folder = recovery.store().newCopyFolder();
        QDir().mkpath(copy.folder);
        copy.owner = endedProcess();
        copy.documentPath = untitled ? QString() : m_package;
        copy.displayName = untitled ? QStringLiteral("Untitled 3") : QStringLiteral("doc");
        copy.savedAt = QDateTime(QDate(2026, 3, 14), QTime(15, 9, 26));
        MorphDocument edited;
        [&] { QVERIFY(edited.readFromFile(m_package)); }();
        edited.addMorphLine(lineFrom({0.6f, 0.1f}, {0.6f, 0.9f}));
        m_linesInCopy = edited.morphLines().size();
        copy.imageOrigins[0] = edited.imageURLInTrack(0);
        copy.imageNamesInPackage[0] = edited.imageNameInPackageInTrack(0);
        [&] { QVERIFY(edited.writeToFile(copy.packagePath())); }();
        [&] { QVERIFY(copy.writeDescription()); }();
        return copy;
    }

private slots:
    void initTestCase()
    {
        qputenv("XDG_STATE_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("state"))));
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
        MorphDocument document;
        document.setImageFromURL(writeTestImage(m_dir, QStringLiteral("first.png"), 120, 80), 0);
        document.addMorphLine(lineFrom({0.2f, 0.2f}, {0.8f, 0.6f}));
        m_package = m_dir.filePath(QStringLiteral("doc.plyra"));
        QVERIFY(document.writeToFile(m_package));
        m_package = QFileInfo(m_package).canonicalFilePath();
    }

    void eachLeftCopyIsOfferedOnce_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("untitled");
        QTest::newRow("recover a saved document") << int(RecoveryAnswer::Recover) << false;
        QTest::newRow("recover an untitled document") << int(RecoveryAnswer::Recover) << true;
        QTest::newRow("discard") << int(RecoveryAnswer::Discard) << false;
        QTest::newRow("no answer") << int(RecoveryAnswer::Later) << false;
    }

    void eachLeftCopyIsOfferedOnce()
    {
        QFETCH(int, answer);
        QFETCH(bool, untitled);
        ScriptedPrompts::Script script;
        script.recoveryAnswers.push_back(RecoveryAnswer(answer));
        PlyraApplication app(std::make_unique<ScriptedPrompts>(script), std::make_unique<SilentUpdateAlerts>());
        const RecoveryCopy copy = leftCopy(app.recovery(), untitled);
        app.documents().newDocument(); // the empty window of a start without arguments

        app.recovery().offerLeftCopies([] { return false; });
        endPass();
        const QString name = untitled ? QStringLiteral("Untitled 3") : QStringLiteral("doc");
        QCOMPARE(script.recoveries, QStringList{name + QStringLiteral(" | 2026-03-14T15:09:26")});
        // Whatever the answer, no other start offers the copy while this one runs.
        QVERIFY(app.recovery().store().orphanedCopies().empty());
        QCOMPARE(QFileInfo::exists(copy.folder), RecoveryAnswer(answer) != RecoveryAnswer::Discard);
        if (RecoveryAnswer(answer) != RecoveryAnswer::Recover) {
            QCOMPARE(app.documents().windows().size(), 1u);
            QVERIFY(!app.documents().windows().front()->document().isEdited());
            return;
        }

        QCOMPARE(app.documents().windows().size(), 1u); // the empty window gave way
        MorphEditorWindowController* window = app.documents().windows().front();
        QCOMPARE(window->filePath(), untitled ? QString() : m_package);
        QVERIFY(window->document().isEdited());
        QVERIFY(window->isWindowModified());
        QCOMPARE(window->document().morphLines().size(), m_linesInCopy);
        QVERIFY(window->document().imageInTrack(0));
        if (untitled)
            return;
        QVERIFY(app.documents().save(window));
        endPass();
        QVERIFY(!QFileInfo::exists(copy.folder));
        MorphDocument saved;
        QVERIFY(saved.readFromFile(m_package));
        QCOMPARE(saved.morphLines().size(), m_linesInCopy);
    }
};

QTEST_MAIN(DocumentRecoveryTest)
#include "document_recovery_test.moc"
